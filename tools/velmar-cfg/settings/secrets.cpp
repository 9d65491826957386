// Hides the values of secret names in texts.
//
// A settings text is first searched for the built-in words, and most texts hold none: these are left as they are.
// Otherwise each line in which a secret name may stand is parsed by the library's own rule, and the part behind its "="
// is hidden if its name is secret. Quotes stay, since they decide where a comment begins; so does the sign that begins
// it. What is hidden holds no character that means something to the rules, so that the new line is parsed as the old
// one.
//
// The items of an inline text are treated in their order, since a separator within a secret value makes several items
// of it: what follows a hidden value and assigns nothing is hidden too.
//
// Cost: O(n) time for n bytes, a keyed hash for each hidden part, and a copy of the text once a secret name may stand
// in it.
#include "tools/velmar-cfg/settings/secrets.h"

#include <algorithm>
#include <array>
#include <fnmatch.h>
#include <limits>

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/keyed_hash.h"
#include "tools/velmar-cfg/settings/library_rules.h"

namespace
{
constexpr std::string_view secret_words[] = {"token", "password", "secret"}; // in lower case

constexpr std::string_view white_space = " \t\r\n\v\f";

bool is_white(char c)
{
    return white_space.find(c) != std::string_view::npos;
}

constexpr char folded(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// White space within a line counts for nothing: a settings file's names are without it.
bool begins_with_word(std::string_view text, std::string_view word)
{
    for (; !text.empty() && !word.empty(); text.remove_prefix(1))
    {
        if (folded(text.front()) == word.front())
            word.remove_prefix(1);
        else if (!is_white(text.front()) || text.front() == '\n')
            return false;
    }
    return word.empty();
}

constexpr std::array<unsigned char, 256> number_words_by_first_letter()
{
    std::array<unsigned char, 256> words{};
    unsigned char number = 0;
    for (const std::string_view word : secret_words)
    {
        const auto letter = static_cast<unsigned char>(word.front());
        ++number;
        words[letter] = number;
        words[static_cast<unsigned char>(letter + 'A' - 'a')] = number;
    }
    return words;
}

// By a letter in either case: the word that it begins, counted from 1; 0 for none. No two words begin alike.
constexpr std::array<unsigned char, 256> words_by_first_letter = number_words_by_first_letter();

bool holds_secret_word(std::string_view text)
{
    for (const char& c : text)
    {
        const unsigned char word = words_by_first_letter[static_cast<unsigned char>(c)];
        if (word != 0 &&
            begins_with_word(text.substr(static_cast<std::size_t>(&c - text.data())), secret_words[word - 1]))
            return true;
    }
    return false;
}

std::string_view without_outer_white_space(std::string_view text)
{
    while (!text.empty() && is_white(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && is_white(text.back()))
        text.remove_suffix(1);
    return text;
}

bool is_part_of_name(char c)
{
    return (c >= '0' && c <= '9') || (folded(c) >= 'a' && folded(c) <= 'z') || c == '_' || c == '.' || c == '-' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool is_short_number(std::string_view text)
{
    constexpr std::ptrdiff_t most_digits = 9;
    if (text.starts_with('-') || text.starts_with('+'))
        text.remove_prefix(1);
    const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
    const auto digits = std::ranges::count_if(text, is_digit);
    const auto points = std::ranges::count(text, '.');
    return digits >= 1 && digits <= most_digits && points <= 1 &&
           static_cast<std::size_t>(digits + points) == text.size();
}

IS_SECRET_NAME names_of(const SECRETS& secrets)
{
    return [&secrets](std::string_view name) { return secrets.is_secret_name(name); };
}

// --- Lines of a settings file ---

// A line does not show what it has hidden once it is made a comment. The signs that could make an assignment or several
// lines of a comment stay: to lint, it is what it was.
constexpr std::string_view signs_in_comments = "\"=;#\r";

std::string hide_in_comment(std::string_view comment, SECRETS& secrets)
{
    return hide_behind_names(comment, false, names_of(secrets), secrets, signs_in_comments);
}

bool ends_hidden(std::string_view text)
{
    bool hidden = false;
    TEXT_PARTS parts(text);
    for (TEXT_PART part{}; parts.next(part);)
        hidden = part.hidden || (hidden && without_outer_white_space(part.text).empty());
    return hidden;
}

// Of a line with a secret: the rest of the secret that the sign has cut, or the one that stood there before.
std::string hide_whole_comment(std::string_view comment, std::string_view kept, SECRETS& secrets)
{
    const std::size_t sign = std::min<std::size_t>(comment.starts_with("//") ? 2 : 1, comment.size());
    return std::string(comment.substr(0, sign)) + hide_runs(comment.substr(sign), kept, secrets);
}

std::string hide_in_line(std::string_view line, SECRETS& secrets)
{
    LINE_PARTS parts;
    const std::size_t end = length_without_comment(line);
    const std::string_view comment = line.substr(end);
    if (outcome_of_line(line, parts) != OUTCOME::STORED)
    {
        const std::string_view before = line.substr(0, end);
        const bool named = end_of_secret_name(before, names_of(secrets)) != std::string_view::npos;
        return hide_behind_names(before, false, names_of(secrets), secrets) +
               (named ? hide_whole_comment(comment, signs_in_comments, secrets) : hide_in_comment(comment, secrets));
    }
    const std::size_t value = line.find('=') + 1;
    std::string hidden(line.substr(0, value));
    const std::string_view rest = line.substr(value, end - value);
    const bool secret = secrets.is_secret_name(parts.name);
    hidden += secret && !is_plain_value(parts.value) ? hide_runs(rest, kept_in_lines, secrets)
                                                     : hide_behind_names(rest, true, names_of(secrets), secrets);
    return hidden + (secret || ends_hidden(hidden) ? hide_whole_comment(comment, "", secrets)
                                                   : hide_in_comment(comment, secrets));
}

// --- Items of an inline text ---

// Hides the secrets of an inline text, item by item.
class INLINE_HIDING
{
public:
    INLINE_HIDING(const std::string& inline_text, SECRETS& the_secrets)
        : text(inline_text), other_separator(separator_of_items(inline_text) == ';' ? ':' : ';'), secrets(the_secrets)
    {
        INLINE_ITEMS walk(text);
        OUTCOME outcome{};
        std::string name;
        std::string value;
        while (walk.next(outcome, name, value))
            items.push_back(walk.text());
    }

    std::string hidden()
    {
        std::string result;
        std::size_t end = 0; // of what is in the result
        for (std::size_t i = 0; i < items.size(); ++i)
        {
            const auto begin = static_cast<std::size_t>(items[i].data() - text.data());
            result.append(text, end, begin - end).append(hidden_item(i));
            end = begin + items[i].size();
        }
        return result.append(text, end);
    }

private:
    // The beginning of an item that may be the rest of a value which a separator has cut: up to the other separator, if
    // it assigns nothing. "=" at its end is padding.
    std::string_view rest_of_value(std::size_t item) const
    {
        if (item >= items.size())
            return {};
        std::string_view piece = items[item].substr(0, items[item].find(other_separator));
        while (piece.ends_with('='))
            piece.remove_suffix(1);
        return piece.find('=') == std::string_view::npos ? piece : std::string_view();
    }

    // What is hidden behind a name within an item may have been cut too.
    std::string hidden_behind_names(std::string_view piece, bool only_assigned)
    {
        std::string hidden = hide_behind_names(piece, only_assigned, names_of(secrets), secrets);
        in_secret = has_hidden_parts(hidden);
        return hidden;
    }

    std::string hidden_rest(std::string_view item, std::string_view rest)
    {
        const std::string hidden = hide_runs(rest, "", secrets);
        const std::string_view behind = item.substr(rest.size());
        const std::size_t padding = std::min(behind.find_first_not_of('='), behind.size());
        const std::string_view more = behind.substr(padding);
        return hidden + std::string(behind.substr(0, padding)) +
               (more.find('=') == std::string_view::npos ? hide_runs(more, kept_in_items, secrets)
                                                         : hidden_behind_names(more, true));
    }

    std::string hidden_item(std::size_t index)
    {
        const std::string_view item = items[index];
        if (const std::string_view rest = rest_of_value(index); in_secret && !rest.empty())
            return hidden_rest(item, rest);
        const std::size_t equals = item.find('=');
        if (equals == std::string_view::npos)
            return hidden_behind_names(item, false);
        const std::string_view value = item.substr(equals + 1);
        if (!secrets.is_secret_name(item.substr(0, equals)))
            return hidden_behind_names(item, true);
        in_secret = true;
        if (is_plain_value(value))
            return std::string(item);
        return std::string(item.substr(0, equals + 1)) + hide_runs(value, kept_in_items, secrets);
    }

    const std::string& text;
    const char other_separator; // the one that separates nothing
    SECRETS& secrets;
    std::vector<std::string_view> items;
    bool in_secret = false; // the item before belongs to a secret value
};
}

void SECRETS::add_pattern(std::string pattern)
{
    patterns.push_back(std::move(pattern));
}

bool SECRETS::is_secret_name(std::string_view name) const
{
    if (all_shown)
        return false;
    return holds_secret_word(name) ||
           std::ranges::any_of(patterns, [&name](const std::string& pattern)
                               { return fnmatch(pattern.c_str(), std::string(name).c_str(), FNM_CASEFOLD) == 0; });
}

bool SECRETS::may_hold_secret_name(std::string_view text) const
{
    return !all_shown && (!patterns.empty() || holds_secret_word(text));
}

std::string SECRETS::mark(std::string_view text)
{
    if (!key)
        key = lasting_key_path ? lasting_mask_key(*lasting_key_path) : passing_mask_key();
    constexpr std::size_t most = std::numeric_limits<std::uint32_t>::max();
    return mark_of(
        {key->name, hmac_of(key->bytes, text), key->lasting, static_cast<std::uint32_t>(std::min(text.size(), most))});
}

bool is_plain_value(std::string_view value)
{
    value = without_outer_white_space(value);
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
        value = without_outer_white_space(value.substr(1, value.size() - 2));
    constexpr std::string_view more_switches[] = {"yes", "no", "enabled", "disabled"};
    return value.empty() || is_short_number(value) || as_boolean(std::string(value)) ||
           std::ranges::any_of(more_switches, [value](std::string_view word)
                               { return std::ranges::equal(word, value, {}, {}, folded); });
}

std::string hide_runs(std::string_view text, std::string_view kept, SECRETS& secrets)
{
    std::string hidden;
    while (!text.empty())
    {
        const std::string_view run = text.substr(0, text.find_first_of(kept));
        const std::string_view core = without_outer_white_space(run);
        if (core.empty() || has_hidden_parts(core))
            hidden += run;
        else
        {
            const auto begin = static_cast<std::size_t>(core.data() - run.data());
            hidden.append(run, 0, begin).append(secrets.mark(core)).append(run.substr(begin + core.size()));
        }
        text.remove_prefix(run.size());
        const std::string_view signs = text.substr(0, text.find_first_not_of(kept));
        hidden += signs;
        text.remove_prefix(signs.size());
    }
    return hidden;
}

std::size_t end_of_secret_name(std::string_view text, const IS_SECRET_NAME& is_secret)
{
    for (std::size_t end = 0; end < text.size();)
    {
        const std::string_view rest = text.substr(end);
        const auto begin = static_cast<std::size_t>(std::ranges::find_if(rest, is_part_of_name) - rest.begin());
        const auto size = static_cast<std::size_t>(std::ranges::find_if_not(rest.substr(begin), is_part_of_name) -
                                                   rest.substr(begin).begin());
        end += begin + size;
        if (size != 0 && is_secret(rest.substr(begin, size)))
            return end;
    }
    return std::string_view::npos;
}

std::string hide_behind_names(std::string_view text, bool only_assigned, const IS_SECRET_NAME& is_secret,
                              SECRETS& secrets, std::string_view kept)
{
    std::string hidden;
    for (std::size_t end = end_of_secret_name(text, is_secret); end != std::string_view::npos;
         end = end_of_secret_name(text, is_secret))
    {
        hidden += text.substr(0, end);
        text.remove_prefix(end);
        // A name in quotes is one as well.
        const std::string_view signs = text.substr(0, std::min(text.find_first_not_of("=:'\" \t"), text.size()));
        if (only_assigned && signs.find_first_of("=:") == std::string_view::npos)
            continue;
        hidden += signs;
        text.remove_prefix(signs.size());
        // An assignment within a value ends at a quote.
        const std::string_view value = text.substr(0, only_assigned ? text.find('"') : text.size());
        hidden += is_plain_value(value) ? std::string(value) : hide_runs(value, kept, secrets);
        text.remove_prefix(value.size());
    }
    return hidden += text;
}

std::optional<std::string> hide_in_settings_text(std::string_view text, SECRETS& secrets)
{
    if (!secrets.may_hold_secret_name(text))
        return std::nullopt;
    std::string hidden;
    while (!text.empty())
    {
        const std::string_view line = text.substr(0, text.find('\n'));
        if (secrets.may_hold_secret_name(line))
            hidden += hide_in_line(line, secrets);
        else
            hidden += line;
        text.remove_prefix(line.size());
        if (!text.empty())
        {
            hidden += '\n';
            text.remove_prefix(1);
        }
    }
    return has_hidden_parts(hidden) ? std::optional(std::move(hidden)) : std::nullopt;
}

std::optional<std::string> hide_in_inline_text(const std::string& text, SECRETS& secrets)
{
    if (!secrets.may_hold_secret_name(text))
        return std::nullopt;
    std::string hidden = INLINE_HIDING(text, secrets).hidden();
    return has_hidden_parts(hidden) ? std::optional(std::move(hidden)) : std::nullopt;
}

std::string hide_in_value(std::string_view name, std::string_view value, SECRETS& secrets, std::string_view kept)
{
    if (has_hidden_parts(value))
        return std::string(value);
    if (secrets.is_secret_name(name) && !is_plain_value(value))
        return hide_runs(value, kept, secrets);
    return secrets.may_hold_secret_name(value) ? hide_behind_names(value, true, names_of(secrets), secrets)
                                               : std::string(value);
}
