// Reads run reports of both versions into one model.
//
// A report is read as one tree. The sources come first, since the other rows name them by their numbers: each number is
// checked, so that an index in the model is always that of a source. Version 1 has neither sources nor origins: every
// origin in it is unknown. Secrets are hidden as the texts are read, by the name that each value belongs to.
//
// A host writes each variable once. A report that has one in two rows, or a value of one that is unset, contradicts
// itself and is refused.
//
// Cost for n bytes: O(n) expected time and memory, and O(r log r) time to sort r variables by their reads.
#include <algorithm>
#include <unordered_set>

#include "cfg_run_report/run_report_format.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_reader.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/documents/run_reports.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/secrets.h"
#include "tools/velmar-cfg/settings/variable_name.h"

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
        {
            const RUN_PLACE place = read_place(other, report);
            if (origin.place && place.position != 0 && place.source == origin.place->source &&
                place.position == origin.place->position)
                other.refuse("assignment that lost: it is the one that won");
            origin.overridden.push_back({place, hide_in_value(name, other.member("value").text(), secrets)});
        }
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

void read_what_version_2_adds(const JSON_NODE& root, RUN_REPORT& report, SECRETS& secrets)
{
    read_outcome(root.member("outcome"), report);
    report.host = root.member("host").text_or_null();
    report.process = root.member("process").natural_number_or_null();
    report.directory = root.member("directory").text_or_null();
    report.executable = root.member("executable").text_or_null();
    report.started = root.member("started").text_or_null();
    report.ended = root.member("ended").text_or_null();
    std::unordered_set<std::string> environment;
    for (const JSON_NODE& row : root.member("environment").elements())
    {
        report.environment.push_back({row.member("name").text(), row.member("value").text_or_null()});
        if (!environment.insert(report.environment.back().name).second)
            row.refuse_namesake();
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

// The names of all rows, each of which stands for a variable of its own.
class NAMES_IN_REPORT
{
public:
    explicit NAMES_IN_REPORT(std::uint64_t version) : may_be_lossy(version == 1) {}

    // `row` is refused where another one has its name.
    void add(const std::string& name, const JSON_NODE& row)
    {
        // Version 1 has U+FFFD for bytes that are no UTF-8: different names may have become the same.
        if (may_be_lossy && name.find("\xef\xbf\xbd") != std::string::npos)
            return;
        if (!names.insert(name).second)
            row.refuse_namesake();
    }

private:
    const bool may_be_lossy;
    VARIABLE_NAMES names;
};

std::vector<std::string> read_names(const JSON_NODE& list, NAMES_IN_REPORT& of_report)
{
    std::vector<std::string> names;
    for (const JSON_NODE& name : list.elements())
    {
        names.push_back(name.text());
        of_report.add(names.back(), name);
    }
    return names;
}

void require_no_value_of_unset(const JSON_NODE& row, const RUN_ORIGIN& origin, bool has_value)
{
    if (origin.kind == RUN_ORIGIN::KIND::UNSET && has_value)
        row.member("value").refuse("null, as of a variable that is unset");
}

READ_VARIABLE read_variable(const JSON_NODE& row, const RUN_REPORT& report, SECRETS& secrets)
{
    READ_VARIABLE variable{row.member("name").text(), row.member("count").natural_number(),
                           row.member("value").text_or_null(), row.member("external").truth(),
                           row.member("used").truth()};
    if (variable.value)
        variable.value = hide_in_value(variable.name, *variable.value, secrets);
    variable.origin = read_origin(row, variable.name, report, secrets);
    require_no_value_of_unset(row, variable.origin, variable.value.has_value());
    return variable;
}

UNREAD_VARIABLE read_unread_variable(const JSON_NODE& row, const RUN_REPORT& report, SECRETS& secrets)
{
    const std::string name = row.member("name").text();
    UNREAD_VARIABLE variable{name, hide_in_value(name, row.member("value").text(), secrets),
                             read_origin(row, name, report, secrets)};
    require_no_value_of_unset(row, variable.origin, true);
    return variable;
}
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
    NAMES_IN_REPORT names(report.version);
    for (const JSON_NODE& row : root.member("read").elements())
    {
        report.read.push_back(read_variable(row, report, secrets));
        names.add(report.read.back().name, row);
    }
    for (const JSON_NODE& row : root.member("external_never_read").elements())
    {
        report.external_never_read.push_back(read_unread_variable(row, report, secrets));
        names.add(report.external_never_read.back().name, row);
    }
    if (report.version == 1)
        report.uncounted = read_names(root.member("uncounted"), names);
    else
    {
        report.asked_once = read_names(root.member("asked_once"), names);
        report.set_never_read = read_names(root.member("set_never_read"), names);
    }
    std::ranges::stable_sort(report.read, std::greater<>(), &READ_VARIABLE::count);
    return report;
}
