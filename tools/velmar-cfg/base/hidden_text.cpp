// A mark has a fixed form: the random number of this process, one letter that says whether the key is lasting, the name
// of the key, the hash, and the size of what was hidden. All of these are letters and digits, which have no meaning to
// the rules for lines and items: a line keeps its form when a part of its value is hidden.
//
// Marks are found by a search for the number. Nothing is kept about texts or marks. Cost: O(n) for a text of n bytes.
#include "tools/velmar-cfg/base/hidden_text.h"

#include <algorithm>
#include <charconv>

#include "tools/velmar-cfg/base/keyed_hash.h"
#include "tools/velmar-cfg/base/text.h"

namespace
{
constexpr std::size_t number_size = 25;
constexpr std::size_t hash_size = 16; // digits
constexpr std::size_t size_size = 8;
constexpr std::size_t mark_size = number_size + 1 + hash_size + hash_size + size_size;
constexpr std::string_view shown_mark = "\\(masked)";
constexpr std::string_view unknown_hash = "0000000000000000";

// The letter in front makes it no number to any reader, and quick to pass by.
const std::string& process_number()
{
    static const std::string number = "Q" + as_hexadecimal(random_bytes((number_size - 1) / 2));
    return number;
}

std::string_view first_mark(std::string_view text)
{
    const std::size_t at = text.size() < mark_size ? std::string_view::npos : text.find(process_number());
    return at == std::string_view::npos ? std::string_view() : text.substr(at, mark_size);
}

std::string known_hash(std::string_view digits)
{
    return digits == unknown_hash ? std::string() : std::string(digits);
}

SAMENESS compare_hidden_parts(std::string_view mark_of_a, std::string_view mark_of_b)
{
    const HIDDEN_PART a = hidden_part(mark_of_a);
    const HIDDEN_PART b = hidden_part(mark_of_b);
    if (a.key.empty() || a.key != b.key)
        return SAMENESS::UNKNOWN;
    return a.hmac == b.hmac ? SAMENESS::SAME : SAMENESS::DIFFERENT;
}
}

std::string mark_of(const HIDDEN_PART& part)
{
    std::string mark = process_number();
    mark += part.lasting ? 'k' : 'p';
    mark += part.key.empty() ? unknown_hash : std::string_view(part.key);
    mark += part.hmac.empty() ? unknown_hash : std::string_view(part.hmac);
    const std::string bytes = {static_cast<char>(part.size >> 24U), static_cast<char>(part.size >> 16U),
                               static_cast<char>(part.size >> 8U), static_cast<char>(part.size)};
    return mark + as_hexadecimal(bytes);
}

bool has_hidden_parts(std::string_view text)
{
    return !first_mark(text).empty();
}

bool TEXT_PARTS::next(TEXT_PART& part)
{
    if (rest.empty())
        return false;
    const std::string_view mark = first_mark(rest);
    part.hidden = !mark.empty() && mark.data() == rest.data();
    part.text = part.hidden    ? mark
                : mark.empty() ? rest
                               : rest.substr(0, static_cast<std::size_t>(mark.data() - rest.data()));
    rest.remove_prefix(part.text.size());
    return true;
}

HIDDEN_PART hidden_part(std::string_view mark)
{
    mark.remove_prefix(number_size);
    HIDDEN_PART part{known_hash(mark.substr(1, hash_size)), known_hash(mark.substr(1 + hash_size, hash_size)),
                     mark.front() == 'k'};
    mark.remove_prefix(1 + hash_size + hash_size);
    std::from_chars(mark.data(), mark.data() + mark.size(), part.size, 16);
    return part;
}

std::string with_hidden_parts_named(std::string_view text)
{
    constexpr std::size_t telling_digits = 8;
    std::string named;
    TEXT_PARTS parts(text);
    for (TEXT_PART part{}; parts.next(part);)
    {
        if (!part.hidden)
        {
            named += part.text;
            continue;
        }
        const HIDDEN_PART known = hidden_part(part.text);
        if (known.lasting)
            named.append("\\(masked ").append(known.hmac, 0, telling_digits).append(")");
        else
            named += shown_mark;
    }
    return named;
}

std::optional<std::size_t> offset_before_hiding(std::string_view text, std::size_t offset)
{
    std::size_t shown = 0;  // up to the end of the part that is looked at
    std::size_t before = 0; // the same, as it was
    TEXT_PARTS parts(text);
    for (TEXT_PART part{}; shown < offset && parts.next(part);)
    {
        const std::size_t within = std::min(part.text.size(), offset - shown);
        shown += within;
        if (part.hidden && within < part.text.size())
            return before; // a hidden part begins where it began
        const std::size_t size = part.hidden ? hidden_part(part.text).size : within;
        if (size == 0)
            return std::nullopt;
        before += size;
    }
    return before + (offset - shown);
}

std::size_t length_by_shown_length(std::string_view text, std::size_t shown_length)
{
    std::size_t end = 0;
    TEXT_PARTS parts(text);
    for (TEXT_PART part{}; shown_length > 0 && parts.next(part);)
    {
        const std::size_t shown = std::min(part.hidden ? shown_mark.size() : part.text.size(), shown_length);
        end += part.hidden ? part.text.size() : shown;
        shown_length -= shown;
    }
    return end;
}

SAMENESS compare_texts(std::string_view a, std::string_view b)
{
    if (!has_hidden_parts(a) && !has_hidden_parts(b))
        return a == b ? SAMENESS::SAME : SAMENESS::DIFFERENT;
    TEXT_PARTS parts_of_a(a);
    TEXT_PARTS parts_of_b(b);
    SAMENESS result = SAMENESS::SAME;
    for (;;)
    {
        TEXT_PART one{};
        TEXT_PART other{};
        const bool more = parts_of_a.next(one);
        if (more != parts_of_b.next(other) || one.hidden != other.hidden)
            return SAMENESS::DIFFERENT;
        if (!more)
            return result;
        const SAMENESS of_part = one.hidden               ? compare_hidden_parts(one.text, other.text)
                                 : one.text == other.text ? SAMENESS::SAME
                                                          : SAMENESS::DIFFERENT;
        if (of_part == SAMENESS::DIFFERENT)
            return of_part;
        if (of_part == SAMENESS::UNKNOWN)
            result = of_part;
    }
}
