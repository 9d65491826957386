// Values in the loaded records: what a lookup answers, with carry-over from older releases and defaults, and storing an
// assigned value. Everything here needs loaded preferences, and loads none.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_VALUES_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_VALUES_H

#include <string>
#include <string_view>
#include <vector>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_user_ini_reader/preference_records.h"

namespace zon_cfg
{
// --- Records ---

// The key of a record in the map.
struct RECORD_KEY
{
    std::string text; // the section, immediately followed by the name
    std::size_t section_size;

    std::string_view section() const
    {
        return std::string_view(text).substr(0, section_size);
    }
};

RECORD_KEY record_key(std::string section, const char* name);

// Null when there is none.
CFG_USER_VALUE_STRUCT* find_record(const RECORD_KEY& key);

// The record of the first of the releases that has the preference; null when none has. `section` has no release.
const CFG_USER_VALUE_STRUCT* find_released_record(const std::string& section, const char* name,
                                                  const std::vector<std::string>& versions);

// --- Values ---

// A preference as a caller names it.
struct NAMED_PREFERENCE
{
    CFG_USER_INI_ENUMS number;
    const char* name;    // the key in the spelling under which its records are looked for and made
    const char* section; // without a release; empty when the catalogue has none for the name or refuses the value
    std::string version; // the running release
};

// What a lookup answers. A value that is carried over from another release is also stored for the running one.
std::string value_of(const NAMED_PREFERENCE& preference, bool use_default);

// Stores a value, which the caller has found allowed; the preference has a section. The host is told of search paths.
// An exception, its own or one of the host's function, leaves everything as it was.
void store_value(const NAMED_PREFERENCE& preference, const char* value);

// --- Search paths ---

// The preferences whose values the general service is told, in the order in which loading tells it.
inline constexpr CFG_USER_INI_ENUMS search_paths[] = {USER_LIBRARIES, USER_IP_SEARCH_PATHS};

// The general service's function that takes the value; null for any other preference.
using TAKE_PATHS = void (*)(const std::string& paths);
TAKE_PATHS taker_of(CFG_USER_INI_ENUMS preference);
}

#endif
