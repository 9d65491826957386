// Transfers preferences between preference files: writes them as a file of their own, and finds them in any file.
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_TRANSFER_H
#define TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_TRANSFER_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/preferences/library_preferences.h"
#include "tools/velmar-cfg/preferences/preferences.h"

struct PREFERENCE_DUMP
{
    std::string text;                // of a velmar2.ini of the running release
    std::vector<std::string> masked; // the keys whose values are hidden; a comment stands for each
};

// A file that gives these preferences the same values, whatever release they come from. A value is written in quotes if
// a line would otherwise lose a part of it. Preferences for which `look_up` returns nothing are left out; with
// `only_changed`, so are those whose value is exactly the default.
using PREFERENCE_LOOKUP = std::function<std::optional<PREFERENCE>(CFG_USER_INI_ENUMS)>;
PREFERENCE_DUMP dump_preferences(const PREFERENCE_LOOKUP& look_up, bool only_changed);

struct GIVEN_PREFERENCE
{
    CFG_USER_INI_ENUMS number;
    std::string value;    // not empty; the catalogue may not allow it
    std::size_t line = 0; // counted from 1
};

struct UNKNOWN_PREFERENCE
{
    std::string name;     // not in the catalogue, in no spelling
    std::size_t line = 0; // counted from 1
};

struct GIVEN_PREFERENCES
{
    std::vector<GIVEN_PREFERENCE> known; // in the catalogue's order
    std::vector<UNKNOWN_PREFERENCE> unknown;
    std::vector<std::size_t> notes_of_dump; // lines, counted from 1, in which a dump names a masked preference
};

// The preferences whose values the library would take from a line of the file. A name is unknown if the catalogue lacks
// it, it has a value, and lookups search its section. A line that looks like a comment names nothing.
GIVEN_PREFERENCES preferences_given_by(std::string_view bytes);

#endif
