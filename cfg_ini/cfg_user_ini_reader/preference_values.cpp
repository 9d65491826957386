// A value is searched for in up to three locations:
//   1. the running release's section;
//   2. if the file has no such section at all, the sections of the known releases in their order, and then the section
//      without a release. If the catalogue allows the value, it is also stored in the running release's section;
//   3. the catalogue, for the default.
// A record with an empty value is found, but its value counts as none.
//
// The cache (preference_cache.h) saves searches whose result is certain. If the running release's record was found, it
// is the answer. If it was not found, that is final until the map grows. A miss in location 2 also depends on which
// releases are known, which a host may change. It is final all the same if no record at all could belong to the
// preference in any release. The keys that begin with its bare section show that. They are examined once each time the
// map has grown.
//
// Storing changes everything or nothing. If the host's function throws, the old value is restored, or the new record
// removed.
//
// Cost: a cached answer needs no search. Others take one search of the map, and one more for each known release in
// location 2.
#include "cfg_ini/cfg_user_ini_reader/preference_values.h"

#include <cstring>
#include <memory>
#include <utility>

#include "cfg_ini/cfg_user_ini_reader/preference_cache.h"
#include "cfg_ini/cfg_user_ini_reader/preference_catalogue.h"
#include "cfg_ini/cfg_user_ini_reader/preference_file.h"
#include "platform/gen/gen.h"
#include "platform/ver/ver.h"

