// Storing an assignment: the one way by which a value gets into a record. Knows nothing of files.
#ifndef CFG_INI_CFG_INI_READER_VALUE_STORING_H
#define CFG_INI_CFG_INI_READER_VALUE_STORING_H

#include <string_view>

#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"

namespace zon_cfg
{
// Stores and converts the text, clears the mark of a valid read, notifies the callbacks of exactly this name and marks
// the settings as changed. With `external` it marks the record external, and otherwise leaves that mark alone. Counts
// no access. `record` is the record of `name`; neither text need end in a zero byte. Requires a NOTIFYING_STORE_LOCK.
void store_in_record(CFG_INI_RECORD& record, std::string_view name, std::string_view value,
                     bool external) ZON_LOCK_HELD;
}

#endif
