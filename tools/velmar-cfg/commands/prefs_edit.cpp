// velmar-cfg prefs set and reset: changing the preference file.
#include "cfg_ini/cfg_ini.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/preference_changes.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/preferences/preference_plan.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/layers.h"

namespace
{
struct KEY_OPTIONS : PREFERENCE_OPTIONS
{
    std::string key;
    std::string value;
};

EXIT_CODE edit(const KEY_OPTIONS& options, bool reset, TOOL& tool)
{
    PREFERENCE_CHANGE change{preference_number(options.key), {}};
    if (!reset)
        change.value = options.value;
    const auto write_subject = [&](JSON_WRITER& out)
    {
        out.field("key", cfg_get_user_ini_ini_string(change.number));
        out.field("value", shown_value(change, *tool.options.scope.secrets));
    };
    make_preference_changes({change}, options, write_subject, tool);
    return EXIT_CODE::FINE;
}

COMMAND add_edit(COMMAND prefs, TOOL& tool, const std::string& name, const std::string& description,
                 const std::string& example)
{
    auto options = std::make_shared<KEY_OPTIONS>();
    const bool reset = name == "reset";
    COMMAND command = prefs.add_command(tool, name, description, example,
                                        [options, reset, &tool] { return edit(*options, reset, tool); });
    command.add_argument("KEY", options->key, "The preference, in any letter case");
    if (!reset)
        command.add_argument("VALUE", options->value,
                             "One of the allowed values; put -- before one that begins with \"-\"");
    add_preference_options(command, *options);
    return command;
}
}

void add_prefs_edit_commands(COMMAND prefs, TOOL& tool)
{
    add_edit(
        prefs, tool, "set",
        "Give a preference a value, for the running release. The file is replaced as a whole; other preferences keep "
        "their values. Lines that a save does not keep, such as comments, are shown. If values in them would be "
        "lost, the file is not changed.",
        "velmar-cfg prefs set HDL_PREFERENCE VHDL\n      new designs are in VHDL from now on");
    add_edit(prefs, tool, "reset", "Reset a preference to its default",
             "velmar-cfg prefs reset HDL_PREFERENCE --dry-run\n      what the file would lose");
}
