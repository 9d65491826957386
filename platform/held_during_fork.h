// A mutex for the services' own use. No child of a fork finds it held by a thread that does not exist there.
#ifndef PLATFORM_HELD_DURING_FORK_H
#define PLATFORM_HELD_DURING_FORK_H

#include <chrono>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <thread>

// While an object of this class with static duration exists, every thread that forks holds `MUTEX` from before the fork
// until after it.
//
// The mutex must be held for a few instructions only. Each of these must leave the guarded data consistent, and none
// may call anything that a host can replace, such as an allocation. So a fork hardly waits, unless the fork of another
// thread takes long. Then it goes on without the mutex, and its child creates the mutex anew.
//
// Handlers of others may fork while the forking thread holds the mutex. Only the outermost fork takes and releases it.
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
