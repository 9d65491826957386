#include "cfg_ini/cfg_ini_reader/value_storing.h"

#include "cfg_ini/cfg_ini_reader/change_callbacks.h"
#include "cfg_ini/cfg_ini_reader/value_conversion.h"

namespace zon_cfg
{
namespace
{
void set_value(CFG_INI_RECORD& record, std::string_view value) ZON_LOCK_HELD
{
    record.value = value;
    const char* const text = record.value.c_str();
    record.bool_valid = cfg_ini_convert_to_bool(text, &record.bool_value);
    record.int_valid = cfg_ini_convert_to_int(text, &record.int_value);
    if (record.int_valid && *text != '-')
    {
        // What fits a signed integer and has no sign fits an unsigned one.
        record.uint_valid = true;
        record.uint_value = static_cast<unsigned int>(record.int_value);
    }
    else
        record.uint_valid = cfg_ini_convert_to_uint(text, &record.uint_value);
    record.had_valid_read = false;
}
}

void store_in_record(CFG_INI_RECORD& record, std::string_view name, std::string_view value, bool external)
{
    set_value(record, value);
    if (external)
        record.external = true;
    refresh_callbacks(name); // may set other variables; the record stays where it is
    cfg_ini_dirty = true;
}
}
