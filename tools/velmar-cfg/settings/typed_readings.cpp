#include "tools/velmar-cfg/settings/typed_readings.h"

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/store_primitives.h"
#include "cfg_ini/cfg_ini_reader/value_conversion.h"
#include "tools/velmar-cfg/base/json_values.h"

using namespace zon_cfg;

TYPED_READINGS read_typed(const std::string& name)
{
    TYPED_READINGS readings;
    readings.boolean = cfg_get_value_as<bool>(name);
    readings.signed_integer = cfg_get_value_as<int>(name);
    bool found = false;
    if (const unsigned int number = cfg_ini_read_uint(name, &found); found)
        readings.unsigned_integer = number;
    readings.floating = cfg_get_value_as<double>(name);
    if (readings.floating)
        convert_to_double(cfg_get_value(name).c_str(), &readings.floating_is_whole);
    return readings;
}

nlohmann::ordered_json readings_as_json(const TYPED_READINGS& readings)
{
    return {{"bool", value_or_null(readings.boolean)},
            {"int", value_or_null(readings.signed_integer)},
            {"uint", value_or_null(readings.unsigned_integer)},
            {"double", readings.floating ? number_as_json(*readings.floating) : nlohmann::ordered_json()},
            {"double_whole", readings.floating_is_whole}};
}
