// Makes the text that was meant out of a line or an item. The forms are told apart by written_form.h, and the spelling
// of a name by the known variables and the first assignment to it (namesakes.h).
//
// A line that a carriage return divides becomes several, each made anew by itself. Of an assignment, the name, the
// sign, the value and the comment are put right in turn; further assignments in the value or behind a ";" get lines of
// their own. A line that assigns nothing becomes an assignment if it reads "name value" or "name: value", else a
// comment. Where a person must decide, there is no text.
//
// Invariants:
// - Indentation, comments and the carriage return at the end of a line stay.
// - The text is a suggestion: whether the rules are content with it is found out in settings_rules.cpp.
// - The functions call one another for parts of a line only. A line with more than 100 ";" is left alone, so that the
//   calls do not nest deeper than that.
//
// Cost: O(n) time for a line of n bytes at each depth, and for an item.
#include "tools/velmar-cfg/lint/intentions.h"

#include <algorithm>
#include <vector>

#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/lint/written_form.h"
#include "tools/velmar-cfg/settings/known_variables.h"
#include "tools/velmar-cfg/settings/library_rules.h"

namespace
{
constexpr std::size_t most_words_of_a_name = 4;
constexpr std::ptrdiff_t most_comment_signs = 100; // each may begin an assignment, which is looked for behind it

std::string_view indentation_of(std::string_view line)
{
    return line.substr(0, static_cast<std::size_t>(std::ranges::find_if_not(line, is_white) - line.begin()));
}

// The lines with newlines between them, and a carriage return before each: a file that has them keeps them.
std::string put_together(const std::vector<std::string>& lines, bool carriage_returns)
{
    std::string text;
    for (const std::string& line : lines)
        text += (text.empty() ? "" : carriage_returns ? "\r\n" : "\n") + line;
    return text;
}

std::string as_comment(std::string_view line)
{
    const std::string_view indentation = indentation_of(line);
    return std::string(indentation) + std::string(comment_sign) + std::string(line.substr(indentation.size()));
}

// A name that stays one when it is written anew.
bool is_plain(std::string_view name)
{
    std::string letters(name);
    std::erase_if(letters, [](char c) { return c == '.' || c == '-'; });
    return looks_like_a_name(letters);
}

// A name that is no number.
bool begins_like_a_name(std::string_view text)
{
    return looks_like_a_name(text) && (text.front() < '0' || text.front() > '9');
}

// With the no-break space, which looks like a blank, as a blank.
std::string with_plain_blanks(std::string_view text)
{
    constexpr std::string_view no_break_space = "\xc2\xa0";
    std::string plain(text);
    for (std::size_t at = plain.find(no_break_space); at != std::string::npos; at = plain.find(no_break_space, at))
        plain.replace(at, no_break_space.size(), " ");
    return plain;
}

// The name that was written as several words. A blank beside an underscore is one too many, and stands for none.
std::optional<std::string> name_of_words(std::string_view text)
{
    const std::vector<std::string_view> words = words_of(text);
    const bool has_option =
        words.size() > 1 && std::ranges::any_of(words, [](std::string_view word) { return word.starts_with('-'); });
    if (words.empty() || words.size() > most_words_of_a_name || has_option || !std::ranges::all_of(words, is_plain))
        return std::nullopt;
    std::string name;
    for (const std::string_view word : words)
    {
        const bool is_divided = name.empty() || name.ends_with('_') || word.starts_with('_');
        name += (is_divided ? "" : "_") + std::string(word);
    }
    return name;
}

// The comment with a blank before it, where it is one for sure and no part of the value.
std::string rest_meant_by(std::string_view value, std::string_view rest)
{
    const bool is_comment =
        rest.starts_with('#') && !value.empty() && (is_scalar(value) || (rest.size() > 1 && is_white(rest[1])));
    return (is_comment ? " " : "") + std::string(rest);
}

// Where a part of the line stands in it.
std::size_t offset_of(std::string_view part, std::string_view line)
{
    return static_cast<std::size_t>(part.data() - line.data());
}

// The line with "NAME = " before the value, which is a part of it; what stands behind the value stays.
std::string with_assignment(std::string_view line, std::string_view name, std::string_view value)
{
    return std::string(indentation_of(line)) + std::string(name) + " = " +
           std::string(line.substr(offset_of(value, line)));
}

// The comment that the "//" at that offset was meant to begin, with the white space before it. The value then ends
// before that.
std::string comment_of_slashes(std::string_view line, std::size_t slashes, std::string_view& value)
{
    value = without_outer_white(value.substr(0, slashes - offset_of(value, line)));
    const std::size_t end = offset_of(value, line) + value.size();
    return std::string(line.substr(end, slashes - end)) + "#" + std::string(line.substr(slashes + 2));
}

// The "=" and the value as they were meant, and the assignments that stand in the value too.
struct MEANT_VALUE
{
    std::string equals;
    std::string value;
    std::vector<std::string> further;
};

MEANT_VALUE value_meant_by(const WRITTEN_ASSIGNMENT& written, const std::string& name)
{
    const std::string_view value =
        written.value.substr(std::min(written.value.find_first_not_of('='), written.value.size()));
    const bool other_sign =
        !name_as_written(written.name).operator_sign.empty() || value.size() != written.value.size();
    std::vector<std::string> parts = assignments_in_value(without_outer_white(value));
    if (parts.empty())
        parts.emplace_back(without_outer_white(value));
    const std::string first = value_meant_by(parts.front(), find_known_variable(name));
    parts.erase(parts.begin());
    const char* const equals = first.empty() ? " =" : " = "; // no blank at the end of a line
    return {other_sign ? equals : std::string(written.equals), first, std::move(parts)};
}
}

