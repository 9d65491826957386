#include "cfg_ini/cfg_ini_reader/store_access.h"

#include "cfg_ini/cfg_ini.h"

void read_settings_if_no_store()
{
    if (cfg_ini_file.load(std::memory_order_acquire) != nullptr)
        return;
    const std::string path = cfg_get_default_ini_file(false);

    // The lock is held over the whole first reading, environment sources included: a thread that races it gets the
    // layered answer, and no value that it stores is read over.
    const STORE_LOCK lock;
    if (cfg_ini_file.load(std::memory_order_relaxed) == nullptr)
        cfg_read_ini_file(path);
}
