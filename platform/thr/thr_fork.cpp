// What fork does to the default mutexes. Without the handlers here, a mutex that another thread holds would stay held
// in the child for ever, since the child does not have that thread. What the mutex guards would stay as that thread
// left it.
//
// The handler before the fork takes every mutex. It waits for those that other threads hold, for a limited time in all.
// The handlers after the fork release the mutexes, in the parent and in the child. A mutex that the forking thread
// itself holds is taken once more, so that it still holds it after the fork, also in the child. A mutex that could not
// be taken in time is lost: the child sets it free and calls the function that is registered for it.
//
// What the child may rely on. The kernel copies one page after the other while the other threads of the parent run on.
// So whatever such a thread writes during the fork may be in the child or not.
// - Nobody else writes a mutex that was taken, or what it guards. The one exception: others may mark the mutex as held
//   with sleepers, and then one wake-up finds nobody.
// - Any other mutex counts as lost, whatever the copy of its word says. That copy never has the identity of the forking
//   thread, so is_own() tells the two cases apart.
// - The mutexes are linked from the newest to the oldest. The mutex `enlisting` lets one thread at a time add to them.
//   The handler takes it first, so no mutex is added while the memory is copied. If `enlisting` itself is lost, the
//   child goes back to the newest mutex that the handler saw before the fork.
// - The child may give identities again that other threads of the parent got during the fork, since the count of
//   identities is copied as well. That is harmless: the child does not have these threads, and once the lost mutexes
//   are free, nothing names them.
//
// Order of handlers. The handlers are registered when the service is loaded. The later a handler is registered, the
// earlier it runs before a fork. So a host's own handlers run before these, and one that waits for a lock of the host's
// holds no mutex while it waits. Otherwise it could wait for ever for a thread that holds that lock and waits for a
// mutex.
//
// The handlers may be registered twice, if mutexes are made before the service's own registration or after it has
// failed. To prevent this, one thread would have to wait for the other under a lock, which a fork could copy. Handlers
// of others may fork, too. In both cases, only the outermost call takes and releases.
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
    unsigned int preparations = 0; // calls of the handler before the fork, less those of the handlers after it
    pid_t process = 0;             // the forking process; 0 after the fork, and in a child once it is settled
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

// Registers at load. If this fails, the first creation of a mutex tries again.
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
