// Finds where a settings line divides into name, value and comment.
//
// The rule is two passes. The first cuts the line at the first ";" or "#" outside double quotes. The second cuts it at
// the first "//" before the first "=". One scan does both: the line ends at the first character at which either pass
// cuts it, and the first "=" before that divides it. Only five characters matter. They are searched for a block at a
// time, and then looked at one by one. The last block reaches back over characters that were seen, and masks them out.
// A line shorter than a block is scanned byte by byte. The cost is linear, and small where few of the five characters
// occur.
//
// Nothing outside the line is read. No byte ends the line.
#ifndef CFG_INI_CFG_INI_READER_LINE_DIVISION_H
#define CFG_INI_CFG_INI_READER_LINE_DIVISION_H

#include <algorithm>
#include <bit>
#include <cstddef>
#include <string_view>

#include "cfg_ini/cfg_ini_reader/character_block.h"

namespace zon_cfg
{
struct DIVIDED_LINE
{
    std::size_t end;    // of the line without its comment
    std::size_t equals; // the first "=", or npos when there is none before the end
};

constexpr bool divides(char c)
{
    return c == '"' || c == ';' || c == '#' || c == '=' || c == '/';
}

// The characters of a block that may divide the line: bit n is set if character n is one of them.
template <typename BLOCK>
unsigned int dividers_in_block(const char* from)
{
    const BLOCK block = BLOCK::load(from);
    return (block.equal_to('"') | block.equal_to('#') | block.equal_to(';') | block.equal_to('=') | block.equal_to('/'))
        .high_bits();
}

// The state of a scan. The caller passes each character that may divide the line, from left to right. A comment starts
// at the first ";" or "#" outside double quotes; an unclosed quote reaches to the end of the line. Before the first
// "=", a "//" starts a comment too, quoted or not. Behind it, a "//" belongs to the value, so that values may hold
// paths and addresses.
class DIVISION
{
public:
    explicit DIVISION(std::string_view whole_line) : line(whole_line) {}

    // Whether the line ends at that character.
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

template <typename BLOCK>
[[gnu::always_inline]] inline DIVIDED_LINE divide_by_blocks(std::string_view line)
{
    DIVISION division(line);
    std::size_t seen = 0;
    if (line.size() >= block_size)
    {
        for (std::size_t next = block_size;; next = std::min(next + block_size, line.size()))
        {
            const std::size_t from = next - block_size;
            const std::size_t known = seen - from;
            for (unsigned int found = dividers_in_block<BLOCK>(line.data() + from) >> known << known; found != 0;
                 found &= found - 1)
            {
                const std::size_t divider = from + static_cast<std::size_t>(std::countr_zero(found));
                if (division.ends_at(divider))
                    return division.ended_at(divider);
            }
            seen = next;
            if (seen == line.size())
                return division.ended_at(seen);
        }
    }
    for (; seen < line.size(); ++seen)
    {
        if (divides(line[seen]) && division.ends_at(seen))
            return division.ended_at(seen);
    }
    return division.ended_at(seen);
}

constexpr char first_visible = '!';
constexpr char last_visible = '~';

// Visible ASCII is white space in no locale, so most characters need no call of isspace.
constexpr bool is_visible_ascii(char c)
{
    return c >= first_visible && c <= last_visible;
}

template <typename BLOCK>
[[gnu::always_inline]] inline bool is_visible_ascii_by_blocks(std::string_view text)
{
    if (text.size() < block_size)
        return std::ranges::all_of(text, is_visible_ascii);
    const auto is_visible_block = [](const char* from)
    { return BLOCK::load(from).between(first_visible, last_visible).high_bits() == 0xFFFF; };
    for (std::size_t at = 0; at + block_size < text.size(); at += block_size)
    {
        if (!is_visible_block(text.data() + at))
            return false;
    }
    return is_visible_block(text.data() + text.size() - block_size); // may reach back
}
}

#endif
