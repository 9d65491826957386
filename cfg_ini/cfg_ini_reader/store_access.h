// Runs an operation with the lock held and a store present. If there is no store, the settings are loaded first.
//
// The fast path tests for a store, takes the lock and tests again, since another thread may have emptied the store in
// between. All of it is compiled into the function that the host calls, and it copies nothing.
//
// The slow path loads the settings, and loads them again as often as other threads empty the store in between. A load
// runs callbacks, and a callback may change the string that the caller passed. The call is about the name as it was
// when the call was made, so the slow path works on a copy. It is a function of its own, so that the fast path does not
// pay for the copy.
#ifndef CFG_INI_CFG_INI_READER_STORE_ACCESS_H
#define CFG_INI_CFG_INI_READER_STORE_ACCESS_H

#include <string>
#include <string_view>

#include "cfg_ini/cfg_ini_reader/name_cache.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/settings_files.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"

// Stands between the parameters and the body of a lambda. The compiler then inlines the lambda.
#define ZON_INLINED __attribute__((always_inline))

namespace zon_cfg
{
// Loads the settings if there is no store, and runs operation(lock) with LOCK held.
template <typename LOCK, typename OPERATION>
auto with_loaded_store(OPERATION operation)
{
    for (;;)
    {
        if (!store_exists()) [[unlikely]]
            load_settings_if_no_store();
        LOCK lock(HANDLE_EXISTS{});
        if (store_table() != nullptr) [[likely]]
            return operation(lock);
        if constexpr (requires { lock.unlock(); })
            lock.unlock(); // emptied by another thread in between
    }
}

// The slow path for a name. It takes the parts of the name as separate arguments: a std::string_view would have to be
// in memory, and the fast path would have to put it there. `kept_name` becomes a copy of the name.
template <typename OPERATION>
[[gnu::noinline, gnu::cold]] auto load_for_name(const char* characters, std::size_t length, OPERATION operation,
                                                std::string& kept_name)
{
    kept_name.assign(characters, length);
    return with_loaded_store<STORE_LOCK>([&](const STORE_LOCK& /*held*/) ZON_LOCK_HELD
                                         { return operation(SOUGHT_NAME(kept_name)); });
}

template <typename OPERATION>
[[gnu::noinline, gnu::cold]] auto load_for_name(const char* characters, std::size_t length, OPERATION operation)
{
    std::string kept_name;
    return load_for_name(characters, length, operation, kept_name);
}

// Returns the result of operation(sought), which runs with the lock held and a store present. The operation must run no
// callback and keep nothing of the name. A caller that uses the name afterwards passes `kept_name`, an empty string. If
// it is not empty afterwards, the settings had to be loaded, and the caller must use this copy of the name.
template <typename OPERATION, typename... KEPT_NAME>
[[gnu::always_inline]] inline auto with_store(std::string_view name, OPERATION operation, KEPT_NAME&... kept_name)
{
    const SOUGHT_NAME sought(name);
    if (store_exists()) [[likely]]
    {
        const STORE_LOCK lock(HANDLE_EXISTS{});
        if (store_table() != nullptr) [[likely]]
            return operation(sought);
    }
    return load_for_name(name.data(), name.size(), operation, kept_name...);
}
}

#endif
