#include "cfg_ini/cfg_ini_reader/fork_recovery.h"

#include <atomic>

#include "cfg_ini/cfg_ini_reader/change_callbacks.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "platform/thr/thr.h"

namespace zon_cfg
{
namespace
{
// Keeps the table reachable, so that leak checkers of the child know that nobody meant to free it.
constinit CFG_INI_TABLE* left_behind = nullptr;
constinit std::atomic<bool> callbacks_know_it = false;

// Runs in the child before fork returns there, on its only thread, so it needs no lock. It neither allocates nor frees.
// The load at the next use of a variable does the rest: it clears the name cache, resets the callbacks and marks the
// settings as changed.
void start_without_store() ZON_UNCHECKED
{
    if (CFG_INI_TABLE* const table = cfg_ini_file.exchange(nullptr, std::memory_order_relaxed); table != nullptr)
        left_behind = table;
    callbacks_know_it.store(true, std::memory_order_relaxed);
    leave_changing_registry();
}

void set_recovery(void (*recovery)())
{
    // A host's thread service may lack this function. A child then uses the store as it finds it.
    if (thr_mutex_call_if_lost != nullptr)
        thr_mutex_call_if_lost(store_mutex(), recovery);
}
}

void start_fork_recovery()
{
    set_recovery(start_without_store);
}

void stop_fork_recovery()
{
    set_recovery(nullptr);
}

bool callbacks_knew_store_left_behind()
{
    return callbacks_know_it.exchange(false, std::memory_order_relaxed);
}
}
