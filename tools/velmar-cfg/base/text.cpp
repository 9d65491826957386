#include "tools/velmar-cfg/base/text.h"

#include <array>
#include <charconv>
#include <cstdio>

#include "platform/gen/gen.h"

std::string trimmed(std::string_view text)
{
    return gen_remove_leading_and_trailing_white_spaces(std::string(text));
}

std::string in_single_quotes(std::string_view text)
{
    constexpr std::size_t longest = 100;
    return "'" + std::string(text.substr(0, longest)) + (text.size() > longest ? "...'" : "'");
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

std::string printable(std::string_view text)
{
    std::string result;
    for (const char c : text)
    {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte != 0x7f)
            result += c;
        else if (c == '\n')
            result += "\\n";
        else if (c == '\t')
            result += "\\t";
        else
        {
            std::array<char, 5> escaped;
            std::snprintf(escaped.data(), escaped.size(), "\\x%02x", byte);
            result += escaped.data();
        }
    }
    return result;
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
}

bool is_utf_8(std::string_view bytes)
{
    while (!bytes.empty())
    {
        const std::size_t length = utf_8_sequence(bytes);
        if (length == 0)
            return false;
        bytes.remove_prefix(length);
    }
    return true;
}

std::string number_as_text(double number)
{
    std::array<char, 32> text; // the longest is "-2.2250738585072014e-308"
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
    return std::string(text.data(), end);
}

const char* boolean_as_text(bool value)
{
    return value ? "on" : "off";
}
