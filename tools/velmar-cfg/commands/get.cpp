// velmar-cfg get: one variable's value as one type reads it.
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/settings/known_variables.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/typed_readings.h"
#include "tools/velmar-cfg/settings/typed_value.h"

namespace
{
struct GET_OPTIONS
{
    std::string name;
    std::string type = "text";
    std::optional<std::string> fallback;
};

std::string why_not_set(const SETTINGS& settings, const std::string& name)
{
    const std::string not_set = "'" + name + "' is not set";
    if (const KNOWN_VARIABLE* const known = find_known_variable(name); known != nullptr)
        return not_set + (known->default_text.empty() ? "" : "; the catalogue's default is " + known->default_text);
    std::vector<std::string> names = known_variable_names();
    for (std::string& other : names_of_variables(SETTINGS(settings.layers())))
        names.push_back(std::move(other));
    return not_set + did_you_mean(name, names);
}

std::string why_not_usable(const SETTINGS& settings, const VARIABLE& variable, const std::string& name,
                           READER_TYPE type)
{
    const std::string value(settings.value_of(variable));
    const std::string location = location_as_text(settings.location_of(variable));
    return value.empty() ? "'" + name + "' is set to the empty text at " + location
                         : "'" + name + "' is '" + value + "' at " + location + ": " + what_is_wanted(type);
}

EXIT_CODE get(const GET_OPTIONS& options, TOOL& tool)
{
    LAYERS layers = load_layers(tool.options.scope, tool.files);
    const SETTINGS settings = SETTINGS::of_one_variable(std::move(layers), options.name);
    const VARIABLE* const variable = settings.find(options.name);
    const std::string text(variable == nullptr ? "" : settings.value_of(*variable));
    const TYPED_READINGS readings = read_typed(text);
    const READER_TYPE type = type_of_word(options.type).value_or(READER_TYPE::TEXT);
    const TYPED_VALUE value = value_of_type(type, text, readings);
    const std::optional<std::string> usable = value_as_text(value);

    if (type == READER_TYPE::DOUBLE && usable && !readings.floating_is_whole)
        complain("'" + options.name + "' is '" + text + "': only the number at its start is read, " + *usable);
    if (!usable && !options.fallback)
        complain(variable == nullptr ? why_not_set(settings, options.name)
                                     : why_not_usable(settings, *variable, options.name, type));

    const std::optional<std::string> answer = usable ? usable : options.fallback;
    if (tool.options.json)
        answer_in_json(tool,
                       [&](JSON_WRITER& out)
                       {
                           out.begin_object();
                           out.field("name", options.name);
                           out.field("type", options.type);
                           out.key("value");
                           write_json(out, usable || !answer ? value : TYPED_VALUE(*answer));
                           out.field("usable", usable.has_value());
                           out.field("text", text);
                           out.field("external", variable != nullptr && variable->layers.mark_external());
                           const LOCATION location = variable == nullptr ? LOCATION{} : settings.location_of(*variable);
                           write_location_fields(out, variable == nullptr ? nullptr : &location);
                           out.end_object();
                       });
    else if (answer)
        tool.out << *answer << (tool.options.nul_terminated ? std::string_view("\0", 1) : "\n");
    return answer ? EXIT_CODE::FINE : EXIT_CODE::FINDINGS;
}
}

void add_get_command(COMMAND app, TOOL& tool)
{
    auto options = std::make_shared<GET_OPTIONS>();
    COMMAND command = app.add_command(
        tool, "get",
        "Print the value of an internal variable as a reader of that type gets it. Exit code 1 when there is "
        "no usable value.",
        "velmar-cfg get msg_sqlite --type bool --default off\n"
        "      on or off, as a program that asks for the switch with the default off",
        [options, &tool] { return get(*options, tool); });
    command.add_argument("NAME", options->name, "The variable, in any letter case");
    command.add_choice("--type", "TYPE", options->type, {"bool", "int", "uint", "double", "text"},
                       "How to read it: text (the default), bool, int, uint or double");
    command.add_option("--default", "VALUE", options->fallback, "Print this when there is no usable value");
    command.add_nul_flag(tool);
}
