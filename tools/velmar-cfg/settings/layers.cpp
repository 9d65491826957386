#include "tools/velmar-cfg/settings/layers.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string_view>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/ini_text.h"
#include "cfg_ini/cfg_ini_reader/settings_lines.h"
#include "cfg_ini/cfg_ini_reader/settings_sources.h"
#include "tools/velmar-cfg/base/input_file.h"

using namespace zon_cfg;

namespace
{
OUTCOME outcome_of(SETTINGS_LINE line)
{
    switch (line)
    {
    case SETTINGS_LINE::TOO_SHORT:
        return OUTCOME::TOO_SHORT;
    case SETTINGS_LINE::NO_EQUALS_SIGN:
        return OUTCOME::NO_EQUALS_SIGN;
    case SETTINGS_LINE::ASSIGNMENT:
        break;
    }
    return OUTCOME::STORED;
}

OUTCOME outcome_of(INLINE_ITEM item)
{
    switch (item)
    {
    case INLINE_ITEM::NO_EQUALS_SIGN:
        return OUTCOME::NO_EQUALS_SIGN;
    case INLINE_ITEM::EMPTY_NAME:
        return OUTCOME::EMPTY_NAME;
    case INLINE_ITEM::EMPTY_VALUE:
        return OUTCOME::EMPTY_VALUE;
    case INLINE_ITEM::ASSIGNMENT:
        break;
    }
    return OUTCOME::STORED;
}

void add_statement(SETTINGS_LAYERS& result, STATEMENT statement)
{
    statement.layer = result.layers.size() - 1;
    if (statement.outcome == OUTCOME::STORED)
        result.assignments[statement.name].push_back(result.statements.size());
    else
    {
        statement.name.clear();
        statement.value.clear();
    }
    result.statements.push_back(std::move(statement));
}

void add_file(SETTINGS_LAYERS& result, LAYER_KIND kind, const std::string& path)
{
    check_input_file(path);
    result.layers.push_back({kind, path});
    SETTINGS_LINES lines(path);
    std::string_view line;
    for (std::size_t position = 1; lines.next(line); ++position)
    {
        if (line.find('\0') != std::string_view::npos)
            throw_binary_file(path, position);
        STATEMENT statement{0, position, std::string(line), line.size(), {}, {}, {}};
        const SETTINGS_LINE parsed = parse_settings_line(line, statement.name, statement.value);
        statement.outcome = outcome_of(parsed);
        if (parsed != SETTINGS_LINE::TOO_SHORT)
        {
            std::string kept(line);
            cfg_remove_commented_portion(&kept);
            statement.kept = kept.size();
        }
        add_statement(result, std::move(statement));
    }
}

void add_inline_text(SETTINGS_LAYERS& result, const std::string& text)
{
    result.layers.push_back({LAYER_KIND::INLINE_TEXT, inline_source});
    INLINE_TEXT items(text);
    INLINE_ITEM kind{};
    STATEMENT statement{};
    while (items.next(kind, statement.name, statement.value))
    {
        ++statement.position;
        statement.text = items.item();
        statement.kept = statement.text.size();
        statement.outcome = outcome_of(kind);
        add_statement(result, statement);
    }
}
}

const char* layer_code(LAYER_KIND kind)
{
    switch (kind)
    {
    case LAYER_KIND::MAIN_FILE:
        return "main";
    case LAYER_KIND::APPENDED_FILE:
        return "appended";
    case LAYER_KIND::INLINE_TEXT:
        return "inline";
    case LAYER_KIND::REGTEST_FILE:
        break;
    }
    return "regtest";
}

std::optional<LAYER_KIND> layer_of_code(const std::string& code)
{
    for (const LAYER_KIND kind :
         {LAYER_KIND::MAIN_FILE, LAYER_KIND::APPENDED_FILE, LAYER_KIND::INLINE_TEXT, LAYER_KIND::REGTEST_FILE})
    {
        if (code == layer_code(kind))
            return kind;
    }
    return std::nullopt;
}

const char* layer_title(LAYER_KIND kind)
{
    switch (kind)
    {
    case LAYER_KIND::MAIN_FILE:
        return "main settings file";
    case LAYER_KIND::APPENDED_FILE:
        return "file of APPENDED_VELMAR_INI";
    case LAYER_KIND::INLINE_TEXT:
        return "environment";
    case LAYER_KIND::REGTEST_FILE:
        break;
    }
    return "regression-test file";
}

std::vector<const STATEMENT*> SETTINGS_LAYERS::assignments_of(const std::string& name) const
{
    std::vector<const STATEMENT*> found;
    if (const auto entry = assignments.find(name); entry != assignments.end())
    {
        for (const std::size_t location : entry->second)
            found.push_back(&statements[location]);
    }
    return found;
}

const STATEMENT* SETTINGS_LAYERS::winner_of(const std::string& name) const
{
    const auto entry = assignments.find(name);
    return entry == assignments.end() ? nullptr : &statements[entry->second.back()];
}

bool SETTINGS_LAYERS::external(const std::string& name) const
{
    const auto entry = assignments.find(name);
    return entry != assignments.end() &&
           std::ranges::any_of(entry->second, [this](std::size_t location)
                               { return layer_of(statements[location]).marks_external(); });
}

SETTINGS_LAYERS read_layers(const SETTINGS_SCOPE& scope)
{
    const auto find_file = [&scope](bool regtest)
    {
        return scope.project.empty() ? cfg_get_default_ini_file(regtest)
                                     : find_project_settings(scope.project.c_str(), regtest);
    };
    SETTINGS_LAYERS result;
    if (const std::string path = find_file(false); !path.empty())
        add_file(result, LAYER_KIND::MAIN_FILE, path);
    if (const std::string path = appended_settings_path(); !path.empty())
        add_file(result, LAYER_KIND::APPENDED_FILE, path);
    if (const char* const text = inline_settings(); text != nullptr)
        add_inline_text(result, text);
    if (scope.regtest)
    {
        if (const std::string path = find_file(true); !path.empty())
            add_file(result, LAYER_KIND::REGTEST_FILE, path);
    }
    return result;
}

SETTINGS_LAYERS read_single_layer(const std::string& path)
{
    SETTINGS_LAYERS result;
    add_file(result, LAYER_KIND::MAIN_FILE, path);
    return result;
}

std::string location_of(const SETTINGS_LAYERS& layers, const STATEMENT& statement)
{
    return location_as_text(location(layers, statement));
}

LOCATION location(const SETTINGS_LAYERS& layers, const STATEMENT& statement)
{
    return {layers.layer_of(statement), statement.position};
}

std::string location_as_text(const LOCATION& location)
{
    return location.layer.source + ":" + std::to_string(location.position);
}

nlohmann::ordered_json location_as_json(const LOCATION* location)
{
    nlohmann::ordered_json json = {{"layer", nullptr}, {"file", nullptr}, {"line", nullptr}, {"item", nullptr}};
    if (location == nullptr)
        return json;
    json["layer"] = layer_code(location->layer.kind);
    if (location->layer.is_file())
    {
        json["file"] = location->layer.source;
        json["line"] = location->position;
    }
    else
        json["item"] = location->position;
    return json;
}

nlohmann::ordered_json location_as_json(const SETTINGS_LAYERS& layers, const STATEMENT* statement)
{
    if (statement == nullptr)
        return location_as_json(nullptr);
    const LOCATION found = location(layers, *statement);
    return location_as_json(&found);
}
