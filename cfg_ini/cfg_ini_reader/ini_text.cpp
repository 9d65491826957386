#include "cfg_ini/cfg_ini_reader/ini_text.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "platform/err/err.h"
#include "platform/gen/gen.h"

namespace
{
// Where a settings line divides.
struct DIVIDED_LINE
{
    std::size_t end;    // of the line without its comment
    std::size_t equals; // the first "=", or npos when there is none before the end
};

// The characters at which the scan of a line stops.
constexpr auto divides = []
{
    std::array<bool, 256> table{};
    for (const char c : {'"', ';', '#', '=', '/'})
        table[static_cast<unsigned char>(c)] = true;
    return table;
}();

// The one scan of a line. A comment starts at the first ";" or "#" outside double quotes; an unclosed quote reaches to
// the end of the line. Behind the first "=" a "//" belongs to the value, so that values may hold paths and addresses;
// before it, it starts a comment too, quoted or not.
DIVIDED_LINE divide(std::string_view line)
{
    bool in_quotes = false;
    std::size_t equals = std::string_view::npos;
    for (std::size_t at = 0; at < line.size(); ++at)
    {
        const char c = line[at];
        if (!divides[static_cast<unsigned char>(c)]) [[likely]]
            continue;
        if (c == '"')
            in_quotes = !in_quotes;
        else if (c == '=')
            equals = std::min(equals, at);
        else if (c == '/')
        {
            if (equals == std::string_view::npos && at + 1 < line.size() && line[at + 1] == '/')
                return {at, equals};
        }
        else if (!in_quotes)
            return {at, equals};
    }
    return {line.size(), equals};
}

// Visible ASCII is white space in no locale: most characters need no question.
bool is_visible_ascii(char c)
{
    return c > ' ' && c <= '~';
}

bool is_white_space(char c)
{
    return !is_visible_ascii(c) && std::isspace(static_cast<unsigned char>(c)) != 0;
}

// `text` without the blanks and tabs, white space to anyone, at its ends.
std::string_view without_outer_blanks(std::string_view text)
{
    const auto is_blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && is_blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back()))
        text.remove_suffix(1);
    return text;
}

// The platform's trimming of `text`, which is asked only where taking blanks and tabs off does not settle it.
void assign_trimmed(std::string& to, std::string_view text)
{
    text = without_outer_blanks(text);
    to.assign(text);
    if (!text.empty() && !(is_visible_ascii(text.front()) && is_visible_ascii(text.back())))
        to = gen_remove_leading_and_trailing_white_spaces(to);
}
}

void cfg_remove_commented_portion(std::string* line)
{
    line->resize(divide(*line).end);
}

void cfg_trim_string(std::string* str)
{
    if (str == nullptr)
    {
        err_report_internal_error("str != NULL", "CFG_INI", "cfg_ini/cfg_ini_reader", 228);
        return;
    }
    if (!std::ranges::all_of(*str, is_visible_ascii))
        std::erase_if(*str, is_white_space);
}

SETTINGS_LINE parse_settings_line(std::string_view line, std::string& name, std::string& value)
{
    // A carriage return counts. The one shorter line with an effect, intended: "=5" sets the variable of empty name.
    constexpr std::size_t shortest = 3;
    const bool short_with_empty_name = line.size() == 2 && line.front() == '=';
    if (line.size() < shortest && !short_with_empty_name)
        return SETTINGS_LINE::TOO_SHORT;

    const auto [end, equals] = divide(line);
    if (equals == std::string_view::npos)
        return SETTINGS_LINE::NO_EQUALS_SIGN;

    name.assign(without_outer_blanks(line.substr(0, equals)));
    cfg_trim_string(&name);
    assign_trimmed(value, line.substr(equals + 1, end - equals - 1));
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
    const std::size_t end = std::min(text.find(separator, position), text.size());
    item_start = position;
    item_size = end - position;
    position = end + 1;

    const std::size_t equals = text.find('=', item_start);
    if (equals >= end)
    {
        kind = INLINE_ITEM::NO_EQUALS_SIGN;
        return true;
    }
    name = gen_remove_leading_and_trailing_spaces(text.substr(item_start, equals - item_start));
    value = gen_remove_leading_and_trailing_spaces(text.substr(equals + 1, end - equals - 1));
    kind = name.empty() ? INLINE_ITEM::EMPTY_NAME : value.empty() ? INLINE_ITEM::EMPTY_VALUE : INLINE_ITEM::ASSIGNMENT;
    return true;
}
