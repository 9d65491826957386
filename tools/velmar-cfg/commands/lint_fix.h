// velmar-cfg lint --fix: applies the suggestions to the files.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_LINT_FIX_H
#define TOOLS_VELMAR_CFG_COMMANDS_LINT_FIX_H

#include <cstddef>
#include <vector>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/file_edit.h"
#include "tools/velmar-cfg/commands/edit_options.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/lint/reasons.h"
#include "tools/velmar-cfg/settings/layers.h"

struct FIX_OPTIONS : EDIT_OPTIONS
{
    bool fix = false;
    FILE_EDIT_PERMISSIONS permissions;
};

struct FIXED_FILE
{
    FILE_EDIT edit;
    std::size_t fixes; // how many were made, or would be
    EXIT_CODE exit_code_of_refusal = EXIT_CODE::NOT_WRITTEN;
};

// Applies the suggestions to the files, and reports what became of each file.
class FILE_FIXES
{
public:
    FILE_FIXES(const FIX_OPTIONS& the_options, REASONS ignored_reasons, TOOL& the_tool)
        : options(the_options), ignored(std::move(ignored_reasons)), tool(the_tool)
    {
    }

    // Fixes the files among the layers. Returns the layers as they are afterwards, in a dry run as they would be.
    LAYERS fix(LAYERS layers);

    // Reports the files that were changed and those that could not be. A dry run shows the differences in place of the
    // former. Returns NOT_WRITTEN or BAD_INPUT if a file could not be changed, else FINE.
    EXIT_CODE finish() const;

private:
    void fix_file(LAYERS& layers, std::size_t index);
    void show_differences() const;

    const FIX_OPTIONS& options;
    const REASONS ignored;
    TOOL& tool;
    std::vector<FIXED_FILE> files;
};

#endif