const std::string* nearest_known_name(std::string_view name)
{
    static const NAME_CANDIDATES known_names(known_variable_names());
    return known_names.nearest(name);
}

std::size_t dividing_carriage_return(std::string_view line)
{
    const std::string_view visible = without_outer_white(line);
    const std::size_t first = visible.find('\r');
    if (first == std::string_view::npos)
        return std::string_view::npos;
    const bool divides_what_is_kept =
        first < without_outer_white(visible.substr(0, length_without_comment(visible))).size();
    bool hides_an_assignment = false;
    for (std::size_t at = first; at != std::string_view::npos && !hides_an_assignment; at = visible.find('\r', at + 1))
        hides_an_assignment = looks_like_an_assignment(visible.substr(at + 1, visible.find('\r', at + 1) - at - 1));
    return divides_what_is_kept || hides_an_assignment ? static_cast<std::size_t>(visible.data() - line.data()) + first
                                                       : std::string_view::npos;
}

std::size_t slashes_in_value(std::string_view kept, std::size_t value_offset)
{
    std::size_t at = kept.find("//", value_offset + 1);
    while (at != std::string_view::npos && !is_white(kept[at - 1]))
        at = kept.find("//", at + 1);
    return at;
}

// ---------------------------------------------------------------------------------------------------------------------
// Names
// ---------------------------------------------------------------------------------------------------------------------

std::string INTENTIONS::spelt(std::string_view name) const
{
    if (const KNOWN_VARIABLE* const known = find_known_variable(name); known != nullptr)
        return known->name;
    if (const std::string* const nearest = nearest_known_name(name); nearest != nullptr)
        return *nearest;
    const std::optional<NAMESAKES::SPELT> first = namesakes.first_before(name);
    return first ? first->name : std::string(name);
}

std::optional<std::string> INTENTIONS::name_meant_by(std::string_view written) const
{
    const WRITTEN_NAME name = name_as_written(written);
    if (written.empty() || !only_assigns(name.operator_sign))
        return std::nullopt;
    const std::string core = with_plain_blanks(name.core);
    if (core == written && std::ranges::none_of(core, is_white))
        return spelt(core);
    const std::optional<std::string> meant = name_of_words(core);
    return meant ? std::optional(spelt(*meant)) : std::nullopt;
}

// ---------------------------------------------------------------------------------------------------------------------
// Lines
// ---------------------------------------------------------------------------------------------------------------------

std::optional<std::string> INTENTIONS::of_line(std::string_view line, bool is_first) const
{
    if (is_first && line.starts_with(byte_order_mark))
        line.remove_prefix(byte_order_mark.size());
    if (dividing_carriage_return(line) != std::string_view::npos)
    {
        std::string lines;
        const bool ended = line.ends_with('\r');
        for (std::size_t at = 0; at < line.size(); at = line.find('\r', at) + 1)
        {
            const std::string_view part = line.substr(at, line.find('\r', at) - at);
            lines += (at == 0 ? "" : "\n") + of_line(part, false).value_or(std::string(part));
            if (at + part.size() == line.size())
                break;
        }
        return ended ? lines + "\r" : lines;
    }
    LINE_PARTS parts;
    return outcome_of_line(line, parts) == OUTCOME::STORED ? of_assignment(line) : of_ignored_line(line);
}

std::optional<std::string> INTENTIONS::of_ignored_line(std::string_view line) const
{
    const std::string_view kept = line.substr(0, length_without_comment(line));
    const std::string_view visible = without_outer_white(kept);
    if (visible.empty())
        return std::string(line);
    if (line.find('=', kept.size()) != std::string_view::npos)
        return std::nullopt; // the comment may be none
    if (const std::size_t equals = visible.find('='); equals != std::string_view::npos)
    {
        const std::string_view name = without_outer_white(visible.substr(0, equals));
        return name.empty() ? std::nullopt
                            : std::optional(std::string(indentation_of(line)) + std::string(name) + " =");
    }
    const std::vector<std::string_view> words = words_of(visible);
    if (std::optional<std::string> assignment = of_two_words(line, words))
        return assignment;
    if (find_known_variable(words.front()) != nullptr)
        return std::nullopt;
    if (std::optional<std::string> assignment = of_colon(line))
        return assignment;
    return as_comment(line);
}

