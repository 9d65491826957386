// Getting at the store: the lock taken with a store that exists, the settings files read first where it does not.
#ifndef CFG_INI_CFG_INI_READER_STORE_ACCESS_H
#define CFG_INI_CFG_INI_READER_STORE_ACCESS_H

#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "platform/thr/thr.h"

// Reads the settings files if there is no store, and returns with the lock held and a store present. The caller unlocks
// the mutex that it returns. Throws what the reading throws.
inline THR_MUTEX* lock_existing_store();

// Reads the settings files if there is no store. Racing callers wait for one reading, and see all its layers. Another
// thread may have emptied the store again by the time it returns.
void read_settings_if_no_store();

// lock_existing_store for a scope that notifies no callback.
class STORE_ACCESS
{
public:
    STORE_ACCESS() : mutex(lock_existing_store()) {}
    ~STORE_ACCESS()
    {
        thr_mutex_unlock(mutex);
    }
    STORE_ACCESS(const STORE_ACCESS&) = delete;
    STORE_ACCESS& operator=(const STORE_ACCESS&) = delete;

private:
    THR_MUTEX* const mutex;
};

inline THR_MUTEX* lock_existing_store()
{
    for (;;)
    {
        // Untaken but for the first use and after an emptying: a store is there, and with it the mutex.
        if (cfg_ini_file.load(std::memory_order_acquire) == nullptr) [[unlikely]]
            read_settings_if_no_store();
        THR_MUTEX* const mutex = cfg_ini_mutex.load(std::memory_order_relaxed);
        thr_mutex_lock(mutex);
        if (cfg_ini_file.load(std::memory_order_relaxed) != nullptr) [[likely]]
            return mutex;
        thr_mutex_unlock(mutex); // emptied by another thread in between
    }
}

#endif
