// The settings as they are laid over each other, statement by statement: where each assignment came from, which one
// won, and which lines did nothing. Every file is taken apart by the library's own line and item rules, and the
// library's own choice of files decides what is a layer.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_LAYERS_H
#define TOOLS_VELMAR_CFG_SETTINGS_LAYERS_H

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/velmar-cfg/settings/variable_name.h"

// Whose settings are asked for.
struct SETTINGS_SCOPE
{
    std::string project;  // the project's directory; empty for the search's file
    bool regtest = false; // regtest.ini as well, as regression runs read it
};

// In the order in which they are laid over each other.
enum class LAYER_KIND
{
    MAIN_FILE,
    APPENDED_FILE,
    INLINE_TEXT,
    REGTEST_FILE,
};

// "main", "appended", "inline" and "regtest": for JSON.
const char* layer_code(LAYER_KIND kind);

// The layer of that code, if there is one.
std::optional<LAYER_KIND> layer_of_code(const std::string& code);

// "main settings file", "file of APPENDED_VELMAR_INI", ...: for people.
const char* layer_title(LAYER_KIND kind);

// Whether variables that it sets count as external.
constexpr bool marks_external(LAYER_KIND kind)
{
    return kind == LAYER_KIND::MAIN_FILE || kind == LAYER_KIND::INLINE_TEXT;
}

// The source of the inline text.
inline constexpr const char* inline_source = "VELMAR_INI_VARS";

struct LAYER
{
    LAYER_KIND kind;
    std::string source; // the file's path as the library opens it, or inline_source

    bool is_file() const
    {
        return kind != LAYER_KIND::INLINE_TEXT;
    }

    bool marks_external() const
    {
        return ::marks_external(kind);
    }
};

enum class OUTCOME
{
    STORED,
    TOO_SHORT,
    NO_EQUALS_SIGN,
    EMPTY_NAME,  // only of an inline item: a line stores under the empty name
    EMPTY_VALUE, // only of an inline item
};

// One line of a file, or one item of the inline text.
struct STATEMENT
{
    std::size_t layer;    // its place among the layers
    std::size_t position; // the line or the item, counted from 1
    std::string text;     // as it stands, without the newline
    std::size_t kept;     // how much of the text is left once the comment is removed
    OUTCOME outcome;
    std::string name;  // when stored
    std::string value; // when stored
};

struct SETTINGS_LAYERS
{
    std::vector<LAYER> layers;
    std::vector<STATEMENT> statements; // in the order in which the library meets them

    // The stored statements of each name, as places in `statements`, in order; the last one won. Names are equal as in
    // the store.
    BY_VARIABLE_NAME<std::vector<std::size_t>> assignments;

    const LAYER& layer_of(const STATEMENT& statement) const
    {
        return layers[statement.layer];
    }

    // The statements that set this variable, in order; none for a name that nothing sets.
    std::vector<const STATEMENT*> assignments_of(const std::string& name) const;

    // The statement that won; null when nothing sets the variable.
    const STATEMENT* winner_of(const std::string& name) const;

    // Whether the library must hold the variable for external.
    bool external(const std::string& name) const;
};

// The layers of the settings that `scope` asks for. Throws TOOL_ERROR for a file that cannot be read as one: a
// directory, no permission, no regular file, a zero byte in it.
SETTINGS_LAYERS read_layers(const SETTINGS_SCOPE& scope);

// The statements of one file, given as the only layer and taken for a main settings file. Throws as above, and for a
// missing file.
SETTINGS_LAYERS read_single_layer(const std::string& path);

// "velmar.ini:12", or "VELMAR_INI_VARS:2" for the second item.
std::string location_of(const SETTINGS_LAYERS& layers, const STATEMENT& statement);

// A line or an item, apart from its layers.
struct LOCATION
{
    LAYER layer;
    std::size_t position; // the line or the item, counted from 1
};
LOCATION location(const SETTINGS_LAYERS& layers, const STATEMENT& statement);

// As location_of has it.
std::string location_as_text(const LOCATION& location);

// {"layer", "file", "line", "item"}, all null for a null pointer; "item" is null for a line, "file" and "line" are for
// an item.
nlohmann::ordered_json location_as_json(const LOCATION* location);
nlohmann::ordered_json location_as_json(const SETTINGS_LAYERS& layers, const STATEMENT* statement);

#endif
