// The running release's record of each preference, remembered by number once the map was searched for it.
//
// What it answers is what the map of records would answer. It rests on records never leaving the map before all are
// unloaded: a record that was found stays, and one that was missed, in the sections of other releases as well where
// those are searched, is missed until the map grows.
#ifndef CFG_INI_CFG_USER_INI_READER_RUNNING_RECORDS_H
#define CFG_INI_CFG_USER_INI_READER_RUNNING_RECORDS_H

#include <cstddef>
#include <string>
#include <vector>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_user_ini_reader/preference_file.h"

struct REMEMBERED_RECORD
{
    CFG_USER_VALUE_STRUCT* record; // null when it was not found
    std::size_t searched;          // one more than the map held when it was searched; 0 when it was not
    bool searched_other_releases;  // it was missed in the sections of the known releases as well
};

// What is remembered of the record under the catalogue's own spelling of the preference's key, while `version` is the
// running release; the preference is one of the catalogue's. The entry may be written. Null for a running release whose
// name is too long to keep. A miss that searched other releases counts only after the call below.
REMEMBERED_RECORD* remembered_record(CFG_USER_INI_ENUMS preference, const std::string& version);

// Forgets everything unless `versions`, the releases known now, are those that remembered misses were searched among.
void forget_unless_known_are(const std::vector<std::string>& versions);

// Forgets everything; to be called whenever the map is made or freed.
void forget_running_records();

#endif
