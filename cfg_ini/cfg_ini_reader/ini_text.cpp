#include "cfg_ini/cfg_ini_reader/ini_text.h"

#include <algorithm>
#include <cctype>

#include "platform/err/err.h"
#include "platform/gen/gen.h"

namespace
{
// The start of a ";" or "#" comment, npos when there is none.
std::size_t find_quoted_aware_comment(const std::string& line)
{
    bool in_quotes = false;
    for (std::size_t at = line.find_first_of(";#\""); at != std::string::npos; at = line.find_first_of(";#\"", at + 1))
    {
        if (line[at] == '"')
            in_quotes = !in_quotes;
        else if (!in_quotes)
            return at;
    }
    return std::string::npos;
}
}

void cfg_remove_commented_portion(std::string* line)
{
    if (const std::size_t comment = find_quoted_aware_comment(*line); comment != std::string::npos)
        line->resize(comment);

    // Behind the first "=" a "//" belongs to the value, so that values may hold paths and addresses.
    const std::size_t slashes = line->find("//");
    if (slashes != std::string::npos && slashes < line->find('='))
        line->resize(slashes);
}

void cfg_trim_string(std::string* str)
{
    if (str == nullptr)
    {
        err_report_internal_error("str != NULL", "CFG_INI", "cfg_ini/cfg_ini_reader", 228);
        return;
    }
    std::erase_if(*str, [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; });
}

SETTINGS_LINE parse_settings_line(std::string& line, std::string& name, std::string& value)
{
    // A carriage return counts. The one shorter line with an effect, intended: "=5" sets the variable of empty name.
    constexpr std::size_t shortest = 3;
    const bool short_with_empty_name = line.size() == 2 && line.front() == '=';
    if (line.size() < shortest && !short_with_empty_name)
        return SETTINGS_LINE::TOO_SHORT;

    cfg_remove_commented_portion(&line);
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos)
        return SETTINGS_LINE::NO_EQUALS_SIGN;

    name.assign(line, 0, equals);
    cfg_trim_string(&name);
    value.assign(line, equals + 1);
    value = gen_remove_leading_and_trailing_white_spaces(value);
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
