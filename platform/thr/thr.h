// Thread service: the recursive mutex that guards the internal variable store.
//
// What the store expects. Creation happens once per process, on first use, and may be raced only by calls that the
// store itself serialises; it may throw, and must not return null. The mutex is never destroyed, so that code that runs
// after static destruction can still lock it. Locking and unlocking are called for every lookup: they must be fast,
// must not throw, and must not call back into the configuration library. The owner may lock again any number of times;
// each lock is paired with one unlock by the same thread.
#ifndef PLATFORM_THR_THR_H
#define PLATFORM_THR_THR_H

struct THR_MUTEX;

// A new mutex that nobody holds; the caller's for ever.
THR_MUTEX* thr_mutex_create();

// Waits until no other thread holds the mutex, then holds it once more.
void thr_mutex_lock(THR_MUTEX* mutex);

// Gives up one holding; the last lets the next thread in.
void thr_mutex_unlock(THR_MUTEX* mutex);

#endif
