// velmar-cfg diff: what differs between two snapshots, and which layer made it differ.
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/differences_output.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/documents/differences_json.h"
#include "tools/velmar-cfg/documents/named_snapshot.h"
#include "tools/velmar-cfg/documents/run_reports.h"
#include "tools/velmar-cfg/documents/snapshot_differences.h"
#include "tools/velmar-cfg/documents/take_snapshot.h"

namespace
{
struct DIFF_OPTIONS
{
    std::string a;
    std::optional<std::string> b;
    std::optional<std::string> used;
};

EXIT_CODE diff(const DIFF_OPTIONS& options, TOOL& tool)
{
    SECRETS& secrets = *tool.options.scope.secrets;
    secrets.use_lasting_key();
    std::optional<RUN_REPORT> run;
    if (options.used)
        run = read_run_report(*options.used, secrets);
    const COMPARED_SNAPSHOT a = named_snapshot(options.a, tool.options.scope, tool.files);
    const COMPARED_SNAPSHOT b = options.b ? named_snapshot(*options.b, tool.options.scope, tool.files)
                                          : COMPARED_SNAPSHOT{"now", take_snapshot(tool.options.scope, tool.files)};
    complain_of_key(secrets);

    SNAPSHOT_DIFFERENCES differences = compare_snapshots(a.snapshot, b.snapshot);
    if (run)
        keep_what_the_run_read(differences, *run);
    if (tool.options.json)
        answer_in_json(tool, [&](JSON_WRITER& out) { write_differences_json(out, a, b, differences, run); });
    else
        write_differences(a, b, differences, run, tool.out);
    return differences.none() ? EXIT_CODE::FINE : EXIT_CODE::FINDINGS;
}
}

void add_diff_command(COMMAND app, TOOL& tool)
{
    auto options = std::make_shared<DIFF_OPTIONS>();
    COMMAND command = app.add_command(
        tool, "diff",
        "Show what differs between two snapshots and which layer made it differ: release, environment, content of the "
        "files, variables and preferences. Exit code 1 when something does.",
        "velmar-cfg --project designs/cpu diff before.json\n"
        "      what has changed for runs in designs/cpu since the snapshot\n"
        "  velmar-cfg diff monday.json tuesday.json --used run.json\n"
        "      only the variables that the run of run.json read\n"
        "  velmar-cfg diff designs/cpu designs/gpu\n      two projects, as runs in them would see them now",
        [options, &tool] { return diff(*options, tool); });
    command.add_argument("A", options->a, "A snapshot's file, - for standard input, or a project's directory");
    command.add_optional_argument("B", options->b, "The same; without it: what holds now, for --project if given");
    command.add_option("--used", "REPORT", options->used,
                       "Only the variables that the run of this report read, and nothing else");
}
