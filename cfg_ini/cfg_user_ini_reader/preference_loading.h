// Loads the preference file, and hands the search paths in it over to the host.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_LOADING_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_LOADING_H

#include <cstddef>

#include "cfg_ini/cfg_user_ini_reader/preference_records.h"

// Loads the file into new maps. Then hands the user's library paths and IP search paths over to the general service,
// unless they are empty. If the file does not exist, the maps stay empty and nothing is handed over. A file that cannot
// be read has no lines. May be called only while nothing is loaded: maps that exist would be forgotten, not freed.
//
// If an exception comes before the maps are complete, nothing is loaded. If it comes later, from a lookup or from the
// host's function, the maps stay loaded, and the paths that were not handed over stay owed.
void cfg_read_user_ini_file();

namespace zon_cfg
{
// How many of `search_paths`, counted from the last, still have to be handed over. Meaningless while nothing is loaded.
extern constinit std::size_t search_paths_owed;

void hand_over_owed_search_paths();

// Every use of the preferences begins with this call. Afterwards they are loaded, and no search path is owed.
inline void load_preferences_if_needed()
{
    if (cfg_user_ini_records == nullptr)
        cfg_read_user_ini_file();
    else if (search_paths_owed != 0)
        hand_over_owed_search_paths();
}
}

#endif
