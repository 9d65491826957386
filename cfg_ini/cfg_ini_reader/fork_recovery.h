// What becomes of the store in the child of a fork.
//
// The thread service takes the store's lock around a fork, so that the child finds the store whole. It waits for a
// limited time only: the lock may be held by a thread that loads from a pipe, or may never be released because a
// callback threw. The child of such a fork starts with a free lock and without a store. The old store may be half
// changed, so it is left behind, not freed; the next use of a variable loads the settings anew. For the callbacks,
// which know the old store, that load empties it: they are reset.
#ifndef CFG_INI_CFG_INI_READER_FORK_RECOVERY_H
#define CFG_INI_CFG_INI_READER_FORK_RECOVERY_H

#include "cfg_ini/cfg_ini_reader/store_lock.h"

namespace zon_cfg
{
// Asks the thread service for the above, once there is something that a child could find half changed. May be repeated.
void start_fork_recovery() ZON_LOCK_HELD;

// Takes it back: to be called before the library is unloaded.
void stop_fork_recovery() ZON_LOCK_HELD;

// Whether callbacks keep what they made of a store that was left behind, and have not been reset since; true once.
bool callbacks_knew_store_left_behind() ZON_LOCK_HELD;
}

#endif
