// Stores a value in its record. Every assignment comes through here. Knows nothing of files.
#ifndef CFG_INI_CFG_INI_READER_VALUE_STORING_H
#define CFG_INI_CFG_INI_READER_VALUE_STORING_H

#include <string_view>

#include "cfg_ini/cfg_ini_reader/change_callbacks.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"

namespace zon_cfg
{
// Sets the record's value: its text, the values that the text converts to, and the mark that nobody has read it yet. A
// text need not end in a zero byte. The text of a number is the number in decimal. If memory runs out, nothing changes.
void set_value(CFG_INI_RECORD& record, std::string_view value) ZON_LOCK_HELD;
void set_value(CFG_INI_RECORD& record, int value) ZON_LOCK_HELD;

// Sets the value of the record of `name`, notifies the callbacks of exactly this name, and marks the settings as
// changed. If `external` is true, marks the record as external; otherwise leaves that mark alone. Counts no access.
// VALUE is std::string_view or int. Requires a NOTIFYING_STORE_LOCK.
template <typename VALUE>
[[gnu::always_inline]] inline void store_in_record(CFG_INI_RECORD& record, std::string_view name, VALUE value,
                                                   bool external) ZON_LOCK_HELD
{
    set_value(record, value);
    if (external)
        record.external = true;
    refresh_callbacks(name); // may set other variables; the record stays where it is
    cfg_ini_dirty = true;
}
}

#endif
