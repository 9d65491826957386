// Loading the preference file, and handing the search paths in it over to the host.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_LOADING_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_LOADING_H

#include <cstddef>

#include "cfg_ini/cfg_user_ini_reader/preference_records.h"

// Loads the file into new maps, then hands the user's library and IP search paths, where not empty, to the general
// service. A missing file leaves the maps empty and hands nothing over; one that cannot be read has no lines. To be
// called only while nothing is loaded: maps that are there are forgotten, not freed.
//
// An exception before the maps are whole leaves nothing loaded. One after that, from a lookup or from the host's
// function, leaves them loaded and what was not handed over yet owed.
void cfg_read_user_ini_file();

namespace zon_cfg
{
// How many of `search_paths`, counted from the last, still have to be handed over; means nothing while nothing is
// loaded.
extern constinit std::size_t search_paths_owed;

void hand_over_owed_search_paths();

// What every use of the preferences begins with: afterwards they are loaded and nothing is owed.
inline void load_preferences_if_needed()
{
    if (cfg_user_ini_records == nullptr)
        cfg_read_user_ini_file();
    else if (search_paths_owed != 0)
        hand_over_owed_search_paths();
}
}

#endif
