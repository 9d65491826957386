// Searches a message for all pieces of all secrets at once. Long pieces come first (word_search.h), and what they leave
// is searched for short ones, which may be part of anything and count only where they stand alone.
//
// Invariants:
// - Each byte that belongs to a long piece is hidden. Pieces that overlap are hidden by one mark; pieces that only
//   touch, and a piece within another, have what they would have alone.
// - A mark is not looked into: those in the message pass, and short pieces are searched for between marks.
//
// Cost for secrets of m bytes together and a message of n bytes: O(m) time to take the pieces apart, O(n) time for the
// message, and a keyed hash for each mark.
#include "tools/velmar-cfg/settings/secrets_in_messages.h"

#include <algorithm>
#include <cctype>

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/text.h"

namespace
{
constexpr std::size_t longest_short_piece = 3;

std::string_view without_outer_white_space(std::string_view text)
{
    constexpr std::string_view white_space = " \t\r\n\v\f";
    text.remove_prefix(std::min(text.find_first_not_of(white_space), text.size()));
    return text.substr(0, text.find_last_not_of(white_space) + 1);
}

bool is_apart(std::string_view text, std::size_t begin, std::size_t end)
{
    const auto is_end = [text](std::size_t at)
    { return at >= text.size() || std::isalnum(static_cast<unsigned char>(text[at])) == 0; };
    return is_end(begin - 1) && is_end(end);
}

// Whether that part of a message is a text of somebody else's: in quotes, behind a colon up to the end of a clause, or
// all there is.
bool is_quoted(std::string_view message, std::size_t begin, std::size_t end)
{
    const std::string_view before = message.substr(0, begin);
    const std::string_view behind = message.substr(end);
    if ((before.ends_with('\'') && behind.starts_with('\'')) || (before.ends_with('"') && behind.starts_with('"')))
        return true;
    return (before.empty() || before.ends_with(": ")) && (behind.empty() || behind.starts_with(';'));
}

// The text with each part that is shown replaced by what `hide` makes of it.
template <typename HIDE>
std::string with_shown_parts(std::string_view text, HIDE hide)
{
    std::string result;
    TEXT_PARTS parts(text);
    for (TEXT_PART part{}; parts.next(part);)
    {
        if (part.hidden)
            result += part.text;
        else
            hide(part.text, result);
    }
    return result;
}
}

SECRET_TEXTS::SECRET_TEXTS(const std::vector<SECRET_TEXT>& texts, SECRETS& the_secrets, SHORT_SECRETS of_short)
    : secrets(the_secrets), of_short_pieces(of_short)
{
    constexpr std::string_view ends_of_pieces = "\"[]\n;#";
    for (const SECRET_TEXT& secret : texts)
    {
        add(secret);
        if (!secret.shown.empty() || secret.text.find_first_of(ends_of_pieces) == std::string_view::npos)
            continue;
        for (std::string_view rest = secret.text; !rest.empty();)
        {
            const std::string_view piece = rest.substr(0, rest.find_first_of(ends_of_pieces));
            add({piece});
            rest.remove_prefix(std::min(piece.size() + 1, rest.size()));
        }
    }
    std::vector<std::string_view> words;
    words.reserve(long_pieces.size());
    for (const PIECE& piece : long_pieces)
        words.push_back(piece.text);
    search = std::make_unique<const WORD_SEARCH>(words);
}

void SECRET_TEXTS::add(const SECRET_TEXT& secret)
{
    const std::string_view visible = without_outer_white_space(secret.text);
    if (visible.empty())
        return;
    const SECRET_TEXT piece{secret.shown.empty() ? visible : secret.text, secret.shown};
    std::string text = std::string(piece.shown) + std::string(piece.text);
    if (text.size() <= longest_short_piece)
    {
        short_pieces.try_emplace(text, PIECE{text, piece});
        return;
    }
    const std::string quotation = in_single_quotes(text);
    if (std::string cut = quotation.substr(1, quotation.size() - 2); cut != text)
        long_pieces.push_back({std::move(cut), piece});
    long_pieces.push_back({std::move(text), piece});
}

std::string SECRET_TEXTS::replacement(const PIECE& piece) const
{
    return std::string(piece.secret.shown) + secrets.mark(piece.secret.text);
}

std::string SECRET_TEXTS::with_long_pieces_hidden(std::string_view text) const
{
    struct RANGE
    {
        std::size_t begin;
        std::size_t end;
        const PIECE* piece; // null for several that overlap
    };
    std::vector<RANGE> ranges; // in order, and apart from each other
    search->for_each_longest_match(text,
                                   [&](std::size_t end, std::size_t word)
                                   {
                                       const PIECE& piece = long_pieces[word];
                                       RANGE range{end - piece.text.size(), end, &piece};
                                       for (; !ranges.empty() && ranges.back().end > range.begin; ranges.pop_back())
                                       {
                                           if (ranges.back().begin < range.begin)
                                               range = {ranges.back().begin, end, nullptr};
                                       }
                                       ranges.push_back(range);
                                   });
    std::string result;
    std::size_t end = 0; // of what is in the result
    for (const RANGE& range : ranges)
    {
        result.append(text, end, range.begin - end)
            .append(range.piece != nullptr ? replacement(*range.piece)
                                           : secrets.mark(text.substr(range.begin, range.end - range.begin)));
        end = range.end;
    }
    return result.append(text, end);
}

std::string SECRET_TEXTS::with_short_pieces_hidden(std::string_view text) const
{
    const auto stands_alone = of_short_pieces == SHORT_SECRETS::APART ? is_apart : is_quoted;
    const auto piece_at = [&](std::size_t at) -> const PIECE*
    {
        for (std::size_t size = std::min(longest_short_piece, text.size() - at); size > 0; --size)
        {
            const auto found = short_pieces.find(std::string(text.substr(at, size)));
            if (found != short_pieces.end() && stands_alone(text, at, at + size))
                return &found->second;
        }
        return nullptr;
    };
    std::string result;
    for (std::size_t at = 0; at < text.size();)
    {
        const PIECE* const piece = piece_at(at);
        result += piece == nullptr ? std::string(1, text[at]) : replacement(*piece);
        at += piece == nullptr ? 1 : piece->text.size();
    }
    return result;
}

std::string SECRET_TEXTS::hide_in(std::string_view message) const
{
    std::string hidden = long_pieces.empty()
                             ? std::string(message)
                             : with_shown_parts(message, [this](std::string_view part, std::string& result)
                                                { result += with_long_pieces_hidden(part); });
    return short_pieces.empty() ? hidden
                                : with_shown_parts(hidden, [this](std::string_view part, std::string& result)
                                                   { result += with_short_pieces_hidden(part); });
}

std::string hide_in_text(std::string_view text, std::string_view secret, SECRETS& secrets, SHORT_SECRETS of_short)
{
    return SECRET_TEXTS({{secret}}, secrets, of_short).hide_in(text);
}

std::string hide_typed_value(std::string_view message, std::string_view word, const IS_SECRET_NAME& is_secret,
                             SECRETS& secrets)
{
    std::vector<SECRET_TEXT> values;
    for (const char sign : {'=', ':'})
    {
        const std::string_view name = word.substr(0, word.find(sign));
        if (name.size() == word.size() || !is_secret(name) || is_plain_value(word.substr(name.size() + 1)))
            continue;
        const std::string_view value = word.substr(name.size() + 1);
        values.push_back({value, word.substr(0, name.size() + 1)});
        values.push_back({value});
    }
    return values.empty() ? std::string(message) : SECRET_TEXTS(values, secrets).hide_in(message);
}
