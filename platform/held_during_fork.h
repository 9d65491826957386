// A mutex of ours that no child of a fork finds taken by a thread that is not there.
#ifndef PLATFORM_HELD_DURING_FORK_H
#define PLATFORM_HELD_DURING_FORK_H

#include <chrono>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <thread>

// An object of static duration has `MUTEX` held by every thread that forks, from before the fork until after it. This
// is for mutexes held for a few instructions only, each of which leaves whole what the mutex guards, and which call
// nothing that a host could replace, such as an allocation. So a fork waits for next to nothing, unless another
// thread's fork takes long; it then goes on without the mutex, and its child makes the mutex anew.
//
// A handler of others may fork while the forking thread holds the mutex: only the outermost fork takes and releases it.
template <std::mutex& MUTEX>
class HELD_DURING_FORK
{
public:
    HELD_DURING_FORK()
    {
        pthread_atfork(before_fork, after_fork_in_parent, after_fork_in_child);
    }

private:
    static void before_fork()
    {
        if (forks++ > 0)
            return;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(10);
        while (!(is_held = MUTEX.try_lock()) && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
    }

    static void after_fork_in_parent()
    {
        if (--forks == 0 && is_held)
            MUTEX.unlock();
    }

    static void after_fork_in_child()
    {
        if (!is_held)
            std::construct_at(&MUTEX);
        after_fork_in_parent();
    }

    // The calling thread's forks in progress, and whether they hold the mutex.
    [[gnu::tls_model("initial-exec")]] static inline constinit thread_local unsigned int forks = 0;
    [[gnu::tls_model("initial-exec")]] static inline constinit thread_local bool is_held = false;
};

#endif
