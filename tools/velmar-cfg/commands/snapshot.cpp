// velmar-cfg snapshot: everything at once, to be kept and compared.
#include "tools/velmar-cfg/documents/snapshot.h"
#include "cfg_run_report/whole_file.h"
#include "tools/velmar-cfg/base/byte_sink.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/state_options.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/documents/snapshot_json.h"
#include "tools/velmar-cfg/settings/secrets.h"
#include "tools/velmar-cfg/states/state.h"

namespace
{
// The file that the document becomes, whole or not at all.
class FILE_SINK : public BYTE_SINK
{
public:
    FILE_SINK(const std::string& path, FILE_READERS readers) : file(path, readers) {}

    void write(std::string_view bytes) override
    {
        file.write(bytes);
    }

    void put_in_place()
    {
        file.put_in_place();
    }

private:
    WHOLE_FILE_WRITER file;
};

struct SNAPSHOT_OPTIONS
{
    STATE_OPTIONS state;
    std::optional<std::string> file;
};

EXIT_CODE snapshot(const SNAPSHOT_OPTIONS& options, TOOL& tool)
{
    const std::optional<std::string>& file = options.file;
    SECRETS& secrets = *tool.options.scope.secrets;
    secrets.use_lasting_key();
    const STATE state = state_of(options.state, {.snapshot = true, .basis = true}, tool);
    state.require(!state.snapshot->of_run);
    const SNAPSHOT& taken = *state.snapshot;
    complain_of_key(secrets);
    if (!file || *file == "-")
    {
        answer_in_json(tool, [&](JSON_WRITER& out) { write_json(out, taken); });
        return EXIT_CODE::FINE;
    }
    try
    {
        FILE_SINK document(*file, secrets.shown() ? FILE_READERS::OWNER : FILE_READERS::AS_USUAL);
        JSON_WRITER writer(document);
        write_json(writer, taken);
        writer.finish();
        document.put_in_place();
    }
    catch (const std::system_error& error)
    {
        throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN,
                         *file + ": " + error.code().message() + "; name a file that can be written");
    }
    return EXIT_CODE::FINE;
}
}

void add_snapshot_command(COMMAND app, TOOL& tool)
{
    auto options = std::make_shared<SNAPSHOT_OPTIONS>();
    COMMAND command = app.add_command(
        tool, "snapshot",
        "Write all settings and preferences as one JSON document: who took it, where and when, the release, settings "
        "files and preference file with every line and their hashes, the search, the environment variables that "
        "matter, every variable and every preference with its value and origin. Keep it with a run, compare it with "
        "diff, and query it with --of as if on the machine itself.",
        "velmar-cfg --project designs/cpu --regtest snapshot -o before.json\n"
        "      what applies to a regression run in designs/cpu, for a later velmar-cfg diff before.json",
        [options, &tool] { return snapshot(*options, tool); });
    command.add_option("-o,--output", "FILE", options->file,
                       "Write to this file, as a whole or not at all; - is standard output");
    add_state_option(command, options->state, tool);
}
