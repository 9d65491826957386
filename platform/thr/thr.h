// Thread service: the recursive mutex that guards the internal variable store.
//
// What the store expects. Creation happens on first use; it may be raced by several threads, each of which then makes a
// mutex, and the store keeps one of them. It may throw, and must not return null. A mutex is never destroyed, so that
// code that runs after static destruction can still lock it. Locking and unlocking are called for every lookup: they
// must be fast, must not throw, and must not call back into the configuration library. The owner may lock again any
// number of times; each lock is paired with one unlock by the same thread. What a thread holds when it ends stays held:
// another thread that the system gives the same pthread_t must not pass for its owner.
//
// Around fork. A thread may call fork at any moment outside a signal handler, also while it holds the mutex, as within
// a notification. It must come back within 100 milliseconds, and the child must be able to use every mutex:
// - Handlers registered with pthread_atfork take every mutex before the fork, and release it after the fork in the
//   parent and in the child. A thread that held it before holds it after, in the child too.
// - A mutex that another thread holds is waited for, but not for ever: its holder may wait for the forking thread, or
//   have ended. In the child such a mutex is made free, and its user is told: see thr_mutex_call_if_lost.
// - Creating a mutex waits while another thread forks, or else fork waits for it as for a mutex.
// - Handlers are registered when the service is loaded. A host's own handlers, if registered later, then run first
//   before the fork: they may wait for a lock under which other threads use the library. One that was registered
//   earlier must not.
// The default does so, and waits 80 milliseconds for all mutexes together. posix_spawn and vfork, hence also system and
// popen, run no such handlers and need none: the child shares no lock and runs no code of this process. A child of
// _Fork or of a bare clone must not use the library, as handlers did not run.
#ifndef PLATFORM_THR_THR_H
#define PLATFORM_THR_THR_H

struct THR_MUTEX;

// A new mutex that nobody holds; the caller's for ever. Any thread may call.
THR_MUTEX* thr_mutex_create();

// Waits until no other thread holds the mutex, then holds it once more.
void thr_mutex_lock(THR_MUTEX* mutex);

// Gives up one holding; the last lets the next thread in.
void thr_mutex_unlock(THR_MUTEX* mutex);

// From now on a child in which this mutex had to be made free, because another thread of the parent held it for too
// long, calls `lost` before fork returns there: what the mutex guards may be half changed. Called once in such a child,
// on its only thread, with the mutex free; other mutexes may be held or not yet free, by then and by other libraries'
// handlers. So `lost` may store to atomic objects and nothing else: it must not allocate, lock, wait, throw or fork.
// One function a mutex, the last one registered; null takes it back, as a library must before it is unloaded. A mutex
// that another service made is left alone. Any thread may call; does not wait.
//
// A host's service may lack this function: it is declared weak, so that the library finds it null there. Such a child
// then uses what the mutex guards as it finds it. Whoever calls it compares it with null before.
[[gnu::weak]] void thr_mutex_call_if_lost(THR_MUTEX* mutex, void (*lost)());

#endif
