// Parses lines and inline texts in place.
//
// One scan divides a line (line_division.h), and name and value are parts of the line. For nearly every line nothing is
// copied. These are the lines where, without the blanks and tabs at the ends, the name is all visible ASCII, and the
// value begins and ends with it. The other lines go through the rule itself: isspace of the current locale for a name,
// and the platform's trimming for a value. The result is then kept beside the line.
//
// An inline text is walked once. A search within an item stays within that item, so any text costs linear time.
#include "cfg_ini/cfg_ini_reader/ini_text.h"

#include <algorithm>
#include <cctype>

#include "cfg_ini/cfg_ini_reader/character_block.h"
#include "cfg_ini/cfg_ini_reader/line_division.h"
#include "cfg_ini/cfg_ini_reader/report_lines.h"
#include "platform/gen/gen.h"

namespace zon_cfg
{
namespace
{
DIVIDED_LINE divide(std::string_view line)
{
    return divide_by_blocks<CHARACTER_BLOCK>(line);
}

bool is_all_visible_ascii(std::string_view text)
{
    return is_visible_ascii_by_blocks<CHARACTER_BLOCK>(text);
}

bool is_white_space(char c)
{
    return !is_visible_ascii(c) && std::isspace(static_cast<unsigned char>(c)) != 0;
}

// `text` without the blanks and tabs at its ends, which are white space in every locale.
std::string_view without_outer_blanks(std::string_view text)
{
    const auto is_blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && is_blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back()))
        text.remove_suffix(1);
    return text;
}

// The value of a line that has an "=": a part of the line or, where the platform has to trim it, of `changed`.
std::string_view value_of(std::string_view line, const DIVIDED_LINE& divided, std::string& changed)
{
    const std::string_view value =
        without_outer_blanks(line.substr(divided.equals + 1, divided.end - divided.equals - 1));
    if (value.empty() || (is_visible_ascii(value.front()) && is_visible_ascii(value.back())))
        return value; // without the blanks and tabs nothing is left to trim
    changed = gen_remove_leading_and_trailing_white_spaces(std::string(value));
    return changed;
}

// Whether a line that is too short for an assignment is one all the same. One kind is, intended: "=" and one character
// of value, such as "=5", which sets the variable with the empty name. "=;" and "= " have no value and are ignored.
bool assigns_to_the_empty_name(std::string_view short_line)
{
    if (!short_line.starts_with('='))
        return false;
    const std::size_t end = divide(short_line).end;
    return !gen_remove_leading_and_trailing_white_spaces(std::string(short_line.substr(1, end - 1))).empty();
}
}
}

using namespace zon_cfg;

void cfg_remove_commented_portion(std::string* line)
{
    line->resize(divide(*line).end);
}

void cfg_trim_string(std::string* str)
{
    if (str == nullptr)
    {
        report_broken_precondition("str != NULL", NULL_TEXT_TO_TRIM);
        return;
    }
    if (!is_all_visible_ascii(*str))
        std::erase_if(*str, is_white_space);
}

SETTINGS_LINE zon_cfg::parse_settings_line(std::string_view line, LINE_ASSIGNMENT& assignment)
{
    constexpr std::size_t shortest = 3; // a carriage return counts
    if (line.size() < shortest && !assigns_to_the_empty_name(line))
        return SETTINGS_LINE::TOO_SHORT;

    const DIVIDED_LINE divided = divide(line);
    const std::size_t equals = divided.equals;
    if (equals == std::string_view::npos)
        return SETTINGS_LINE::NO_EQUALS_SIGN;

    assignment.name = without_outer_blanks(line.substr(0, equals));
    if (!is_all_visible_ascii(assignment.name))
    {
        assignment.changed_name = assignment.name;
        cfg_trim_string(&assignment.changed_name);
        assignment.name = assignment.changed_name;
    }

    assignment.value = value_of(line, divided, assignment.changed_value);
    return SETTINGS_LINE::ASSIGNMENT;
}

char cfg_find_separator_in_ini_string(const std::string& text)
{
    const std::size_t separator = text.find_first_of(":;");
    return separator == std::string::npos ? ';' : text[separator];
}

INLINE_TEXT::INLINE_TEXT(const std::string& inline_text)
    : text(inline_text), separator(cfg_find_separator_in_ini_string(inline_text))
{
}

bool INLINE_TEXT::next(INLINE_ITEM& kind, std::string& name, std::string& value)
{
    if (position >= text.size())
        return false;
    // No search if the separator is here: a megabyte of separators then costs little.
    const std::size_t end =
        text[position] == separator ? position : std::min(text.find(separator, position), text.size());
    item_start = position;
    item_size = end - position;
    position = end + 1;

    // Searches the item alone: otherwise each item without "=" would search the rest of the text.
    const std::size_t equals = item().find('=');
    if (equals == std::string_view::npos)
    {
        kind = INLINE_ITEM::NO_EQUALS_SIGN;
        return true;
    }
    name = gen_remove_leading_and_trailing_spaces(std::string(item().substr(0, equals)));
    value = gen_remove_leading_and_trailing_spaces(std::string(item().substr(equals + 1)));
    kind = name.empty() ? INLINE_ITEM::EMPTY_NAME : value.empty() ? INLINE_ITEM::EMPTY_VALUE : INLINE_ITEM::ASSIGNMENT;
    return true;
}
