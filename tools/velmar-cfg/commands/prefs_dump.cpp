// velmar-cfg prefs dump: the preferences as a preference file.
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/preferences/preference_transfer.h"
#include "tools/velmar-cfg/preferences/preferences.h"

namespace
{
EXIT_CODE dump(bool only_changed, TOOL& tool)
{
    const PREFERENCE_DUMP dumped =
        dump_preferences(load_preferences(tool.files, *tool.options.scope.secrets), only_changed);
    if (tool.options.json)
        answer_in_json(tool,
                       [&](JSON_WRITER& out)
                       {
                           out.begin_object();
                           out.field("text", dumped.text);
                           out.field("masked", dumped.masked);
                           out.end_object();
                       });
    else
        tool.out << dumped.text; // a file, so nothing is escaped
    return EXIT_CODE::FINE;
}
}

void add_prefs_dump_command(COMMAND prefs, TOOL& tool)
{
    auto only_changed = std::make_shared<bool>(false);
    COMMAND command = prefs.add_command(
        tool, "dump",
        "Print the preferences as a velmar2.ini of the running release, which answers as the file in use does. Masked "
        "values are left out, with a comment for each, unless --with-secrets is given.",
        "velmar-cfg prefs dump --changed >mine.ini\n      what differs from the defaults, for prefs load elsewhere",
        [only_changed, &tool] { return dump(*only_changed, tool); });
    command.add_flag("--changed", *only_changed, "Only those that differ from the default, if only in letter case");
}