namespace zon_cfg
{
// ---------------------------------------------------------------------------------------------------------------------
// Records
// ---------------------------------------------------------------------------------------------------------------------

RECORD_KEY record_key(std::string section, const char* name)
{
    const std::size_t section_size = section.size();
    section += name;
    return {std::move(section), section_size};
}

CFG_USER_VALUE_STRUCT* find_record(const RECORD_KEY& key)
{
    const auto found = cfg_user_ini_records->find(key.text);
    return found != cfg_user_ini_records->end() ? found->second : nullptr;
}

const CFG_USER_VALUE_STRUCT* find_released_record(const std::string& section, const char* name,
                                                  const std::vector<std::string>& versions)
{
    for (const std::string& version : versions)
    {
        if (const auto* const record = find_record(record_key(released_section(section, version), name)))
            return record;
    }
    return nullptr;
}

namespace
{
RECORD_KEY running_key(const NAMED_PREFERENCE& preference)
{
    return record_key(released_section(preference.section, preference.version), preference.name);
}

// The cache is about the catalogue's own spellings, which every call by number uses; others have records of their own.
CACHED_RECORD* cached_record_of(const NAMED_PREFERENCE& preference)
{
    const char* const key = cfg_user_ini_ini_names[preference_position(preference.number)];
    const bool is_catalogue_spelling = preference.name == key || std::strcmp(preference.name, key) == 0;
    return is_catalogue_spelling ? cached_record(preference.number, preference.version) : nullptr;
}

// ---------------------------------------------------------------------------------------------------------------------
// Lookup
// ---------------------------------------------------------------------------------------------------------------------

// Whether a record may belong to the preference in some release, known or not, or in the section without a release. The
// key of such a record begins with the bare section and ends with the name. Gives up after many keys and returns true.
// So a file with a million of them costs no more than the search among the known releases that this function can save.
bool may_be_of_some_release(std::string_view section, std::string_view name)
{
    constexpr int most_keys = 1000;
    int keys = 0;
    for (auto next = cfg_user_ini_records->lower_bound(section);
         next != cfg_user_ini_records->end() && next->first.starts_with(section); ++next)
    {
        if (++keys > most_keys || next->first.ends_with(name))
            return true;
    }
    return false;
}

// Stores the record's value for the running release if the catalogue allows it. The value is the lookup's answer in
// either case.
void carry_over(const NAMED_PREFERENCE& preference, const CFG_USER_VALUE_STRUCT& record)
{
    const char* const value = record.value.c_str();
    if (find_fitting_triple(preference.number, value) != nullptr)
        store_value(preference, value);
}

const CFG_USER_VALUE_STRUCT* carried_over_record(const NAMED_PREFERENCE& preference)
{
    const auto* record = find_released_record(preference.section, preference.name, ver_get_all_versions());
    if (record != nullptr)
        carry_over(preference, *record);
    // An empty value ends the walk over the releases, but not the search.
    if (record == nullptr || record->value.empty())
    {
        record = find_record(record_key(preference.section, preference.name));
        if (record != nullptr)
            carry_over(preference, *record);
    }
    return record;
}

// The record whose value is the answer, of whatever release; null when there is none.
const CFG_USER_VALUE_STRUCT* answering_record(const NAMED_PREFERENCE& preference)
{
    CACHED_RECORD* const cached = cached_record_of(preference);
    if (cached != nullptr && cached->record != nullptr)
        return cached->record;
    const std::size_t record_count = cfg_user_ini_records->size();
    const bool is_cached_miss = cached != nullptr && cached->missed_among == record_count;
    if (is_cached_miss && !cached->releases_may_have_it)
        return nullptr;

    const RECORD_KEY current = running_key(preference);
    CFG_USER_VALUE_STRUCT* const record = find_record(current);
    // If the file has the running release's section, that release has saved it: what is missing there is meant to be.
    const bool other_releases_count = record == nullptr && !cfg_user_ini_sections_read->contains(current.section());
    const bool releases_may_have_it =
        other_releases_count &&
        (cached == nullptr || is_cached_miss || may_be_of_some_release(preference.section, preference.name));
    if (cached != nullptr)
        *cached = {record, record_count, releases_may_have_it};
    return releases_may_have_it ? carried_over_record(preference) : record;
}
}

std::string value_of(const NAMED_PREFERENCE& preference, bool use_default)
{
    const auto* const record = *preference.section != '\0' ? answering_record(preference) : nullptr;
    if (record != nullptr && !record->value.empty())
        return record->value;
    return use_default ? cfg_user_ini_name_default_values[preference_position(preference.number)].second : "";
}

// ---------------------------------------------------------------------------------------------------------------------
// Assignment
// ---------------------------------------------------------------------------------------------------------------------

TAKE_PATHS taker_of(CFG_USER_INI_ENUMS preference)
{
    switch (preference)
    {
    case USER_LIBRARIES:
        return gen_set_user_library_paths;
    case USER_IP_SEARCH_PATHS:
        return gen_set_user_ip_search_paths;
    default:
        return nullptr;
    }
}

namespace
{
// `undo` runs if the host's function throws, and must not throw itself.
template <typename UNDO>
void hand_over_or_undo(TAKE_PATHS take_paths, const char* value, UNDO undo)
{
    try
    {
        take_paths(value);
    }
    catch (...)
    {
        undo();
        throw;
    }
}

void replace_value(CFG_USER_INI_ENUMS preference, CFG_USER_VALUE_STRUCT& record, const char* value)
{
    std::string text = value;
    record.value.swap(text);
    if (const TAKE_PATHS take_paths = taker_of(preference))
        hand_over_or_undo(take_paths, value, [&] { record.value.swap(text); });
}

CFG_USER_VALUE_STRUCT* insert_record(const NAMED_PREFERENCE& preference, const RECORD_KEY& key, const char* value)
{
    auto record = std::make_unique<CFG_USER_VALUE_STRUCT>(
        CFG_USER_VALUE_STRUCT{std::string(key.section()), preference.name, value});
    const auto inserted = cfg_user_ini_records->try_emplace(key.text, nullptr).first;
    inserted->second = record.get();
    if (const TAKE_PATHS take_paths = taker_of(preference.number))
    {
        hand_over_or_undo(take_paths, value,
                          [&]
                          {
                              clear_preference_cache(); // the host's function may have looked the record up
                              cfg_user_ini_records->erase(inserted);
                          });
    }
    return record.release();
}

// Out of line, so that the fast path below does not pay for its frame.
[[gnu::noinline]] void store_in_records(const NAMED_PREFERENCE& preference, const char* value, CACHED_RECORD* cached)
{
    const RECORD_KEY key = running_key(preference);
    CFG_USER_VALUE_STRUCT* record = find_record(key);
    if (record != nullptr)
        replace_value(preference.number, *record, value);
    else
        record = insert_record(preference, key, value);
    if (cached != nullptr)
        cached->record = record;
}
}

void store_value(const NAMED_PREFERENCE& preference, const char* value)
{
    CACHED_RECORD* const cached = cached_record_of(preference);
    if (cached != nullptr && cached->record != nullptr && taker_of(preference.number) == nullptr)
        cached->record->value = value; // mostly in place
    else
        store_in_records(preference, value, cached);
}
}
