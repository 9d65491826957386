// A cache over the records: for each preference, what the last search for the running release's record found.
//
// A cached answer is always the one that a search would give. That rests on three rules: a record stays in the map
// until all are unloaded (but for an assignment that is undone, which clears the cache); a record that was missed stays
// missing until the map grows; and whoever publishes or unloads the maps clears the cache.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_CACHE_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_CACHE_H

#include <cstddef>
#include <string>

#include "cfg_ini/cfg_ini.h"

struct CFG_USER_VALUE_STRUCT;

namespace zon_cfg
{
struct CACHED_RECORD
{
    CFG_USER_VALUE_STRUCT* record; // null when it was not found
    std::size_t searched;          // one more than the map held when it was searched; 0 when it was not
    bool releases_may_have_it;     // it was missed, but another release's section may hold it: not a final miss
};

// The entry for the record under the catalogue's own spelling of the preference's key, while `version` is the running
// release; the preference is one of the catalogue's. The caller may write the entry. Null for a running release whose
// name is too long to keep.
CACHED_RECORD* cached_record(CFG_USER_INI_ENUMS preference, const std::string& version);

void clear_preference_cache() noexcept;
}

#endif
