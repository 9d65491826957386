// A host whose thread service is older than thr_mutex_call_if_lost: it links, and finds the function null.
#include <gtest/gtest.h>
#include <mutex>

#include "platform/thr/thr.h"

struct THR_MUTEX
{
    std::recursive_mutex mutex;
};

THR_MUTEX* thr_mutex_create()
{
    static THR_MUTEX only_one;
    return &only_one;
}

void thr_mutex_lock(THR_MUTEX* mutex)
{
    mutex->mutex.lock();
}

void thr_mutex_unlock(THR_MUTEX* mutex)
{
    mutex->mutex.unlock();
}

TEST(OLD_THREAD_SERVICE_TEST, lacks_the_function_for_lost_mutexes)
{
    THR_MUTEX* const mutex = thr_mutex_create();
    EXPECT_EQ(thr_mutex_call_if_lost, nullptr);
    thr_mutex_lock(mutex);
    thr_mutex_unlock(mutex);
}
