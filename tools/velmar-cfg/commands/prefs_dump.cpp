// velmar-cfg prefs dump: the preferences as a preference file.
#include "cfg_ini/cfg_user_ini_enums.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/state_options.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/preferences/preference_transfer.h"
#include "tools/velmar-cfg/states/state.h"

namespace
{
struct PREFS_DUMP_OPTIONS
{
    STATE_OPTIONS state;
    bool only_changed = false;
};

EXIT_CODE dump(const PREFS_DUMP_OPTIONS& options, TOOL& tool)
{
    const STATE state = state_of(options.state, {.preferences = true}, tool);
    state.require(state.preferences.has_value());
    const PREFERENCE_DUMP dumped = dump_preferences(
        [&state](CFG_USER_INI_ENUMS number) { return state.preferences->look_up(number); }, options.only_changed);
    if (tool.options.json)
        answer_with_view(tool, state,
                         [&](JSON_WRITER& out)
                         {
                             out.field("text", dumped.text);
                             out.field("masked", dumped.masked);
                         });
    else
        tool.out << dumped.text; // a file, so nothing is escaped
    return EXIT_CODE::FINE;
}
}

void add_prefs_dump_command(COMMAND prefs, TOOL& tool)
{
    auto options = std::make_shared<PREFS_DUMP_OPTIONS>();
    COMMAND command = prefs.add_command(
        tool, "dump",
        "Print the preferences as a velmar2.ini of the running release, which gives every preference the same value as "
        "the file in use. Masked values are left out, with a comment for each, unless --with-secrets is given.",
        "velmar-cfg prefs dump --changed >mine.ini\n      what differs from the defaults, for prefs load elsewhere",
        [options, &tool] { return dump(*options, tool); });
    command.add_flag("--changed", options->only_changed,
                     "Only those that differ from the default, even just in letter case");
    add_state_option(command, options->state, tool);
}
