// velmar-cfg list: every variable, and where it came from.
#include <fnmatch.h>
#include <nlohmann/json.hpp>

#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"

namespace
{
struct LIST_OPTIONS
{
    std::optional<std::string> pattern;

    bool has_pattern() const
    {
        return pattern && !pattern->empty();
    }

    bool show_origin = false;
    bool external = false;
};

bool wanted(const LIST_OPTIONS& options, const VARIABLE& variable)
{
    if (options.external && !variable.external)
        return false;
    return !options.has_pattern() || fnmatch(options.pattern->c_str(), variable.name.c_str(), FNM_CASEFOLD) == 0;
}

std::string origin_of(const SETTINGS& settings, const VARIABLE& variable)
{
    const STATEMENT* const winner = settings.layers.winner_of(variable.name);
    return winner == nullptr ? "" : location_of(settings.layers, *winner);
}

nlohmann::ordered_json row_of(const SETTINGS& settings, const VARIABLE& variable)
{
    nlohmann::ordered_json row = {{"name", variable.name}, {"value", variable.value}, {"external", variable.external}};
    row.update(location_as_json(settings.layers, settings.layers.winner_of(variable.name)));
    return row;
}

void write_record(const LIST_OPTIONS& options, const SETTINGS& settings, const VARIABLE& variable, TOOL& tool)
{
    if (tool.options.nul_terminated)
    {
        constexpr std::string_view end("\0", 1);
        if (options.show_origin)
            tool.out << origin_of(settings, variable) << end;
        tool.out << variable.name << "=" << variable.value << end;
        return;
    }
    if (options.show_origin)
        tool.out << tool.out.painted(STYLE::FAINT, printable(origin_of(settings, variable))) << "\t";
    tool.out << tool.out.painted(STYLE::STRONG, printable(variable.name)) << "=" << printable(variable.value) << "\n";
}

EXIT_CODE list(const LIST_OPTIONS& options, TOOL& tool)
{
    const SETTINGS settings = load_settings(tool.options.scope);
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    bool found = false;
    for (const VARIABLE& variable : settings.variables)
    {
        if (!wanted(options, variable))
            continue;
        found = true;
        if (tool.options.json)
            rows.push_back(row_of(settings, variable));
        else
            write_record(options, settings, variable, tool);
    }
    if (tool.options.json)
        tool.out.json(rows);

    if (!complain_of(differences_from_library(settings)))
        return EXIT_CODE::BAD_INPUT;
    return found || !options.has_pattern() ? EXIT_CODE::FINE : EXIT_CODE::FINDINGS;
}
}

void add_list_command(COMMAND app, TOOL& tool)
{
    auto options = std::make_shared<LIST_OPTIONS>();
    COMMAND command =
        app.add_command(tool, "list", "List the internal variables with their values, by name",
                        "velmar-cfg --project designs/cpu list 'debug_*' --show-origin\n"
                        "      what a run in designs/cpu would see of the debug switches, each with its file and line",
                        [options, &tool] { return list(*options, tool); });
    command.add_optional_argument(
        "PATTERN", options->pattern,
        "Only names that match this shell pattern, letter case ignored; exit code 1 when there is none");
    command.add_flag("--show-origin", options->show_origin,
                     "Show where each value came from: FILE:LINE, or "
                     "VELMAR_INI_VARS:ITEM");
    command.add_flag("--external", options->external,
                     "Only variables that count as external: those that the main "
                     "settings file or VELMAR_INI_VARS sets");
    command.add_nul_flag(tool);
}
