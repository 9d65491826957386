#include "tools/velmar-cfg/readings.h"

#include <array>
#include <charconv>
#include <cmath>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/store_primitives.h"
#include "cfg_ini/cfg_ini_reader/value_conversion.h"
#include "tools/velmar-cfg/json_values.h"

using namespace zon_cfg;

READINGS read_typed(const std::string& name)
{
    READINGS readings;
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

nlohmann::ordered_json readings_as_json(const READINGS& readings)
{
    return {{"bool", value_or_null(readings.boolean)},
            {"int", value_or_null(readings.signed_integer)},
            {"uint", value_or_null(readings.unsigned_integer)},
            {"double", readings.floating ? number_as_json(*readings.floating) : nlohmann::ordered_json()},
            {"double_whole", readings.floating_is_whole}};
}

nlohmann::ordered_json number_as_json(double number)
{
    return std::isfinite(number) ? nlohmann::ordered_json(number) : nlohmann::ordered_json(number_as_text(number));
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
