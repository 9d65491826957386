#include "cfg_ini/cfg_ini_reader/store_lock.h"

constinit std::atomic<THR_MUTEX*> cfg_ini_mutex = nullptr;

namespace zon_cfg
{
constinit int notifications_under_way = 0;

THR_MUTEX* store_mutex()
{
    THR_MUTEX* mutex = cfg_ini_mutex.load(std::memory_order_acquire);
    if (mutex == nullptr) [[unlikely]]
    {
        // There is no guard, since a fork could copy it while it is taken. If another thread is first, the mutex made
        // here is never locked. The platform keeps it, since mutexes are never destroyed.
        THR_MUTEX* const created = thr_mutex_create();
        if (cfg_ini_mutex.compare_exchange_strong(mutex, created, std::memory_order_acq_rel, std::memory_order_acquire))
            mutex = created;
    }
    return mutex;
}
}
