#include "cfg_ini/cfg_ini_reader/value_storing.h"

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/change_callbacks.h"
#include "cfg_ini/cfg_ini_reader/ini_text.h"
#include "cfg_ini/cfg_ini_reader/recent_names.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_access.h"
#include "cfg_ini/cfg_ini_reader/value_conversion.h"

namespace
{
void set_value(CFG_INI_RECORD& record, std::string_view value)
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

// `find` gives the record, with the lock held.
template <typename FIND>
void store_assignment(std::string_view name, std::string_view value, bool external, FIND find)
{
    NOTIFYING_STORE_LOCK lock(lock_existing_store());
    CFG_INI_RECORD& record = find();
    set_value(record, value);
    if (external)
        record.external = true;
    refresh_callbacks(name); // may set other variables; the record stays where it is
    cfg_ini_dirty = true;
    lock.unlock();
}

void store_assignment(const std::string& name, const std::string& value, bool external)
{
    const SOUGHT_NAME sought(name);
    store_assignment(name, value, external, [&sought]() -> CFG_INI_RECORD& { return find_or_insert_record(sought); });
}
}

void cfg_ini_insert_element(const std::string& name, const std::string& value)
{
    store_assignment(name, value, false);
}

void cfg_ini_insert_element_external_ini(const std::string& name, const std::string& value)
{
    store_assignment(name, value, true);
}

void store_setting(std::string_view name, std::string_view value, bool external)
{
    // A file's names are mostly new, and would only push out those in use.
    store_assignment(name, value, external,
                     [name]() -> CFG_INI_RECORD& { return find_or_insert_record_in_table(name); });
}

void cfg_process_ini_string(const std::string& text, bool internal)
{
    INLINE_TEXT items(text);
    INLINE_ITEM kind{};
    std::string name;
    std::string value;
    while (items.next(kind, name, value))
    {
        if (kind == INLINE_ITEM::ASSIGNMENT)
            store_assignment(name, value, !internal);
    }
}
