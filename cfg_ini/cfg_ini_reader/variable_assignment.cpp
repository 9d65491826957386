// The setters. The fast path is that of a lookup, but holds the lock in such a way that callbacks may run. The name as
// the caller spells it selects the record, in any letter case, and the callbacks, with exactly this spelling.
//
// If there is no store, a setter loads the settings first and then stores, so the program's value overrides that of the
// files. The load runs callbacks, which may change the very strings that are to be stored. So this path works on copies
// of both. It is the only one that copies.
#include "cfg_ini/cfg_ini_reader/variable_assignment.h"

#include <cstddef>
#include <string>
#include <string_view>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/name_cache.h"
#include "cfg_ini/cfg_ini_reader/name_matching.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_access.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"
#include "cfg_ini/cfg_ini_reader/value_storing.h"
#include "cfg_ini/cfg_ini_reader/variable_catalogue.h"

namespace zon_cfg
{
namespace
{
template <typename VALUE>
void load_and_store(const std::string& name, const VALUE& value, bool external)
{
    const auto store_and_unlock = [&](NOTIFYING_STORE_LOCK& lock) ZON_LOCK_HELD ZON_UNCHECKED
    {
        store_in_record(find_or_insert_record(SOUGHT_NAME(name)), name, value, external);
        lock.unlock();
    };
    with_loaded_store<NOTIFYING_STORE_LOCK>(store_and_unlock);
}
// These take the parts of the texts as separate arguments, for the same reason as load_for_name (store_access.h).
[[gnu::noinline, gnu::cold]] void load_and_assign(const char* name, std::size_t name_length, const char* value,
                                                  std::size_t value_length, bool external)
{
    load_and_store(std::string(name, name_length), std::string(value, value_length), external);
}
[[gnu::noinline, gnu::cold]] void load_and_assign(const char* name, std::size_t name_length, int value)
{
    load_and_store(std::string(name, name_length), value, false);
}

// The fast path of all setters: that of a lookup, with a lock for callbacks. Returns false if the settings must be
// loaded first.
template <typename VALUE>
[[gnu::always_inline]] inline bool assign_if_loaded(std::string_view name, VALUE value, bool external)
{
    const SOUGHT_NAME sought(name);
    if (!store_exists()) [[unlikely]]
        return false;
    NOTIFYING_STORE_LOCK lock(HANDLE_EXISTS{});
    const bool is_loaded = store_table() != nullptr;
    if (is_loaded) [[likely]]
        store_in_record(find_or_insert_record(sought), name, value, external);
    lock.unlock();
    return is_loaded;
}

[[gnu::always_inline]] inline void assign(std::string_view name, std::string_view value, bool external)
{
    if (!assign_if_loaded(name, value, external)) [[unlikely]]
        load_and_assign(name.data(), name.size(), value.data(), value.size(), external);
}

[[gnu::always_inline]] inline void assign(std::string_view name, int value)
{
    if (!assign_if_loaded(name, value, false)) [[unlikely]]
        load_and_assign(name.data(), name.size(), value);
}

// For setters that should not each have a copy of the inlined code.
[[gnu::noinline]] void assign_number(std::string_view name, int value)
{
    assign(name, value);
}
}

[[gnu::noinline]] void assign_text(std::string_view name, std::string_view value, bool external)
{
    assign(name, value, external);
}
}

using namespace zon_cfg;

void cfg_set_value(const std::string& name, const std::string& value)
{
    assign(name, value, false);
}

void cfg_set_value(CFG_INI_VAR_ENUM ini_enum, const char* value)
{
    // The enumerator is checked before the value: if it is out of range, that is what gets reported.
    const std::string_view name = catalogue_entry(ini_enum).name;
    assign_text(name, not_null(cfg_ini_name_view(value)), false);
}

void cfg_set_int_value(const char* name, int value)
{
    assign_number(cfg_ini_name_view(name), value);
}

void cfg_set_int_value(const std::string& name, int value)
{
    // The name ends at its first zero byte, as in the form above.
    assign_number(name.c_str(), value);
}

void cfg_set_int_value(CFG_INI_VAR_ENUM ini_enum, int value)
{
    assign_number(catalogue_entry(ini_enum).name, value);
}

void cfg_set_on(const std::string& name)
{
    assign_text(name, "on", false);
}

void cfg_set_on(CFG_INI_VAR_ENUM ini_enum)
{
    assign_text(catalogue_entry(ini_enum).name, "on", false);
}

void cfg_set_off(const std::string& name)
{
    assign_text(name, "off", false);
}

void cfg_set_off(CFG_INI_VAR_ENUM ini_enum)
{
    assign_text(catalogue_entry(ini_enum).name, "off", false);
}
