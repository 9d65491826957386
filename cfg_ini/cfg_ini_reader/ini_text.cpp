#include "cfg_ini/cfg_ini_reader/ini_text.h"

#include <algorithm>
#include <bit>
#include <cctype>

#include "cfg_ini/cfg_ini_reader/character_block.h"
#include "cfg_ini/cfg_ini_reader/report_lines.h"
#include "platform/gen/gen.h"

namespace zon_cfg
{
namespace
{
// Where a settings line divides.
struct DIVIDED_LINE
{
    std::size_t end;    // of the line without its comment
    std::size_t equals; // the first "=", or npos when there is none before the end
};

bool divides(char c)
{
    return c == '"' || c == ';' || c == '#' || c == '=' || c == '/';
}

// The scan of a line, told of each character that divides lines, from left to right. A comment starts at the first ";"
// or "#" outside double quotes; an unclosed quote reaches to the end of the line. Behind the first "=" a "//" belongs
// to the value, so that values may hold paths and addresses; before it, it starts a comment too, quoted or not.
class DIVISION
{
public:
    explicit DIVISION(std::string_view whole_line) : line(whole_line) {}

    // Whether the line ends there.
    bool ends_at(std::size_t at)
    {
        switch (line[at])
        {
        case '"':
            in_quotes = !in_quotes;
            return false;
        case '=':
            equals = std::min(equals, at);
            return false;
        case '/':
            return equals == std::string_view::npos && at + 1 < line.size() && line[at + 1] == '/';
        default:
            return !in_quotes;
        }
    }

    DIVIDED_LINE ended_at(std::size_t end) const
    {
        return {end, equals};
    }

private:
    const std::string_view line;
    bool in_quotes = false;
    std::size_t equals = std::string_view::npos;
};

#ifdef __SSE2__
// The characters of a block that divide lines: bit n is that of character n.
unsigned int dividers_in_block(const char* from)
{
    const __m128i block = load_block(from);
    const auto equal = [block](char c) { return _mm_cmpeq_epi8(block, _mm_set1_epi8(c)); };
    const __m128i any = _mm_or_si128(
        _mm_or_si128(_mm_or_si128(equal('"'), equal('#')), _mm_or_si128(equal(';'), equal('='))), equal('/'));
    return static_cast<unsigned int>(_mm_movemask_epi8(any));
}
#endif

DIVIDED_LINE divide(std::string_view line)
{
    DIVISION division(line);
    std::size_t at = 0;
#ifdef __SSE2__
    // Whole blocks; the last one reaches back over characters that were seen, which are shifted out.
    if (line.size() >= block_size)
    {
        for (std::size_t next = block_size;; next = std::min(next + block_size, line.size()))
        {
            const std::size_t from = next - block_size;
            for (unsigned int found = dividers_in_block(line.data() + from) >> (at - from) << (at - from); found != 0;
                 found &= found - 1)
            {
                const std::size_t divider = from + static_cast<std::size_t>(std::countr_zero(found));
                if (division.ends_at(divider))
                    return division.ended_at(divider);
            }
            at = next;
            if (at == line.size())
                return division.ended_at(at);
        }
    }
#endif
    for (; at < line.size(); ++at)
    {
        if (divides(line[at]) && division.ends_at(at))
            return division.ended_at(at);
    }
    return division.ended_at(at);
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

bool is_all_visible_ascii(std::string_view text)
{
#ifdef __SSE2__
    if (text.size() >= block_size)
    {
        // Bytes of 0x80 and above are negative. The last block reaches back.
        const auto is_visible_block = [](const char* from)
        {
            const __m128i block = load_block(from);
            const __m128i visible =
                _mm_and_si128(_mm_cmpgt_epi8(block, _mm_set1_epi8(' ')), _mm_cmplt_epi8(block, _mm_set1_epi8('~' + 1)));
            return _mm_movemask_epi8(visible) == 0xFFFF;
        };
        for (std::size_t at = 0; at + block_size < text.size(); at += block_size)
        {
            if (!is_visible_block(text.data() + at))
                return false;
        }
        return is_visible_block(text.data() + text.size() - block_size);
    }
#endif
    return std::ranges::all_of(text, is_visible_ascii);
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

// Whether a line too short for an assignment is the one kind that is one all the same, intended: "=" and a character
// that is a value, as in "=5", set the variable of empty name. "=;" and "= " have no value and stay ignored.
bool assigns_to_the_empty_name(std::string_view short_line)
{
    std::string changed;
    return short_line.size() == 2 && short_line.front() == '=' &&
           !value_of(short_line, divide(short_line), changed).empty();
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

SETTINGS_LINE zon_cfg::parse_settings_line(std::string_view line, std::string& name, std::string& value)
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

    // Looked for in the item alone: items without "=" would else each search the rest of the text.
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
