// velmar-cfg diff: what differs between two states, and which layer made it differ. Both are read as snapshots, one
// after the other, and compared as a whole; what the options leave out is dropped from the differences.
#include <iterator>

#include "platform/fio/fio.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/differences_output.h"
#include "tools/velmar-cfg/commands/state_options.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/documents/differences_json.h"
#include "tools/velmar-cfg/documents/run_reports.h"
#include "tools/velmar-cfg/documents/snapshot.h"
#include "tools/velmar-cfg/documents/snapshot_differences.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/secrets.h"
#include "tools/velmar-cfg/states/read_state.h"
#include "tools/velmar-cfg/states/state.h"
#include "tools/velmar-cfg/states/state_name.h"

namespace
{
struct DIFF_OPTIONS
{
    std::string a;
    std::optional<std::string> b;
    std::optional<std::string> used;
    std::vector<WHAT_IF> what_if;
    std::vector<std::string> ignored;
    std::vector<std::string> sections;
};

// A snapshot says itself for what it was taken, but for whose view it is.
COMPARED_SNAPSHOT side_of(STATE state)
{
    const bool says_itself = state.is_document && !state.snapshot->of_run;
    if (says_itself)
        state.view = state.snapshot->basis ? state.snapshot->basis->view_in_words() : "";
    return {state.name, *std::move(state.snapshot), state.heading()};
}

STATE_NAME name_of_b(const DIFF_OPTIONS& options)
{
    return options.b ? state_name(*options.b) : STATE_NAME();
}

void require_no_contradiction(const DIFF_OPTIONS& options, const GLOBAL_OPTIONS& global)
{
    if (options.b && !global.scope.project.empty())
        throw TOOL_ERROR(EXIT_CODE::USAGE, "--project names what A is compared with, and so does B; leave one out");
    if (!global.root.empty() && !state_name(options.a).is_read_here() && !name_of_b(options).is_read_here())
        throw TOOL_ERROR(EXIT_CODE::USAGE, "--root is for what is read here: A and B have installations of their own; "
                                           "leave --root out");
}

// What A is compared with, where only A is named and that may not be what the user expects; else empty.
std::string remark_on_b(const STATE_NAME& name_of_a, const STATE& a, const DIFF_OPTIONS& options)
{
    if (name_of_a.kind == STATE_NAME::KIND::PROJECT)
        return options.what_if.empty() ? a.name + ": this project is compared with itself; name B, such as . for the "
                                                  "current directory, or give --with or --without"
                                       : "";
    if (!a.is_document)
        return "";
    const std::string present = " the current directory; --project DIR names others";
    const std::optional<SNAPSHOT_BASIS>& basis = a.snapshot->basis;
    if (a.snapshot->of_run || (basis && basis->as))
        return a.name + (a.snapshot->of_run ? ": a run report" : ": the snapshot of another program") +
               " names no project; compared with the settings of" + present;
    const std::string& project = a.snapshot->project;
    const bool is_from_elsewhere =
        basis && basis->directory && *basis->directory != FIO_FILE_SYSTEM::get_current_directory();
    if (!is_from_elsewhere || project.starts_with('/'))
        return "";
    return a.name + ": this snapshot was taken in " + *basis->directory + "; compared with the settings" +
           (project.empty() ? " of" : " of " + project + " in") + present;
}

EXIT_CODE diff(const DIFF_OPTIONS& options, TOOL& tool)
{
    const SETTINGS_SCOPE& scope = tool.options.scope;
    scope.secrets->use_lasting_key();
    std::optional<RUN_REPORT> run;
    if (options.used)
        run = read_run_report(*options.used, *scope.secrets);
    // One is read after the other: each may be put into effect for the whole process.
    const STATE_NAME name_of_a = state_name(options.a);
    STATE state_a = read_state(name_of_a, {.snapshot = true}, scope, tool.files);
    SETTINGS_SCOPE scope_of_b = options.b ? scope : scope_to_compare_with(name_of_a, state_a, scope);
    if (!options.b && scope.project.empty())
    {
        if (const std::string remark = remark_on_b(name_of_a, state_a, options); !remark.empty())
            complain(remark);
    }
    scope_of_b.what_if = options.what_if;
    STATE state_b = read_state(name_of_b(options), {.snapshot = true}, scope_of_b, tool.files);
    const COMPARED_SNAPSHOT a = side_of(std::move(state_a));
    const COMPARED_SNAPSHOT b = side_of(std::move(state_b));

    SNAPSHOT_DIFFERENCES differences = compare_snapshots(
        a.snapshot, b.snapshot, [&scope](std::string_view text) { return scope.secrets->mark(text); });
    complain_of_key(*scope.secrets);
    if (run)
        keep_what_the_run_read(differences, *run);
    ignore_names(differences, options.ignored);
    if (!options.sections.empty())
        keep_sections(differences, options.sections);
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
        "Show what differs between two states and which layer made it differ: release, environment, content of the "
        "files, variables and preferences. What one of the two states cannot know is not compared. Exit code 1 when "
        "something differs.",
        "velmar-cfg diff before.json\n"
        "      what has changed for runs in the project of the snapshot since it was taken\n"
        "  velmar-cfg diff monday.json tuesday.json --used run.json\n"
        "      only the variables that the run of run.json read\n"
        "  velmar-cfg diff pid:4711 designs/gpu --only variables\n      a process, and what a run in a project would "
        "see",
        [options, &tool] { return diff(*options, tool); });
    command.add_argument("A", options->a,
                         "A project's directory, a snapshot or run report, - for one on standard input, pid:NUMBER or "
                         "exe:PATH");
    command.add_optional_argument("B", options->b,
                                  "The same; by default the present state of --project or of the project of A");
    command.add_option("--used", "REPORT", options->used,
                       "Only the variables that the run of this report read, and nothing else");
    command.add_option(
        "--ignore", "PATTERN", options->ignored,
        "Leave out what has a name that matches this shell pattern, letter case ignored; may be repeated");
    command.add_repeated_choice(
        "--only", "SECTION", {std::begin(difference_sections), std::end(difference_sections)},
        [options](const std::string& section) { options->sections.push_back(section); },
        "Only this section: installation, environment, files, variables or preferences; may be repeated");
    add_what_if_options(command, options->what_if, " of B");
    command.add_check(tool, [options, &tool] { require_no_contradiction(*options, tool.options); });
}
