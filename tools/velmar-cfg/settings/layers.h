// The sources of the settings, each with all of its text, in the order in which they are applied on top of each other;
// and what the library does with each of their lines and items.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_LAYERS_H
#define TOOLS_VELMAR_CFG_SETTINGS_LAYERS_H

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/settings/library_rules.h"
#include "tools/velmar-cfg/settings/secrets.h"

// A change that is made to settings only to see what it would do. Name and value are taken literally.
struct WHAT_IF
{
    std::string name;
    std::optional<std::string> value; // nothing: remove every assignment to the variable
};

// Which settings are asked for, with which changes, and which secrets are hidden.
struct SETTINGS_SCOPE
{
    std::string project;               // the project's directory; empty: only the search
    bool regtest = false;              // regtest.ini as well, as regression runs read it
    std::vector<WHAT_IF> what_if = {}; // made in this order after all is read

    // Never null. Copies of the scope share it.
    std::shared_ptr<SECRETS> secrets = std::make_shared<SECRETS>();
};

// In the order in which they are applied.
enum class LAYER_KIND : std::uint8_t
{
    MAIN_FILE,
    APPENDED_FILE,
    INLINE_TEXT,
    REGTEST_FILE,
    PROGRAM, // of a run report: what the program itself set, or a text that it applied
    WHAT_IF, // what the user wants to see applied
    UNKNOWN, // of a document that does not tell where a value comes from
};

inline constexpr LAYER_KIND all_layer_kinds[] = {
    LAYER_KIND::MAIN_FILE, LAYER_KIND::APPENDED_FILE, LAYER_KIND::INLINE_TEXT, LAYER_KIND::REGTEST_FILE,
    LAYER_KIND::PROGRAM,   LAYER_KIND::WHAT_IF,       LAYER_KIND::UNKNOWN};

static_assert(std::size(all_layer_kinds) <= 7, "a LAYER_SET has no bit for more");

// "main", "appended", "inline", "regtest", "program", "what-if" and "unknown": for JSON.
const char* layer_code(LAYER_KIND kind);

// The layer of that code, if there is one.
std::optional<LAYER_KIND> layer_of_code(std::string_view code);

// "main settings file", "file of APPENDED_VELMAR_INI", ...: for people.
const char* layer_title(LAYER_KIND kind);

// Whether the library itself reads layers of this kind.
constexpr bool is_library_source(LAYER_KIND kind)
{
    return kind <= LAYER_KIND::REGTEST_FILE;
}

// Whether its statements are lines of a file; else they are items of a text, or stand nowhere.
constexpr bool is_file(LAYER_KIND kind)
{
    return kind == LAYER_KIND::MAIN_FILE || kind == LAYER_KIND::APPENDED_FILE || kind == LAYER_KIND::REGTEST_FILE;
}

// Whether an assignment in such a layer marks its variable as external. Other layers neither set the mark nor remove
// it.
constexpr bool marks_external(LAYER_KIND kind)
{
    return kind == LAYER_KIND::MAIN_FILE || kind == LAYER_KIND::INLINE_TEXT;
}

// A set of kinds of layers that assign to a variable, and whether the variable counts as external.
class LAYER_SET
{
public:
    void insert(LAYER_KIND kind)
    {
        insert(kind, marks_external(kind));
    }

    // The same for a layer of which it is known whether it marks variables as external, whatever its kind.
    void insert(LAYER_KIND kind, bool external)
    {
        bits = static_cast<std::uint8_t>(bits | bit(kind) | (external ? external_bit : 0U));
    }

    void insert_all(const LAYER_SET& others)
    {
        bits = static_cast<std::uint8_t>(bits | others.bits);
    }

    bool contains(LAYER_KIND kind) const
    {
        return (bits & bit(kind)) != 0;
    }

    bool mark_external() const
    {
        return (bits & external_bit) != 0;
    }

    bool operator==(const LAYER_SET&) const = default;

private:
    static constexpr std::uint8_t external_bit = 0x80;

    static constexpr std::uint8_t bit(LAYER_KIND kind)
    {
        return static_cast<std::uint8_t>(1U << static_cast<unsigned int>(kind));
    }

    std::uint8_t bits = 0;
};

// The source of the inline text.
inline constexpr const char* inline_source = "VELMAR_INI_VARS";

