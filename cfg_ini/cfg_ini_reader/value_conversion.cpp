#include "cfg_ini/cfg_ini_reader/value_conversion.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "platform/gen/gen.h"

namespace
{
constexpr std::size_t longest_word = 5;

// The length of a text up to one more than the longest word has.
std::size_t short_length(const char* text)
{
    std::size_t length = 0;
    while (length <= longest_word && text[length] != '\0')
        ++length;
    return length;
}

// Whether `text`, of the word's length, is the word in some letter case; it mostly is the word as it stands.
template <std::size_t SIZE>
bool is_word(const char* text, const char (&word)[SIZE])
{
    return std::memcmp(text, word, SIZE) == 0 || gen_stricmp(text, word) == 0;
}

// Whether `text` is as a whole a decimal number of type T; *value is written only then. Any number of leading zeros may
// stand before it, and a "-" if T has negative numbers.
template <typename T>
bool convert_if_whole(const char* text, T* value)
{
    using LIMITS = std::numeric_limits<T>;
    const bool negative = LIMITS::is_signed && *text == '-';
    const char* const first_digit = text + (negative ? 1 : 0);
    const std::int64_t limit = negative ? -std::int64_t{LIMITS::min()} : std::int64_t{LIMITS::max()};

    std::int64_t number = 0;
    const char* digit = first_digit;
    for (; *digit >= '0' && *digit <= '9'; ++digit)
    {
        number = number * 10 + (*digit - '0');
        if (number > limit)
            return false;
    }
    if (digit == first_digit || *digit != '\0')
        return false;
    *value = static_cast<T>(negative ? -number : number);
    return true;
}
}

bool cfg_ini_convert_to_bool(const char* text, bool* value)
{
    *value = false;
    // The first character settles most texts, the length nearly all others.
    switch (*text)
    {
    case '0':
    case '1':
        *value = *text == '1' && text[1] == '\0';
        return text[1] == '\0';
    case 'o':
    case 'O':
    case 't':
    case 'T':
    case 'f':
    case 'F':
        break;
    default:
        return false;
    }
    switch (short_length(text))
    {
    case 2:
        *value = is_word(text, "on");
        return *value;
    case 3:
        return is_word(text, "off");
    case 4:
        *value = is_word(text, "true");
        return *value;
    case 5:
        return is_word(text, "false");
    default:
        return false;
    }
}

bool cfg_ini_str_to_bool(const char* text, bool default_value)
{
    bool value = false;
    return cfg_ini_convert_to_bool(text, &value) ? value : default_value;
}

bool cfg_ini_convert_to_int(const char* text, int* value)
{
    return convert_if_whole(text, value);
}

bool cfg_ini_convert_to_uint(const char* text, unsigned int* value)
{
    return convert_if_whole(text, value);
}

double zon_cfg::convert_to_double(const char* text, bool* whole)
{
    char* stop = nullptr;
    const double number = std::strtod(text, &stop);
    *whole = *stop == '\0';
    return number;
}
