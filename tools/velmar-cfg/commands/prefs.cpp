// velmar-cfg prefs: the user preferences.
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/tool.h"

void add_prefs_command(COMMAND app, TOOL& tool)
{
    COMMAND prefs =
        app.add_group("prefs", "Show and change the user preferences of velmar2.ini",
                      "velmar-cfg prefs set SHOW_MESSAGE_ID off --dry-run\n      what that would change in the file");
    add_prefs_show_commands(prefs, tool);
    add_prefs_explain_command(prefs, tool);
    add_prefs_edit_commands(prefs, tool);
    add_prefs_dump_command(prefs, tool);
    add_prefs_load_command(prefs, tool);
    add_prefs_lint_command(prefs, tool);
}
