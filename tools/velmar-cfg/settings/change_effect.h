// What a change of one settings file does to what a run reads.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_CHANGE_EFFECT_H
#define TOOLS_VELMAR_CFG_SETTINGS_CHANGE_EFFECT_H

#include <cstddef>
#include <optional>
#include <string>

#include "tools/velmar-cfg/base/file_edit.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/settings/layers.h"

// The assignment that decides on a variable.
struct DECIDING_ASSIGNMENT
{
    LAYER_KIND layer;
    std::string source;
    std::size_t position;
    std::string value; // as it is, secret or not
    bool in_file;      // that was changed

    LOCATION location() const
    {
        return {layer, source, position};
    }
};

struct CHANGE_EFFECT
{
    bool file_is_read; // by a run of that scope
    std::optional<DECIDING_ASSIGNMENT> deciding;
};

// Who decides on the variable for a run of `scope`: read from the files as they are now or, where the edit was only
// planned, as they would be.
CHANGE_EFFECT effect_of_change(const SETTINGS_SCOPE& scope, const std::string& name, const FILE_EDIT& edit,
                               bool only_planned, INPUT_FILES& files);

// The settings file that a run of `scope` reads now and would not read any more if there were a file at `path`, where
// there is none; else empty.
std::string file_in_whose_place(const SETTINGS_SCOPE& scope, const std::string& path);

#endif
