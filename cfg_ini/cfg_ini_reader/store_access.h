// Getting at the store: an operation run with the lock held and a store present, the settings loaded first where there
// is none.
//
// A load runs callbacks, and a callback may change the string that the caller handed in. The call is about the name as
// it was when the call was made, so the path that loads works on a copy. Calls that find a store copy nothing.
#ifndef CFG_INI_CFG_INI_READER_STORE_ACCESS_H
#define CFG_INI_CFG_INI_READER_STORE_ACCESS_H

#include <string>
#include <string_view>

#include "cfg_ini/cfg_ini_reader/name_cache.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/settings_files.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"

namespace zon_cfg
{
// Loads the settings, as often as other threads empty the store again, and runs operation(lock) with LOCK held.
template <typename LOCK, typename OPERATION>
[[gnu::noinline]] auto with_loaded_store(OPERATION operation)
{
    for (;;)
    {
        load_settings_if_no_store();
        LOCK lock;
        if (store_table() != nullptr)
            return operation(lock);
        if constexpr (requires { lock.unlock(); })
            lock.unlock(); // emptied by another thread in between
    }
}

// What operation(sought) answers, run with the lock held and a store present; it runs no callback and keeps nothing of
// the name. `kept_name`, empty at the call, becomes a copy of a name that is not empty if the settings had to be
// loaded.
template <typename OPERATION>
[[gnu::always_inline]] inline auto with_store(std::string_view name, std::string& kept_name, OPERATION operation)
{
    const SOUGHT_NAME sought(name);
    if (store_exists()) [[likely]]
    {
        const STORE_LOCK lock(HANDLE_EXISTS{});
        if (store_table() != nullptr) [[likely]]
            return operation(sought);
    }
    kept_name = name;
    return with_loaded_store<STORE_LOCK>([&](const STORE_LOCK& /*held*/) ZON_LOCK_HELD
                                         { return operation(SOUGHT_NAME(kept_name)); });
}

// The same for a caller that has no use for the name afterwards.
template <typename OPERATION>
[[gnu::always_inline]] inline auto with_store(std::string_view name, OPERATION operation)
{
    const SOUGHT_NAME sought(name);
    if (store_exists()) [[likely]]
    {
        const STORE_LOCK lock(HANDLE_EXISTS{});
        if (store_table() != nullptr) [[likely]]
            return operation(sought);
    }
    return with_loaded_store<STORE_LOCK>([kept_name = std::string(name), operation](const STORE_LOCK& /*held*/)
                                             ZON_LOCK_HELD { return operation(SOUGHT_NAME(kept_name)); });
}
}

#endif
