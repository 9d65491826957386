#include "platform/thr/thr.h"

#include <mutex>

struct THR_MUTEX
{
    std::recursive_mutex mutex;
};

THR_MUTEX* thr_mutex_create()
{
    return new THR_MUTEX;
}

void thr_mutex_lock(THR_MUTEX* mutex)
{
    mutex->mutex.lock();
}

void thr_mutex_unlock(THR_MUTEX* mutex)
{
    mutex->mutex.unlock();
}
