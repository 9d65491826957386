#include "cfg_ini/cfg_ini_reader/value_conversion.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "platform/gen/gen.h"

namespace
{
struct BOOLEAN_WORD
{
    const char* word;
    bool value;
};

constexpr BOOLEAN_WORD boolean_words[] = {
    {"on", true}, {"1", true}, {"true", true}, {"off", false}, {"0", false}, {"false", false},
};

template <typename T>
std::optional<T> whole_decimal_number(const char* text)
{
    const char* const end = text + std::strlen(text);
    T value{};
    const auto [stop, error] = std::from_chars(text, end, value);
    if (error != std::errc{} || stop != end)
        return std::nullopt;
    return value;
}

template <typename T>
bool convert_if_whole(const char* text, T* value)
{
    const std::optional<T> converted = cfg_ini_convert_to<T>(text);
    if (converted)
        *value = *converted;
    return converted.has_value();
}
}

bool cfg_ini_convert_to_bool(const char* text, bool* value)
{
    *value = false;
    for (const auto& [word, meaning] : boolean_words)
    {
        if (gen_stricmp(text, word) == 0)
        {
            *value = meaning;
            return true;
        }
    }
    return false;
}

bool cfg_ini_str_to_bool(const char* text, bool default_value)
{
    bool value = false;
    return cfg_ini_convert_to_bool(text, &value) ? value : default_value;
}

template <>
std::optional<int> cfg_ini_convert_to<int>(const char* text)
{
    return whole_decimal_number<int>(text);
}

template <>
std::optional<unsigned int> cfg_ini_convert_to<unsigned int>(const char* text)
{
    return whole_decimal_number<unsigned int>(text);
}

bool cfg_ini_convert_to_int(const char* text, int* value)
{
    return convert_if_whole(text, value);
}

bool cfg_ini_convert_to_uint(const char* text, unsigned int* value)
{
    return convert_if_whole(text, value);
}

double cfg_ini_convert_to_double(const char* text, bool* whole)
{
    char* stop = nullptr;
    const double number = std::strtod(text, &stop);
    *whole = *stop == '\0';
    return number;
}
