// velmar-cfg prefs: the user preferences.
#include "tools/velmar-cfg/commands.h"

void add_prefs_command(CLI::App& app, TOOL& tool)
{
    CLI::App* const prefs = add_command_group(
        app, "prefs", "Show and change the user preferences of velmar2.ini",
        "velmar-cfg prefs set SHOW_MESSAGE_ID off --dry-run\n      what that would change in the file");
    prefs->require_subcommand(1);
    add_prefs_show_commands(*prefs, tool);
    add_prefs_edit_commands(*prefs, tool);
    add_prefs_lint_command(*prefs, tool);
}
