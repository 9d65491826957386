// Loads the sources of the settings as layers, and walks their lines and items.
//
// The library's own rules say which file each layer is (library_rules.h): no rule of the search is written here again.
// A file that is gone when it is opened is being replaced, so the search is made anew. Secrets are hidden as a text
// comes in. The text that still shows them is kept beside the layer only where there are any.
//
// The walk is a position: a layer, an offset in its text, and the number of the line or item. Each step parses one line
// or item by the library's rule and overwrites what the step before has returned. next_for() parses only lines whose
// first visible character may begin the name. White space goes from names throughout, so no other line can set that
// variable. Items, and assignments that are known by name and value alone, all pass.
//
// Cost: loading takes O(n) time and memory for n bytes. A walk takes O(n) time, and memory for one line or item.
#include "tools/velmar-cfg/settings/layers.h"

#include <algorithm>

#include "cfg_ini/cfg_ini_reader/ini_text.h"
#include "cfg_ini/cfg_ini_reader/settings_sources.h"
#include "platform/fio/fio.h"
#include "tools/velmar-cfg/settings/what_if.h"

using namespace zon_cfg;

namespace
{
constexpr char folded(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// Whether the first character that is no white space is the one that begins the name; "=" for the empty one. White
// space goes from names throughout, so that no other line can assign to the variable. Locales add to white space only
// bytes above ASCII, which are let through.
bool may_assign(std::string_view line, char beginning)
{
    const auto first = std::ranges::find_if_not(line, [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); });
    return first != line.end() && (folded(*first) == beginning || static_cast<unsigned char>(*first) >= 0x80);
}

// The layer with its secrets hidden, given its text without them; nothing when there are none.
LAYER hidden_layer(LAYER_KIND kind, std::shared_ptr<const INPUT_FILE> source, std::optional<std::string> hidden)
{
    if (!hidden)
        return {kind, std::move(source)};
    auto masked = std::make_shared<INPUT_FILE>();
    masked->path = source->path;
    masked->bytes = *std::move(hidden);
    masked->problem = source->problem;
    return {kind, std::move(masked), std::move(source)};
}

LAYER file_layer(LAYER_KIND kind, std::shared_ptr<const INPUT_FILE> file, SECRETS& secrets)
{
    std::optional<std::string> hidden = hide_in_settings_text(file->whole_lines(), secrets);
    return hidden_layer(kind, std::move(file), std::move(hidden));
}

// Adds the file that `find` finds, if it finds one. A file that is gone once it is opened is being replaced, or moved
// away: what is there by now is searched for anew.
template <typename FIND>
void add_file(LAYER_KIND kind, LAYERS& layers, INPUT_FILES& files, SECRETS& secrets, FIND find)
{
    constexpr int most_tries = 1000;
    for (int tries = 1;; ++tries)
    {
        const std::string path = find();
        if (path.empty())
            return;
        std::shared_ptr<const INPUT_FILE> file = files.read(path);
        if (!file->gone || tries == most_tries)
        {
            layers.push_back(file_layer(kind, std::move(file), secrets));
            return;
        }
        files.forget(path);
    }
}

// Notes the places of the search that come before the file that is found.
void note_places_passed_over(const SETTINGS_SCOPE& scope, bool regtest, INPUT_FILES& files)
{
    if (!scope.project.empty())
    {
        const FIO_PATH path = project_settings_path(scope.project.c_str(), regtest);
        if (FIO_FILE_SYSTEM::exists(path))
            return;
        files.note_absence(path.fullpath());
    }
    if (settings_search_is_disabled())
        return;
    SETTINGS_SEARCH search(settings_file_name(regtest));
    for (SEARCH_PLACE place{}; search.next(place) && !FIO_FILE_SYSTEM::exists(search.path());)
        files.note_absence(search.path().fullpath());
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
        return "regtest";
    case LAYER_KIND::PROGRAM:
        return "program";
    case LAYER_KIND::WHAT_IF:
        return "what-if";
    case LAYER_KIND::UNKNOWN:
        break;
    }
    return "unknown";
}

std::optional<LAYER_KIND> layer_of_code(std::string_view code)
{
    for (const LAYER_KIND kind : all_layer_kinds)
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
        return "regression-test file";
    case LAYER_KIND::PROGRAM:
        return "program";
    case LAYER_KIND::WHAT_IF:
        return "what if";
    case LAYER_KIND::UNKNOWN:
        break;
    }
    return "unknown source";
}

LAYERS load_layers(const SETTINGS_SCOPE& scope, INPUT_FILES& files)
{
    return load_layers(scope, *scope.secrets, files);
}

