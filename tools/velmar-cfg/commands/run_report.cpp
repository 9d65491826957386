// velmar-cfg run-report: what one run depended on, and what none of many runs read.
//
// One report is shown in parts: the circumstances of the run, the sources that had changed when it ended, and the
// variables that it read, most often read first, and those that it did not read. Of several reports, only
// what they say together is shown, as documents/run_reports.h works it out; a report that cannot be read is reported
// and left out.
#include <algorithm>
#include <cmath>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/documents/run_report_json.h"
#include "tools/velmar-cfg/documents/run_reports.h"
#include "tools/velmar-cfg/settings/layers.h"

namespace
{
struct RUN_REPORT_OPTIONS
{
    std::vector<std::string> files;
    bool merge = false;
    std::optional<std::string> switch_name;
};

// One of many texts on a line: a value may be half a megabyte long. JSON has all of it.
std::string shown(const std::string& text)
{
    constexpr std::size_t longest = 100;
    return printable(shortened(text, length_by_shown_length(text, longest)));
}

// --- One run ---

constexpr std::size_t longest_bar = 24;

std::string bar_of(std::uint64_t count, std::uint64_t highest)
{
    // A document of another program may count nothing.
    const double share = highest == 0 ? 0 : static_cast<double>(count) / static_cast<double>(highest);
    const auto length = static_cast<std::size_t>(std::lround(share * static_cast<double>(longest_bar)));
    return std::string(std::max<std::size_t>(length, 1), '#');
}

std::string remark_of(const READ_VARIABLE& variable, const RUN_REPORT& report)
{
    if (variable.value)
        return variable.used ? "" : "not of the type asked for";
    if (variable.origin.kind == RUN_ORIGIN::KIND::UNSET)
        return "unset";
    return report.version == 1 ? "no usable value: unset, or not of the type asked for"
                               : "value not recorded: not of the type asked for";
}

// Where a value came from; empty where that has been said by other words.
std::string origin_as_text(const RUN_ORIGIN& origin, const RUN_REPORT& report)
{
    switch (origin.kind)
    {
    case RUN_ORIGIN::KIND::SOURCE:
        return printable(place_as_text(*origin.place, report));
    case RUN_ORIGIN::KIND::PROGRAM:
        return "set by the program" + (origin.place ? ", " + printable(place_as_text(*origin.place, report)) : "");
    case RUN_ORIGIN::KIND::UNSET:
        return "";
    case RUN_ORIGIN::KIND::UNKNOWN:
        break;
    }
    if (report.version == 1)
        return "";
    return "origin unknown" +
           (origin.perhaps.empty() ? "" : ", perhaps " + printable(first_few_places(origin.perhaps, report)));
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
            << std::string(longest_bar - bar.size() + 2, ' ') << shown(variable.name);
        if (variable.value)
            out << "=" << shown(*variable.value);
        if (report.version == 1 && variable.external)
            out << out.painted(STYLE::FAINT, "  external");
        if (const std::string origin = origin_as_text(variable.origin, report); variable.value && !origin.empty())
            out << out.painted(STYLE::FAINT, "  " + origin);
        if (const std::string remark = remark_of(variable, report); !remark.empty())
            out << "  " << out.painted(STYLE::WARNING, "(" + remark + ")");
        out << "\n";
    }
}

void write_list(const char* title, const std::vector<std::string>& names, OUTPUT& out)
{
    if (!names.empty())
        out << "\n" << out.painted(STYLE::STRONG, title) << "\n";
    for (const std::string& name : names)
        out << "  " << shown(name) << "\n";
}

// Who and when, as far as it is known.
void write_circumstances(const RUN_REPORT& report, OUTPUT& out)
{
    if (report.outcome)
        out << "  outcome: " << printable(*report.outcome) << "\n";
    if (report.process)
        out << "  process " << std::to_string(*report.process) << (report.host ? " on " + printable(*report.host) : "")
            << (report.executable ? ": " + printable(*report.executable) : "") << "\n";
    if (report.directory)
        out << "  current directory: " << printable(*report.directory) << "\n";
    if (report.started && report.ended)
        out << "  started " << printable(*report.started) << ", reported " << printable(*report.ended) << "\n";
}

// The sources that were not what they had been when the report was written: no line of theirs is known.
void write_lost_sources(const RUN_REPORT& report, OUTPUT& out)
{
    for (const RUN_SOURCE& source : report.sources)
    {
        if (source.state != "same")
            out << "  " << out.painted(STYLE::WARNING, "not read again: ") << printable(source_as_text(source)) << " ("
                << printable(source.state) << ")\n";
    }
    if (report.version != 1 && !report.sources_complete)
        out << "  " << out.painted(STYLE::WARNING, "more sources were applied than the report knows") << "\n";
}

