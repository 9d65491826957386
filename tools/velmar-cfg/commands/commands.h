// Every command of the tool, each defined in the source file of its name.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_COMMANDS_H
#define TOOLS_VELMAR_CFG_COMMANDS_COMMANDS_H

#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/tool.h"

void add_get_command(COMMAND app, TOOL& tool);
void add_list_command(COMMAND app, TOOL& tool);
void add_explain_command(COMMAND app, TOOL& tool);
void add_layers_command(COMMAND app, TOOL& tool);
void add_paths_command(COMMAND app, TOOL& tool);
void add_lint_command(COMMAND app, TOOL& tool);
void add_set_commands(COMMAND app, TOOL& tool);
void add_prefs_command(COMMAND app, TOOL& tool);
void add_run_report_command(COMMAND app, TOOL& tool);
void add_snapshot_command(COMMAND app, TOOL& tool);
void add_diff_command(COMMAND app, TOOL& tool);

// Parts of prefs.
void add_prefs_show_commands(COMMAND prefs, TOOL& tool);
void add_prefs_lint_command(COMMAND prefs, TOOL& tool);
void add_prefs_edit_commands(COMMAND prefs, TOOL& tool);

#endif
