#include "tests/cfg_user_ini_reader/letter_case.h"

#include <cctype>
#include <cstddef>

namespace
{
char upper(char c)
{
    return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

char lower(char c)
{
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}
}

std::string in_swapped_case(std::string text)
{
    for (char& c : text)
        c = upper(c) == c ? lower(c) : upper(c);
    return text;
}

std::string in_mixed_case(std::string text)
{
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = i % 2 == 0 ? lower(text[i]) : upper(text[i]);
    return text;
}
