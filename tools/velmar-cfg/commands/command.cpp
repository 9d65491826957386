// COMMAND in terms of the parser, CLI11. Functions store texts in optional values: if the parser stored into the
// optional itself, it would take the empty text for no value. Each command stores its function when it has been parsed,
// and main() calls the one that is stored. The global options may stand behind a command, since what a command does not
// know falls through to the program.
#include "tools/velmar-cfg/commands/command.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <limits>
#include <utility>

#include "tools/velmar-cfg/base/text.h"

namespace
{
// A target of its own type would take the empty text for no value.
auto taking(std::optional<std::string>& value)
{
    return [&value](const std::string& text) { value = text; };
}

constexpr char mark_of_argument = '\0';

// A script that names a file by a variable without a value gives an empty word.
void refuse_empty_path(CLI::Option* option, const std::string& name)
{
    const auto refuse_empty = [name](const std::string& path)
    {
        if (path.empty())
            throw CLI::ConversionError(name + " is empty; give the path of a file", CLI::ExitCodes::ConversionError);
        return std::string();
    };
    option->check(refuse_empty, "", "");
}

// The parser is not to describe what the name says. It stores the words as they were typed.
void declare_as_argument(CLI::Option* option)
{
    constexpr const char* no_type = "";
    option->type_name(no_type)->transform([](const std::string& word) { return without_mark(word); }, "", "");
    if (option->get_name() == "FILE")
        refuse_empty_path(option, "FILE");
}

// The validator bears the words, separated by blanks, as its name, from which completion has them.
CLI::Validator one_of(const std::vector<std::string>& choices)
{
    std::string words;
    for (const std::string& choice : choices)
        words += (words.empty() ? "" : " ") + choice;
    CLI::Validator validator = CLI::IsMember(choices);
    validator.description("");
    validator.name(words);
    return validator;
}

CLI::Option* add_repeated(CLI::App& app, const std::string& names, const std::string& value_name,
                          const std::function<void(const std::string&)>& take, const std::string& description)
{
    return app.add_option_function<std::string>(names, take, description)
        ->type_name(value_name)
        ->trigger_on_parse()
        ->allow_extra_args(false);
}
}

std::string marked_as_argument(const std::string& word)
{
    return mark_of_argument + word;
}

bool is_marked_as_argument(std::string_view word)
{
    return !word.empty() && word.front() == mark_of_argument;
}

std::string without_mark(const std::string& word)
{
    return is_marked_as_argument(word) ? word.substr(1) : word;
}

COMMAND COMMAND::add_group(const std::string& name, const std::string& description, const std::string& example)
{
    CLI::App* const command = app->add_subcommand(name, description);
    command->fallthrough(); // the global options may stand behind the command
    command->footer("Example:\n  " + example + "\n");
    command->require_subcommand(1);
    return COMMAND(*command);
}

COMMAND COMMAND::add_command(TOOL& tool, const std::string& name, const std::string& description,
                             const std::string& example, std::function<EXIT_CODE()> run)
{
    const COMMAND command = add_group(name, description, example);
    command.app->require_subcommand(0);
    command.app->final_callback([&tool, run = std::move(run)] { tool.command = run; });
    return command;
}

void COMMAND::add_argument(const std::string& name, std::string& value, const std::string& description)
{
    declare_as_argument(app->add_option(name, value, description)->required());
}

void COMMAND::add_argument(const std::string& name, std::vector<std::string>& values, const std::string& description)
{
    declare_as_argument(app->add_option(name, values, description)->required());
}

void COMMAND::add_optional_argument(const std::string& name, std::optional<std::string>& value,
                                    const std::string& description)
{
    declare_as_argument(app->add_option_function<std::string>(name, taking(value), description));
}

void COMMAND::add_optional_argument(const std::string& name, std::vector<std::string>& values,
                                    const std::string& description)
{
    declare_as_argument(app->add_option(name, values, description));
}

void COMMAND::add_option(const std::string& names, const std::string& value_name, std::optional<std::string>& value,
                         const std::string& description)
{
    CLI::Option* const option = app->add_option_function<std::string>(names, taking(value), description);
    option->type_name(value_name);
    if (value_name == "FILE" || value_name == "REPORT")
        refuse_empty_path(option, option->get_name());
}

void COMMAND::add_option(const std::string& names, const std::string& value_name, unsigned int& value,
                         const std::string& description)
{
    const auto take = [&value, names](const std::string& text)
    {
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || end != text.data() + text.size())
            throw CLI::ConversionError(names + " takes a whole number from 0 to " +
                                           std::to_string(std::numeric_limits<unsigned int>::max()) + ", not " +
                                           in_single_quotes(text),
                                       CLI::ExitCodes::ConversionError);
    };
    app->add_option_function<std::string>(names, take, description)->type_name(value_name);
}

void COMMAND::add_option(const std::string& names, const std::string& value_name, std::vector<std::string>& values,
                         const std::string& description)
{
    app->add_option(names, values, description)->type_name(value_name)->allow_extra_args(false);
}

void COMMAND::add_choice(const std::string& names, const std::string& value_name, std::string& value,
                         const std::vector<std::string>& choices, const std::string& description)
{
    app->add_option(names, value, description)->check(one_of(choices))->type_name(value_name);
}

void COMMAND::add_repeated_option(const std::string& names, const std::string& value_name,
                                  const std::function<void(const std::string&)>& take, const std::string& description)
{
    add_repeated(*app, names, value_name, take, description);
}

void COMMAND::add_repeated_choice(const std::string& names, const std::string& value_name,
                                  const std::vector<std::string>& choices,
                                  const std::function<void(const std::string&)>& take, const std::string& description)
{
    add_repeated(*app, names, value_name, take, description)->check(one_of(choices));
}

void COMMAND::add_flag(const std::string& names, bool& value, const std::string& description)
{
    app->add_flag(names, value, description);
}

void COMMAND::add_nul_flag(TOOL& tool)
{
    add_flag("-z", tool.options.nul_terminated, "End each record with a zero byte, nothing escaped");
}

void COMMAND::add_check(TOOL& tool, std::function<void()> check)
{
    tool.checks.emplace_back(
        [parsed = app, check = std::move(check)]
        {
            if (parsed->parsed())
                check();
        });
}

void COMMAND::require_with(const std::string& option, const std::string& other)
{
    app->get_option(option)->needs(app->get_option(other));
}
