// The catalogue of user preferences: keys, sections, allowed values, defaults, descriptions and old names. It is
// constant data, which the compiler derives from the rows of preference_rows.h. No state, no lock.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_CATALOGUE_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_CATALOGUE_H

#include "cfg_ini/cfg_ini.h"

#include <array>
#include <cstddef>
#include <span>
#include <utility>

namespace zon_cfg
{
// A column, by number, including the row of the end marker. No element is null; an absent text is the empty text.
using PREFERENCE_COLUMN = std::array<const char*, CFG_USER_INI_ENUMS_END + 1>;

// One allowed value of a preference. The triples of a key follow each other and share its section; a key that takes
// free text has one triple, with an empty value.
struct PREFERENCE_TRIPLE
{
    const char* name;
    const char* section;
    const char* value;
};

inline constexpr std::size_t old_preference_name_count = 18;
}

extern const zon_cfg::PREFERENCE_COLUMN cfg_user_ini_ini_names;
extern const zon_cfg::PREFERENCE_COLUMN cfg_user_ini_ini_desc;
extern const zon_cfg::PREFERENCE_COLUMN cfg_user_ini_registry_names;
extern const zon_cfg::PREFERENCE_COLUMN cfg_user_ini_registry_branches;
extern const zon_cfg::PREFERENCE_COLUMN cfg_user_ini_registry_sub_branches;

// (key, default value) by number; the last pair is empty. Numbers that belong to no preference have empty pairs too, so
// a loop must go over all numbers and not stop at an empty pair.
extern const std::array<std::pair<const char*, const char*>, CFG_USER_INI_ENUMS_END + 1>
    cfg_user_ini_name_default_values;

// (current key, old name), in the order in which old names are tried; the last pair is empty. An old name is a key of
// an earlier release or the label under which the preference was once kept.
extern const std::array<std::pair<const char*, const char*>, zon_cfg::old_preference_name_count + 1>
    cfg_user_ini_name_old_name_table;

// Every triple in the order of the numbers; the last one is empty.
extern const std::span<const zon_cfg::PREFERENCE_TRIPLE> cfg_user_ini_enum_section_value_table;

namespace zon_cfg
{
// The section of each preference, without a release.
extern const PREFERENCE_COLUMN preference_sections;

// The index of a preference in the tables by number.
constexpr std::size_t preference_position(CFG_USER_INI_ENUMS preference)
{
    return static_cast<std::size_t>(preference);
}

// The number of the key, letter case ignored. For a name that is no key, it is CFG_USER_INI_ENUMS_END, which has no
// section, no allowed values and no default. `name` must not be null.
CFG_USER_INI_ENUMS find_preference(const char* name);

// Whether the value is a credential. Programs that show preferences to people mask it. Lookups and saves treat it as
// any other value.
bool is_secret_preference(CFG_USER_INI_ENUMS preference);

// The triples of one preference, a part of the table above; none for a number that belongs to no preference.
std::span<const PREFERENCE_TRIPLE> preference_triples(CFG_USER_INI_ENUMS preference);

// The first triple of the preference that allows `value`, letter case ignored; null if none does. A null `value` stands
// for any value.
const PREFERENCE_TRIPLE* find_fitting_triple(CFG_USER_INI_ENUMS preference, const char* value);
}

#endif
