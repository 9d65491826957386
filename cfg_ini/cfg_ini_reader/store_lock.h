// The one lock of the internal variable store, and the scopes that hold it.
//
// The lock is recursive. A load holds it while it stores each line, callbacks run with it held and may read and set
// variables, and the debug-message settings read variables while they hold it. It guards everything that is marked
// ZON_GUARDED: the table with its records, the name cache, the callback registry, the path buffers, and the flag for
// changed settings. clang checks these annotations when scripts/lint builds; other compilers ignore them.
//
// A scope object holds the lock, in one of two classes. STORE_LOCK releases it however the scope is left.
// NOTIFYING_STORE_LOCK is for scopes in which callbacks may run: an exception from a callback leaves the lock held.
#ifndef CFG_INI_CFG_INI_READER_STORE_LOCK_H
#define CFG_INI_CFG_INI_READER_STORE_LOCK_H

#include <atomic>

#include "platform/thr/thr.h"

#ifdef __clang__
#define ZON_THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define ZON_THREAD_SAFETY(attribute)
#endif
#define ZON_GUARDED ZON_THREAD_SAFETY(guarded_by(zon_cfg::store_lock))            // read and written under it
#define ZON_LOCK_HELD ZON_THREAD_SAFETY(requires_capability(zon_cfg::store_lock)) // the caller holds it
#define ZON_UNCHECKED ZON_THREAD_SAFETY(no_thread_safety_analysis)                // for what clang cannot follow
#define ZON_LOCKS ZON_THREAD_SAFETY(acquire_capability(zon_cfg::store_lock)) ZON_UNCHECKED
#define ZON_UNLOCKS ZON_THREAD_SAFETY(release_capability()) ZON_UNCHECKED

// The lock's handle: null until first needed, never destroyed, so that exit handlers can still ask for variables.
extern constinit std::atomic<THR_MUTEX*> cfg_ini_mutex;

namespace zon_cfg
{
// Stands for the lock in annotations; no object of it exists.
class ZON_THREAD_SAFETY(capability("store lock")) STORE_CAPABILITY
{
};
extern const STORE_CAPABILITY store_lock;

// The lock's handle, created now if need be. Racing first callers get the same handle.
THR_MUTEX* store_mutex();

// Passed by callers that know that the lock's handle exists: they saw a store, and every store is made under the lock.
struct HANDLE_EXISTS
{
};

// Holds the lock for a scope that runs no callback.
class ZON_THREAD_SAFETY(scoped_lockable) STORE_LOCK
{
public:
    STORE_LOCK() ZON_LOCKS : mutex(store_mutex())
    {
        thr_mutex_lock(mutex);
    }
    explicit STORE_LOCK(HANDLE_EXISTS /*unused*/) ZON_LOCKS : mutex(cfg_ini_mutex.load(std::memory_order_relaxed))
    {
        thr_mutex_lock(mutex);
    }
    [[gnu::always_inline]] ~STORE_LOCK() ZON_UNLOCKS
    {
        thr_mutex_unlock(mutex);
    }
    STORE_LOCK(const STORE_LOCK&) = delete;
    STORE_LOCK& operator=(const STORE_LOCK&) = delete;

private:
    THR_MUTEX* const mutex;
};

// How many notifications have begun and not returned. One that an exception ended stays counted.
extern constinit int notifications_under_way ZON_GUARDED;

// Holds the lock for a scope that may run callbacks. An exception releases the lock, unless it comes from a callback.
// An exception from a callback leaves the lock held, once for each of these scopes that it passes. This is intended: a
// host object failed half-way, and other threads should not see the store in that state.
//
// The lock is then held for good. Its thread can go on using the store. Every other thread waits for ever at its next
// use, also in exit(), where ~CFG_INI_INITIALIZER takes the lock. The process can still be ended by exit() on the
// thread that threw, or by _exit(), quick_exit() or abort() on any thread. CFG_INI_CALLBACK in cfg_ini/cfg_ini.h
// explains this to hosts.
class ZON_THREAD_SAFETY(scoped_lockable) NOTIFYING_STORE_LOCK
{
public:
    NOTIFYING_STORE_LOCK() ZON_LOCKS : NOTIFYING_STORE_LOCK(store_mutex()) {}
    explicit NOTIFYING_STORE_LOCK(HANDLE_EXISTS /*unused*/) ZON_LOCKS
        : NOTIFYING_STORE_LOCK(cfg_ini_mutex.load(std::memory_order_relaxed))
    {
    }

    [[gnu::always_inline]] ~NOTIFYING_STORE_LOCK() ZON_UNLOCKS
    {
        if (mutex != nullptr && notifications_under_way == notifications_around)
            thr_mutex_unlock(mutex);
    }

    // Releases the lock. Every path that leaves the scope without an exception must call this. The destructor would
    // keep the lock held if one callback had caught the exception of another, which changes the count that it compares.
    void unlock() ZON_UNLOCKS
    {
        thr_mutex_unlock(mutex);
        mutex = nullptr;
    }

    NOTIFYING_STORE_LOCK(const NOTIFYING_STORE_LOCK&) = delete;
    NOTIFYING_STORE_LOCK& operator=(const NOTIFYING_STORE_LOCK&) = delete;

private:
    explicit NOTIFYING_STORE_LOCK(THR_MUTEX* handle) ZON_LOCKS : mutex(locked(handle)) {}

    static THR_MUTEX* locked(THR_MUTEX* handle)
    {
        thr_mutex_lock(handle);
        return handle;
    }

    THR_MUTEX* mutex;
    const int notifications_around = notifications_under_way;
};
}

#endif
