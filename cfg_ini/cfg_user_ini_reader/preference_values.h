// Works with values in the loaded records: looks a value up, with carry-over from older releases and defaults, and
// stores an assigned one. Everything here requires loaded preferences, and loads none.
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

// The record with this key, or null.
CFG_USER_VALUE_STRUCT* find_record(const RECORD_KEY& key);

// The record of the first of these releases that has the preference; null if none has. `section` names no release.
const CFG_USER_VALUE_STRUCT* find_released_record(const std::string& section, const char* name,
                                                  const std::vector<std::string>& versions);

// --- Values ---

// A preference as a caller names it.
struct NAMED_PREFERENCE
{
    CFG_USER_INI_ENUMS number;
    const char* name;    // the key, as spelt in the records to be found or made
    const char* section; // without a release; empty when the catalogue has none for the name or refuses the value
    std::string version; // the running release
};

// The result of a lookup. A value that is carried over from another release is also stored for the running release, if
// the catalogue allows it.
std::string value_of(const NAMED_PREFERENCE& preference, bool use_default);

// Stores a value that the catalogue allows; the preference must have a section. Hands search paths over to the host. If
// it throws, or the host's function does, nothing has changed.
void store_value(const NAMED_PREFERENCE& preference, const char* value);

// --- Search paths ---

// The preferences whose values the general service takes, in the order in which loading hands them over.
inline constexpr CFG_USER_INI_ENUMS search_paths[] = {USER_LIBRARIES, USER_IP_SEARCH_PATHS};

// The function of the general service that takes the value; null for any other preference.
using TAKE_PATHS = void (*)(const std::string& paths);
TAKE_PATHS taker_of(CFG_USER_INI_ENUMS preference);
}

#endif
