// The loaded preferences: the maps that hold what was read and assigned.
//
// No lock anywhere in the preference store: one thread uses it at a time.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_RECORDS_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_RECORDS_H

#include <functional>
#include <map>
#include <memory>
#include <string>

// One key line of the file, or one assigned preference.
struct CFG_USER_VALUE_STRUCT
{
    std::string section; // as it stands between the brackets, the release included
    std::string name;    // current, not old; in the spelling of the file or of the assignment
    std::string value;
    bool pending_write = false; // the writer's mark; means nothing outside a save
};

namespace zon_cfg
{
using CFG_USER_VALUE_MAP = std::map<std::string, CFG_USER_VALUE_STRUCT*, std::less<>>;
}

// The two maps of the loaded preferences. Both are null while nothing is loaded; otherwise both exist.
//
// The first one holds the records. Its key is the section, immediately followed by the name. Two pairs of section and
// name may have the same key, which then belongs to the pair that came first. The map owns its records. Its order is
// the order of the written file.
extern constinit zon_cfg::CFG_USER_VALUE_MAP* cfg_user_ini_records;

// The second one is a set: the section headers in the file, with null values. Assignments do not add to it. So after an
// assignment, the other preferences of its section are still carried over from older releases until the next load.
extern constinit zon_cfg::CFG_USER_VALUE_MAP* cfg_user_ini_sections_read;

namespace zon_cfg
{
struct DELETE_WITH_RECORDS
{
    void operator()(CFG_USER_VALUE_MAP* map) const noexcept;
};

// Owns both maps while they are not the loaded ones: while a load fills them, and after they were unloaded. Either both
// exist or both are null.
struct PREFERENCE_MAPS
{
    std::unique_ptr<CFG_USER_VALUE_MAP, DELETE_WITH_RECORDS> records;
    std::unique_ptr<CFG_USER_VALUE_MAP> sections;
};

// Two empty maps.
PREFERENCE_MAPS make_preference_maps();

// Makes these maps the loaded ones. Maps that are already loaded are forgotten, not freed.
void publish_preferences(PREFERENCE_MAPS&& maps) noexcept;

// Unloads the loaded maps and returns them.
PREFERENCE_MAPS withdraw_preferences() noexcept;
}

#endif
