#include "cfg_ini/cfg_ini_reader/variable_assignment.h"

#include <cstdio>
#include <string_view>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/name_cache.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_access.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"
#include "cfg_ini/cfg_ini_reader/value_storing.h"
#include "cfg_ini/cfg_ini_reader/variable_catalogue.h"

namespace zon_cfg
{
namespace
{
void assign(const SOUGHT_NAME& name, std::string_view value, bool external,
            NOTIFYING_STORE_LOCK& held) ZON_LOCK_HELD ZON_UNCHECKED
{
    store_in_record(find_or_insert_record(name), name.text, value, external);
    held.unlock();
}

// Copies both texts: a load runs callbacks, which may change the caller's.
[[gnu::noinline]] void load_and_assign(const std::string name, const std::string value, bool external)
{
    with_loaded_store<NOTIFYING_STORE_LOCK>([&](NOTIFYING_STORE_LOCK& held) ZON_LOCK_HELD
                                            { assign(SOUGHT_NAME(name), value, external, held); });
}

void assign(std::string_view name, std::string_view value, bool external)
{
    const SOUGHT_NAME sought(name);
    if (store_exists()) [[likely]]
    {
        NOTIFYING_STORE_LOCK lock(HANDLE_EXISTS{});
        if (store_table() != nullptr) [[likely]]
            return assign(sought, value, external, lock);
        lock.unlock();
    }
    load_and_assign(std::string(name), std::string(value), external);
}
}
}

using namespace zon_cfg;

void cfg_ini_insert_element(const std::string& name, const std::string& value)
{
    assign(name, value, false);
}

void cfg_ini_insert_element_external_ini(const std::string& name, const std::string& value)
{
    assign(name, value, true);
}

void cfg_set_value(const std::string& name, const std::string& value)
{
    assign(name, value, false);
}

void cfg_set_value(CFG_INI_VAR_ENUM ini_enum, const char* value)
{
    // Checked before the value is: an enumeration out of range is what gets reported.
    const char* const name = catalogue_entry(ini_enum).first;
    assign(name, std::string(value), false);
}

void cfg_set_int_value(const char* name, int value)
{
    char text[16];
    const int length = std::snprintf(text, sizeof text, "%d", value);
    assign(not_null(cfg_ini_name_view(name)), std::string_view(text, static_cast<std::size_t>(length)), false);
}

void cfg_set_int_value(const std::string& name, int value)
{
    cfg_set_int_value(name.c_str(), value);
}

void cfg_set_int_value(CFG_INI_VAR_ENUM ini_enum, int value)
{
    cfg_set_int_value(catalogue_entry(ini_enum).first, value);
}

void cfg_set_on(const std::string& name)
{
    assign(name, "on", false);
}

void cfg_set_on(CFG_INI_VAR_ENUM ini_enum)
{
    assign(catalogue_entry(ini_enum).first, "on", false);
}

void cfg_set_off(const std::string& name)
{
    assign(name, "off", false);
}

void cfg_set_off(CFG_INI_VAR_ENUM ini_enum)
{
    assign(catalogue_entry(ini_enum).first, "off", false);
}
