// Parses a line or an item as a person would, and guesses what its odd forms mean.
//
// The parts are views of the text that was given. The library's rules are asked only whether a text is an assignment, a
// boolean or an integer. value_meant_by() takes a comma off first, then quotes. What is left then becomes decimal
// digits for an integer variable, "on" or "off" for a word that means it, and decimal digits for a hexadecimal number
// where the variable is not known. assignments_in_value() takes a value for several assignments only if its first word
// is a boolean or a number, or if one of the others sets a known variable: everything else may be prose.
//
// Nothing is kept and nothing is looked up in the layers. Cost: O(n) time for a text of n bytes.
#include "tools/velmar-cfg/lint/written_form.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>

#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/settings/library_rules.h"

namespace
{
bool equal_words(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && same_name(a, b);
}

bool is_word_of(std::string_view value, std::initializer_list<std::string_view> words)
{
    return std::ranges::any_of(words, [&](std::string_view word) { return equal_words(word, value); });
}

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

// A decimal number with or without sign, fraction and exponent; infinite when it is too large.
std::optional<double> decimal_number(std::string_view value)
{
    const bool has_plus = value.starts_with('+') && !value.starts_with("+-");
    return number_from_text(value.substr(has_plus ? 1 : 0));
}

// Whether a line's value is this text when it is written without quotes: no comment begins in it, nothing is trimmed.
bool needs_no_quotes(std::string_view inner)
{
    return inner.find_first_of(";#") == std::string_view::npos && inner.find(" //") == std::string_view::npos &&
           without_outer_white(inner).size() == inner.size();
}

bool is_part_of_a_name(char c)
{
    return c == '_' || std::isalnum(static_cast<unsigned char>(c)) != 0;
}

// What stands before the first white space.
std::string_view first_word(std::string_view text)
{
    return text.substr(0, static_cast<std::size_t>(std::ranges::find_if(text, is_white) - text.begin()));
}

// A further assignment at the start of `text`, behind which `text` then begins.
std::optional<std::string> take_assignment(std::string_view& text)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos || equals + 1 == text.size())
        return std::nullopt;
    const std::string_view name = without_outer_white(text.substr(0, equals));
    const std::string_view behind = without_outer_white(text.substr(equals + 1));
    const std::string_view value = first_word(behind);
    const bool has_letter = !name.empty() && !is_digit(name.front());
    if (!has_letter || !looks_like_a_name(name) || value.empty() || value.find('=') != std::string_view::npos)
        return std::nullopt;
    std::string line(text.substr(0, static_cast<std::size_t>(value.data() + value.size() - text.data())));
    text.remove_prefix(line.size());
    text = without_outer_white(text);
    return line;
}
}

