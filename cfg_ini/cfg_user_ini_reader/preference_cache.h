// A cache over the records: for each preference, what the last search for the running release's record found.
//
// A cached answer is always the one that a search would give. Three rules ensure this:
// - A record stays in the map until all are unloaded. (An assignment that is undone removes its record, and clears the
//   cache.)
// - A record that was not found stays missing until the map grows.
// - Whoever publishes or unloads the maps clears the cache.
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
    CFG_USER_VALUE_STRUCT* record; // null if it was not found
    std::size_t missed_among;      // the size of the map at the last search; at first 0, as an empty map has no record
    bool releases_may_have_it;     // it was not found, but the section of another release may hold it
};

// The entry of a preference, for its record under the catalogue's own spelling of the key. `preference` must be one of
// the catalogue's, and `version` is the running release. The caller may write the entry. Null if the name of the
// release is too long to keep.
CACHED_RECORD* cached_record(CFG_USER_INI_ENUMS preference, const std::string& version);

void clear_preference_cache() noexcept;
}

#endif
