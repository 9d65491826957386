// The effect of a change of one settings file on what a run reads.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_CHANGE_EFFECT_H
#define TOOLS_VELMAR_CFG_SETTINGS_CHANGE_EFFECT_H

#include <cstddef>
#include <optional>
#include <string>

#include "tools/velmar-cfg/base/file_edit.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/settings/layers.h"

// The assignment that gives a variable its value.
struct DECIDING_ASSIGNMENT
{
    LAYER_KIND layer;
    std::string source;
    std::size_t position;
    std::string value; // as it is, secret or not
    bool in_file;      // it is in the changed file

    LOCATION location() const
    {
        return {layer, source, position};
    }
};

struct CHANGE_EFFECT
{
    bool file_is_read; // a run of the scope reads the changed file
    std::optional<DECIDING_ASSIGNMENT> deciding;
};

// Which assignment gives the variable its value in a run of `scope` after the edit; nothing if no layer sets it. Reads
// the files as they are now. For an edit that was only planned, the planned bytes take the place of those of the file.
CHANGE_EFFECT effect_of_change(const SETTINGS_SCOPE& scope, const std::string& name, const FILE_EDIT& edit,
                               bool only_planned, INPUT_FILES& files);

// The settings file that a run of `scope` reads now, but would no longer read if there were a file at `path`. Empty if
// there is none. There must be no file at `path` now.
std::string file_in_whose_place(const SETTINGS_SCOPE& scope, const std::string& path);

#endif
