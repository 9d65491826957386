#include "cfg_ini/cfg_user_ini_reader/preference_lookup.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_user_ini_reader/preference_catalogue.h"
#include "cfg_ini/cfg_user_ini_reader/preference_file.h"
#include "cfg_ini/cfg_user_ini_reader/running_records.h"
#include "platform/err/err.h"
#include "platform/gen/gen.h"
#include "platform/mem/mem.h"
#include "platform/ver/ver.h"

namespace
{
// The key of a preference's record in one section.
struct RECORD_KEY
{
    std::string text; // the section, immediately followed by the name
    std::size_t section_size;

    std::string_view section() const
    {
        return std::string_view(text).substr(0, section_size);
    }
};

RECORD_KEY record_key(std::string section, const char* name)
{
    const std::size_t section_size = section.size();
    section += name;
    return {std::move(section), section_size};
}

bool equals_ignoring_case(const std::string& text, const char* other)
{
    return gen_stricmp(text.c_str(), other) == 0;
}

CFG_USER_VALUE_STRUCT* find_record(const RECORD_KEY& key)
{
    const auto found = cfg_user_ini_records->find(key.text);
    return found != cfg_user_ini_records->end() ? found->second : nullptr;
}

// The record of the first of the releases that has the preference.
const CFG_USER_VALUE_STRUCT* released_record(const std::string& section, const char* name,
                                             const std::vector<std::string>& versions)
{
    for (const std::string& version : versions)
    {
        if (const auto* const record = find_record(record_key(released_section(section, version), name)))
            return record;
    }
    return nullptr;
}

// The value of the first older release that has the preference, else of the section without a release; assigned for the
// running release as well. An assignment that the catalogue refuses does not change the answer. An empty value ends the
// walk over the releases, but not the search.
std::string carried_over_value(const std::string& section, const char* name, const std::vector<std::string>& versions)
{
    std::string value;
    if (const auto* const record = released_record(section, name, versions))
    {
        value = record->value;
        cfg_set_user_ini_value(name, value.c_str());
    }
    if (value.empty())
    {
        if (const auto* const record = find_record(record_key(section, name)))
        {
            value = record->value;
            cfg_set_user_ini_value(name, value.c_str());
        }
    }
    return value;
}

void load_if_needed()
{
    if (cfg_user_ini_records == nullptr)
        cfg_read_user_ini_file();
}

// Whether the preference is asked for under the catalogue's own spelling, as by number it always is.
bool is_catalogue_spelling(CFG_USER_INI_ENUMS preference, const char* name)
{
    const char* const key = cfg_user_ini_ini_names[preference_position(preference)];
    return name == key || std::strcmp(name, key) == 0;
}

// The memory for the running release's record of a preference that has triples; null when it cannot be used.
REMEMBERED_RECORD* memory_for(CFG_USER_INI_ENUMS preference, const char* name, const std::string& version)
{
    return is_catalogue_spelling(preference, name) ? remembered_record(preference, version) : nullptr;
}

// Whether the preference is remembered to have no value; a memory of other releases than those known now is forgotten.
bool is_remembered_miss(const REMEMBERED_RECORD& memory)
{
    if (memory.searched_other_releases)
        forget_unless_known_are(ver_get_all_versions());
    return memory.searched == cfg_user_ini_records->size() + 1;
}

// The value in the file, carried over where the running release's section is missing; empty when there is none.
std::string value_in_file(const char* bare_section, const char* name, const std::string& version,
                          REMEMBERED_RECORD* memory)
{
    if (memory != nullptr && memory->record != nullptr)
        return memory->record->value;
    if (memory != nullptr && is_remembered_miss(*memory))
        return {};

    const std::size_t searched = cfg_user_ini_records->size() + 1;
    const RECORD_KEY current = record_key(released_section(bare_section, version), name);
    CFG_USER_VALUE_STRUCT* const record = find_record(current);
    // A file that has the running release's section has had it saved: what is missing there is meant to be.
    const bool carries_over = record == nullptr && !cfg_user_ini_sections_read->contains(current.section());
    std::string value;
    if (record != nullptr)
        value = record->value;
    else if (carries_over)
    {
        const std::vector<std::string> versions = ver_get_all_versions();
        forget_unless_known_are(versions);
        value = carried_over_value(bare_section, name, versions);
    }
    // A value that was carried over but refused for the running release has to be found again each time.
    const bool settled = !carries_over || (value.empty() && cfg_user_ini_records->size() + 1 == searched);
    if (memory != nullptr && settled)
        *memory = {record, searched, carries_over};
    return value;
}

// `name` is the key in the spelling under which its records are looked for.
std::string look_up(CFG_USER_INI_ENUMS preference, const char* name, bool use_default)
{
    const PREFERENCE_TRIPLE* const triple = find_fitting_triple(preference, nullptr);
    const std::string version = triple != nullptr ? ver_get_version() : std::string();
    load_if_needed();

    std::string value;
    if (triple != nullptr)
        value = value_in_file(triple->section, name, version, memory_for(preference, name, version));
    if (value.empty() && use_default)
        value = cfg_user_ini_name_default_values[preference_position(preference)].second;
    return value;
}

std::string look_up(CFG_USER_INI_ENUMS preference, bool use_default)
{
    return look_up(preference, cfg_user_ini_ini_names[preference_position(preference)], use_default);
}

CFG_USER_VALUE_STRUCT* store(const RECORD_KEY& key, const char* name, const char* value)
{
    const auto place = cfg_user_ini_records->lower_bound(key.text);
    if (place != cfg_user_ini_records->end() && place->first == key.text)
    {
        place->second->value = value;
        return place->second;
    }
    auto record =
        std::make_unique<CFG_USER_VALUE_STRUCT>(CFG_USER_VALUE_STRUCT{std::string(key.section()), name, value});
    // Two statements: in one, the record would be let go before the map has room for it.
    const auto inserted = cfg_user_ini_records->try_emplace(place, key.text, nullptr);
    return inserted->second = record.release();
}

// `name` is the key in the spelling under which the value is stored.
bool assign(CFG_USER_INI_ENUMS preference, const char* name, const char* value)
{
    const PREFERENCE_TRIPLE* const triple = find_fitting_triple(preference, value);
    const std::string version = triple != nullptr ? ver_get_version() : std::string();
    load_if_needed();
    if (triple == nullptr)
        return false;

    REMEMBERED_RECORD* const memory = memory_for(preference, name, version);
    if (memory != nullptr && memory->record != nullptr)
        memory->record->value = value;
    else
    {
        CFG_USER_VALUE_STRUCT* const record =
            store(record_key(released_section(triple->section, version), name), name, value);
        if (memory != nullptr)
            memory->record = record;
    }
    if (preference == USER_LIBRARIES)
        gen_set_user_library_paths(value);
    else if (preference == USER_IP_SEARCH_PATHS)
        gen_set_user_ip_search_paths(value);
    return true;
}
}

