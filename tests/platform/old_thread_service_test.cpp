// A host whose thread service is older than thr_mutex_call_if_lost: it links, and finds the function null.
#include <gtest/gtest.h>
#include <mutex>

#include "cfg_ini/cfg_ini.h"
#include "platform/thr/thr.h"

struct THR_MUTEX
{
    std::recursive_mutex mutex;
};

THR_MUTEX* thr_mutex_create()
{
    // Never destroyed: the library still locks it at exit.
    static THR_MUTEX* const only_one = new THR_MUTEX;
    return only_one;
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
    const bool lacks = thr_mutex_call_if_lost == nullptr;
    EXPECT_TRUE(lacks);
}

TEST(OLD_THREAD_SERVICE_TEST, serves_the_library_all_the_same)
{
    cfg_read_ini_file("");
    cfg_set_value("number", "5");
    EXPECT_EQ(5, cfg_get_int_value("number", 0));
}
