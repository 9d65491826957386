// velmar-cfg paths: where settings were looked for, and what was found.
#include <algorithm>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/state_options.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/file_candidates.h"
#include "tools/velmar-cfg/states/state.h"

namespace
{
void write_json(JSON_WRITER& out, const STATE& state)
{
    const auto write_row = [](JSON_WRITER& writer, const auto& row) { write_json(writer, row); };
    out.begin_object();
    out.key("files");
    out.list(*state.candidates, write_row);
    out.key("environment");
    out.list(state.environment, write_row);
    write_view_field(out, state);
    out.end_object();
}

STYLE state_style(FILE_STATE state)
{
    switch (state)
    {
    case FILE_STATE::READ:
        return STYLE::GOOD;
    case FILE_STATE::SHADOWED:
    case FILE_STATE::DISABLED:
        return STYLE::WARNING;
    case FILE_STATE::DANGLING:
    case FILE_STATE::BARRED:
        return STYLE::BAD;
    case FILE_STATE::UNUSED:
    case FILE_STATE::MISSING:
    case FILE_STATE::SKIPPED:
        break;
    }
    return STYLE::FAINT;
}

void write_text(const STATE& state, OUTPUT& out)
{
    std::string heading;
    for (const FILE_CANDIDATE& candidate : *state.candidates)
    {
        if (candidate.file != heading)
        {
            heading = candidate.file;
            out << out.painted(STYLE::STRONG, printable(heading)) << "\n";
        }
        std::string word = state_word(candidate.state);
        word.resize(8, ' ');
        std::string place = printable(candidate.place);
        place.resize(std::max<std::size_t>(place.size(), 20), ' ');
        out << "  " << out.painted(state_style(candidate.state), word) << "  " << place;
        if (!candidate.path.empty())
            out << "  " << printable(candidate.path);
        if (!candidate.remark.empty())
            out << "  (" << printable(candidate.remark) << ")";
        out << "\n";
    }
    out << out.painted(STYLE::STRONG, "environment") << "\n";
    for (const auto& [name, value] : state.environment)
        out << "  " << printable(name) << (value ? "=" + printable(*value) : " is not set") << "\n";
}

EXIT_CODE paths(const STATE_OPTIONS& options, TOOL& tool)
{
    const STATE state = state_of(options, {.search = true}, tool);
    state.require(state.candidates.has_value());
    if (tool.options.json)
        answer_in_json(tool, [&](JSON_WRITER& out) { write_json(out, state); });
    else
    {
        write_view(state, tool.out);
        write_text(state, tool.out);
    }
    return EXIT_CODE::FINE;
}
}

void add_paths_command(COMMAND app, TOOL& tool)
{
    auto options = std::make_shared<STATE_OPTIONS>();
    COMMAND command = app.add_command(
        tool, "paths",
        "Show where settings are looked for: each candidate in the order of the search, which one is read and "
        "which are shadowed by it, the files applied on top of it, the preference file, and the environment "
        "variables that take part.",
        "velmar-cfg --project designs/cpu paths\n      which velmar.ini a run in designs/cpu reads",
        [options, &tool] { return paths(*options, tool); });
    add_state_option(command, *options, tool);
}
