// The typed readers. Each goes once through with_store (store_access.h): it finds or makes the record, counts the
// access, and takes the value that was converted when the text was stored. From this value it makes what the caller
// needs, a default or an optional, in registers.
//
// Two readers do more. The one-argument boolean looks its default up in the catalogue, but only if the variable has no
// value. Floating-point readers convert at each call, after the lock is released: strtod takes many times as long as a
// lookup, and depends on the locale. They mark the record under a second hold of the lock, without searching for it
// again. If another thread stores a value in between, that value is marked instead of the one that was read. This is
// accepted.
//
// The overloads for std::string and for characters are the same code twice, so that neither pays for the other.
#include <cstring>
#include <string_view>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/core_readers.h"
#include "cfg_ini/cfg_ini_reader/debug_message.h"
#include "cfg_ini/cfg_ini_reader/name_matching.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_access.h"
#include "cfg_ini/cfg_ini_reader/value_conversion.h"
#include "cfg_ini/cfg_ini_reader/variable_catalogue.h"

namespace zon_cfg
{
namespace
{
template <typename T>
[[gnu::always_inline]] inline T cached_or_default(std::string_view name, T default_value)
{
    return read_cached<T>(name, [default_value](CACHED<T> cached, std::string_view /*name*/) ZON_INLINED
                          { return cached.found ? cached.value : default_value; });
}

template <typename T>
std::optional<T> cached_or_nothing(std::string_view name)
{
    const CACHED<T> cached = read_cached<T>(name);
    return cached.found ? std::optional<T>(cached.value) : std::nullopt;
}

std::optional<std::string> text_or_nothing(std::string_view name)
{
    std::string text = read_string(name, true);
    return text.empty() ? std::nullopt : std::optional<std::string>(std::move(text));
}

std::optional<double> number_or_nothing(std::string_view name)
{
    std::string kept_name;
    FOUND_RECORD found;
    const std::string text = read_string(name, kept_name, found);
    if (text.empty())
        return std::nullopt;
    if (!kept_name.empty())
        name = kept_name;

    bool whole;
    const double number = convert_to_double(text.c_str(), &whole);
    if (whole)
        mark_had_valid_read(name, found);
    else
    {
        // Still a number, but not marked: callers rely on "2.5ms" being 2.5.
        ini_debug_message("Couldn't parse ini setting %s=(%s) as a floating point value", std::string(name).c_str(),
                          text.c_str());
    }
    return number;
}

std::optional<float> narrow_number_or_nothing(std::string_view name)
{
    const std::optional<double> number = number_or_nothing(name);
    return number ? std::optional<float>(static_cast<float>(*number)) : std::nullopt;
}

// Whether the catalogue's default is "on". A name with a zero byte may be catalogued up to that byte.
bool is_on_by_default(std::string_view name)
{
    std::optional<CFG_INI_VAR_ENUM> position = catalogue_position(name);
    if (!position)
        position = catalogue_position(name.substr(0, name.find('\0')));
    return position && catalogue_entry(*position).is_on;
}

// Looks up the default only if it is needed: most variables that are asked for are set.
[[gnu::always_inline]] inline bool is_on_or_default_of_catalogue(std::string_view name)
{
    return read_cached<bool>(name, [](CACHED<bool> cached, std::string_view sought) ZON_INLINED
                             { return cached.found ? cached.value : is_on_by_default(sought); });
}
}
}

using namespace zon_cfg;

bool cfg_is_on(const std::string& name, bool default_value)
{
    return cached_or_default(name, default_value);
}

bool cfg_is_on(std::string_view name, bool default_value)
{
    return cached_or_default(name, default_value);
}

bool cfg_is_on(const std::string& name)
{
    return is_on_or_default_of_catalogue(name);
}

bool cfg_is_on(std::string_view name)
{
    return is_on_or_default_of_catalogue(name);
}

bool cfg_is_on(CFG_INI_VAR_ENUM ini_enum)
{
    const CATALOGUE_ENTRY& entry = catalogue_entry(ini_enum);
    return cached_or_default(entry.name, entry.is_on);
}

