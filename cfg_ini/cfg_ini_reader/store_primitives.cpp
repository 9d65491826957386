#include "cfg_ini/cfg_ini_reader/store_primitives.h"

#include "cfg_ini/cfg_ini_reader/core_readers.h"
#include "cfg_ini/cfg_ini_reader/name_cache.h"
#include "cfg_ini/cfg_ini_reader/name_matching.h"
#include "cfg_ini/cfg_ini_reader/value_conversion.h"
#include "cfg_ini/cfg_ini_reader/variable_assignment.h"

using namespace zon_cfg;

namespace
{
template <typename T>
T read_cached_value(const std::string& name, bool* found)
{
    *found = false;
    const CACHED<T> cached = read_cached<T>(name);
    *found = cached.found;
    return cached.value;
}
}

CFG_INI_RECORD* cfg_ini_get_record(const std::string& name)
{
    return find_record(SOUGHT_NAME(name));
}

void cfg_ini_insert_record(const std::string& name, CFG_INI_RECORD* record)
{
    store_table()->insert_record(HASHED_NAME(name), record);
}

CFG_INI_RECORD* cfg_ini_get_record_or_insert_empty(const std::string& name)
{
    return &find_counted_or_insert_record(SOUGHT_NAME(name));
}

bool cfg_mark_record_had_valid_read(const std::string& name)
{
    return mark_had_valid_read(name);
}

bool cfg_ini_read_boolean(const std::string& name, bool* found)
{
    return read_cached_value<bool>(name, found);
}

int cfg_ini_read_int(const std::string& name, bool* found)
{
    return read_cached_value<int>(name, found);
}

unsigned int cfg_ini_read_uint(const std::string& name, bool* found)
{
    return read_cached_value<unsigned int>(name, found);
}

std::string cfg_ini_read_string(const std::string& name, bool mark_valid)
{
    return read_string(name, mark_valid);
}

void cfg_ini_insert_element(const std::string& name, const std::string& value)
{
    assign_text(name, value, false);
}

void cfg_ini_insert_element_external_ini(const std::string& name, const std::string& value)
{
    assign_text(name, value, true);
}

bool cfg_ini_usage_compare(USAGE a, USAGE b) // NOLINT(performance-unnecessary-value-param): by value, as it is given
{
    return goes_before(a, b);
}

template <>
std::optional<int> cfg_ini_convert_to<int>(const char* text)
{
    int value;
    return cfg_ini_convert_to_int(text, &value) ? std::optional<int>(value) : std::nullopt;
}

template <>
std::optional<unsigned int> cfg_ini_convert_to<unsigned int>(const char* text)
{
    unsigned int value;
    return cfg_ini_convert_to_uint(text, &value) ? std::optional<unsigned int>(value) : std::nullopt;
}
