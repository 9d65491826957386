// A mutex of ours that no child of a fork finds taken by a thread that is not there.
#ifndef PLATFORM_HELD_DURING_FORK_H
#define PLATFORM_HELD_DURING_FORK_H

#include <mutex>
#include <pthread.h>

// An object of static duration has `MUTEX` held by every thread that forks, from before the fork until after it. This
// is for mutexes held for a few instructions only, which call nothing that a host could replace, such as an allocation:
// the fork waits as long as it takes, and a fork while the forking thread itself holds the mutex would never end.
template <std::mutex& MUTEX>
class HELD_DURING_FORK
{
public:
    HELD_DURING_FORK()
    {
        pthread_atfork(lock, unlock, unlock);
    }

private:
    static void lock()
    {
        MUTEX.lock();
    }
    static void unlock()
    {
        MUTEX.unlock();
    }
};

#endif
