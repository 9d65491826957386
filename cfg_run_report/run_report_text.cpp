// Makes the JSON text of a run report from what other files find out: the usage of each variable (run_usage.h), the
// origin of its value (value_origins.h), and the circumstances of the run.
//
// The usages come first, since asking for them may load the settings; the sources are those of the store after that. A
// variable goes into one list only. If it has no counted access and no external mark, it was asked for once or only
// set: the latter if it has a text, or if some source assigns to it. Otherwise its row is among those read, or among
// the external ones that were never read.
//
// Rows are JSON objects, each on one line. If writing a text fails because it is not valid UTF-8, the text becomes an
// object with its bytes as hexadecimal digits.
//
// Nothing is kept between two reports but what run_usage.cpp keeps. Cost for n variables and their assignments: O(n log
// n) time. All rows and the text are in memory at once.
#include "cfg_run_report/run_report_text.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "cfg_ini/cfg_settings_sources.h"
#include "cfg_run_report/run_circumstances.h"
#include "cfg_run_report/run_report_format.h"
#include "cfg_run_report/run_usage.h"
#include "cfg_run_report/source_text.h"
#include "cfg_run_report/value_origins.h"
#include "platform/ver/ver.h"

namespace
{
using nlohmann::ordered_json;

std::string as_hexadecimal(std::string_view bytes)
{
    std::string digits;
    for (const char byte : bytes)
    {
        constexpr const char* digit = "0123456789abcdef";
        digits += digit[static_cast<unsigned char>(byte) >> 4U];
        digits += digit[static_cast<unsigned char>(byte) & 15U];
    }
    return digits;
}

// The text, or its bytes if it is not valid UTF-8.
ordered_json text_or_bytes(const std::string& text)
{
    ordered_json json(text);
    try
    {
        static_cast<void>(json.dump());
        return json;
    }
    catch (const ordered_json::type_error&)
    {
        return {{"hex", as_hexadecimal(text)}};
    }
}

ordered_json text_or_null(const std::optional<std::string>& text)
{
    return text ? text_or_bytes(*text) : ordered_json(nullptr);
}

const char* layer_of(CFG_SETTINGS_ROLE role)
{
    switch (role)
    {
    case CFG_SETTINGS_ROLE::MAIN_FILE:
        return "main";
    case CFG_SETTINGS_ROLE::APPENDED_FILE:
        return "appended";
    case CFG_SETTINGS_ROLE::INLINE_TEXT:
        return "inline";
    case CFG_SETTINGS_ROLE::REGTEST_FILE:
        return "regtest";
    case CFG_SETTINGS_ROLE::PROGRAM_TEXT:
        break;
    }
    return "program";
}

ordered_json outcome_of(const CFG_RUN_REPORT_OPTIONS& options)
{
    switch (options.outcome)
    {
    case CFG_RUN_OUTCOME::PASS:
        return "pass";
    case CFG_RUN_OUTCOME::FAIL:
        return "fail";
    case CFG_RUN_OUTCOME::NUMBER:
        if (std::isfinite(options.number))
            return options.number;
        return std::isnan(options.number) ? "nan" : options.number > 0 ? "inf" : "-inf";
    case CFG_RUN_OUTCOME::NOT_GIVEN:
        break;
    }
    return nullptr;
}

// Writes an object with one member per line; a list in it has one row per line.
class DOCUMENT
{
public:
    void add(const char* name, const ordered_json& value)
    {
        begin_member(name);
        text += value.dump();
    }

    void add(const char* name, const std::vector<ordered_json>& rows)
    {
        begin_member(name);
        text += '[';
        for (std::size_t i = 0; i < rows.size(); ++i)
            text.append(i == 0 ? "\n    " : ",\n    ").append(rows[i].dump());
        text += rows.empty() ? "]" : "\n  ]";
    }

    std::string finished()
    {
        return std::move(text += "\n}\n");
    }

private:
    void begin_member(const char* name)
    {
        text.append(text.size() == 1 ? "\n  \"" : ",\n  \"").append(name).append("\": ");
    }

