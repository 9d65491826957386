// What changes of preferences make of a preference file. Text in, text out; no file is touched.
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
    bool may_stand_elsewhere = false; // it will do if the file answers so already, by the default or an older release
};

struct PREFERENCE_PLAN
{
    std::string after;                     // what `before` becomes; the same bytes where it says already what is wanted
    std::vector<LOST_LINE> lost;           // the lines of `before` that are not in it
    std::vector<std::string> other_values; // other preferences that change their value, and why, each as a sentence
    std::vector<std::string> warnings;     // the same, where no release allows the value that goes

    // Whether a value that the user wrote goes or changes, beside those that are to change.
    bool loses_values() const;
};

// Throws TOOL_ERROR(REFUSED) for a value that the catalogue does not allow or that no file can hold.
void check_preference_value(const PREFERENCE_CHANGE& change);

// The file after the changes, as a program would write it that has looked every preference up, which carries values
// over from older releases, has made the changes, of different preferences, and saves. `path` is for messages. Throws
// TOOL_ERROR(NOT_WRITTEN) where the file would not answer as a change wants; the message names the lines to blame.
PREFERENCE_PLAN plan_preference_changes(const std::string& path, std::string_view before,
                                        const std::vector<PREFERENCE_CHANGE>& changes);

#endif
