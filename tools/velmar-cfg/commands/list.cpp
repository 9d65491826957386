// velmar-cfg list: every variable, and where it came from.
#include <fnmatch.h>

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
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

bool wanted(const LIST_OPTIONS& options, const SETTINGS& settings, const VARIABLE& variable)
{
    if (options.external && !variable.layers.mark_external())
        return false;
    return !options.has_pattern() ||
           fnmatch(options.pattern->c_str(), std::string(settings.name_of(variable)).c_str(), FNM_CASEFOLD) == 0;
}

void write_row(JSON_WRITER& out, const SETTINGS& settings, const VARIABLE& variable)
{
    const LOCATION location = settings.location_of(variable);
    out.begin_object();
    out.field("name", settings.name_of(variable));
    out.field("value", settings.value_of(variable));
    out.field("external", variable.layers.mark_external());
    write_location_fields(out, &location);
    out.end_object();
}

void write_record(const LIST_OPTIONS& options, const SETTINGS& settings, const VARIABLE& variable, TOOL& tool)
{
    if (tool.options.nul_terminated)
    {
        constexpr std::string_view end("\0", 1);
        if (options.show_origin)
            tool.out << location_as_text(settings.location_of(variable)) << end;
        // Nothing is escaped here, so that a mask would look like a value.
        tool.out << settings.name_of(variable);
        if (!has_hidden_parts(settings.value_of(variable)))
            tool.out << "=" << settings.value_of(variable);
        tool.out << end;
        return;
    }
    if (options.show_origin)
        tool.out << tool.out.painted(STYLE::FAINT, printable(location_as_text(settings.location_of(variable)))) << "\t";
    tool.out << tool.out.painted(STYLE::STRONG, printable(settings.name_of(variable))) << "="
             << printable(settings.value_of(variable)) << "\n";
}

EXIT_CODE list(const LIST_OPTIONS& options, TOOL& tool)
{
    LAYERS layers = load_layers(tool.options.scope, tool.files);
    const SETTINGS settings(std::move(layers));
    JSON_WRITER json(tool.out);
    if (tool.options.json)
        json.begin_list();
    bool found = false;
    const std::vector<std::uint32_t> order = settings.order_by_name();
    for (std::size_t i = 0; i < order.size(); ++i)
    {
        settings.fetch_ahead(order, i);
        const VARIABLE& variable = settings.variables()[order[i]];
        if (!wanted(options, settings, variable))
            continue;
        found = true;
        if (tool.options.json)
            write_row(json, settings, variable);
        else
            write_record(options, settings, variable, tool);
    }
    if (tool.options.json)
    {
        json.end_list();
        json.finish();
    }
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