void write_report(const RUN_REPORT& report, OUTPUT& out)
{
    out << out.painted(STYLE::STRONG, "Run " + printable(report.run)) << ", release " << printable(report.release)
        << "\n";
    write_circumstances(report, out);
    for (const auto& [title, path] :
         {std::pair("main settings file", &report.main_file), std::pair("appended file", &report.appended_file),
          std::pair("regression-test file", &report.regtest_file)})
    {
        if (*path)
            out << "  " << title << ": " << printable(**path) << "\n";
    }
    write_lost_sources(report, out);
    out << "\n";
    write_read_variables(report, out);
    if (!report.external_never_read.empty())
        out << "\n" << out.painted(STYLE::STRONG, "Set from outside and never read") << "\n";
    for (const UNREAD_VARIABLE& variable : report.external_never_read)
    {
        out << "  " << shown(variable.name) << "=" << shown(variable.value);
        if (const std::string origin = origin_as_text(variable.origin, report); !origin.empty())
            out << out.painted(STYLE::FAINT, "  " + origin);
        out << "\n";
    }
    write_list("Asked for once while unset, or set inside the run and never read", report.uncounted, out);
    write_list("Asked for once while unset", report.asked_once, out);
    write_list("Set inside the run, or by files on top of the main one, and never read", report.set_never_read, out);
}

// --- Several runs ---

// The first few of the texts, and how many there are besides.
std::string first_few(const std::vector<std::string>& texts)
{
    constexpr std::size_t most = 3;
    std::string all;
    for (std::size_t i = 0; i < std::min(most, texts.size()); ++i)
        all += (i == 0 ? "" : ", ") + shown(texts[i]);
    return all + (texts.size() > most ? " and " + std::to_string(texts.size() - most) + " more" : "");
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
        out << "  " << shown(variable.name) << "=" << first_few(variable.values) << "  "
            << out.painted(STYLE::FAINT, "set in " + runs_in_words(variable.set_in_runs.size())) << "\n";
        if (!variable.perhaps_read_by_runs.empty())
            out << "    " << out.painted(STYLE::WARNING, "perhaps asked for once, while unset, by") << " "
                << first_few(variable.perhaps_read_by_runs) << "\n";
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
        out << out.painted(STYLE::FAINT, dependence.value ? "never read, set to " + shown(*dependence.value)
                                                          : std::string("never read, set inside the run"));
    else if (dependence.kind == DEPENDENCE::KIND::ASKED_ONCE)
        out << "asked for once, while unset";
    else
        out << "read " << std::to_string(dependence.count) << (dependence.count == 1 ? " time" : " times") << ", "
            << (dependence.value ? "set to " + shown(*dependence.value) : std::string("no usable value"));
    out << "\n";
}

EXIT_CODE show_runs_of_switch(const std::string& name, const std::vector<RUN_REPORT>& reports, TOOL& tool)
{
    const SWITCH_USE use = use_of_switch(name, reports);
    if (tool.options.json)
        answer_in_json(tool, [&](JSON_WRITER& out) { write_dependences_json(out, name, reports, use.dependences); });
    else
    {
        tool.out << tool.out.painted(STYLE::STRONG, printable(name) + " was read by " +
                                                        std::to_string(use.depending_runs) + " of " +
                                                        runs_in_words(reports.size()))
                 << "\n";
        for (std::size_t i = 0; i < reports.size(); ++i)
            write_dependence(reports[i], use.dependences[i], tool.out);
    }
    if (!use.known)
        complain("no report contains '" + name + "'" + did_you_mean(name, names_in_reports(reports)));
    return use.depending_runs > 0 ? EXIT_CODE::FINE : EXIT_CODE::FINDINGS;
}

EXIT_CODE merge(const RUN_REPORT_OPTIONS& options, TOOL& tool)
{
    const RUN_REPORTS read = read_run_reports(options.files, *tool.options.scope.secrets);
    for (const std::string& problem : read.problems)
        tool.files.add_problem(problem);
    const std::vector<RUN_REPORT>& reports = read.reports;
    if (reports.empty())
        return EXIT_CODE::BAD_INPUT;
    if (options.switch_name)
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
        "Show which variables a run depended on, from the report that the program wrote. With --merge, show what none "
        "of many runs read, or which of them depended on one variable.",
        "velmar-cfg run-report run.json\n      the variables that the run read, ranked\n"
        "  velmar-cfg run-report --merge nightly/*.json\n      what is set and read by no run of the night\n"
        "  velmar-cfg run-report --merge --switch max_fanout nightly/*.json\n      the runs that max_fanout mattered "
        "to",
        [options, &tool] { return run_report(*options, tool); });
    command.add_argument("FILE", options->files, "A run report; - is standard input");
    command.add_flag("--merge", options->merge,
                     "Combine several reports: list what is set from outside and read by no run");
    command.add_option("--switch", "NAME", options->switch_name,
                       "With --merge: list which runs depended on this variable; exit code 1 when none read it");
    command.require_with("--switch", "--merge");
}
