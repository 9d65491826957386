// Reading the settings: layering, and emptying. The operations are public
// (cfg_ini/cfg_ini.h).
#ifndef CFG_INI_CFG_INI_READER_SETTINGS_FILES_H
#define CFG_INI_CFG_INI_READER_SETTINGS_FILES_H

#include "cfg_ini/cfg_ini_reader/settings_sources.h"

// Zero-terminated paths of the files last opened, cut at longest_path. Written under the store's lock, never cleared.
extern constinit char cfg_current_velmar_ini_path_name[longest_path + 1];
extern constinit char cfg_current_regtest_ini_path_name[longest_path + 1];
extern constinit char cfg_current_appended_environment_ini_path_name[longest_path + 1];

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
