#include "tools/velmar-cfg/documents/run_reports.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "cfg_run_report/run_report_format.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_reader.h"
#include "tools/velmar-cfg/settings/variable_name.h"

namespace
{
constexpr DOCUMENT_KIND run_report_kind = {run_report_schema, run_report_schema_version, "run report",
                                           "a host's cfg_write_run_report"};

READ_VARIABLE read_variable(const JSON_NODE& row, SECRETS& secrets)
{
    READ_VARIABLE variable{row.member("name").text(), row.member("count").natural_number(),
                           row.member("value").text_or_null(), row.member("external").truth(),
                           row.member("used").truth()};
    if (variable.value)
        variable.value = hide_in_value(variable.name, *variable.value, secrets);
    return variable;
}

UNREAD_VARIABLE read_unread_variable(const JSON_NODE& row, SECRETS& secrets)
{
    const std::string name = row.member("name").text();
    return {name, hide_in_value(name, row.member("value").text(), secrets)};
}

template <typename VARIABLES>
auto find_variable(const VARIABLES& variables, const std::string& name)
{
    return std::ranges::find_if(variables, [&name](const auto& variable) { return same_name(variable.name, name); });
}

// What the runs that leave a variable unread say of it. Its values may be as many as the runs.
struct UNREAD_SOMEWHERE
{
    NEVER_READ_VARIABLE variable;
    std::unordered_set<std::string> values;

    void add(const UNREAD_VARIABLE& unread, const RUN_REPORT& report)
    {
        if (variable.set_in_runs.empty())
            variable.name = unread.name;
        if (values.insert(unread.value).second)
            variable.values.push_back(unread.value);
        variable.set_in_runs.push_back(report.run);
    }
};
}

RUN_REPORT read_run_report(const std::string& path, SECRETS& secrets)
{
    const JSON_DOCUMENT document(path, {run_report_format()});
    return run_report_in(document, path, secrets);
}

DOCUMENT_FORMAT run_report_format()
{
    return {run_report_kind, {}};
}

RUN_REPORT run_report_in(const JSON_DOCUMENT& document, const std::string& path, SECRETS& secrets)
{
    const JSON_NODE root = document.root();
    const JSON_NODE files = root.member("files");
    RUN_REPORT report;
    report.file = title_of_named_file(path);
    report.run = root.member("run").text();
    if (report.run.empty())
        report.run = report.file;
    report.release = root.member("release").text();
    report.main_file = files.member("main").text_or_null();
    report.appended_file = files.member("appended").text_or_null();
    report.regtest_file = files.member("regtest").text_or_null();
    for (const JSON_NODE& row : root.member("read").elements())
        report.read.push_back(read_variable(row, secrets));
    for (const JSON_NODE& row : root.member("external_never_read").elements())
        report.external_never_read.push_back(read_unread_variable(row, secrets));
    for (const JSON_NODE& name : root.member("uncounted").elements())
        report.uncounted.push_back(name.text());
    std::ranges::stable_sort(report.read, std::greater<>(), &READ_VARIABLE::count);
    return report;
}

RUN_REPORTS read_run_reports(const std::vector<std::string>& paths, SECRETS& secrets)
{
    RUN_REPORTS read;
    std::unordered_map<std::string, int> runs_of_name;
    for (const std::string& path : paths)
    {
        try
        {
            read.reports.push_back(read_run_report(path, secrets));
            ++runs_of_name[read.reports.back().run];
        }
        catch (const TOOL_ERROR& error)
        {
            read.problems.emplace_back(error.what());
        }
    }
    for (RUN_REPORT& report : read.reports)
    {
        if (runs_of_name[report.run] > 1)
            report.run += " (" + report.file + ")";
    }
    return read;
}

DEPENDENCE dependence_on(const std::string& name, const RUN_REPORT& report)
{
    if (const auto found = find_variable(report.read, name); found != report.read.end())
        return {DEPENDENCE::KIND::READ, found->count, found->value};
    if (const auto found = find_variable(report.external_never_read, name); found != report.external_never_read.end())
        return {DEPENDENCE::KIND::NEVER_READ, 0, found->value};
    if (std::ranges::any_of(report.uncounted, [&name](const auto& other) { return same_name(other, name); }))
        return {DEPENDENCE::KIND::PERHAPS, 0, std::nullopt};
    return {};
}

SWITCH_USE use_of_switch(const std::string& name, const std::vector<RUN_REPORT>& reports)
{
    SWITCH_USE use{{}, 0, false};
    for (const RUN_REPORT& report : reports)
    {
        use.dependences.push_back(dependence_on(name, report));
        const DEPENDENCE::KIND kind = use.dependences.back().kind;
        use.depending_runs += kind == DEPENDENCE::KIND::READ ? 1U : 0U;
        use.known = use.known || kind != DEPENDENCE::KIND::UNKNOWN;
    }
    return use;
}

const char* dependence_word(DEPENDENCE::KIND kind)
{
    switch (kind)
    {
    case DEPENDENCE::KIND::READ:
        return "read";
    case DEPENDENCE::KIND::PERHAPS:
        return "perhaps";
    case DEPENDENCE::KIND::NEVER_READ:
        return "never read";
    case DEPENDENCE::KIND::UNKNOWN:
        break;
    }
    return "unknown";
}

std::vector<NEVER_READ_VARIABLE> variables_that_no_run_read(const std::vector<RUN_REPORT>& reports)
{
    BY_VARIABLE_NAME<UNREAD_SOMEWHERE> unread_somewhere;
    BY_VARIABLE_NAME<bool> read_somewhere;
    BY_VARIABLE_NAME<std::vector<std::string>> uncounted_in;
    for (const RUN_REPORT& report : reports)
    {
        for (const READ_VARIABLE& variable : report.read)
            read_somewhere[variable.name] = true;
        for (const std::string& name : report.uncounted)
            uncounted_in[name].push_back(report.run);
        for (const UNREAD_VARIABLE& unread : report.external_never_read)
            unread_somewhere[unread.name].add(unread, report);
    }
    std::vector<NEVER_READ_VARIABLE> variables;
    for (auto& [name, unread] : unread_somewhere)
    {
        if (read_somewhere.contains(name))
            continue;
        NEVER_READ_VARIABLE& variable = unread.variable;
        if (const auto found = uncounted_in.find(name); found != uncounted_in.end())
            variable.perhaps_read_by_runs = found->second;
        variables.push_back(std::move(variable));
    }
    std::ranges::sort(variables, {}, &NEVER_READ_VARIABLE::name);
    return variables;
}

std::vector<std::string> names_in_reports(const std::vector<RUN_REPORT>& reports)
{
    std::vector<std::string> names;
    for (const RUN_REPORT& report : reports)
    {
        for (const READ_VARIABLE& variable : report.read)
            names.push_back(variable.name);
        for (const UNREAD_VARIABLE& variable : report.external_never_read)
            names.push_back(variable.name);
        names.insert(names.end(), report.uncounted.begin(), report.uncounted.end());
    }
    return names;
}
