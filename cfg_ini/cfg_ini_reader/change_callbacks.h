// The registry of CFG_INI_CALLBACK objects, and the two functions that notify them.
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
#include "cfg_ini/cfg_ini_reader/store_lock.h"

namespace zon_cfg
{
// The standard hash of a string, also for other texts: a search of the registry builds no string.
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

}

// Maps a variable name, spelt exactly, to its callbacks in the order of registration. Null until the first callback is
// constructed. Never freed, so that it outlives every store and static object.
extern constinit zon_cfg::CFG_INI_CALLBACK_REGISTRY* s_ini_callbacks ZON_GUARDED;

namespace zon_cfg
{
// A Bloom filter, with one hash, over the names in the registry. Most names that are stored have no callback, and the
// filter spares the search for them. No bit is cleared as long as the registry lives.
extern constinit std::uint64_t watched_names ZON_GUARDED;

// 0 to 63, from the length and the last character.
inline unsigned int bloom_bit_of(std::string_view name)
{
    const unsigned char last = name.empty() ? '\0' : static_cast<unsigned char>(name.back());
    return static_cast<unsigned int>(5 * name.size() + last) % 64;
}

// refresh_callbacks and reset_callbacks require a NOTIFYING_STORE_LOCK.

// Calls refresh() of the callbacks of exactly this name, in registration order.
void refresh_callbacks_in_registry(std::string_view name) ZON_LOCK_HELD;
inline void refresh_callbacks(std::string_view name) ZON_LOCK_HELD
{
    if ((watched_names >> bloom_bit_of(name) & 1) != 0)
        refresh_callbacks_in_registry(name);
}

// Calls reset_to_default() of every callback. The names are in no fixed order; the callbacks of one name are in the
// order of registration.
void reset_callbacks() ZON_LOCK_HELD;

// In the child of a fork that interrupted another thread while it changed the registry: starts an empty one. The
// callbacks of the old one are never notified again in this process.
void leave_changing_registry() ZON_LOCK_HELD;
}

#endif
