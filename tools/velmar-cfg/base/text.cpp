// Makes texts fit to be shown. UTF-8 is checked by the lead byte and by the range that it leaves to the second byte, as
// RFC 3629 lists them. Texts are nearly all ASCII, which is_utf_8() passes eight bytes at a time. Nothing keeps state;
// each function takes O(n) time for n bytes.
#include "tools/velmar-cfg/base/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "platform/gen/gen.h"
#include "tools/velmar-cfg/base/hidden_text.h"

std::string trimmed(std::string_view text)
{
    return gen_remove_leading_and_trailing_white_spaces(std::string(text));
}

std::string as_hexadecimal(std::string_view bytes)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const char c : bytes)
    {
        const auto byte = static_cast<unsigned char>(c);
        text += digits[byte >> 4];
        text += digits[byte & 0xf];
    }
    return text;
}

std::optional<std::string> from_hexadecimal(std::string_view digits)
{
    if (digits.size() % 2 != 0)
        return std::nullopt;
    std::string bytes;
    bytes.reserve(digits.size() / 2);
    for (; !digits.empty(); digits.remove_prefix(2))
    {
        unsigned char byte = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + 2, byte, 16);
        if (error != std::errc() || end != digits.data() + 2)
            return std::nullopt;
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

namespace
{
// The length of the well-formed sequence that the bytes, of which there is one, begin with; 0 when they do not.
std::size_t utf_8_sequence(std::string_view bytes)
{
    const auto byte = [&bytes](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80)
        return 1;
    const std::size_t length = lead >= 0xc2 && lead < 0xe0 ? 2 : lead >= 0xe0 && lead < 0xf0 ? 3 : 4;
    if (lead < 0xc2 || lead > 0xf4 || bytes.size() < length)
        return 0;
    // What the second byte may be keeps overlong forms, surrogates and too large numbers out.
    const unsigned char least = lead == 0xe0 ? 0xa0 : lead == 0xf0 ? 0x90 : 0x80;
    const unsigned char most = lead == 0xed ? 0x9f : lead == 0xf4 ? 0x8f : 0xbf;
    if (byte(1) < least || byte(1) > most)
        return 0;
    for (std::size_t at = 2; at < length; ++at)
    {
        if ((byte(at) & 0xc0U) != 0x80)
            return 0;
    }
    return length;
}

// Whether every terminal shows the byte as the character that it is.
constexpr bool is_plain(char c)
{
    return c >= 0x20 && c < 0x7f && c != '\\';
}

void append_escaped(std::string& to, char c)
{
    if (c == '\n')
        to += "\\n";
    else if (c == '\t')
        to += "\\t";
    else if (c == '\\')
        to += "\\\\";
    else
        to.append("\\x").append(as_hexadecimal({&c, 1}));
}
}

bool steers_a_terminal(char32_t character)
{
    return character < 0x20 || (character >= 0x7f && character < 0xa0) || // C0, delete, C1
           character == 0x61c || character == 0x200e || character == 0x200f ||
           (character >= 0x2028 && character <= 0x202e) || // separators of lines and paragraphs; embeddings, overrides
           (character >= 0x2066 && character <= 0x2069);   // isolates
}

UTF_8_CHARACTER first_character(std::string_view bytes)
{
    const std::size_t length = utf_8_sequence(bytes);
    if (length <= 1)
        return {length, static_cast<unsigned char>(bytes.front())};
    // The lead byte of a sequence of n has n ones and a zero before its bits.
    char32_t character = static_cast<unsigned char>(bytes.front()) & (0xffU >> (length + 1));
    for (std::size_t at = 1; at < length; ++at)
        character = character << 6 | (static_cast<unsigned char>(bytes[at]) & 0x3fU);
    return {length, character};
}

std::string printable(std::string_view text)
{
    std::string result;
    if (has_hidden_parts(text))
    {
        TEXT_PARTS parts(text);
        for (TEXT_PART part{}; parts.next(part);)
            result += part.hidden ? with_hidden_parts_named(part.text) : printable(part.text);
        return result;
    }
    result.reserve(text.size());
    while (!text.empty())
    {
        const auto plain_end = std::ranges::find_if_not(text, is_plain);
        result.append(text.begin(), plain_end);
        text.remove_prefix(static_cast<std::size_t>(plain_end - text.begin()));
        if (text.empty())
            break;
        const auto [length, character] = first_character(text);
        if (length > 1 && !steers_a_terminal(character))
            result.append(text.substr(0, length));
        else
        {
            for (const char c : text.substr(0, std::max<std::size_t>(length, 1)))
                append_escaped(result, c);
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

std::string shortened(std::string_view text, std::size_t longest)
{
    if (text.size() <= longest)
        return std::string(text);
    // A character of UTF-8 that would be cut is left out whole, so that a text stays one.
    std::size_t length = longest;
    for (std::size_t begin = longest; begin > 0 && begin + 3 > longest; --begin)
    {
        if (begin - 1 + utf_8_sequence(text.substr(begin - 1)) > longest)
            length = begin - 1;
    }
    return std::string(text.substr(0, length)) + "...";
}

std::string in_single_quotes(std::string_view text)
{
    return "'" + shortened(text, length_by_shown_length(text, 100)) + "'";
}

bool is_utf_8(std::string_view bytes)
{
    while (!bytes.empty())
    {
        // Nearly all of nearly every text is ASCII, eight bytes at a time.
        constexpr std::uint64_t beyond_ascii = 0x8080808080808080U;
        std::uint64_t word = 0;
        if (bytes.size() >= sizeof word)
        {
            std::memcpy(&word, bytes.data(), sizeof word);
            if ((word & beyond_ascii) == 0)
            {
                bytes.remove_prefix(sizeof word);
                continue;
            }
        }
        const std::size_t length = utf_8_sequence(bytes);
        if (length == 0)
            return false;
        bytes.remove_prefix(length);
    }
    return true;
}

std::string number_as_text(double number)
{
    if (std::isnan(number)) // whose sign is written by some libraries only
        return std::signbit(number) ? "-nan" : "nan";
    std::array<char, 32> text; // the longest is "-2.2250738585072014e-308"
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
    return std::string(text.data(), end);
}

std::optional<double> number_from_text(std::string_view text)
{
    const std::size_t first = text.starts_with('-') ? 1 : 0;
    const bool may_be_one = first < text.size() && (text[first] == '.' || (text[first] >= '0' && text[first] <= '9')) &&
                            text.find_first_not_of("0123456789.eE+-") == std::string_view::npos;
    if (!may_be_one)
        return std::nullopt;
    const std::string terminated(text);
    char* end = nullptr;
    const double number = std::strtod(terminated.c_str(), &end); // the tool sets no locale: the point is a point
    return end == terminated.c_str() + terminated.size() ? std::optional(number) : std::nullopt;
}

const char* boolean_as_text(bool value)
{
    return value ? "on" : "off";
}
