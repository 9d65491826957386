// Parses the two text forms of assignments: a line of a settings file, and the inline text of VELMAR_INI_VARS. No
// state; any thread. Malformed text is not an error: it is skipped, and the results say why.
#ifndef CFG_INI_CFG_INI_READER_INI_TEXT_H
#define CFG_INI_CFG_INI_READER_INI_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

// The separator of an inline text: its first ":" or ";", or ";" when it has neither.
char cfg_find_separator_in_ini_string(const std::string& text);

// Cuts the comment off `line` (not null). Cuts first at the first ";" or "#" outside double quotes. Then cuts at the
// first "//", unless a "=" stands before it. Quotes stay; an unclosed quote reaches to the end of the line.
void cfg_remove_commented_portion(std::string* line);

// Removes every white-space character (isspace of the current locale), inner ones too. A null `str` is reported.
void cfg_trim_string(std::string* str);

namespace zon_cfg
{
// What the store does with one line of a settings file.
enum class SETTINGS_LINE
{
    ASSIGNMENT,     // stores name and value
    TOO_SHORT,      // ignored: fewer than 3 characters; but "=5", a value without a name, is an assignment
    NO_EQUALS_SIGN, // ignored: no "=" once the comment is removed
};

// The name and the value that a line assigns. They are parts of the line, or of the two strings if characters had to be
// removed from within. They are valid until the line or the strings change.
struct LINE_ASSIGNMENT
{
    std::string_view name;
    std::string_view value;
    std::string changed_name;
    std::string changed_value;
};

// Parses a line, which is given without its newline. Sets `assignment` only if the line is one. The name is everything
// before the first "=", without any white space. The value is everything between the "=" and the comment, trimmed at
// its ends. Either may be empty.
SETTINGS_LINE parse_settings_line(std::string_view line, LINE_ASSIGNMENT& assignment);

// The same, with copies of name and value for callers that keep them. The library itself needs no copies.
inline SETTINGS_LINE parse_settings_line(std::string_view line, std::string& name, std::string& value)
{
    LINE_ASSIGNMENT assignment;
    const SETTINGS_LINE kind = parse_settings_line(line, assignment);
    if (kind == SETTINGS_LINE::ASSIGNMENT)
    {
        name = assignment.name;
        value = assignment.value;
    }
    return kind;
}

// What the store does with one item of an inline text.
enum class INLINE_ITEM
{
    ASSIGNMENT,
    NO_EQUALS_SIGN, // skipped, as is an empty item
    EMPTY_NAME,     // skipped
    EMPTY_VALUE,    // skipped
};

// Walks the items of an inline text from left to right. The text must outlive the walk.
class INLINE_TEXT
{
public:
    explicit INLINE_TEXT(const std::string& text);

    // Returns whether there is a further item. If there is, `kind` becomes what the store does with it. If the item has
    // an "=", `name` and `value` become its parts, without the blanks at their ends.
    bool next(INLINE_ITEM& kind, std::string& name, std::string& value);

    // The item of the last next(), as it stands in the text; empty before the first call. Points into the text.
    std::string_view item() const
    {
        return std::string_view(text).substr(item_start, item_size);
    }

private:
    const std::string& text;
    const char separator;
    std::size_t position = 0;
    std::size_t item_start = 0;
    std::size_t item_size = 0;
};
}

#endif
