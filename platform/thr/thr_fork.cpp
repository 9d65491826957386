// What fork does to the default mutexes: one that another thread holds would stay held in the child for ever, for that
// thread is not there, and what it guards would stay as that thread left it.
//
// So the handler before the fork takes every mutex, waiting for those that other threads hold, for a limited time in
// all; the handlers after it release them, in the parent and in the child. What the forking thread itself holds it
// holds once more meanwhile, and its copy in the child holds it on. A mutex that could not be had in time is set free
// in the child, and the function registered for it is called there.
//
// What the child may rely on. The kernel copies one page after the other while the other threads of the parent run on:
// all that one of them writes during the fork may be in the child or not.
// - A mutex that was taken, and what it guards, nobody else writes meanwhile. (Others may mark it as held with
//   sleepers; then one wake-up finds nobody.)
// - Any other mutex counts as lost, whatever the copy of its word says. The one thing never found in that is the
//   identity of the forking thread, so that is_own() tells them apart.
// - The mutexes are linked from the newest to the oldest, and a mutex of the service's own lets one thread at a time
//   add to them. It is taken first: then no mutex is made half before and half after the copying. If it is lost
//   itself, the child goes back to the newest mutex that was seen before.
// - Identities given meanwhile may be given again in the child, as the count of them is copied as well; the threads
//   that have them are not there, nor is anything that names them once the lost mutexes are free.
//
// The handlers are registered when the service is loaded. The later a handler is registered, the earlier it runs before
// a fork: a host's own handlers so run before these, and one that waits for a lock of the host's waits without a mutex
// in hand. Otherwise it would wait for ever beside a thread that holds that lock and asks for a mutex.
//
// They may be registered twice, where mutexes are made before that, or where it failed: waiting for each other would
// need a lock that a fork could copy. And handlers of others may fork. Only the outermost call takes and releases.
#include "platform/thr/thr_fork.h"

#include <atomic>
#include <ctime>
#include <new>
#include <pthread.h>
#include <sys/types.h>
#include <unistd.h>

#include "platform/thr/thr.h"
#include "platform/thr/thr_mutex_state.h"

namespace
{
// For all mutexes together. The rest of the 100 milliseconds that a fork may take is for being scheduled again.
constexpr long longest_wait = 80'000'000; // nanoseconds
constexpr long second = 1'000'000'000;

constinit std::atomic<bool> handlers_are_registered = false;

constinit THR_MUTEX enlisting;
constinit std::atomic<THR_MUTEX*> newest = nullptr; // reaches all others, also for leak checkers

// The calling thread's fork in progress.
struct FORK
{
    unsigned int preparations = 0; // calls of the handler before it, less those of the handlers after it
    pid_t process = 0;             // the forking process; 0 after it, and in a child once it is settled
    THR_MUTEX* newest_before = nullptr;
};
[[gnu::tls_model("initial-exec")]] constinit thread_local FORK own_fork;

timespec from_now(long nanoseconds)
{
    timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    time.tv_nsec += nanoseconds;
    time.tv_sec += time.tv_nsec / second;
    time.tv_nsec %= second;
    return time;
}

void take(THR_MUTEX& mutex, const timespec& deadline)
{
    if (mutex.lock_slowly(&deadline))
        mutex.is_held_for_fork = true;
}

void release(THR_MUTEX& mutex)
{
    if (!mutex.is_own() || !mutex.is_held_for_fork)
        return;
    mutex.is_held_for_fork = false;
    mutex.unlock();
}

void release_all()
{
    for (THR_MUTEX* mutex = newest.load(std::memory_order_acquire); mutex != nullptr; mutex = mutex->next_older)
        release(*mutex);
    release(enlisting);
}

void set_free_if_lost(THR_MUTEX& mutex)
{
    if (mutex.is_own())
        return;
    mutex.count = 0;
    mutex.is_held_for_fork = false;
    mutex.set_free(); // wakes a thread that an earlier handler has started in the child
    if (void (*const lost)() = mutex.lost.load(std::memory_order_acquire); lost != nullptr)
        lost();
}

void settle_in_child()
{
    own_fork.process = 0;
    if (!enlisting.is_own())
        newest.store(own_fork.newest_before, std::memory_order_relaxed);
    set_free_if_lost(enlisting);
    for (THR_MUTEX* mutex = newest.load(std::memory_order_relaxed); mutex != nullptr; mutex = mutex->next_older)
        set_free_if_lost(*mutex);
}

void before_fork()
{
    own_fork.process = getpid();
    if (own_fork.preparations++ > 0)
        return;
    const timespec deadline = from_now(longest_wait);
    take(enlisting, deadline);
    own_fork.newest_before = newest.load(std::memory_order_acquire);
    for (THR_MUTEX* mutex = own_fork.newest_before; mutex != nullptr; mutex = mutex->next_older)
        take(*mutex, deadline);
}

void after_fork_in_parent()
{
    if (--own_fork.preparations > 0)
        return;
    own_fork.process = 0;
    release_all();
}

void after_fork_in_child()
{
    if (own_fork.process != 0)
        settle_in_child();
    if (--own_fork.preparations == 0)
        release_all();
}

// Whether the handlers are registered now.
bool register_handlers()
{
    if (handlers_are_registered.load(std::memory_order_acquire))
        return true;
    if (pthread_atfork(before_fork, after_fork_in_parent, after_fork_in_child) != 0)
        return false;
    handlers_are_registered.store(true, std::memory_order_release);
    return true;
}

// At load. A failure is made good by the first mutex.
[[maybe_unused]] const bool handlers_were_registered_at_load = register_handlers();
}

void zon_thr::protect_from_forks()
{
    if (!register_handlers())
        throw std::bad_alloc();
}

void zon_thr::enlist(THR_MUTEX& mutex)
{
    enlisting.lock();
    mutex.next_older = newest.load(std::memory_order_relaxed);
    newest.store(&mutex, std::memory_order_release);
    enlisting.unlock();
}

void zon_thr::settle_if_forked()
{
    // A process in another namespace may have the parent's number, but then its handler settles it a moment later.
    if (own_fork.process != 0 && own_fork.process != getpid())
        settle_in_child();
}

void thr_mutex_call_if_lost(THR_MUTEX* mutex, void (*lost)())
{
    for (THR_MUTEX* own = newest.load(std::memory_order_acquire); own != nullptr; own = own->next_older)
    {
        if (own == mutex)
            own->lost.store(lost, std::memory_order_release);
    }
}
