// Registers the host's callback objects by name, and notifies them.
//
// The registry is a map from a name, spelt exactly, to a list of objects in the order of their construction. Entries
// are never erased: a name whose objects are all gone keeps an empty list.
//
// Most variables that are stored have no callback. A Bloom filter of 64 bits over the registered names, one bit for
// each, spares most searches of the map: a clear bit means that the name has no callback. The filter may answer
// "perhaps" for a name without one, but never "no" for a name with one.
//
// A notification of a list counts itself in notifications_under_way, and subtracts itself only if it ends without an
// exception. From the difference, NOTIFYING_STORE_LOCK knows that a callback threw, and keeps the lock.
#include "cfg_ini/cfg_ini_reader/change_callbacks.h"

#include <atomic>

#include "cfg_ini/cfg_ini_reader/name_matching.h"

constinit zon_cfg::CFG_INI_CALLBACK_REGISTRY* s_ini_callbacks = nullptr;

namespace zon_cfg
{
constinit std::uint64_t watched_names = 0;

namespace
{
// True while the registry's structure changes. For the child of a fork, which may copy the memory between any two
// instructions of another thread.
constinit std::atomic<bool> registry_is_changing = false;

class REGISTRY_CHANGE
{
public:
    REGISTRY_CHANGE()
    {
        registry_is_changing.store(true, std::memory_order_seq_cst);
    }
    ~REGISTRY_CHANGE()
    {
        registry_is_changing.store(false, std::memory_order_release);
    }
    REGISTRY_CHANGE(const REGISTRY_CHANGE&) = delete;
    REGISTRY_CHANGE& operator=(const REGISTRY_CHANGE&) = delete;
};

template <typename NOTIFICATION>
void notify(const std::vector<CFG_INI_CALLBACK*>& callbacks, NOTIFICATION notification) ZON_LOCK_HELD
{
    // The bounds are those from before the walk: a callback must not construct or destroy callbacks.
    ++notifications_under_way;
    for (CFG_INI_CALLBACK* const callback : callbacks)
        (callback->*notification)();
    --notifications_under_way;
}
}

void refresh_callbacks_in_registry(std::string_view name)
{
    if (s_ini_callbacks == nullptr)
        return;
    if (const auto entry = s_ini_callbacks->find(name); entry != s_ini_callbacks->end())
        notify(entry->second, &CFG_INI_CALLBACK::refresh);
}

void reset_callbacks()
{
    if (s_ini_callbacks == nullptr)
        return;
    for (const auto& [name, callbacks] : *s_ini_callbacks)
        notify(callbacks, &CFG_INI_CALLBACK::reset_to_default);
}

void leave_changing_registry()
{
    if (!registry_is_changing.load(std::memory_order_relaxed))
        return;
    s_ini_callbacks = nullptr;
    watched_names = 0;
    registry_is_changing.store(false, std::memory_order_relaxed);
}
}

CFG_INI_CALLBACK::CFG_INI_CALLBACK(const char* variable_name) : name(variable_name)
{
    using namespace zon_cfg;
    // A failure below counts as a notification that an exception ended, and so leaves the lock held. This is intended:
    // a null name, or no memory, throws with the lock held. A host that gets here cannot go on.
    NOTIFYING_STORE_LOCK lock;
    ++notifications_under_way;
    const REGISTRY_CHANGE change;
    if (s_ini_callbacks == nullptr)
        s_ini_callbacks = new CFG_INI_CALLBACK_REGISTRY;
    (*s_ini_callbacks)[std::string(not_null(cfg_ini_name_view(name)))].push_back(this);
    watched_names |= std::uint64_t{1} << bloom_bit_of(name);
    --notifications_under_way;
    lock.unlock();
}

CFG_INI_CALLBACK::~CFG_INI_CALLBACK()
{
    const zon_cfg::STORE_LOCK lock;
    if (s_ini_callbacks == nullptr)
        return;
    const zon_cfg::REGISTRY_CHANGE change;
    // Found without a copy of the name: a lack of memory here would end the process.
    if (const auto entry = s_ini_callbacks->find(std::string_view(name)); entry != s_ini_callbacks->end())
        std::erase(entry->second, this);
    else
        s_ini_callbacks->try_emplace(name); // the host changed the name, and keeps an empty list under the new one
}

void CFG_INI_CALLBACK::refresh() {}

void CFG_INI_CALLBACK::reset_to_default() {}