LAYERS load_layers(const SETTINGS_SCOPE& scope, SECRETS& secrets, INPUT_FILES& files)
{
    LAYERS layers;
    const auto add_searched = [&](LAYER_KIND kind, bool regtest)
    {
        note_places_passed_over(scope, regtest, files);
        add_file(kind, layers, files, secrets, [&] { return settings_file_of(scope.project, regtest); });
    };
    add_searched(LAYER_KIND::MAIN_FILE, false);
    if (const std::string named = named_appended_file(); !named.empty())
        files.note_absence(named);
    add_file(LAYER_KIND::APPENDED_FILE, layers, files, secrets, appended_file);
    if (const char* const text = inline_text(); text != nullptr)
    {
        auto source = std::make_shared<const INPUT_FILE>(INPUT_FILE{inline_source, text, {}});
        std::optional<std::string> hidden = hide_in_inline_text(source->bytes, secrets);
        layers.push_back(hidden_layer(LAYER_KIND::INLINE_TEXT, std::move(source), std::move(hidden)));
    }
    if (scope.regtest)
        add_searched(LAYER_KIND::REGTEST_FILE, true);
    return changed_layers(std::move(layers), scope.what_if, secrets);
}

LAYERS single_layer(const std::string& path, INPUT_FILES& files, SECRETS& secrets)
{
    return {file_layer(LAYER_KIND::MAIN_FILE, files.read_named(path), secrets)};
}

bool STATEMENTS::next_item(STATEMENT& statement)
{
    if (!items)
        items.emplace(layers[layer].source->bytes);
    if (!items->next(statement.outcome, item_name, item_value))
    {
        items.reset();
        return false;
    }
    statement.text = items->text();
    statement.name = item_name;
    statement.value = item_value;
    return true;
}

bool STATEMENTS::next_literal(STATEMENT& statement)
{
    const std::vector<LITERAL>& literals = *layers[layer].literals;
    if (offset == literals.size())
        return false;
    const LITERAL& literal = literals[offset++];
    statement.position = literal.position;
    statement.text = literal.text;
    statement.outcome = OUTCOME::STORED;
    statement.name = literal.name();
    statement.value = literal.value();
    return true;
}

template <typename ACCEPT>
bool STATEMENTS::next_accepted(STATEMENT& statement, ACCEPT accept)
{
    for (; layer < layers.size(); ++layer, offset = 0, position = 0)
    {
        statement.layer = layer;
        if (layers[layer].literals != nullptr)
        {
            if (next_literal(statement))
                return true;
            continue;
        }
        if (!is_file(layers[layer].kind))
        {
            statement.position = ++position;
            if (next_item(statement))
                return true;
            continue;
        }
        const std::string_view text = layers[layer].source->whole_lines();
        while (offset < text.size())
        {
            const std::string_view line = text.substr(offset, text.find('\n', offset) - offset);
            offset += line.size() + 1;
            ++position;
            if (!accept(line))
                continue;
            statement.position = position;
            statement.text = line;
            statement.outcome = outcome_of_line(line, parts);
            statement.name = parts.name;
            statement.value = parts.value;
            return true;
        }
    }
    return false;
}

bool STATEMENTS::next(STATEMENT& statement)
{
    return next_accepted(statement, [](std::string_view) { return true; });
}

bool STATEMENTS::next_for(std::string_view name, STATEMENT& statement)
{
    // A zero byte ends a name.
    const char beginning = name.empty() || name.front() == '\0' ? '=' : folded(name.front());
    return next_accepted(statement, [beginning](std::string_view line)
                         { return may_assign(line, beginning) || (beginning == '=' && may_assign(line, '\0')); });
}

LOCATION location_of(const LAYERS& layers, const STATEMENT& statement)
{
    const LAYER& layer = layers[statement.layer];
    return {layer.kind, layer.source->path, statement.position};
}

std::string location_as_text(const LOCATION& location)
{
    if (location.layer == LAYER_KIND::UNKNOWN)
        return "unknown" + (location.source.empty() ? "" : ", " + std::string(location.source));
    return std::string(location.source) + (location.position == 0 ? "" : ":" + std::to_string(location.position));
}

void write_location_fields(JSON_WRITER& out, const LOCATION* location)
{
    const bool in_file = location != nullptr && is_file(location->layer);
    const std::optional<std::size_t> position =
        location != nullptr && location->position != 0 ? std::optional(location->position) : std::nullopt;
    out.field("layer", location == nullptr ? std::nullopt : std::optional(layer_code(location->layer)));
    out.field("file", in_file ? std::optional(location->source) : std::nullopt);
    out.field("line", in_file ? position : std::nullopt);
    out.field("item", in_file ? std::nullopt : position);
}
