// velmar-cfg get: values of variables as one type reads them.
//
// For one name, only the assignments to this name are stored while the settings are read, and its value is written
// alone. For several, the settings are read once, and pairs of name and value are written.
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/state_options.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/preferences/library_preferences.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/secrets.h"
#include "tools/velmar-cfg/settings/secrets_in_messages.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/typed_answer.h"
#include "tools/velmar-cfg/settings/typed_value.h"
#include "tools/velmar-cfg/states/state.h"
#include "tools/velmar-cfg/states/state_answer.h"

namespace
{
constexpr std::string_view zero_byte("\0", 1);

struct GET_OPTIONS
{
    STATE_OPTIONS state;
    std::vector<std::string> names;
    bool names_on_input = false;
    std::string type = "text";
    std::optional<std::string> fallback;
};

// A name that is another thing's: where to ask for it.
std::string advice_on(const std::string& name)
{
    const bool is_preference = zon_cfg::find_preference(name.c_str()) != CFG_USER_INI_ENUMS_END;
    return is_preference ? "; it is a preference: ask velmar-cfg prefs get " + name : "";
}

// Why there is nothing to print, or what is odd about it; empty for neither.
std::string remark_on(const TYPED_ANSWER& answer, SECRETS& secrets)
{
    std::string remark = answer.remark;
    if (has_hidden_parts(hide_in_value(answer.name, answer.text, secrets)))
    {
        remark = hide_in_text(remark, answer.text, secrets);
        remark = hide_in_text(remark, value_as_text(answer.value).value_or(""), secrets, SHORT_SECRETS::APART);
    }
    return remark.empty() || answer.has_value != false ? remark : remark + advice_on(answer.name);
}

// The same for logs: it does not tell a secret, nor the number that it begins with.
std::string safe_remark_on(const TYPED_ANSWER& answer, SECRETS& secrets)
{
    return hide_typed_value(
        remark_on(answer, secrets), answer.name,
        [&secrets](std::string_view name) { return secrets.is_secret_name(name); }, secrets);
}

void require_one_kind_of_names(const GET_OPTIONS& options)
{
    if (options.names_on_input && !options.names.empty())
        throw TOOL_ERROR(EXIT_CODE::USAGE, "--stdin and names exclude each other");
    if (!options.names_on_input && options.names.empty())
        throw TOOL_ERROR(EXIT_CODE::USAGE, "NAME or --stdin is required; see velmar-cfg get --help");
}

// The names of the command line, or those on standard input, a line, which may end as on other systems, or, with -z, a
// record each.
std::vector<std::string> names_of(const GET_OPTIONS& options, const TOOL& tool)
{
    if (!options.names_on_input)
        return options.names;
    const INPUT_FILE input = read_named_file("-");
    input.require_whole();
    const std::string& text = input.bytes;
    std::vector<std::string> names;
    for (std::size_t begin = 0; begin < text.size();)
    {
        const std::size_t end = std::min(text.find(tool.options.nul_terminated ? '\0' : '\n', begin), text.size());
        names.push_back(text.substr(begin, end - begin));
        if (!tool.options.nul_terminated && names.back().ends_with('\r'))
            names.back().pop_back();
        begin = end + 1;
    }
    return names;
}

// For several names, as list does; a name that has no value stands alone.
void write_pair(const TYPED_ANSWER& answer, TOOL& tool)
{
    const std::optional<std::string> text = value_as_text(answer.value);
    if (tool.options.nul_terminated)
        tool.out << answer.name << (text ? "=" + *text : "") << zero_byte;
    else
        tool.out << printable(answer.name) << (text ? "=" + printable(*text) : "") << "\n";
}

// The value alone, as it is.
void write_value(const TYPED_ANSWER& answer, TOOL& tool)
{
    if (const std::optional<std::string> text = value_as_text(answer.value))
        tool.out << *text << (tool.options.nul_terminated ? zero_byte : "\n");
}

EXIT_CODE get(const GET_OPTIONS& options, TOOL& tool)
{
    const READER_TYPE type = type_of_word(options.type).value_or(READER_TYPE::TEXT);
    std::optional<TYPED_VALUE> fallback;
    if (options.fallback)
        fallback = default_of_type(type, *options.fallback);
    const std::vector<std::string> names = names_of(options, tool);
    const auto shown = std::make_shared<SECRETS>();
    shown->show_all(); // the values are what was asked for
    const STATE state = state_of(options.state, {.settings = true}, tool, shown);
    const bool single = !options.names_on_input && names.size() == 1;
    const SETTINGS settings = single ? SETTINGS::of_one_variable(state.layers, names.front()) : SETTINGS(state.layers);

    bool all_have_values = true;
    JSON_WRITER json(tool.out);
    if (tool.options.json && !single)
        json.begin_list();
    for (const std::string& name : names)
    {
        const TYPED_ANSWER answer = answer_of_state(state, settings, name, type, fallback, single);
        all_have_values = all_have_values && value_as_text(answer.value).has_value();
        if (const std::string remark = safe_remark_on(answer, *tool.options.scope.secrets); !remark.empty())
            complain(remark);
        if (tool.options.json)
        {
            json.begin_object();
            write_fields(json, answer);
            if (single)
                write_view_field(json, state);
            json.end_object();
        }
        else if (single)
            write_value(answer, tool);
        else
            write_pair(answer, tool);
    }
    if (tool.options.json)
    {
        if (!single)
            json.end_list();
        json.finish();
    }
    return all_have_values ? EXIT_CODE::FINE : EXIT_CODE::FINDINGS;
}
}

void add_get_command(COMMAND app, TOOL& tool)
{
    auto options = std::make_shared<GET_OPTIONS>();
    COMMAND command = app.add_command(tool, "get",
                                      "Print the value of an internal variable as a program gets it when it asks for "
                                      "the requested type; for several, print pairs of name and value. "
                                      "Exit code 1 when a variable has no usable value and --default is not given.",
                                      "velmar-cfg get msg_sqlite --type bool --default off\n"
                                      "      on or off: what a program gets when it asks with the default off\n"
                                      "  velmar-cfg get --stdin --type int <names\n"
                                      "      the values, as numbers, of all variables that the file lists",
                                      [options, &tool] { return get(*options, tool); });
    command.add_optional_argument("NAME", options->names, "A variable, in any letter case");
    command.add_flag("--stdin", options->names_on_input,
                     "Read the names from standard input, one a line; with -z, each ends with a zero byte");
    command.add_choice("--type", "TYPE", options->type, {"bool", "int", "uint", "double", "text"},
                       "How to read it: text (the default), bool, int, uint or double");
    command.add_option("--default", "VALUE", options->fallback,
                       "Print this when there is no usable value; it must be of the TYPE or empty");
    add_state_option(command, options->state, tool);
    add_what_if_options(command, options->state.what_if);
    command.add_nul_flag(tool);
    command.add_check(tool, [options] { require_one_kind_of_names(*options); });
}
