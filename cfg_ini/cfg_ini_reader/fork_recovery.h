// What becomes of the store in the child of a fork.
//
// The thread service takes the store's lock around a fork, so that the child finds the store consistent. It waits for
// the lock for a limited time only. A thread that loads from a pipe may hold the lock for longer, and after a callback
// threw it may never be released. The child of such a fork starts with a free lock and without a store. The old store
// may be half changed, so it is left behind and not freed. The next use of a variable loads the settings again. This
// load resets the callbacks, since what they keep comes from the old store.
#ifndef CFG_INI_CFG_INI_READER_FORK_RECOVERY_H
#define CFG_INI_CFG_INI_READER_FORK_RECOVERY_H

#include "cfg_ini/cfg_ini_reader/store_lock.h"

namespace zon_cfg
{
// Registers this recovery with the thread service. Called before a store is made. May be called again.
void start_fork_recovery() ZON_LOCK_HELD;

// Removes the registration. Must be called before the library is unloaded.
void stop_fork_recovery() ZON_LOCK_HELD;

// Whether a store was left behind and the callbacks have not been reset since. Returns true once: the caller then
// resets them.
bool callbacks_knew_store_left_behind() ZON_LOCK_HELD;
}

#endif
