// The calls that hosts make. Each takes the same steps:
//   1. Look up the section in the catalogue, by number or by name. For an assignment, also test whether the value is
//      allowed.
//   2. If there is a section, ask for the running release, which completes its name.
//   3. Load the preferences if nothing is loaded, and hand over search paths that are still owed to the host.
//   4. Find the value in the loaded records (preference_values.h), or store a new one there.
//
// Step 3 happens even if step 1 has settled the answer: hosts rely on any lookup or assignment to load the file and
// hand its search paths over. Null arguments are reported before step 1, and load nothing.
//
// A call by name finds the catalogue's entry in any letter case. But it finds and makes records under the name as it
// was passed, since users' files hold keys in spellings of their own. Old names are not accepted here; only the load of
// a file converts them.
#include "cfg_ini/cfg_user_ini_reader/preference_lookup.h"

#include <cstdlib>
#include <vector>

#include "cfg_ini/cfg_user_ini_reader/preference_catalogue.h"
#include "cfg_ini/cfg_user_ini_reader/preference_file.h"
#include "cfg_ini/cfg_user_ini_reader/preference_loading.h"
#include "cfg_ini/cfg_user_ini_reader/preference_records.h"
#include "cfg_ini/cfg_user_ini_reader/preference_reports.h"
#include "cfg_ini/cfg_user_ini_reader/preference_values.h"
#include "platform/gen/gen.h"
#include "platform/mem/mem.h"
#include "platform/ver/ver.h"

using namespace zon_cfg;

namespace
{
bool equals_ignoring_case(const std::string& text, const char* other)
{
    return gen_stricmp(text.c_str(), other) == 0;
}

const char* key_of(CFG_USER_INI_ENUMS preference)
{
    // cppcheck-suppress CastIntegerToAddressAtReturn
    return cfg_user_ini_ini_names[preference_position(preference)];
}

// Empty for a number that belongs to no preference.
const char* section_of(CFG_USER_INI_ENUMS preference)
{
    // cppcheck-suppress CastIntegerToAddressAtReturn
    return preference_sections[preference_position(preference)];
}

NAMED_PREFERENCE named_preference(CFG_USER_INI_ENUMS preference, const char* name, const char* section)
{
    return {preference, name, section, *section != '\0' ? ver_get_version() : std::string()};
}

std::string look_up(CFG_USER_INI_ENUMS preference, const char* name, bool use_default)
{
    const NAMED_PREFERENCE named = named_preference(preference, name, section_of(preference));
    load_preferences_if_needed();
    return value_of(named, use_default);
}

std::string look_up(CFG_USER_INI_ENUMS preference, bool use_default)
{
    return look_up(preference, key_of(preference), use_default);
}

bool assign(CFG_USER_INI_ENUMS preference, const char* name, const char* value)
{
    const bool is_allowed = find_fitting_triple(preference, value) != nullptr;
    const NAMED_PREFERENCE named = named_preference(preference, name, is_allowed ? section_of(preference) : "");
    load_preferences_if_needed();
    if (!is_allowed)
        return false;
    store_value(named, value);
    return true;
}
}

// ---------------------------------------------------------------------------------------------------------------------
// Lookup
// ---------------------------------------------------------------------------------------------------------------------