// ---------------------------------------------------------------------------------------------------------------------
// Lookup
// ---------------------------------------------------------------------------------------------------------------------

PREFERENCE_ORIGIN preference_origin(CFG_USER_INI_ENUMS preference)
{
    const PREFERENCE_TRIPLE* const triple = find_fitting_triple(preference, nullptr);
    load_if_needed();
    if (triple == nullptr)
        return {};

    const char* const name = cfg_user_ini_ini_names[preference_position(preference)];
    const std::string section = triple->section;
    const std::string version = ver_get_version();
    const RECORD_KEY current = record_key(released_section(section, version), name);

    const auto from = [](PREFERENCE_SOURCE source, const CFG_USER_VALUE_STRUCT* record)
    {
        return record == nullptr || record->value.empty() ? PREFERENCE_ORIGIN{}
                                                          : PREFERENCE_ORIGIN{source, record->section};
    };
    PREFERENCE_ORIGIN origin;
    // A record in a section that the file does not have is itself a copy, made by a lookup.
    if (cfg_user_ini_sections_read->contains(current.section()))
        origin = from(PREFERENCE_SOURCE::RUNNING_RELEASE, find_record(current));
    else
    {
        std::vector<std::string> older = ver_get_all_versions();
        std::erase(older, version);
        origin = from(PREFERENCE_SOURCE::OLDER_RELEASE, released_record(section, name, older));
        if (origin.source == PREFERENCE_SOURCE::NOWHERE)
            origin = from(PREFERENCE_SOURCE::UNVERSIONED_SECTION, find_record(record_key(section, name)));
    }
    const bool has_default = *cfg_user_ini_name_default_values[preference_position(preference)].second != '\0';
    if (origin.source == PREFERENCE_SOURCE::NOWHERE && has_default)
        origin.source = PREFERENCE_SOURCE::DEFAULT;
    return origin;
}

std::string cfg_get_user_ini_value_internal(const char* name, bool use_default)
{
    if (name == nullptr)
    {
        err_report_internal_error("name != NULL", "CFG_INI", preference_store_source, __LINE__);
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
    // A number outside the range of int keeps its low 32 bits, one outside the range of long those of the nearest long.
    return static_cast<int>(std::strtol(look_up(preference, true).c_str(), nullptr, 10));
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
    if (name == nullptr)
        err_report_internal_error("name != NULL", "CFG_INI", preference_store_source, __LINE__);
    if (value == nullptr)
        err_report_internal_error("value != NULL", "CFG_INI", preference_store_source, __LINE__);
    if (name == nullptr || value == nullptr)
        return false;
    return assign(find_preference(name), name, value);
}

bool cfg_set_user_ini_value(CFG_USER_INI_ENUMS preference, const std::string& value)
{
    return assign(preference, cfg_user_ini_ini_names[preference_position(preference)], value.c_str());
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
