// velmar-cfg get: one variable's value as one type reads it.
#include <nlohmann/json.hpp>

#include "cfg_ini/cfg_ini.h"
#include "tools/velmar-cfg/base/json_values.h"
#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/settings/known_variables.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/typed_readings.h"

namespace
{
struct GET_OPTIONS
{
    std::string name;
    std::string type = "text";
    std::optional<std::string> fallback;
};

// What a reader of the type answers, as text and as JSON; null for no usable value.
struct ANSWER
{
    std::optional<std::string> text;
    nlohmann::ordered_json json;
};

template <typename T, typename AS_TEXT>
ANSWER answer(const std::optional<T>& value, AS_TEXT as_text)
{
    return value ? ANSWER{as_text(*value), *value} : ANSWER{};
}

ANSWER answer_of_type(const GET_OPTIONS& options, const std::string& text, const TYPED_READINGS& readings)
{
    const auto in_decimal = [](auto number) { return std::to_string(number); };
    if (options.type == "bool")
        return answer(readings.boolean, boolean_as_text);
    if (options.type == "int")
        return answer(readings.signed_integer, in_decimal);
    if (options.type == "uint")
        return answer(readings.unsigned_integer, in_decimal);
    if (options.type == "double")
    {
        ANSWER number = answer(readings.floating, number_as_text);
        if (readings.floating)
            number.json = number_as_json(*readings.floating);
        return number;
    }
    return text.empty() ? ANSWER{} : ANSWER{text, text};
}

const char* type_as_words(const std::string& type)
{
    return type == "bool"  ? "no switch (on, 1, true, off, 0, false)"
           : type == "int" ? "no integer from -2147483648 to 2147483647"
                           : "no integer from 0 to 4294967295";
}

std::vector<std::string> all_names(const SETTINGS& settings)
{
    std::vector<std::string> names = known_variable_names();
    for (const VARIABLE& variable : settings.variables)
        names.push_back(variable.name);
    return names;
}

// Why there is no usable value.
std::string reason(const SETTINGS& settings, const GET_OPTIONS& options)
{
    const std::string name = "'" + options.name + "'";
    const STATEMENT* const winner = settings.layers.winner_of(options.name);
    if (winner == nullptr)
    {
        const KNOWN_VARIABLE* const known = find_known_variable(options.name);
        if (known == nullptr)
            return name + " is not set" + did_you_mean(options.name, all_names(settings));
        return name + " is not set" +
               (known->default_text.empty() ? "" : "; the catalogue's default is " + known->default_text);
    }
    const std::string location = location_of(settings.layers, *winner);
    if (winner->value.empty())
        return name + " is set to the empty text at " + location;
    return name + " is '" + winner->value + "' at " + location + ": " + type_as_words(options.type);
}

EXIT_CODE get(const GET_OPTIONS& options, TOOL& tool)
{
    const SETTINGS settings = load_settings(tool.options.scope);
    const std::string text = cfg_get_value(options.name);
    const TYPED_READINGS readings = read_typed(options.name);
    ANSWER answer = answer_of_type(options, text, readings);
    const bool usable = answer.text.has_value();

    if (options.type == "double" && usable && !readings.floating_is_whole)
        complain("'" + options.name + "' is '" + text + "': only the number at its start is read, " + *answer.text);
    if (!usable && !options.fallback)
        complain(reason(settings, options));
    if (!usable && options.fallback)
        answer = {options.fallback, *options.fallback};

    if (tool.options.json)
    {
        nlohmann::ordered_json row = {{"name", options.name}, {"type", options.type},
                                      {"value", answer.json}, {"usable", usable},
                                      {"text", text},         {"external", cfg_ini_is_external(options.name)}};
        row.update(location_as_json(settings.layers, settings.layers.winner_of(options.name)));
        tool.out.json(row);
    }
    else if (answer.text)
        tool.out << *answer.text << (tool.options.nul_terminated ? std::string_view("\0", 1) : "\n");

    if (!complain_of(differences_from_library(settings)))
        return EXIT_CODE::BAD_INPUT;
    return answer.text ? EXIT_CODE::FINE : EXIT_CODE::FINDINGS;
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