int cfg_get_int_value(const std::string& name, int default_value)
{
    return cached_or_default(name, default_value);
}

int cfg_get_int_value(std::string_view name, int default_value)
{
    return cached_or_default(name, default_value);
}

int cfg_get_int_value(CFG_INI_VAR_ENUM ini_enum)
{
    // The default texts "on" and "off" are no numbers.
    return cached_or_default(catalogue_entry(ini_enum).name, 0);
}

unsigned int cfg_get_uint_value(const std::string& name, unsigned int default_value)
{
    return cached_or_default(name, default_value);
}

unsigned int cfg_get_uint_value(std::string_view name, unsigned int default_value)
{
    return cached_or_default(name, default_value);
}

double cfg_get_double_value(const std::string& name, double default_value)
{
    return number_or_nothing(name).value_or(default_value);
}

double cfg_get_double_value(std::string_view name, double default_value)
{
    return number_or_nothing(name).value_or(default_value);
}

std::string cfg_get_value(const std::string& name)
{
    return read_string(name, true);
}

std::string cfg_get_value(std::string_view name)
{
    return read_string(name, true);
}

std::string cfg_get_value(CFG_INI_VAR_ENUM ini_enum)
{
    const CATALOGUE_ENTRY& entry = catalogue_entry(ini_enum);
    std::string text = read_string(entry.name, true);
    return text.empty() ? std::string(entry.default_text) : text;
}

template <>
std::optional<bool> cfg_get_value_as<bool>(const std::string& name)
{
    return cached_or_nothing<bool>(name);
}

template <>
std::optional<int> cfg_get_value_as<int>(const std::string& name)
{
    return cached_or_nothing<int>(name);
}

template <>
std::optional<std::string> cfg_get_value_as<std::string>(const std::string& name)
{
    return text_or_nothing(name);
}

template <>
std::optional<double> cfg_get_value_as<double>(const std::string& name)
{
    return number_or_nothing(name);
}

template <>
std::optional<float> cfg_get_value_as<float>(const std::string& name)
{
    return narrow_number_or_nothing(name);
}

// The instances that take a view. Calls find them through CFG_INI_NAME_VIEW, which declares them as friends.
template <typename T>
std::optional<T> cfg_get_value_as(std::string_view name)
{
    if constexpr (std::is_same_v<T, std::string>)
        return text_or_nothing(name);
    else if constexpr (std::is_same_v<T, double>)
        return number_or_nothing(name);
    else if constexpr (std::is_same_v<T, float>)
        return narrow_number_or_nothing(name);
    else
        return cached_or_nothing<T>(name);
}

template CFG_INI_API std::optional<bool> cfg_get_value_as<bool>(std::string_view name);
template CFG_INI_API std::optional<int> cfg_get_value_as<int>(std::string_view name);
template CFG_INI_API std::optional<std::string> cfg_get_value_as<std::string>(std::string_view name);
template CFG_INI_API std::optional<double> cfg_get_value_as<double>(std::string_view name);
template CFG_INI_API std::optional<float> cfg_get_value_as<float>(std::string_view name);

bool cfg_dyn_is_on(const char* name, bool default_value)
{
    return cfg_is_on(name, default_value);
}

void cfg_dyn_get_int_value(const char* name, int* value, int default_value)
{
    if (value != nullptr)
        *value = cfg_get_int_value(name, default_value);
}

void cfg_dyn_get_value(const char* name, std::string* value)
{
    if (value != nullptr)
        *value = cfg_get_value(name);
}

int cfg_ini_get_value_for_zanth(void* /*ignored*/, const char* const* name, char* buffer, unsigned int buffer_size)
{
    if (not_null(cfg_ini_name_view(*name)).empty())
        return -1;
    const std::string text = cfg_get_value(*name);

    // Intended: a buffer of exactly the text's length is enough, and gets one byte more. Callers pass the room without
    // the terminating zero.
    if (buffer_size < text.size())
        return static_cast<int>(text.size());
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return 0;
}
