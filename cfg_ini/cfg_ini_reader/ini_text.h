// The text forms of assignments: a line of a settings file, and the inline text of VELMAR_INI_VARS. No state; any
// thread. Malformed text is never an error: it is skipped, and the results here say why.
#ifndef CFG_INI_CFG_INI_READER_INI_TEXT_H
#define CFG_INI_CFG_INI_READER_INI_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

// The separator of an inline text: its first ":" or ";", or ";" when it has neither.
char cfg_find_separator_in_ini_string(const std::string& text);

// Cuts the comment off `line` (not null): from the first ";" or "#" outside double quotes on, then from the first "//"
// on if it stands before the first "=" or there is no "=". Quotes stay; an unclosed one reaches to the end of the line.
void cfg_remove_commented_portion(std::string* line);

// Removes every white-space character (isspace of the current locale), inner ones too. A null `str` is reported.
void cfg_trim_string(std::string* str);

namespace zon_cfg
{
// What the store does with one line of a settings file.
enum class SETTINGS_LINE
{
    ASSIGNMENT,     // stores name and value
    TOO_SHORT,      // ignored: fewer than 3 characters, unless it is "=" and a character that is a value, as "=5"
    NO_EQUALS_SIGN, // ignored: no "=" once the comment is removed
};

// What a settings line assigns: parts of the line or, where characters had to go from within, of the two strings; valid
// until either changes.
struct LINE_ASSIGNMENT
{
    std::string_view name;
    std::string_view value;
    std::string changed_name;
    std::string changed_value;
};

// Takes a line, its newline removed, apart; the assignment is set only if it is one. Everything before the first "=" is
// the name, white space removed throughout; everything between it and the comment the value, trimmed at its ends.
// Either may be empty.
SETTINGS_LINE parse_settings_line(std::string_view line, LINE_ASSIGNMENT& assignment);

// The same into strings, for those who keep them; the library's own readers do not.
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

    // Whether there is a further item; if so, `kind` tells what becomes of it, and `name` and `value` are set, blanks
    // at their ends removed, unless it has no "=".
    bool next(INLINE_ITEM& kind, std::string& name, std::string& value);

    // The last item as it stands in the text; empty before the first. Points into the text.
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
