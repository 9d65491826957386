// Changing preferences in the file without risk (base/file_edit.h).
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_EDIT_H
#define TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_EDIT_H

#include <chrono>

#include "tools/velmar-cfg/base/file_edit.h"
#include "tools/velmar-cfg/preferences/preference_plan.h"

// What an edit does only if it is told to.
struct EDIT_PERMISSIONS : FILE_EDIT_PERMISSIONS
{
    bool lose_values = false; // --allow-loss: values go or change beside the one that is to change
};

struct EDITED_FILE : FILE_EDIT
{
    PREFERENCE_PLAN plan;
};

// What the change would do. Nothing is written and nothing is locked. Throws as below.
EDITED_FILE try_preference_change(const PREFERENCE_CHANGE& change, const EDIT_PERMISSIONS& permissions,
                                  std::chrono::milliseconds patience);

// Makes the change, unless there is a refusal. No other preference changes its value: those carried over from older
// releases are written out where the change would end that.
//
// Waits up to `patience` for another velmar-cfg, and for other programs that write the file. Throws TOOL_ERROR: REFUSED
// for a value that the catalogue does not allow or that no file can hold, BAD_INPUT for a file that cannot be read,
// NOT_WRITTEN for everything else. The file is then untouched, unless the text says otherwise.
EDITED_FILE change_preference(const PREFERENCE_CHANGE& change, const EDIT_PERMISSIONS& permissions,
                              std::chrono::milliseconds patience);

#endif