bool is_white(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

std::string_view without_outer_white(std::string_view text)
{
    while (!text.empty() && is_white(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && is_white(text.back()))
        text.remove_suffix(1);
    return text;
}

std::vector<std::string_view> words_of(std::string_view text)
{
    std::vector<std::string_view> words;
    for (text = without_outer_white(text); !text.empty(); text = without_outer_white(text))
    {
        words.push_back(first_word(text));
        text.remove_prefix(words.back().size());
    }
    return words;
}

bool looks_like_a_name(std::string_view text)
{
    return !text.empty() && std::ranges::all_of(text, is_part_of_a_name);
}

bool mixes_separators(std::string_view text)
{
    return text.find(';') != std::string_view::npos && text.find(':') != std::string_view::npos;
}

// Only the text up to its "=" is looked at: what follows may be long, and the question be asked of each of its parts.
bool looks_like_an_assignment(std::string_view text)
{
    constexpr std::size_t shortest = 3; // of a line, so that the part is one too
    const auto equals = std::ranges::find_if_not(text, [](char c) { return is_white(c) || is_part_of_a_name(c); });
    if (equals == text.end() || *equals != '=')
        return false;
    const auto before = static_cast<std::size_t>(equals - text.begin());
    LINE_PARTS parts;
    return outcome_of_line(text.substr(0, std::max(before + 1, shortest)), parts) == OUTCOME::STORED &&
           looks_like_a_name(without_outer_white(text.substr(0, before)));
}

// ---------------------------------------------------------------------------------------------------------------------

std::string WRITTEN_ASSIGNMENT::put_together() const
{
    std::string text;
    for (const std::string_view part : {indentation, name, equals, value, rest})
        text += part;
    return text;
}

WRITTEN_ASSIGNMENT taken_apart(std::string_view text, std::size_t kept_length)
{
    const std::size_t sign = text.find('=');
    const std::string_view name = without_outer_white(text.substr(0, sign));
    const std::string_view value = without_outer_white(text.substr(sign + 1, kept_length - sign - 1));
    const std::size_t name_at = name.empty() ? sign : static_cast<std::size_t>(name.data() - text.data());
    const std::size_t value_at = value.empty() ? sign + 1 : static_cast<std::size_t>(value.data() - text.data());
    const std::size_t behind_name = name_at + name.size();
    return {text.substr(0, name_at), name, text.substr(behind_name, value_at - behind_name), value,
            text.substr(value_at + value.size())};
}

// ---------------------------------------------------------------------------------------------------------------------

WRITTEN_NAME name_as_written(std::string_view name)
{
    WRITTEN_NAME written{name, {}, false, false};
    for (const std::string_view word : {"export", "set"})
    {
        if (name.size() > word.size() && name.starts_with(word) && is_white(name[word.size()]))
        {
            written.exported = true;
            written.core = without_outer_white(name.substr(word.size()));
        }
    }
    constexpr std::string_view signs = ":+?-|&!<>~^*%";
    const std::size_t size = written.core.find_last_not_of(signs) + 1; // 0 for signs alone
    written.operator_sign = written.core.substr(size);
    written.core = without_outer_white(written.core.substr(0, size));
    if (const std::optional<std::string_view> inner = between_quotes(written.core); inner && !inner->empty())
    {
        written.quoted = true;
        written.core = without_outer_white(*inner);
    }
    return written;
}

bool only_assigns(std::string_view operator_sign)
{
    return operator_sign.find_first_not_of(":?") == std::string_view::npos;
}

// ---------------------------------------------------------------------------------------------------------------------

std::optional<std::string_view> between_quotes(std::string_view value)
{
    const bool in_quotes =
        value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
    if (!in_quotes)
        return std::nullopt;
    const std::string_view inner = value.substr(1, value.size() - 2);
    return inner.find(value.front()) == std::string_view::npos ? std::optional(inner) : std::nullopt;
}

bool is_scalar(std::string_view value)
{
    return as_boolean(std::string(value)) || boolean_meant_by(value) || decimal_number(value) ||
           hexadecimal_meant_by(value);
}

std::optional<std::string_view> without_comma(std::string_view value)
{
    if (!value.ends_with(',') && !value.ends_with(';'))
        return std::nullopt;
    const std::string_view rest = without_outer_white(value.substr(0, value.size() - 1));
    return is_scalar(between_quotes(rest).value_or(rest)) ? std::optional(rest) : std::nullopt;
}

std::optional<std::string> boolean_meant_by(std::string_view value)
{
    if (is_word_of(value, {"yes", "enable", "enabled"}))
        return "on";
    if (is_word_of(value, {"no", "disable", "disabled"}))
        return "off";
    return std::nullopt;
}

std::optional<std::string> hexadecimal_meant_by(std::string_view value)
{
    if (!value.starts_with("0x") && !value.starts_with("0X"))
        return std::nullopt;
    unsigned int number = 0;
    const char* const end_of_value = value.data() + value.size();
    const auto [end, error] = std::from_chars(value.data() + 2, end_of_value, number, 16);
    return error == std::errc() && end == end_of_value ? std::optional(std::to_string(number)) : std::nullopt;
}

std::optional<std::string> integer_meant_by(std::string_view value)
{
    if (std::optional<std::string> digits = hexadecimal_meant_by(value))
        return digits;
    const double number = decimal_number(value).value_or(std::numeric_limits<double>::infinity());
    constexpr double least = std::numeric_limits<int>::min();
    constexpr double most = std::numeric_limits<int>::max();
    return number >= least && number <= most && number == std::floor(number)
               ? std::optional(std::to_string(static_cast<int>(number)))
               : std::nullopt;
}

std::vector<std::string> assignments_in_value(std::string_view value)
{
    const std::string_view first = first_word(value);
    if (first.size() == value.size())
        return {};
    std::vector<std::string> all{std::string(without_comma(first).value_or(first))};
    std::string_view rest = without_outer_white(value.substr(first.size()));
    bool sets_a_known_one = false;
    while (!rest.empty())
    {
        std::optional<std::string> line = take_assignment(rest);
        if (!line)
            return {};
        if (line->ends_with(',') && !rest.empty())
            line->pop_back();
        const std::string_view name = without_outer_white(std::string_view(*line).substr(0, line->find('=')));
        sets_a_known_one = sets_a_known_one || find_known_variable(name) != nullptr;
        all.push_back(std::move(*line));
    }
    return is_scalar(all.front()) || sets_a_known_one ? all : std::vector<std::string>();
}

std::string value_meant_by(std::string_view value, const KNOWN_VARIABLE* known)
{
    value = without_comma(value).value_or(value);
    std::string meant(value);
    if (const std::optional<std::string_view> inner = between_quotes(value); inner && needs_no_quotes(*inner))
        meant = *inner;
    if (known != nullptr && known->kind == KNOWN_VARIABLE::KIND::INTEGER)
        return as_integer(meant) ? meant : integer_meant_by(meant).value_or(meant);
    if (as_boolean(meant))
        return meant;
    if (const std::optional<std::string> word = boolean_meant_by(meant))
        return *word;
    return known == nullptr ? hexadecimal_meant_by(meant).value_or(meant) : meant;
}
