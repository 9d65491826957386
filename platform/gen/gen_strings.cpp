#include "platform/gen/gen.h"

namespace
{
int folded(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 'A' && byte <= 'Z' ? byte + ('a' - 'A') : byte;
}

std::string trimmed(const std::string& text, const char* unwanted)
{
    const std::size_t first = text.find_first_not_of(unwanted);
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(unwanted) - first + 1);
}
}

int gen_stricmp(const char* a, const char* b)
{
    for (; *a != *b || *a != '\0'; ++a, ++b)
    {
        // Most characters are equal as they are.
        if (*a != *b && folded(*a) != folded(*b))
            return folded(*a) - folded(*b);
    }
    return 0;
}

std::string gen_remove_leading_and_trailing_spaces(const std::string& text)
{
    return trimmed(text, " ");
}

std::string gen_remove_leading_and_trailing_white_spaces(const std::string& text)
{
    return trimmed(text, " \t\n\v\f\r");
}
