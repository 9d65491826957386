// Changes preferences in their file safely (base/file_edit.h).
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_EDIT_H
#define TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_EDIT_H

#include <chrono>
#include <vector>

#include "tools/velmar-cfg/base/file_edit.h"
#include "tools/velmar-cfg/preferences/preference_plan.h"

// What an edit does only with permission.
struct EDIT_PERMISSIONS : FILE_EDIT_PERMISSIONS
{
    bool lose_values = false; // --allow-loss: lose or change other values too
};

struct EDITED_FILE : FILE_EDIT
{
    PREFERENCE_PLAN plan;
};

// A dry run: returns what change_preferences() would do. Writes nothing and locks nothing. Throws as
// change_preferences() does.
EDITED_FILE try_preference_changes(const std::vector<PREFERENCE_CHANGE>& changes, const EDIT_PERMISSIONS& permissions,
                                   std::chrono::milliseconds patience);

// Makes all the changes, or none if there is a refusal. Values carried over from older releases are written to the file
// if the changes would end that. Other preferences keep their values, unless `lose_values` permits otherwise or the
// catalogue no longer allows the value.
//
// Waits up to `patience` for another velmar-cfg, and for other programs that write the file. Throws TOOL_ERROR: REFUSED
// for a value that the catalogue does not allow or that no file can hold, BAD_INPUT for a file that cannot be read,
// NOT_WRITTEN for all other failures. After an exception the file is unchanged, unless the message says otherwise.
EDITED_FILE change_preferences(const std::vector<PREFERENCE_CHANGE>& changes, const EDIT_PERMISSIONS& permissions,
                               std::chrono::milliseconds patience);

#endif
