// Computes what a preference file becomes when preferences change. Works on texts; touches no file.
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_PLAN_H
#define TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_PLAN_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/preferences/library_preferences.h"
#include "tools/velmar-cfg/preferences/preference_save.h"

struct PREFERENCE_CHANGE
{
    CFG_USER_INI_ENUMS number;
    std::optional<std::string> value; // nothing: back to the default
    bool may_stand_elsewhere = false; // the value may come from the default or an older release
};

struct PREFERENCE_PLAN
{
    std::string after;                     // the new text; the same bytes if there is nothing to change
    std::vector<LOST_LINE> lost;           // the lines of `before` that are not in it
    std::vector<std::string> other_values; // other preferences that change their value, and why, each as a sentence
    std::vector<std::string> warnings;     // the same, if the old value is no longer allowed

    // Whether a value that the user wrote is lost or changes, besides those that are to change.
    bool loses_values() const;
};

// Throws TOOL_ERROR(REFUSED) for a value that the catalogue does not allow or that no file can hold.
void check_preference_value(const PREFERENCE_CHANGE& change);

// The file as a program writes it that looks up every preference, makes the changes and saves. Those lookups carry
// values over from older releases. Each change must be of another preference. `path` is for messages. Throws
// TOOL_ERROR(NOT_WRITTEN) if the file would not give a preference the value that its change wants; the message names
// the line to blame.
PREFERENCE_PLAN plan_preference_changes(const std::string& path, std::string_view before,
                                        const std::vector<PREFERENCE_CHANGE>& changes);

#endif