// An assignment of which only name and value are known. No rule for lines or items is applied to it.
struct LITERAL
{
    LITERAL(std::string_view name, std::string_view value, std::size_t at)
        : text(std::string(name).append("=").append(value)), name_size(name.size()), position(at)
    {
    }

    std::string_view name() const
    {
        return std::string_view(text).substr(0, name_size);
    }

    std::string_view value() const
    {
        return std::string_view(text).substr(name_size + 1);
    }

    std::string text; // "NAME=VALUE"
    std::size_t name_size;
    std::size_t position; // the line or the item, counted from 1; 0 where it is not known
};

struct LAYER
{
    LAYER_KIND kind;

    // The path as the library opens it, or inline_source, and the text with its secrets hidden. Never null. If the file
    // could not be read whole, the library uses the complete lines before the error, and so does the tool's model.
    std::shared_ptr<const INPUT_FILE> source;

    // The source with its secrets shown, for hashes; null if it has none.
    std::shared_ptr<const INPUT_FILE> original = {};

    // The assignments, if only their names and values are known; the text is empty then. Else null.
    std::shared_ptr<const std::vector<LITERAL>> literals = {};

    // Whether its variables count as external, if that is known and may differ from what its kind tells.
    std::optional<bool> external = {};
};

using LAYERS = std::vector<LAYER>;

// The layers of the settings that `scope` asks for, as the library would choose them now. Adds problems to `files`: for
// files that cannot be read, and for places of the search where a file may be that cannot be seen.
LAYERS load_layers(const SETTINGS_SCOPE& scope, INPUT_FILES& files);

// The same, but `secrets` hides the secrets, and not that of the scope.
LAYERS load_layers(const SETTINGS_SCOPE& scope, SECRETS& secrets, INPUT_FILES& files);

// One file that the user named ("-" for standard input), as the only layer. It is treated as a main settings file.
LAYERS single_layer(const std::string& path, INPUT_FILES& files, SECRETS& secrets);

// One line of a file, or one item of the inline text. The texts are valid until the walk goes on.
struct STATEMENT
{
    std::size_t layer;     // its index among the layers
    std::size_t position;  // the line or the item, counted from 1
    std::string_view text; // as it stands, without the newline
    OUTCOME outcome;
    std::string_view name;  // when stored
    std::string_view value; // when stored
};

// Walks all statements in the order in which the library reads them. Keeps none.
class STATEMENTS
{
public:
    // The layers must outlive the walk.
    explicit STATEMENTS(const LAYERS& the_layers) : layers(the_layers) {}

    // Whether there is a further statement; if so, `statement` is set to it.
    bool next(STATEMENT& statement);

    // The same for those statements that may assign to the variable, and perhaps some others. Fast if there are few.
    bool next_for(std::string_view name, STATEMENT& statement);

private:
    template <typename ACCEPT>
    bool next_accepted(STATEMENT& statement, ACCEPT accept);
    bool next_item(STATEMENT& statement);
    bool next_literal(STATEMENT& statement);

    const LAYERS& layers;
    std::size_t layer = 0;
    std::size_t offset = 0; // into the layer's text, or its literals
    std::size_t position = 0;
    LINE_PARTS parts;
    std::optional<INLINE_ITEMS> items;
    std::string item_name;
    std::string item_value;
};

// Where a line or an item stands. The source belongs to a layer or to a document.
struct LOCATION
{
    LAYER_KIND layer;
    std::string_view source; // for UNKNOWN: "perhaps ...", or empty
    std::size_t position;    // the line or the item, counted from 1; 0 where it is not known
};

LOCATION location_of(const LAYERS& layers, const STATEMENT& statement);

// "velmar.ini:12", "VELMAR_INI_VARS:2" for the second item, the source alone where the position is not known, "unknown"
// or "unknown, perhaps velmar.ini:12".
std::string location_as_text(const LOCATION& location);

// Whether more is known of it than its layer.
constexpr bool is_located(const LOCATION& location)
{
    return location.position != 0 || is_file(location.layer);
}

// Writes the fields "layer", "file", "line" and "item". All are null for a null pointer. "item" is null for a line,
// "file" and "line" are null for an item, and a position that is not known is null.
void write_location_fields(JSON_WRITER& out, const LOCATION* location);

#endif
