// Changing preferences in the file without risk: the new file is planned from the old one's bytes, written beside it,
// and takes its place if no other program has changed it meanwhile.
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_EDIT_H
#define TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_EDIT_H

#include <chrono>
#include <string>
#include <vector>

#include "tools/velmar-cfg/preferences/preference_plan.h"

// What an edit does only if it is told to.
struct EDIT_PERMISSIONS
{
    bool lose_values = false;       // --allow-loss: values go or change beside the one that is to change
    bool break_hard_links = false;  // --break-hard-links: the other names keep the old file
    bool replace_read_only = false; // --replace-read-only: the mode says that nobody should write
};

struct EDITED_FILE
{
    std::string path; // the preference file, links followed
    std::string before;
    PREFERENCE_PLAN plan;
    std::string refusal; // why the file was not changed, or in a dry run would not be; empty when it was, or would be

    bool changed() const
    {
        return refusal.empty() && before != plan.after;
    }
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
