// What the commands that change a file have in common.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_EDIT_OPTIONS_H
#define TOOLS_VELMAR_CFG_COMMANDS_EDIT_OPTIONS_H

#include <chrono>
#include <string>
#include <string_view>

#include "tools/velmar-cfg/base/file_edit.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/commands/command.h"

struct EDIT_OPTIONS
{
    bool dry_run = false;
    unsigned int seconds_to_wait = 10;

    std::chrono::seconds patience() const
    {
        return std::chrono::seconds(seconds_to_wait);
    }
};

// Adds --dry-run with `dry_run` as its description, --wait, --break-hard-links and --replace-read-only.
void add_edit_options(COMMAND& command, EDIT_OPTIONS& options, FILE_EDIT_PERMISSIONS& permissions,
                      const std::string& dry_run);

// Writes a unified diff in colours.
void write_difference(std::string_view difference, OUTPUT& out);

#endif
