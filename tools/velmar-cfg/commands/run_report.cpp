// velmar-cfg run-report: what a run depended on, and what the runs of a farm did together.
#include <algorithm>
#include <cmath>

#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/documents/run_report_json.h"
#include "tools/velmar-cfg/documents/run_reports.h"

namespace
{
struct RUN_REPORT_OPTIONS
{
    std::vector<std::string> files;
    bool merge = false;
    std::optional<std::string> switch_name;
};

// --- One run ---

constexpr std::size_t longest_bar = 24;

std::string bar_of(std::uint64_t count, std::uint64_t highest)
{
    const double share = static_cast<double>(count) / static_cast<double>(highest);
    const auto length = static_cast<std::size_t>(std::lround(share * static_cast<double>(longest_bar)));
    return std::string(std::max<std::size_t>(length, 1), '#');
}

std::string remark_of(const READ_VARIABLE& variable)
{
    if (!variable.value)
        return "no usable value: unset, or not of the type asked for";
    return variable.used ? "" : "not of the type asked for";
}

void write_read_variables(const RUN_REPORT& report, OUTPUT& out)
{
    if (report.read.empty())
    {
        out << "The run read no variable that is set.\n";
        return;
    }
    const std::uint64_t highest = report.read.front().count;
    const std::size_t digits = std::max(std::to_string(highest).size(), std::string_view("READS").size());
    out << out.painted(STYLE::STRONG,
                       std::string(digits - 5, ' ') + "READS  " + std::string(longest_bar, ' ') + "  VARIABLE")
        << "\n";
    for (const READ_VARIABLE& variable : report.read)
    {
        const std::string count = std::to_string(variable.count);
        const std::string bar = bar_of(variable.count, highest);
        out << std::string(digits - count.size(), ' ') << count << "  " << out.painted(STYLE::GOOD, bar)
            << std::string(longest_bar - bar.size() + 2, ' ') << printable(variable.name);
        if (variable.value)
            out << "=" << printable(*variable.value);
        if (variable.external)
            out << out.painted(STYLE::FAINT, "  external");
        if (const std::string remark = remark_of(variable); !remark.empty())
            out << "  " << out.painted(STYLE::WARNING, "(" + remark + ")");
        out << "\n";
    }
}

void write_report(const RUN_REPORT& report, OUTPUT& out)
{
    out << out.painted(STYLE::STRONG, "Run " + printable(report.run)) << ", release " << printable(report.release)
        << "\n";
    for (const auto& [title, path] :
         {std::pair("main settings file", &report.main_file), std::pair("appended file", &report.appended_file),
          std::pair("regression-test file", &report.regtest_file)})
    {
        if (*path)
            out << "  " << title << ": " << printable(**path) << "\n";
    }
    out << "\n";
    write_read_variables(report, out);
    if (!report.external_never_read.empty())
        out << "\n" << out.painted(STYLE::STRONG, "Set from outside and never read") << "\n";
    for (const UNREAD_VARIABLE& variable : report.external_never_read)
        out << "  " << printable(variable.name) << "=" << printable(variable.value) << "\n";
    if (!report.uncounted.empty())
        out << "\n"
            << out.painted(STYLE::STRONG, "Asked for once while unset, or set inside the run and never read") << "\n";
    for (const std::string& name : report.uncounted)
        out << "  " << printable(name) << "\n";
}

// --- Several runs ---

std::string joined(const std::vector<std::string>& texts)
{
    std::string all;
    for (const std::string& text : texts)
        all += (all.empty() ? "" : ", ") + printable(text);
    return all;
}

std::string runs_in_words(std::size_t runs)
{
    return std::to_string(runs) + (runs == 1 ? " run" : " runs");
}

void write_never_read(const std::vector<NEVER_READ_VARIABLE>& variables, std::size_t runs, OUTPUT& out)
{
    out << out.painted(STYLE::STRONG, "Set from outside and read by none of " + runs_in_words(runs)) << "\n";
    if (variables.empty())
        out << "  none\n";
    for (const NEVER_READ_VARIABLE& variable : variables)
    {
        out << "  " << printable(variable.name) << "=" << joined(variable.values) << "  "
            << out.painted(STYLE::FAINT, "set in " + runs_in_words(variable.set_in_runs.size())) << "\n";
        if (!variable.perhaps_read_by_runs.empty())
            out << "    " << out.painted(STYLE::WARNING, "perhaps asked for once, while unset, by") << " "
                << joined(variable.perhaps_read_by_runs) << "\n";
    }
}

void write_dependence(const RUN_REPORT& report, const DEPENDENCE& dependence, OUTPUT& out)
{
    if (dependence.kind == DEPENDENCE::KIND::UNKNOWN)
        return;
    out << "  " << printable(report.run) << ": ";
    if (dependence.kind == DEPENDENCE::KIND::PERHAPS)
        out << out.painted(STYLE::WARNING, "perhaps: unset and asked for once, or set inside the run and never read");
    else if (dependence.kind == DEPENDENCE::KIND::NEVER_READ)
        out << out.painted(STYLE::FAINT, "never read, set to " + printable(*dependence.value));
    else
        out << "read " << std::to_string(dependence.count) << (dependence.count == 1 ? " time" : " times") << ", "
            << (dependence.value ? "set to " + printable(*dependence.value) : std::string("no usable value"));
    out << "\n";
}

EXIT_CODE show_runs_of_switch(const std::string& name, const std::vector<RUN_REPORT>& reports, TOOL& tool)
{
    std::vector<DEPENDENCE> dependences;
    dependences.reserve(reports.size());
    for (const RUN_REPORT& report : reports)
        dependences.push_back(dependence_on(name, report));
    const auto depending =
        static_cast<std::size_t>(std::ranges::count(dependences, DEPENDENCE::KIND::READ, &DEPENDENCE::kind));

    if (tool.options.json)
        answer_in_json(tool, [&](JSON_WRITER& out) { write_dependences_json(out, name, reports, dependences); });
    else
    {
        tool.out << tool.out.painted(STYLE::STRONG, printable(name) + " was read by " + std::to_string(depending) +
                                                        " of " + runs_in_words(reports.size()))
                 << "\n";
        for (std::size_t i = 0; i < reports.size(); ++i)
            write_dependence(reports[i], dependences[i], tool.out);
    }
    const bool unknown = std::ranges::all_of(dependences, [](const DEPENDENCE& dependence)
                                             { return dependence.kind == DEPENDENCE::KIND::UNKNOWN; });
    if (unknown)
        complain("no run came across '" + name + "'" + did_you_mean(name, names_in_reports(reports)));
    return depending > 0 ? EXIT_CODE::FINE : EXIT_CODE::FINDINGS;
}

EXIT_CODE merge(const RUN_REPORT_OPTIONS& options, TOOL& tool)
{
    const std::vector<RUN_REPORT> reports = read_run_reports(options.files, *tool.options.scope.secrets);
    if (options.switch_name && !options.switch_name->empty())
        return show_runs_of_switch(*options.switch_name, reports, tool);

    const std::vector<NEVER_READ_VARIABLE> variables = variables_that_no_run_read(reports);
    if (tool.options.json)
        answer_in_json(tool, [&](JSON_WRITER& out) { write_never_read_json(out, variables, reports.size()); });
    else
        write_never_read(variables, reports.size(), tool.out);
    return EXIT_CODE::FINE;
}

EXIT_CODE run_report(const RUN_REPORT_OPTIONS& options, TOOL& tool)
{
    if (options.merge)
        return merge(options, tool);
    if (options.files.size() > 1)
        throw TOOL_ERROR(EXIT_CODE::USAGE, "run-report shows one report; give --merge to put several together");
    const RUN_REPORT report = read_run_report(options.files.front(), *tool.options.scope.secrets);
    if (tool.options.json)
        answer_in_json(tool, [&](JSON_WRITER& out) { write_json(out, report); });
    else
        write_report(report, tool.out);
    return EXIT_CODE::FINE;
}
}

void add_run_report_command(COMMAND app, TOOL& tool)
{
    auto options = std::make_shared<RUN_REPORT_OPTIONS>();
    COMMAND command = app.add_command(
        tool, "run-report",
        "Show which variables a run depended on, from the report that the host wrote; or, of many runs, what none of "
        "them read and which depended on one switch",
        "velmar-cfg run-report run.json\n      the variables that the run read, ranked\n"
        "  velmar-cfg run-report --merge nightly/*.json\n      what is set and read by no run of the night\n"
        "  velmar-cfg run-report --merge --switch max_fanout nightly/*.json\n      the runs that max_fanout mattered "
        "to",
        [options, &tool] { return run_report(*options, tool); });
    command.add_argument("FILE", options->files, "A run report");
    command.add_flag("--merge", options->merge,
                     "Put several reports together: list what is set from outside and read by no run");
    command.add_option("--switch", "NAME", options->switch_name,
                       "With --merge: list how each run stands to this variable; exit code 1 when none read it");
    command.require_with("--switch", "--merge");
}
