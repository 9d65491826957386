// The three conversions of a text, made together when it is stored.
//
// The first character decides most texts: at most one word for true and one for false begin with it, and a number
// begins with a digit or "-". A number is parsed once, into a type that holds every int and every unsigned int; the
// ranges of the two then decide what it is. Parsing stops as soon as the number is beyond both, so no text can make it
// overflow. Only convert_to_double depends on the locale, as strtod does: apart from that, a file means the same
// wherever it is read.
//
// Costs one step for each character that fits.
#include "cfg_ini/cfg_ini_reader/value_conversion.h"

#include <cstdint>
#include <cstdlib>
#include <limits>

namespace
{
// Whether `text`, in any letter case, is the word, which is given in lower case.
template <std::size_t SIZE>
bool ends_in(const char* text, const char (&word)[SIZE])
{
    constexpr char to_lower = 'a' - 'A'; // no other character becomes a letter by it
    for (std::size_t i = 0; i < SIZE - 1; ++i)
    {
        if ((text[i] | to_lower) != word[i])
            return false;
    }
    return text[SIZE - 1] == '\0';
}

// Whether the whole text is a decimal number with an optional "-" and a magnitude that an unsigned int holds. Any
// number of leading zeros is allowed. *number is written only if the text is such a number.
bool is_whole_number(const char* text, std::int64_t* number)
{
    constexpr std::int64_t limit = std::numeric_limits<unsigned int>::max();
    const bool negative = *text == '-';
    const char* const first_digit = text + (negative ? 1 : 0);

    std::int64_t magnitude = 0;
    const char* digit = first_digit;
    for (; *digit >= '0' && *digit <= '9'; ++digit)
    {
        magnitude = magnitude * 10 + (*digit - '0');
        if (magnitude > limit)
            return false;
    }
    if (digit == first_digit || *digit != '\0')
        return false;
    *number = negative ? -magnitude : magnitude;
    return true;
}

// The result for a text that begins like a boolean word, and may be that word.
zon_cfg::CONVERTED converted_word(bool is_on, bool is_off)
{
    return {.number = 0, .is_bool = is_on || is_off, .bool_value = is_on, .is_int = false, .is_uint = false};
}

zon_cfg::CONVERTED converted_number(const char* text)
{
    std::int64_t number = 0;
    if (!is_whole_number(text, &number))
        return {};
    const bool is_bool = (*text == '0' || *text == '1') && text[1] == '\0'; // "01" is a number and no boolean word
    return {.number = number,
            .is_bool = is_bool,
            .bool_value = is_bool && *text == '1',
            .is_int = number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max(),
            .is_uint = *text != '-'}; // not even "-0" is one
}
}

zon_cfg::CONVERTED zon_cfg::convert(const char* text)
{
    switch (*text)
    {
    case 'o':
    case 'O':
        return converted_word(ends_in(text + 1, "n"), ends_in(text + 1, "ff"));
    case 't':
    case 'T':
        return converted_word(ends_in(text + 1, "rue"), false);
    case 'f':
    case 'F':
        return converted_word(false, ends_in(text + 1, "alse"));
    default:
        return *text == '-' || (*text >= '0' && *text <= '9') ? converted_number(text) : CONVERTED{};
    }
}

bool cfg_ini_convert_to_bool(const char* text, bool* value)
{
    const zon_cfg::CONVERTED converted = zon_cfg::convert(text);
    *value = converted.bool_value;
    return converted.is_bool;
}

bool cfg_ini_str_to_bool(const char* text, bool default_value)
{
    const zon_cfg::CONVERTED converted = zon_cfg::convert(text);
    return converted.is_bool ? converted.bool_value : default_value;
}

bool cfg_ini_convert_to_int(const char* text, int* value)
{
    const zon_cfg::CONVERTED converted = zon_cfg::convert(text);
    if (converted.is_int)
        *value = static_cast<int>(converted.number);
    return converted.is_int;
}

bool cfg_ini_convert_to_uint(const char* text, unsigned int* value)
{
    const zon_cfg::CONVERTED converted = zon_cfg::convert(text);
    if (converted.is_uint)
        *value = static_cast<unsigned int>(converted.number);
    return converted.is_uint;
}

double zon_cfg::convert_to_double(const char* text, bool* whole)
{
    char* stop = nullptr;
    const double number = std::strtod(text, &stop);
    *whole = *stop == '\0';
    return number;
}
