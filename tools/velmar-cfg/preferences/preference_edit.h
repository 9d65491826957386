// Changing preferences in the file without risk: the library rewrites a copy, the copy is read back and compared, and
// only then does it take the file's place.
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_EDIT_H
#define TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_EDIT_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "tools/velmar-cfg/preferences/library_preferences.h"

struct PREFERENCE_CHANGE
{
    CFG_USER_INI_ENUMS number;
    std::optional<std::string> value; // nothing: back to the default
};

struct EDITED_FILE
{
    std::string path; // the preference file, links followed
    std::string before;
    std::string after;
    std::vector<std::string> warnings; // what else the edit changes
    std::size_t dropped_lines = 0;     // of `before`: lines that the library ignores, and so does not write

    bool changed() const
    {
        return before != after;
    }
};

// Makes the change and returns the file before and after; with `dry_run` the file stays as it is. No other preference
// changes its value: those carried over from older releases are written out where the change would end that.
//
// Waits up to `patience` for another velmar-cfg. Throws TOOL_ERROR: REFUSED for a value that the catalogue does not
// allow or that the file cannot hold, BAD_INPUT for a file that cannot be read, NOT_WRITTEN for everything else; the
// file is then untouched.
EDITED_FILE edit_preference(const PREFERENCE_CHANGE& change, bool dry_run, std::chrono::milliseconds patience);

#endif
