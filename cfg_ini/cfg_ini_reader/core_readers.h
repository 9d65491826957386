// The two lookups on which all others are based: of a cached value, and of the text. Each loads the settings first if
// there is no store. Each counts the access, or else creates an empty record.
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
// A cached value, and whether it is meaningful. Passed by value, so that it stays in registers.
template <typename T>
struct CACHED
{
    T value;
    bool found;
};

// Looks the variable up as a T, which is bool, int or unsigned int, and returns answer(cached, name). Marks the
// variable as validly read if it has a value of that type. `answer` runs with the lock held. It must use the name that
// it is passed: a load may have changed the caller's string.
template <typename T, typename ANSWER>
[[gnu::always_inline]] inline auto read_cached(std::string_view name, ANSWER answer)
{
    return with_store(name,
                      [answer](const SOUGHT_NAME& sought) ZON_INLINED ZON_LOCK_HELD
                      {
                          CFG_INI_RECORD& record = find_counted_or_insert_record(sought);
                          CACHED<T> cached;
                          cached.value = record.get_cached_value<T>(cached.found);
                          record.had_valid_read |= cached.found;
                          return answer(cached, sought.text);
                      });
}
template <typename T>
[[gnu::always_inline]] inline CACHED<T> read_cached(std::string_view name)
{
    return read_cached<T>(name, [](CACHED<T> cached, std::string_view /*name*/) ZON_INLINED { return cached; });
}

// A copy of the text; the variable is marked as validly read when `mark_valid` is true, whatever the text.
[[gnu::always_inline]] inline std::string read_string(std::string_view name, bool mark_valid)
{
    return with_store(name,
                      [mark_valid](const SOUGHT_NAME& sought) ZON_INLINED ZON_LOCK_HELD
                      {
                          CFG_INI_RECORD& record = find_counted_or_insert_record(sought);
                          record.had_valid_read |= mark_valid;
                          return record.value;
                      });
}

// The same without a mark, for a caller that marks later. If the settings had to be loaded, `kept_name` becomes a copy
// of the name, and the caller must use this copy from then on.
[[gnu::always_inline]] inline std::string read_string(std::string_view name, std::string& kept_name,
                                                      FOUND_RECORD& found)
{
    return with_store(
        name,
        [&found](const SOUGHT_NAME& sought) ZON_INLINED ZON_LOCK_HELD
        {
            CFG_INI_RECORD& record = find_counted_or_insert_record(sought);
            found = {.record = &record, .epoch = name_cache.epoch};
            return record.value;
        },
        kept_name);
}
}

#endif
