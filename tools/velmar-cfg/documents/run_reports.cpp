// Reads run reports of both versions into one model, and tells what several of them say of a variable.
//
// A report is read as one tree. The sources come first, since the other rows name them by their numbers: each number is
// checked, so that an index in the model is always that of a source. Version 1 has neither sources nor origins: every
// origin in it is unknown. Secrets are hidden as the texts are read, by the name that each value belongs to.
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

#include "cfg_run_report/run_report_format.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_reader.h"
#include "tools/velmar-cfg/base/text.h"

namespace
{
constexpr DOCUMENT_KIND run_report_kind = {run_report_schema, run_report_schema_version, "run report",
                                           "a host's cfg_write_run_report"};

// --- Version 2 ---

RUN_PLACE read_place(const JSON_NODE& row, const RUN_REPORT& report)
{
    const JSON_NODE source = row.member("source");
    const std::uint64_t index = source.natural_number();
    if (index >= report.sources.size())
        source.refuse("index of a source");
    const std::optional<JSON_NODE> position =
        row.member_if_any(report.sources[static_cast<std::size_t>(index)].path ? "line" : "item");
    return {static_cast<std::size_t>(index), position ? position->natural_number() : 0};
}

RUN_ORIGIN::KIND read_kind(const JSON_NODE& row)
{
    const std::optional<JSON_NODE> word = row.member_if_any("origin");
    if (!word)
        return RUN_ORIGIN::KIND::SOURCE;
    for (const auto kind : {RUN_ORIGIN::KIND::UNKNOWN, RUN_ORIGIN::KIND::PROGRAM, RUN_ORIGIN::KIND::UNSET})
    {
        if (word->text() == origin_word(kind))
            return kind;
    }
    word->refuse("origin");
}

RUN_ORIGIN read_origin(const JSON_NODE& row, const std::string& name, const RUN_REPORT& report, SECRETS& secrets)
{
    RUN_ORIGIN origin;
    if (report.version == 1)
        return origin;
    origin.kind = read_kind(row);
    if (origin.kind == RUN_ORIGIN::KIND::SOURCE || row.member_if_any("source"))
        origin.place = read_place(row, report);
    if (const std::optional<JSON_NODE> places = row.member_if_any("perhaps"))
    {
        for (const JSON_NODE& place : places->elements())
            origin.perhaps.push_back(read_place(place, report));
    }
    if (const std::optional<JSON_NODE> others = row.member_if_any("overridden"))
    {
        for (const JSON_NODE& other : others->elements())
            origin.overridden.push_back(
                {read_place(other, report), hide_in_value(name, other.member("value").text(), secrets)});
    }
    return origin;
}

RUN_SOURCE read_source_row(const JSON_NODE& row, SECRETS& secrets)
{
    RUN_SOURCE source;
    const JSON_NODE layer = row.member("layer");
    if (layer.text() != layer_code(LAYER_KIND::PROGRAM))
    {
        source.layer = layer_of_code(layer.text());
        if (!source.layer || !is_library_source(*source.layer))
            layer.refuse("layer");
    }
    source.external = row.member("external").truth();
    source.state = row.member("state").text();
    if (const std::optional<JSON_NODE> path = row.member_if_any("path"))
    {
        source.path = path->text();
        source.size = row.member("size").natural_number();
        source.modified = row.member("modified").text();
        return source;
    }
    source.text = row.member("text").text();
    if (std::optional<std::string> hidden =
            has_hidden_parts(*source.text) ? std::nullopt : hide_in_inline_text(*source.text, secrets))
        source.text = std::move(hidden);
    return source;
}

void read_outcome(const JSON_NODE& outcome, RUN_REPORT& report)
{
    if (outcome.is_text())
        report.outcome = outcome.text();
    else if ((report.outcome_number = outcome.double_or_null()))
        report.outcome = number_as_text(*report.outcome_number);
}

std::optional<std::string> path_of_last(LAYER_KIND layer, const std::vector<RUN_SOURCE>& sources)
{
    std::optional<std::string> path;
    for (const RUN_SOURCE& source : sources)
    {
        if (source.layer == layer)
            path = source.path;
    }
    return path;
}

std::vector<std::string> read_names(const JSON_NODE& list)
{
    std::vector<std::string> names;
    for (const JSON_NODE& name : list.elements())
        names.push_back(name.text());
    return names;
}

void read_what_version_2_adds(const JSON_NODE& root, RUN_REPORT& report, SECRETS& secrets)
{
    read_outcome(root.member("outcome"), report);
    report.host = root.member("host").text_or_null();
    report.process = root.member("process").natural_number_or_null();
    report.directory = root.member("directory").text_or_null();
    report.executable = root.member("executable").text_or_null();
    report.started = root.member("started").text_or_null();
    report.ended = root.member("ended").text_or_null();
    for (const JSON_NODE& row : root.member("environment").elements())
    {
        report.environment.push_back({row.member("name").text(), row.member("value").text_or_null()});
        hide_in_environment(report.environment.back(), secrets);
    }
    report.sources_complete = root.member("sources_complete").truth();
    for (const JSON_NODE& row : root.member("sources").elements())
        report.sources.push_back(read_source_row(row, secrets));
    report.main_file = path_of_last(LAYER_KIND::MAIN_FILE, report.sources);
    report.appended_file = path_of_last(LAYER_KIND::APPENDED_FILE, report.sources);
    report.regtest_file = path_of_last(LAYER_KIND::REGTEST_FILE, report.sources);
}

void read_files_of_version_1(const JSON_NODE& root, RUN_REPORT& report)
{
    const JSON_NODE files = root.member("files");
    report.main_file = files.member("main").text_or_null();
    report.appended_file = files.member("appended").text_or_null();
    report.regtest_file = files.member("regtest").text_or_null();
}

// --- Both versions ---

READ_VARIABLE read_variable(const JSON_NODE& row, const RUN_REPORT& report, SECRETS& secrets)
{
    READ_VARIABLE variable{row.member("name").text(), row.member("count").natural_number(),
                           row.member("value").text_or_null(), row.member("external").truth(),
                           row.member("used").truth()};
    if (variable.value)
        variable.value = hide_in_value(variable.name, *variable.value, secrets);
    variable.origin = read_origin(row, variable.name, report, secrets);
    return variable;
}

UNREAD_VARIABLE read_unread_variable(const JSON_NODE& row, const RUN_REPORT& report, SECRETS& secrets)
{
    const std::string name = row.member("name").text();
    return {name, hide_in_value(name, row.member("value").text(), secrets), read_origin(row, name, report, secrets)};
}

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
    RUN_REPORT report;
    report.version = root.member("schema_version").natural_number();
    report.file = title_of_named_file(path);
    report.run = root.member("run").text();
    if (report.run.empty())
        report.run = report.file;
    report.release = root.member("release").text();
    if (report.version == 1)
        read_files_of_version_1(root, report);
    else
        read_what_version_2_adds(root, report, secrets);
    for (const JSON_NODE& row : root.member("read").elements())
        report.read.push_back(read_variable(row, report, secrets));
    for (const JSON_NODE& row : root.member("external_never_read").elements())
        report.external_never_read.push_back(read_unread_variable(row, report, secrets));
    if (report.version == 1)
        report.uncounted = read_names(root.member("uncounted"));
    else
    {
        report.asked_once = read_names(root.member("asked_once"));
        report.set_never_read = read_names(root.member("set_never_read"));
    }
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