// A line "name value", as other formats have it, or "set name value". Where neither is known to be what it looks like,
// it may be words.
std::optional<std::string> INTENTIONS::of_two_words(std::string_view line,
                                                    std::span<const std::string_view> words) const
{
    if (words.size() == 3 && words.front() == "set")
        words = words.subspan(1);
    if (words.size() != 2 || !begins_like_a_name(words[0]))
        return std::nullopt;
    const bool has_scalar = is_scalar(words[1]) || without_comma(words[1]);
    return has_scalar || find_known_variable(words[0]) != nullptr
               ? of_assignment(with_assignment(line, words[0], words[1]))
               : std::nullopt;
}

// A line "name: value", as other formats have it.
std::optional<std::string> INTENTIONS::of_colon(std::string_view line) const
{
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || colon + 1 == line.size() || !is_white(line[colon + 1]))
        return std::nullopt;
    const std::string_view name = name_as_written(without_outer_white(line.substr(0, colon))).core;
    const std::string_view value =
        without_outer_white(line.substr(colon + 1, length_without_comment(line) - colon - 1));
    const bool one_value = words_of(value).size() == 1 || between_quotes(value) || without_comma(value);
    return begins_like_a_name(name) && one_value ? of_assignment(with_assignment(line, name, value)) : std::nullopt;
}

std::optional<std::string> INTENTIONS::of_assignment(std::string_view line) const
{
    if (std::ranges::count(line, ';') > most_comment_signs)
        return std::nullopt;
    const std::string_view kept = line.substr(0, length_without_comment(line));
    WRITTEN_ASSIGNMENT written = taken_apart(line, kept.size());
    const std::optional<std::string> name = name_meant_by(written.name);
    if (!name)
        return std::nullopt;

    const std::string_view comment = without_outer_white(written.rest);
    const bool two = comment.starts_with(';') && looks_like_an_assignment(comment.substr(1));
    const std::size_t slashes =
        two || written.value.empty() ? std::string_view::npos : slashes_in_value(kept, offset_of(written.value, line));
    std::string rest;
    if (slashes == std::string_view::npos)
        rest = two ? "" : rest_meant_by(written.value, written.rest);
    else if (std::ranges::count(line.substr(0, slashes), '"') % 2 == 0)
        rest = comment_of_slashes(line, slashes, written.value);
    else
        return std::nullopt; // a comment sign would stand between quotes

    const MEANT_VALUE meant = value_meant_by(written, *name);
    const std::string indentation(written.indentation);
    std::vector<std::string> lines = {indentation + *name + meant.equals + meant.value};
    for (const std::string& one : meant.further)
        lines.push_back(indentation + of_line(one, false).value_or(one));
    lines.back() += rest;
    if (two)
    {
        const std::string behind =
            indentation + std::string(without_outer_white(comment.substr(1))) + (line.ends_with('\r') ? "\r" : "");
        lines.push_back(of_line(behind, false).value_or(behind));
    }
    return put_together(lines, line.ends_with('\r'));
}

// ---------------------------------------------------------------------------------------------------------------------
// Items
// ---------------------------------------------------------------------------------------------------------------------

std::optional<std::string> INTENTIONS::of_item(std::string_view item, char separator) const
{
    const char other = separator == ';' ? ':' : ';';
    std::string items;
    for (std::string_view rest = item; !rest.empty();)
    {
        // A part for each assignment behind the other separator; a value may have that character as well.
        std::size_t end = rest.find(other);
        while (end != std::string_view::npos && !looks_like_an_assignment(rest.substr(end + 1)))
            end = rest.find(other, end + 1);
        const std::string_view part = rest.substr(0, end);
        rest.remove_prefix(std::min(part.size() + 1, rest.size()));
        if (part.find('=') == std::string_view::npos)
            return std::nullopt;

        const WRITTEN_ASSIGNMENT written = taken_apart(part, part.size());
        const std::optional<std::string> name = name_meant_by(written.name);
        if (!name)
            return std::nullopt;
        const MEANT_VALUE meant = value_meant_by(written, *name);
        const bool blanks_only = meant.equals.find_first_not_of(" =") == std::string::npos;
        items +=
            (items.empty() ? "" : std::string(1, separator)) + *name + (blanks_only ? meant.equals : "=") + meant.value;
        for (const std::string& one : meant.further)
            items += separator + of_item(one, separator).value_or(one);
    }
    return items;
}