    std::string text = "{";
};

ordered_json source_row(const CFG_SETTINGS_SOURCE& source, SOURCE_STATE state)
{
    ordered_json row = {{"layer", layer_of(source.role)}, {"external", source.external}};
    if (source.path.empty())
        row["text"] = text_or_bytes(source.text);
    else
    {
        row["path"] = text_or_bytes(source.path);
        row["size"] = source.size;
        row["modified"] = time_as_text(source.modified_seconds, source.modified_nanoseconds);
    }
    row["state"] = source_state_name(state);
    return row;
}

void add_place(ordered_json& row, const ORIGIN_PLACE& place, const VALUE_ORIGINS& origins)
{
    row["source"] = place.source;
    if (place.position != 0)
        row[origins.sources()[place.source].path.empty() ? "item" : "line"] = place.position;
}

void add_origin(ordered_json& row, const VALUE_ORIGIN& origin, const VALUE_ORIGINS& origins)
{
    switch (origin.kind)
    {
    case VALUE_ORIGIN::KIND::SOURCE:
        break;
    case VALUE_ORIGIN::KIND::PROGRAM:
        row["origin"] = "program";
        break;
    case VALUE_ORIGIN::KIND::UNSET:
        row["origin"] = "unset";
        break;
    case VALUE_ORIGIN::KIND::UNKNOWN:
        row["origin"] = "unknown";
        break;
    }
    if (origin.place)
        add_place(row, *origin.place, origins);
    for (const ORIGIN_PLACE& place : origin.perhaps)
        add_place(row["perhaps"].emplace_back(ordered_json::object()), place, origins);
    for (const OTHER_ASSIGNMENT& assignment : origin.overridden)
    {
        ordered_json& other = row["overridden"].emplace_back(ordered_json::object());
        add_place(other, assignment.place, origins);
        other["value"] = text_or_bytes(assignment.value);
    }
}

// The rows of the variables, by list.
struct VARIABLE_ROWS
{
    std::vector<ordered_json> read;
    std::vector<ordered_json> external_never_read;
    std::vector<ordered_json> asked_once;
    std::vector<ordered_json> set_never_read;
};

void add_variable(VARIABLE_ROWS& rows, VARIABLE_USAGE variable, bool is_empty, const VALUE_ORIGINS& origins)
{
    if (is_empty)
        variable.value = "";
    if (variable.count == 0 && !variable.external)
    {
        const bool was_set = !is_empty || origins.is_assigned(variable.name);
        (was_set ? rows.set_never_read : rows.asked_once).push_back(text_or_bytes(variable.name));
        return;
    }
    const VALUE_ORIGIN origin = origins.origin_of(variable.name, variable.value, variable.external);
    if (origin.kind == VALUE_ORIGIN::KIND::UNSET)
        variable.value.reset();
    ordered_json row = {{"name", text_or_bytes(variable.name)}};
    if (variable.count > 0)
        row["count"] = variable.count;
    row["value"] = text_or_null(variable.value);
    if (variable.count > 0)
    {
        row["external"] = variable.external;
        row["used"] = variable.used;
    }
    add_origin(row, origin, origins);
    (variable.count > 0 ? rows.read : rows.external_never_read).push_back(std::move(row));
}
}

std::string run_report_text(const CFG_RUN_REPORT_OPTIONS& options)
{
    // The usages first: asking for them may load the settings.
    std::vector<VARIABLE_USAGE> usages = usage_of_all_variables();
    CFG_SETTINGS_SOURCES applied = cfg_get_settings_sources();
    const std::unordered_set<std::string> empty(applied.empty_variables.begin(), applied.empty_variables.end());
    const VALUE_ORIGINS origins(std::move(applied));
    VARIABLE_ROWS rows;
    for (VARIABLE_USAGE& variable : usages)
    {
        const bool is_empty = empty.count(variable.name) != 0;
        add_variable(rows, std::move(variable), is_empty, origins);
    }
    std::vector<ordered_json> sources;
    for (std::size_t source = 0; source < origins.sources().size(); ++source)
        sources.push_back(source_row(origins.sources()[source], origins.state(source)));

    const RUN_CIRCUMSTANCES run = circumstances_of_this_run();
    std::vector<ordered_json> environment;
    for (const auto& [name, value] : run.environment)
        environment.push_back({{"name", name}, {"value", text_or_null(value)}});
    DOCUMENT document;
    document.add("schema", run_report_schema);
    document.add("schema_version", run_report_schema_version);
    document.add("run", text_or_bytes(options.run));
    document.add("release", text_or_bytes(ver_get_version()));
    document.add("outcome", outcome_of(options));
    document.add("host", text_or_null(run.host));
    document.add("process", run.process);
    document.add("directory", text_or_null(run.directory));
    document.add("executable", text_or_null(run.executable));
    document.add("started", text_or_null(run.started));
    document.add("ended", run.ended);
    document.add("environment", environment);
    document.add("sources_complete", origins.are_complete());
    document.add("sources", sources);
    document.add("read", rows.read);
    document.add("external_never_read", rows.external_never_read);
    document.add("asked_once", rows.asked_once);
    document.add("set_never_read", rows.set_never_read);
    return document.finished();
}
