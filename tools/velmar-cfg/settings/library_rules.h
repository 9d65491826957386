// The library's own rules for settings: lines, inline texts, names, conversions, and the search for files. Only through
// this header does the tool use the internals of the variable store. So what the tool says is what the library does.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_LIBRARY_RULES_H
#define TOOLS_VELMAR_CFG_SETTINGS_LIBRARY_RULES_H

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "cfg_ini/cfg_ini_reader/ini_text.h"
#include "cfg_ini/cfg_ini_reader/name_matching.h"

// --- Lines and items ---

// What becomes of a line of a settings file, or of an item of an inline text.
enum class OUTCOME
{
    STORED,
    TOO_SHORT,
    NO_EQUALS_SIGN,
    EMPTY_NAME,  // only of an inline item: a line stores under the empty name
    EMPTY_VALUE, // only of an inline item
};

// The name and the value of a stored line, as views of the line or of this object.
using LINE_PARTS = zon_cfg::LINE_ASSIGNMENT;

// Parses a line without its newline. Sets the parts only for STORED.
OUTCOME outcome_of_line(std::string_view line, LINE_PARTS& parts);

// The length of a line without its comment.
std::size_t length_without_comment(std::string_view line);

// Walks the items of an inline text, which must outlive the walk.
class INLINE_ITEMS
{
public:
    explicit INLINE_ITEMS(const std::string& text) : items(text) {}

    // Whether there is a further item. If so, sets the outcome, and for STORED the name and the value.
    bool next(OUTCOME& outcome, std::string& name, std::string& value);

    // The last item as it stands in the text.
    std::string_view text() const
    {
        return items.item();
    }

private:
    zon_cfg::INLINE_TEXT items;
};

// What separates the items of an inline text: ";" or ":".
char separator_of_items(const std::string& text);

// --- Names ---

// Whether two names are those of the same variable. The case of A to Z does not count, nor does what follows a zero
// byte.
inline bool same_name(std::string_view a, std::string_view b)
{
    return zon_cfg::equal_names(a, b);
}

inline std::size_t hash_of_name(std::string_view name)
{
    return zon_cfg::hash_name(name);
}

// For hash tables by name.
struct NAME_HASH
{
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const
    {
        return zon_cfg::hash_name(name);
    }
};

struct NAME_EQUAL
{
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const
    {
        return zon_cfg::equal_names(a, b);
    }
};

// --- Known variables ---

// Names and default texts of the catalogued variables, and the variables that control the library itself.
std::span<const std::pair<const char*, const char*>> catalogued_variables();
std::span<const char* const> own_switches();
std::span<const char* const> own_integers();

// --- Values ---

// What the typed readers take from a text; nothing if it is no value of the type.
std::optional<bool> as_boolean(const std::string& text);
std::optional<int> as_integer(const std::string& text);
std::optional<unsigned int> as_unsigned(const std::string& text);

// The number at the start of the text, 0 when there is none; *whole tells whether it is the whole text.
double as_floating(const std::string& text, bool* whole);

// --- Sources ---

// The settings file in the project's directory, if there is one; else the one that the search finds. An empty directory
// means the search alone. Empty if there is no file.
std::string settings_file_of(const std::string& project, bool regtest);

// The path of the settings file in the project's directory, or for an empty one in the current directory. The file need
// not exist.
std::string own_settings_file(const std::string& project);

// The file that APPENDED_VELMAR_INI names, if it exists; else empty.
std::string appended_file();

// The same, whether it exists or not.
std::string named_appended_file();

// The text of VELMAR_INI_VARS; null when it is not set or empty.
const char* inline_text();

#endif
