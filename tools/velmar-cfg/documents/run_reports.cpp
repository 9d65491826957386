// Combines several run reports: which runs depended on a variable, and which variables no run read.
//
// dependence_on() goes through the lists of one report in turn, and the first that has the variable decides.
// variables_that_no_run_read() walks once over all reports and puts names into three tables: left unread somewhere,
// read somewhere, and not counted. The answer is what is in the first and not in the second.
//
// A report that cannot be read becomes a problem, and the others are read all the same. Cost for n rows in all reports,
// which are all kept: O(n) expected time and O(n) memory, and O(n log n) where rows or names are sorted.
// dependence_on() takes time O(n) for a report of n rows; DEPENDENCES, which answers for many names, takes it once.
#include "tools/velmar-cfg/documents/run_reports.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/settings/library_rules.h"

namespace
{
bool has_name(const std::vector<std::string>& names, const std::string& name)
{
    return std::ranges::any_of(names, [&name](const auto& other) { return same_name(other, name); });
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

std::string source_as_text(const RUN_SOURCE& source)
{
    return source.path.value_or(source.layer ? inline_source : "a text");
}

std::string place_as_text(const RUN_PLACE& place, const RUN_REPORT& report)
{
    return source_as_text(report.sources[place.source]) +
           (place.position != 0 ? ":" + std::to_string(place.position) : "");
}

std::string first_few_places(const std::vector<RUN_PLACE>& places, const RUN_REPORT& report)
{
    constexpr std::size_t most = 3;
    std::string all;
    for (std::size_t i = 0; i < std::min(most, places.size()); ++i)
        all += (i == 0 ? "" : ", ") + place_as_text(places[i], report);
    return all + (places.size() > most ? " and " + std::to_string(places.size() - most) + " more" : "");
}

const char* origin_word(RUN_ORIGIN::KIND kind)
{
    switch (kind)
    {
    case RUN_ORIGIN::KIND::SOURCE:
        return nullptr;
    case RUN_ORIGIN::KIND::PROGRAM:
        return "program";
    case RUN_ORIGIN::KIND::UNSET:
        return "unset";
    case RUN_ORIGIN::KIND::UNKNOWN:
        break;
    }
    return "unknown";
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
            if (error.exit_code == EXIT_CODE::USAGE)
                throw; // standard input named twice
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
    if (has_name(report.asked_once, name))
        return {DEPENDENCE::KIND::ASKED_ONCE, 0, std::nullopt};
    if (has_name(report.set_never_read, name))
        return {DEPENDENCE::KIND::NEVER_READ, 0, std::nullopt};
    if (has_name(report.uncounted, name))
        return {DEPENDENCE::KIND::PERHAPS, 0, std::nullopt};
    return {};
}

DEPENDENCES::DEPENDENCES(const RUN_REPORT& report)
{
    // The first of the lists that has the variable decides.
    for (const auto& variable : report.read)
        kinds.try_emplace(variable.name, DEPENDENCE::KIND::READ);
    for (const auto& variable : report.external_never_read)
        kinds.try_emplace(variable.name, DEPENDENCE::KIND::NEVER_READ);
    for (const std::string& name : report.asked_once)
        kinds.try_emplace(name, DEPENDENCE::KIND::ASKED_ONCE);
    for (const std::string& name : report.set_never_read)
        kinds.try_emplace(name, DEPENDENCE::KIND::NEVER_READ);
    for (const std::string& name : report.uncounted)
        kinds.try_emplace(name, DEPENDENCE::KIND::PERHAPS);
}

DEPENDENCE::KIND DEPENDENCES::on(const std::string& name) const
{
    const auto found = kinds.find(name);
    return found == kinds.end() ? DEPENDENCE::KIND::UNKNOWN : found->second;
}

bool may_depend(DEPENDENCE::KIND kind)
{
    return kind == DEPENDENCE::KIND::READ || kind == DEPENDENCE::KIND::ASKED_ONCE || kind == DEPENDENCE::KIND::PERHAPS;
}

SWITCH_USE use_of_switch(const std::string& name, const std::vector<RUN_REPORT>& reports)
{
    SWITCH_USE use{{}, 0, false};
    for (const RUN_REPORT& report : reports)
    {
        use.dependences.push_back(dependence_on(name, report));
        const DEPENDENCE::KIND kind = use.dependences.back().kind;
        use.depending_runs += may_depend(kind) && kind != DEPENDENCE::KIND::PERHAPS ? 1U : 0U;
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
    case DEPENDENCE::KIND::ASKED_ONCE:
        return "asked once";
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
        for (const std::string& name : report.asked_once)
            read_somewhere[name] = true;
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
        for (const std::vector<std::string>* list : {&report.uncounted, &report.asked_once, &report.set_never_read})
            names.insert(names.end(), list->begin(), list->end());
    }
    return names;
}
