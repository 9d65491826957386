// The registry of CFG_INI_CALLBACK objects and the two walks that notify them.
#ifndef CFG_INI_CFG_INI_READER_CHANGE_CALLBACKS_H
#define CFG_INI_CFG_INI_READER_CHANGE_CALLBACKS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cfg_ini/cfg_ini.h"
#include "platform/thr/thr.h"

// The standard hash and equality of strings, for texts that are no strings as well.
struct EXACT_NAME_HASH
{
    using is_transparent = void;

    std::size_t operator()(std::string_view name) const noexcept
    {
        return std::hash<std::string_view>()(name);
    }
};

using CFG_INI_CALLBACK_REGISTRY =
    std::unordered_map<std::string, std::vector<CFG_INI_CALLBACK*>, EXACT_NAME_HASH, std::equal_to<>>;

// Variable name, spelt exactly, to its callbacks in registration order. Null until the first is constructed, never
// freed (it outlives every store and static object). Guarded by the store's lock.
extern constinit CFG_INI_CALLBACK_REGISTRY* s_ini_callbacks;

// A bit for each kind of name in the registry, the kinds being those of callback_name_kind; bits are never taken back.
// Most names that are stored are of no kind that anybody watches, and so need not be looked for. Guarded by the lock.
extern constinit std::uint64_t cfg_ini_watched_kinds;

// 0 to 63, from the length and the last character.
inline unsigned int callback_name_kind(std::string_view name)
{
    const unsigned char last = name.empty() ? '\0' : static_cast<unsigned char>(name.back());
    return static_cast<unsigned int>(5 * name.size() + last) % 64;
}

// How many notifications are under way, those that an exception ended included. Guarded by the lock.
extern constinit int cfg_ini_notifications;

// Holds the store's lock for a scope that may notify callbacks. Any exception releases the lock, but for one that came
// out of a callback: that one leaves it held, once for each of these scopes that it passes. Intended: the store is not
// in a state that other threads should see while a host object failed half-way, and hosts end the process then.
class NOTIFYING_STORE_LOCK
{
public:
    // Takes the lock.
    NOTIFYING_STORE_LOCK();

    // Takes over one hold of the lock from the caller.
    explicit NOTIFYING_STORE_LOCK(THR_MUTEX* held) : mutex(held), notifications_around(cfg_ini_notifications) {}

    ~NOTIFYING_STORE_LOCK()
    {
        if (mutex != nullptr && cfg_ini_notifications == notifications_around)
            thr_mutex_unlock(mutex);
    }

    // Ends the hold; every path that is left without an exception must call it.
    void unlock()
    {
        thr_mutex_unlock(mutex);
        mutex = nullptr;
    }

    NOTIFYING_STORE_LOCK(const NOTIFYING_STORE_LOCK&) = delete;
    NOTIFYING_STORE_LOCK& operator=(const NOTIFYING_STORE_LOCK&) = delete;

private:
    THR_MUTEX* mutex;
    const int notifications_around;
};

// --- The caller holds the lock, through a NOTIFYING_STORE_LOCK ---

// Calls refresh() of the callbacks of exactly this name, in registration order.
void refresh_callbacks_in_registry(std::string_view name);
inline void refresh_callbacks(std::string_view name)
{
    if ((cfg_ini_watched_kinds >> callback_name_kind(name) & 1) != 0)
        refresh_callbacks_in_registry(name);
}

// Calls reset_to_default() of every callback; the names in no fixed order, those of one name in registration order.
void reset_callbacks();

#endif
