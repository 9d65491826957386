// How the commands that change preferences make a change and what they say of it.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_PREFERENCE_CHANGES_H
#define TOOLS_VELMAR_CFG_COMMANDS_PREFERENCE_CHANGES_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/edit_options.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/preferences/preference_edit.h"
#include "tools/velmar-cfg/preferences/preference_plan.h"
#include "tools/velmar-cfg/settings/secrets.h"

struct PREFERENCE_OPTIONS : EDIT_OPTIONS
{
    EDIT_PERMISSIONS permissions;
};

// Adds the options of EDIT_OPTIONS and --allow-loss.
void add_preference_options(COMMAND& command, PREFERENCE_OPTIONS& options);

// Makes the changes, or only shows them with --dry-run, and reports what else they change. The JSON object begins with
// the fields that `write_subject` writes. Shows no secret. Throws TOOL_ERROR if the file cannot be changed.
void make_preference_changes(const std::vector<PREFERENCE_CHANGE>& changes, const PREFERENCE_OPTIONS& options,
                             const std::function<void(JSON_WRITER&)>& write_subject, TOOL& tool);

// The value as it is to be shown; nothing for a reset.
std::optional<std::string> shown_value(const PREFERENCE_CHANGE& change, SECRETS& secrets);

// A message about the changes with the secret values in them hidden.
std::string hide_in_message(const std::string& message, const std::vector<PREFERENCE_CHANGE>& changes,
                            SECRETS& secrets);

#endif
