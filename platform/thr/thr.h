// Thread service: the recursive mutex that guards the internal variable store.
//
// What the store expects of a mutex.
// - Creation happens at first use. If several threads use the store first, each may create a mutex, and the store keeps
//   one of them. Creation may throw, and must not return null.
// - A mutex is never destroyed, so that code that runs after static destruction can still lock it.
// - Every lookup locks and unlocks. So both must be fast. They must not throw, and must not call the configuration
//   library.
// - The owner may lock again any number of times. Each lock is paired with one unlock by the same thread.
// - What a thread holds when it ends stays held. The system may give its pthread_t to another thread; that thread must
//   not count as the owner.
//
// What the store expects of fork. A thread may call fork at any moment outside a signal handler, even while it holds
// the mutex, as within a notification. fork must return within 100 milliseconds, and the child must be able to use
// every mutex:
// - Handlers registered with pthread_atfork take every mutex before the fork. They release it after the fork, in the
//   parent and in the child. A thread that held it before holds it after, also in the child.
// - The handlers wait for a mutex that another thread holds, but not for ever: its holder may wait for the thread that
//   forks, or have ended. In the child, such a mutex is made free, and its user is notified: see
//   thr_mutex_call_if_lost.
// - Either creating a mutex waits while another thread forks, or fork waits for the creation, as it does for a mutex.
// - The handlers are registered when the service is loaded. Handlers that a host registers later run earlier before the
//   fork, so they may wait for a lock under which other threads use the library. Handlers that a host registered
//   earlier must not.
//
// The default does all this, and waits 80 milliseconds for all mutexes together. posix_spawn and vfork run no such
// handlers, and neither do system and popen, which use them. They need none: the child shares no lock and runs no code
// of this process. A child of _Fork or of a bare clone must not use the library, because the handlers did not run.
//
// Example, the way in which the store uses the service:
//
//     static THR_MUTEX* const mutex = thr_mutex_create();   // never destroyed
//     thr_mutex_lock(mutex);
//     thr_mutex_lock(mutex);                                // the owner may lock again
//     thr_mutex_unlock(mutex);
//     thr_mutex_unlock(mutex);                              // now another thread can have it
#ifndef PLATFORM_THR_THR_H
#define PLATFORM_THR_THR_H

struct THR_MUTEX;

// Returns a new mutex that nobody holds. It belongs to the caller for ever. Any thread may call.
THR_MUTEX* thr_mutex_create();

// Waits until no other thread holds the mutex, and then takes it once more for the calling thread.
void thr_mutex_lock(THR_MUTEX* mutex);

// Releases the mutex once. The caller must hold it. Another thread can take it when it was released as often as taken.
void thr_mutex_unlock(THR_MUTEX* mutex);

// Registers `lost` for the children in which this mutex had to be made free, because another thread of the parent held
// it for too long. What the mutex guards may be half changed in such a child. The child calls `lost` once, before fork
// returns in it, on its only thread, with the mutex free.
//
// `lost` may store to atomic objects and do nothing else. It must not allocate, lock, wait, throw or fork, because
// other mutexes, and those of other libraries, may still be held at that moment.
//
// A mutex has one such function, the one registered last. Null removes it; a library must do this before it is
// unloaded. A mutex that another service created is ignored. Any thread may call; the call does not wait.
//
// A host's service may lack this function. It is declared weak, so the library then finds it null, and a child uses
// what the mutex guards as it finds it. Every caller must compare the function with null first:
//
//     if (thr_mutex_call_if_lost != nullptr)
//         thr_mutex_call_if_lost(mutex, lost);
[[gnu::weak]] void thr_mutex_call_if_lost(THR_MUTEX* mutex, void (*lost)());

#endif
