// The user preferences as the library answers them, each with what the catalogue says of it.
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCES_H
#define TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCES_H

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_user_ini_reader/preference_lookup.h"

using zon_cfg::PREFERENCE_ORIGIN;
using zon_cfg::PREFERENCE_SOURCE;

struct PREFERENCE
{
    CFG_USER_INI_ENUMS number;
    std::string key;
    std::string section; // the catalogue's, without a release
    std::string value;   // default applied
    std::string default_value;
    std::vector<std::string> allowed; // empty for free text
    PREFERENCE_ORIGIN origin;
    std::string release; // of the origin's section; empty for none

    // Whether the value is another than the default; letter case does not count.
    bool differs_from_default() const;
};

// Where the library finds the preference file.
struct PREFERENCE_FILE_LOCATION
{
    std::string path;
    bool from_variable; // VELMAR2_INI names the directory; else it is the user's profile directory
    std::string remark; // why VELMAR2_INI, which is set, is ignored
};
PREFERENCE_FILE_LOCATION preference_file_location();

// Throws TOOL_ERROR(BAD_INPUT) when there is a preference file but it cannot be read as one. Every command that uses
// the preferences calls it before it asks the library.
void check_preference_file();

// The numbers of all preferences of the catalogue, in its order, and their keys.
std::vector<CFG_USER_INI_ENUMS> all_preference_numbers();
std::vector<std::string> all_preference_keys();

// The values that the catalogue allows; none for free text.
std::vector<std::string> allowed_preference_values(CFG_USER_INI_ENUMS number);

// The preference as the library answers it now. Never writes the file.
PREFERENCE look_up_preference(CFG_USER_INI_ENUMS number);

// The preference of that key, in any letter case. Throws TOOL_ERROR(REFUSED), with a suggestion, for any other name.
CFG_USER_INI_ENUMS preference_number(const std::string& key);

// {"key", "value", "default", "allowed", "source", "section", "release"}; "source" is "running release", "older
// release", "unversioned section", "default" or "none", "section" that of the file or null, "release" the section's or
// null, "allowed" null for free text.
nlohmann::ordered_json preference_as_json(const PREFERENCE& preference);

// "off, on" or "any text".
std::string allowed_as_text(const PREFERENCE& preference);

// "running release", ...: for JSON. And back, if it is one.
const char* source_word(PREFERENCE_SOURCE source);
std::optional<PREFERENCE_SOURCE> source_of_word(const std::string& word);

// Where the value comes from, in words.
std::string origin_as_text(const PREFERENCE_ORIGIN& origin);

#endif
