// velmar-cfg layers: the sources of the settings in the order in which they apply, each with its lines.
//
// The lines come one by one from the layers, each with its effect: it counts, it is ignored, or a later line overrides
// it (states/layer_lines.h). Headings are written as the lines reach their layer. Consecutive layers of one source,
// such as two parts of a file, have one heading. Variables that a document knows to be set, without a value, follow at
// the end.
#include <algorithm>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/state_options.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/library_rules.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/states/layer_lines.h"
#include "tools/velmar-cfg/states/state.h"

namespace
{
struct LAYERS_OPTIONS
{
    STATE_OPTIONS state;
    bool only_overridden = false;
};

bool is_wanted(const LAYERS_OPTIONS& options, const LAYER_LINE& line)
{
    return !options.only_overridden || line.effect != LINE_EFFECT::COUNTS;
}

// --- JSON ---

void write_row(JSON_WRITER& out, const SETTINGS& settings, const LAYER_LINE& line)
{
    const LOCATION location = location_of(settings.layers(), line.statement);
    const bool assigns = line.statement.outcome == OUTCOME::STORED;
    out.begin_object();
    write_location_fields(out, &location);
    out.field("text", line.statement.text);
    out.field("name", assigns ? std::optional(line.statement.name) : std::nullopt);
    out.field("value", assigns ? std::optional(line.statement.value) : std::nullopt);
    out.field("effect", effect_word(line.effect));
    out.key("winner");
    if (line.winner)
    {
        out.begin_object();
        write_location_fields(out, &*line.winner);
        out.end_object();
    }
    else
        out.value(std::nullopt);
    out.end_object();
}

// A variable that the document knows to have a value, and no more of.
void write_row_not_recorded(JSON_WRITER& out, std::string_view name)
{
    const LOCATION nowhere{LAYER_KIND::UNKNOWN, {}, 0};
    out.begin_object();
    write_location_fields(out, &nowhere);
    out.field("text", std::nullopt);
    out.field("name", name);
    out.field("value", std::nullopt);
    out.field("effect", effect_word(LINE_EFFECT::COUNTS));
    out.field("winner", std::nullopt);
    out.end_object();
}

void write_rows(const LAYERS_OPTIONS& options, const STATE& state, const SETTINGS& settings, JSON_WRITER& out)
{
    out.begin_list();
    for_each_layer_line(settings,
                        [&](const LAYER_LINE& line)
                        {
                            if (is_wanted(options, line))
                                write_row(out, settings, line);
                        });
    if (!options.only_overridden)
    {
        for (const std::string_view name : state.variables_not_recorded(settings))
            write_row_not_recorded(out, name);
    }
    out.end_list();
}

// --- Text ---

std::string shown(const STATEMENT& statement)
{
    constexpr std::size_t longest = 100;
    const std::string text = trimmed(statement.text);
    return printable(shortened(text, length_by_shown_length(text, longest)));
}

std::string mark_of_effect(const LAYER_LINE& line, const OUTPUT& out)
{
    switch (line.effect)
    {
    case LINE_EFFECT::LOST:
        return "  " + out.painted(STYLE::FAINT, "lost to " + printable(location_as_text(*line.winner)));
    case LINE_EFFECT::IGNORED:
        return "  " + out.painted(STYLE::WARNING, "does nothing");
    case LINE_EFFECT::COUNTS:
        break;
    }
    return "";
}

// The heads of the layers, also of those without lines.
class LAYERS_TEXT
{
public:
    LAYERS_TEXT(const LAYERS& of_state, OUTPUT& where) : layers(of_state), out(where) {}

    void write(const LAYER_LINE& line)
    {
        write_heads_to(line.statement.layer);
        std::string position = std::to_string(line.statement.position);
        constexpr std::size_t width = 6;
        position.insert(0, width - std::min(width, position.size()), ' ');
        if (line.statement.position == 0)
            position.assign(width, ' ');
        out << position << "  "
            << out.painted(line.effect == LINE_EFFECT::COUNTS ? STYLE::PLAIN : STYLE::FAINT, shown(line.statement))
            << mark_of_effect(line, out) << "\n";
    }

    void finish()
    {
        if (!layers.empty())
            write_heads_to(layers.size() - 1);
    }

private:
    void write_heads_to(std::size_t last)
    {
        for (; heads <= last; ++heads)
        {
            const LAYER& layer = layers[heads];
            const bool goes_on = heads > 0 && layers[heads - 1].kind == layer.kind &&
                                 layers[heads - 1].source->path == layer.source->path;
            if (goes_on)
                continue;
            out << out.painted(STYLE::STRONG, layer_title(layer.kind));
            if (is_file(layer.kind) || layer.kind == LAYER_KIND::INLINE_TEXT ||
                (layer.kind == LAYER_KIND::UNKNOWN && !layer.source->path.empty()))
                out << "  " << printable(layer.source->path);
            if (!layer.source->problem.empty())
                out << "  " << out.painted(STYLE::BAD, "(" + printable(layer.source->problem) + ")");
            out << "\n";
        }
    }

    const LAYERS& layers;
    OUTPUT& out;
    std::size_t heads = 0; // that are written
};

void write_not_recorded(const STATE& state, const SETTINGS& settings, OUTPUT& out)
{
    const std::vector<std::string_view> names = state.variables_not_recorded(settings);
    if (!names.empty())
        out << out.painted(STYLE::STRONG, "set, value not recorded") << "\n";
    for (const std::string_view name : names)
        out << "        " << printable(name) << "\n";
}

EXIT_CODE show_layers(const LAYERS_OPTIONS& options, TOOL& tool)
{
    const STATE state = state_of(options.state, {.settings = true}, tool);
    if (options.only_overridden)
        state.require(state.known_lines != KNOWN_LINES::WINNERS);
    const SETTINGS settings(state.layers);
    if (tool.options.json)
    {
        answer_in_json(tool, [&](JSON_WRITER& out) { write_rows(options, state, settings, out); });
        return EXIT_CODE::FINE;
    }
    write_view(state, tool.out);
    if (state.known_lines == KNOWN_LINES::ASSIGNMENTS)
        tool.out << "only assignments to variables that were set or asked for are known\n";
    else if (state.known_lines == KNOWN_LINES::WINNERS)
        tool.out << "only the values that won are known\n";
    LAYERS_TEXT text(settings.layers(), tool.out);
    for_each_layer_line(settings,
                        [&](const LAYER_LINE& line)
                        {
                            if (is_wanted(options, line))
                                text.write(line);
                        });
    text.finish();
    if (!options.only_overridden)
        write_not_recorded(state, settings, tool.out);
    return EXIT_CODE::FINE;
}
}

void add_layers_command(COMMAND app, TOOL& tool)
{
    auto options = std::make_shared<LAYERS_OPTIONS>();
    COMMAND command = app.add_command(
        tool, "layers",
        "Show the whole configuration: the sources of the settings in the order in which they apply, each with its "
        "lines except comments. Lines that lost or did nothing are marked.",
        "velmar-cfg --project designs/cpu layers\n      every line that applies to a run in designs/cpu\n"
        "  velmar-cfg --project designs/cpu layers --overridden\n      the lines that have no effect",
        [options, &tool] { return show_layers(*options, tool); });
    command.add_flag("--overridden", options->only_overridden, "Only lines that lost or did nothing");
    add_state_option(command, options->state, tool);
    add_what_if_options(command, options->state.what_if);
}
