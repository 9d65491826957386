// Preferences on their way from one preference file to another: written as a file of their own, and found in any file.
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

// A file that answers as these preferences do, whatever release they come from; with `only_changed`, without those
// whose value is the default's to the letter. A value that a line would lose quotes of is written in quotes. What
// `look_up` has nothing of is left out.
using PREFERENCE_LOOKUP = std::function<std::optional<PREFERENCE>(CFG_USER_INI_ENUMS)>;
PREFERENCE_DUMP dump_preferences(const PREFERENCE_LOOKUP& look_up, bool only_changed);

struct GIVEN_PREFERENCE
{
    CFG_USER_INI_ENUMS number;
    std::string value;    // not empty; whether the catalogue allows it is not looked at
    std::size_t line = 0; // counted from 1
};

struct UNKNOWN_PREFERENCE
{
    std::string name;     // in no spelling one of the catalogue
    std::size_t line = 0; // counted from 1
};

struct GIVEN_PREFERENCES
{
    std::vector<GIVEN_PREFERENCE> known; // in the catalogue's order
    std::vector<UNKNOWN_PREFERENCE> unknown;
    std::vector<std::size_t> notes_of_dump; // the lines, counted from 1, with which a dump names what it has masked
};

// The preferences that a library which had loaded the file would answer from a line of it. Unknown are those that
// stand, with a value, in sections where it would look; what looks like a comment is none.
GIVEN_PREFERENCES preferences_given_by(std::string_view bytes);

#endif
