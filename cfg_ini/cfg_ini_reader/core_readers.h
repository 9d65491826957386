// The two reads beneath all lookups: a cached value, and the text. Each loads the settings first if there is no store,
// and counts the access or leaves an empty record behind.
#ifndef CFG_INI_CFG_INI_READER_CORE_READERS_H
#define CFG_INI_CFG_INI_READER_CORE_READERS_H

#include <string>
#include <string_view>

#include "cfg_ini/cfg_ini_reader/name_cache.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_access.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"

namespace zon_cfg
{
// A cached value and whether it is one; handed around by value, so that it stays in registers.
template <typename T>
struct CACHED
{
    T value;
    bool found;
};

// The value as a T = bool, int or unsigned int; the variable is marked as validly read if it is one.
template <typename T>
[[gnu::always_inline]] inline CACHED<T> read_cached(std::string_view name)
{
    return with_store(name,
                      [](const SOUGHT_NAME& sought) ZON_LOCK_HELD
                      {
                          CFG_INI_RECORD& record = find_counted_or_insert_record(sought);
                          CACHED<T> cached;
                          cached.value = record.get_cached_value<T>(cached.found);
                          record.had_valid_read |= cached.found;
                          return cached;
                      });
}

// A copy of the text; the variable is marked as validly read when `mark_valid` is true, whatever the text. A caller
// that uses the name afterwards gives `kept_name`, which becomes a copy of the name if the settings had to be loaded.
inline std::string read_string(std::string_view name, bool mark_valid, std::string& kept_name)
{
    return with_store(name, kept_name,
                      [mark_valid](const SOUGHT_NAME& sought) ZON_LOCK_HELD
                      {
                          CFG_INI_RECORD& record = find_counted_or_insert_record(sought);
                          record.had_valid_read |= mark_valid;
                          return record.value;
                      });
}
inline std::string read_string(std::string_view name, bool mark_valid)
{
    std::string kept_name;
    return read_string(name, mark_valid, kept_name);
}
}

#endif