namespace zon_cfg
{
PREFERENCE_ORIGIN preference_origin(CFG_USER_INI_ENUMS preference)
{
    const std::string section = section_of(preference);
    load_preferences_if_needed();
    if (section.empty())
        return {};

    const char* const name = key_of(preference);
    const std::string version = ver_get_version();
    const RECORD_KEY current = record_key(released_section(section, version), name);

    // An empty value counts as none, wherever it stands, so it has no origin.
    const auto from = [](PREFERENCE_SOURCE source, const CFG_USER_VALUE_STRUCT* record)
    {
        return record == nullptr || record->value.empty() ? PREFERENCE_ORIGIN{}
                                                          : PREFERENCE_ORIGIN{source, record->section};
    };
    PREFERENCE_ORIGIN origin;
    // If the file does not have the section, this process made its records, by carry-over or assignment.
    if (cfg_user_ini_sections_read->contains(current.section()))
        origin = from(PREFERENCE_SOURCE::RUNNING_RELEASE, find_record(current));
    else
    {
        std::vector<std::string> older = ver_get_all_versions();
        std::erase(older, version);
        origin = from(PREFERENCE_SOURCE::OLDER_RELEASE, find_released_record(section, name, older));
        if (origin.source == PREFERENCE_SOURCE::NOWHERE)
            origin = from(PREFERENCE_SOURCE::UNVERSIONED_SECTION, find_record(record_key(section, name)));
    }
    const bool has_default = *cfg_user_ini_name_default_values[preference_position(preference)].second != '\0';
    if (origin.source == PREFERENCE_SOURCE::NOWHERE && has_default)
        origin.source = PREFERENCE_SOURCE::DEFAULT;
    return origin;
}
}

std::string cfg_get_user_ini_value_internal(const char* name, bool use_default)
{
    if (name == nullptr)
    {
        report_preference_error("name != NULL", PREFERENCE_REPORT::NULL_NAME_OF_LOOKUP);
        return {};
    }
    return look_up(find_preference(name), name, use_default);
}

std::string cfg_get_user_ini_value(CFG_USER_INI_ENUMS preference)
{
    return look_up(preference, true);
}

std::string cfg_get_user_ini_value(const char* name)
{
    return cfg_get_user_ini_value_internal(name, true);
}

int cfg_get_user_ini_int_value(CFG_USER_INI_ENUMS preference)
{
    // A number outside the range of int keeps its low 32 bits. One outside the range of long long counts as the nearest
    // long long. That has 64 bits on every machine, so the result is the same on all.
    return static_cast<int>(std::strtoll(look_up(preference, true).c_str(), nullptr, 10));
}

bool cfg_user_ini_is_on(CFG_USER_INI_ENUMS preference, bool fallback)
{
    const std::string value = look_up(preference, true);
    if (equals_ignoring_case(value, "on") || equals_ignoring_case(value, "1"))
        return true;
    if (equals_ignoring_case(value, "off") || equals_ignoring_case(value, "0"))
        return false;
    return fallback;
}

bool cfg_does_ini_variable_have_value(CFG_USER_INI_ENUMS preference, bool use_default)
{
    return !look_up(preference, use_default).empty();
}

// ---------------------------------------------------------------------------------------------------------------------
// Assignment
// ---------------------------------------------------------------------------------------------------------------------

bool cfg_set_user_ini_value(const char* name, const char* value)
{
    // Both are reported if both are null: a host's log then shows the whole of the mistake.
    if (name == nullptr)
        report_preference_error("name != NULL", PREFERENCE_REPORT::NULL_NAME_OF_ASSIGNMENT);
    if (value == nullptr)
        report_preference_error("value != NULL", PREFERENCE_REPORT::NULL_VALUE_OF_ASSIGNMENT);
    if (name == nullptr || value == nullptr)
        return false;
    return assign(find_preference(name), name, value);
}

bool cfg_set_user_ini_value(CFG_USER_INI_ENUMS preference, const std::string& value)
{
    return assign(preference, key_of(preference), value.c_str());
}

bool cfg_set_user_ini_int_value(CFG_USER_INI_ENUMS preference, int value)
{
    return cfg_set_user_ini_value(preference, MEM_DETAIL::stl_raw_sprintf("%d", value));
}

bool cfg_set_user_ini_on(CFG_USER_INI_ENUMS preference)
{
    return cfg_set_user_ini_value(preference, "on");
}

bool cfg_set_user_ini_off(CFG_USER_INI_ENUMS preference)
{
    return cfg_set_user_ini_value(preference, "off");
}
