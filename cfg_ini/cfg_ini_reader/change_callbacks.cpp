#include "cfg_ini/cfg_ini_reader/change_callbacks.h"

#include "cfg_ini/cfg_ini_reader/record_table.h"

constinit CFG_INI_CALLBACK_REGISTRY* s_ini_callbacks = nullptr;
constinit std::uint64_t cfg_ini_watched_kinds = 0;
constinit int cfg_ini_notifications = 0;

namespace
{
THR_MUTEX* locked_store_mutex()
{
    THR_MUTEX* const mutex = store_mutex();
    thr_mutex_lock(mutex);
    return mutex;
}

template <typename NOTIFICATION>
void notify(const std::vector<CFG_INI_CALLBACK*>& callbacks, NOTIFICATION notification)
{
    // The bounds are those from before the walk: a callback must not construct or destroy callbacks.
    ++cfg_ini_notifications;
    for (CFG_INI_CALLBACK* const callback : callbacks)
        (callback->*notification)();
    --cfg_ini_notifications;
}
}

NOTIFYING_STORE_LOCK::NOTIFYING_STORE_LOCK() : NOTIFYING_STORE_LOCK(locked_store_mutex()) {}

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

CFG_INI_CALLBACK::CFG_INI_CALLBACK(const char* variable_name) : name(variable_name)
{
    // No scope guard, intended: a null name, or no memory, throws with the lock held. A host that gets here cannot go
    // on.
    THR_MUTEX* const mutex = locked_store_mutex();
    if (s_ini_callbacks == nullptr)
        s_ini_callbacks = new CFG_INI_CALLBACK_REGISTRY;
    (*s_ini_callbacks)[std::string(name)].push_back(this);
    cfg_ini_watched_kinds |= std::uint64_t{1} << callback_name_kind(name);
    thr_mutex_unlock(mutex);
}

CFG_INI_CALLBACK::~CFG_INI_CALLBACK()
{
    const STORE_LOCK lock;
    if (s_ini_callbacks == nullptr)
        return;
    std::erase((*s_ini_callbacks)[std::string(name)], this);
}

void CFG_INI_CALLBACK::refresh() {}

void CFG_INI_CALLBACK::reset_to_default() {}
