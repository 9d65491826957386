// Loads the settings, layer by layer, and empties the store. Most operations are public (cfg_ini/cfg_ini.h).
#ifndef CFG_INI_CFG_INI_READER_SETTINGS_FILES_H
#define CFG_INI_CFG_INI_READER_SETTINGS_FILES_H

#include "cfg_ini/cfg_ini_reader/settings_sources.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"

// The zero-terminated paths of the files that were opened last, cut at longest_path. They are never cleared. The public
// getters return them without taking the lock.
extern constinit char cfg_current_velmar_ini_path_name[zon_cfg::longest_path + 1] ZON_GUARDED;
extern constinit char cfg_current_regtest_ini_path_name[zon_cfg::longest_path + 1] ZON_GUARDED;
extern constinit char cfg_current_appended_environment_ini_path_name[zon_cfg::longest_path + 1] ZON_GUARDED;

namespace zon_cfg
{
// Loads the settings if there is no store. Racing callers wait for one load, and see all its layers. When the function
// returns, another thread may have emptied the store again.
void load_settings_if_no_store();
}

// Empties the store when the library is unloaded.
class CFG_INI_INITIALIZER
{
public:
    constexpr CFG_INI_INITIALIZER() = default;
    ~CFG_INI_INITIALIZER();
    CFG_INI_INITIALIZER(const CFG_INI_INITIALIZER&) = delete;
    CFG_INI_INITIALIZER& operator=(const CFG_INI_INITIALIZER&) = delete;
};

extern CFG_INI_INITIALIZER cfg_ini_initializer;

#endif
