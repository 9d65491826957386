// velmar-cfg snapshot: everything at once, to be kept and compared.
#include "tools/velmar-cfg/documents/snapshot.h"
#include "cfg_run_report/whole_file.h"
#include "tools/velmar-cfg/base/json_values.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/documents/snapshot_json.h"

namespace
{
EXIT_CODE snapshot(const std::optional<std::string>& file, TOOL& tool)
{
    const nlohmann::ordered_json document = snapshot_as_json(take_snapshot(tool.options.scope));
    if (!file)
        tool.out.json(document);
    else if (const std::string error = write_whole_file(*file, document_as_text(document)); !error.empty())
        throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, *file + ": " + error + "; name a file that can be written");
    return EXIT_CODE::FINE;
}
}

void add_snapshot_command(COMMAND app, TOOL& tool)
{
    auto file = std::make_shared<std::optional<std::string>>();
    COMMAND command = app.add_command(
        tool, "snapshot",
        "Write all of it as one JSON document: release, settings files and preference file with their hashes, the "
        "environment variables that matter, every variable and every preference with its value and origin. To be kept "
        "with a run and given to diff.",
        "velmar-cfg --project designs/cpu --regtest snapshot -o before.json\n"
        "      what a regression run in designs/cpu goes by, for a later velmar-cfg diff before.json",
        [file, &tool] { return snapshot(*file, tool); });
    command.add_option("-o,--output", "FILE", *file, "Write to this file, as a whole or not at all");
}
