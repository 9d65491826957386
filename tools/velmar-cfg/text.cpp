#include "tools/velmar-cfg/text.h"

#include <charconv>

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
