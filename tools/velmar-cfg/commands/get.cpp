// velmar-cfg get: one variable's value as one type reads it.
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/preferences/library_preferences.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/typed_answer.h"
#include "tools/velmar-cfg/settings/typed_value.h"

namespace
{
struct GET_OPTIONS
{
    std::string name;
    std::string type = "text";
    std::optional<std::string> fallback;
};

// A name that is another thing's: where to ask for it.
std::string advice_on(const std::string& name)
{
    const bool is_preference = zon_cfg::find_preference(name.c_str()) != CFG_USER_INI_ENUMS_END;
    return is_preference ? "; it is a preference: ask velmar-cfg prefs get " + name : "";
}

EXIT_CODE get(const GET_OPTIONS& options, TOOL& tool)
{
    const READER_TYPE type = type_of_word(options.type).value_or(READER_TYPE::TEXT);
    std::optional<TYPED_VALUE> fallback;
    if (options.fallback)
        fallback = default_of_type(type, *options.fallback);
    SETTINGS_SCOPE scope = tool.options.scope;
    scope.secrets = std::make_shared<SECRETS>();
    scope.secrets->show_all(); // the value is what was asked for
    const SETTINGS settings = SETTINGS::of_one_variable(load_layers(scope, tool.files), options.name);
    const TYPED_ANSWER answer = answer_typed(settings, options.name, type, fallback);

    // Messages go to logs: they do not tell a secret, nor the number that it begins with.
    SECRETS& secrets = *tool.options.scope.secrets;
    const std::optional<std::string> text = value_as_text(answer.value);
    std::string remark = answer.remark;
    if (has_hidden_parts(hide_in_value(options.name, answer.text, secrets)))
    {
        const std::string quoted = in_single_quotes(answer.text); // as it stands there, perhaps cut short
        remark = hide_in_text(remark, std::string_view(quoted).substr(1, quoted.size() - 2), secrets);
        remark = hide_in_text(remark, text.value_or(""), secrets);
    }
    remark = hide_typed_value(
        remark, options.name, [&secrets](std::string_view name) { return secrets.is_secret_name(name); }, secrets);
    if (!remark.empty())
        complain(remark + (answer.is_set() ? "" : advice_on(options.name)));
    if (tool.options.json)
        answer_in_json(tool, [&](JSON_WRITER& out) { write_json(out, answer); });
    else if (text)
        tool.out << *text << (tool.options.nul_terminated ? std::string_view("\0", 1) : "\n");
    return text ? EXIT_CODE::FINE : EXIT_CODE::FINDINGS;
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
    command.add_option("--default", "VALUE", options->fallback,
                       "Print this, which is of the TYPE or empty, when there is no usable value");
    command.add_nul_flag(tool);
}
