// Declares the command line, and corrects the parser (CLI11) where it does not do what people expect.
//
// Before it is parsed, "--option=" is made two words, since the parser would take the next word for the value, and
// words such as "-html" are refused, which it would take for -h. Both stop at "--". When parsing fails, the complaint
// is made here: the first word that was left over is compared with the names of the options or commands that may stand
// there. Where it stands is found by another walk over the words: the parser does not tell.
//
// A complaint may repeat words of the command line. without_typed_secrets() walks over those words once more and hides
// in it the values that were typed together with a secret name.
//
// Nothing is kept but what the options hold. Cost: a few walks over the words, each of which is compared with the
// declared names.
#include "tools/velmar-cfg/commands/command_line.h"

#include <algorithm>
#include <optional>

#include "platform/ver/ver.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/help.h"
#include "tools/velmar-cfg/commands/state_options.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/secrets_in_messages.h"

namespace
{
void add_global_options(CLI::App& app, TOOL& tool)
{
    GLOBAL_OPTIONS& options = tool.options;
    app.add_option("--project", options.scope.project, "Read the settings as a program does for the project in DIR")
        ->type_name("DIR");
    app.add_flag("--regtest", options.scope.regtest, "Apply regtest.ini on top of the settings, as regression runs do");
    app.add_option("--root", options.root, "Look at the installation in DIR, whose programs are in DIR/bin")
        ->type_name("DIR");
    app.add_flag("--json", options.json, "Write JSON");
    app.add_option("--secret", options.secret_patterns,
                   "Mask the values of names that match PATTERN too, besides *token*, *password* and *secret*")
        ->type_name("PATTERN")
        ->allow_extra_args(false);
    app.add_flag("--with-secrets", options.with_secrets, "Mask nothing: show and write secrets as they are");
    COMMAND(app).add_choice("--color", "WHEN", options.color, {"auto", "always", "never"},
                            "Colours: auto (on a terminal, unless NO_COLOR is set), always or never");
}

std::string no_such_command(const CLI::App* app, const std::string& word)
{
    std::vector<std::string> names;
    for (const CLI::App* const command : app->get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    const std::string group = app->get_parent() == nullptr ? "" : app->get_name() + " ";
    return "there is no command '" + group + word + "'" + did_you_mean(word, names);
}

// Null for none.
const CLI::App* subcommand_of(const CLI::App* command, const std::string& name)
{
    const auto named = command->get_subcommands([&name](const CLI::App* one) { return one->get_name() == name; });
    return named.empty() ? nullptr : named.front();
}

const CLI::App* command_of_words(const CLI::App* app, const std::vector<std::string>& words)
{
    for (const std::string& word : words)
    {
        const CLI::App* const named = subcommand_of(app, word);
        if (named == nullptr)
            throw TOOL_ERROR(EXIT_CODE::USAGE, no_such_command(app, word) + "; see " + spoken_name(app) + " --help");
        app = named;
    }
    return app;
}

void add_help_command(CLI::App& app, TOOL& tool)
{
    auto words = std::make_shared<std::vector<std::string>>();
    COMMAND command =
        COMMAND(app).add_command(tool, "help", "Print the help text of a command, as --help after it does",
                                 "velmar-cfg help prefs set\n      how to change a preference",
                                 [words, &app, &tool]
                                 {
                                     tool.out << help_of(command_of_words(&app, *words), tool.out.width());
                                     return EXIT_CODE::FINE;
                                 });
    command.add_optional_argument("COMMAND", *words, "The words of the command; without them, the tool's own help");
}

// Every spelling of the options that may stand behind the command.
std::vector<std::string> options_behind(CLI::App* command)
{
    std::vector<std::string> names;
    for (; command != nullptr; command = command->get_parent())
    {
        for (const CLI::Option* const option : options_of(command))
        {
            for (std::string& name : names_of(option))
                names.push_back(std::move(name));
        }
    }
    return names;
}

// Why a command takes no change to a state.
std::string why_no_what_if(const std::string& command, const std::string& option)
{
    if (command == "velmar-cfg paths")
        return "paths shows only where files are, which '" + option + "' does not change";
    if (command == "velmar-cfg snapshot")
        return "snapshot does not take '" + option + "'; give it to the command that shows the snapshot";
    return "only commands that show variables of a state take '" + option + "'";
}

// Of a word that stands before "--". A hyphen alone is an argument.
bool looks_like_an_option(std::string_view word)
{
    return word.size() > 1 && word.front() == '-';
}

// "--text" of "--text=x".
std::string option_in(const std::string& word)
{
    return word.substr(0, word.find('='));
}

CLI::App* root_of(CLI::App* command)
{
    while (command->get_parent() != nullptr)
        command = command->get_parent();
    return command;
}

// "prefs set" for the command set of prefs; the name of the tool for the tool itself.
std::string short_name(const CLI::App* command)
{
    const std::string name = spoken_name(command);
    return command->get_parent() == nullptr ? name : name.substr(name.find(' ') + 1);
}

// "get, list" for an option of these commands; of more than three, the first. Empty for none.
std::string commands_that_take(const std::string& option, CLI::App& root)
{
    constexpr std::size_t most = 3;
    std::size_t count = 0;
    std::string names;
    for (const CLI::App* const command : all_commands(root))
    {
        if (command->get_option_no_throw(option) == nullptr)
            continue;
        if (++count <= most)
            names += (names.empty() ? "" : ", ") + short_name(command);
    }
    return names + (count > most ? " and others" : "");
}

// "there is no option '--jsno' (did you mean '--json'?)"
std::string no_such_option(CLI::App* command, const std::string& word)
{
    const std::string name = option_in(word);
    if (name == state_option)
        return "only commands that show one state take '" + name + "'";
    if (name == with_option || name == without_option)
        return why_no_what_if(spoken_name(command), name);
    if (const std::string others = commands_that_take(name, *root_of(command)); !others.empty())
        return (command->get_require_subcommand_min() > 0 ? "name a command; '" + name + "'"
                                                          : short_name(command) + " takes no '" + name + "'; it") +
               " is an option of " + others;
    const std::string suggestion = did_you_mean(name, options_behind(command));
    const bool may_be_argument = suggestion.empty() && !arguments_of(command).empty();
    return "there is no option '" + name + "'" + suggestion +
           (may_be_argument ? "; put -- before an argument that begins with \"-\"" : "");
}

// Whether an option of the command or of one above it has this name and takes a value. The parser finds arguments by
// their names too.
bool takes_value(const CLI::App* command, const std::string& name)
{
    for (; looks_like_an_option(name) && command != nullptr; command = command->get_parent())
    {
        if (const CLI::Option* const option = command->get_option_no_throw(name); option != nullptr)
            return option->get_items_expected_min() > 0;
    }
    return false;
}

bool knows_option(const CLI::App* command, const std::string& name)
{
    for (; looks_like_an_option(name) && command != nullptr; command = command->get_parent())
    {
        if (command->get_option_no_throw(name) != nullptr)
            return true;
    }
    return false;
}

// What the words name up to the first argument: the innermost command, and the first word that should have been a
// command. An option may have taken the word that should have been one for its value.
struct NAMED_COMMAND
{
    const CLI::App* command;
    std::optional<std::string> unknown_word;
    std::string option;
    std::string word_of_option;

    bool lacks_a_command() const
    {
        return command->get_require_subcommand_min() > 0;
    }

    std::string hint() const
    {
        return option.empty() ? "" : "; '" + option + "' has taken '" + word_of_option + "' for its value";
    }
};

NAMED_COMMAND walk(const CLI::App& app, const std::vector<std::string>& words)
{
    NAMED_COMMAND named{&app, std::nullopt, "", ""};
    for (std::size_t i = 0; i < words.size() && !is_marked_as_argument(words[i]) && named.lacks_a_command(); ++i)
    {
        const std::string& word = words[i];
        if (takes_value(named.command, word) && i + 1 < words.size())
        {
            ++i;
            if (subcommand_of(named.command, words[i]) != nullptr)
            {
                named.option = word;
                named.word_of_option = words[i];
            }
        }
        else if (!looks_like_an_option(word))
        {
            const CLI::App* const next = subcommand_of(named.command, word);
            if (next == nullptr)
            {
                named.unknown_word = word;
                break;
            }
            named = {next, std::nullopt, "", ""};
        }
    }
    return named;
}

// What is wrong with a word that begins with a hyphen, stood before "--" and was left over.
std::string surplus_option(CLI::App* command, const std::string& word)
{
    const std::string name = option_in(word);
    if (knows_option(command, name))
        return "'" + name + "' goes after the command: " + spoken_name(command) + " " + name;
    return no_such_option(command, word);
}

// The words as the parser is to have them. It would take the next word for the value of "--option=", so that one
// becomes two words. What stands behind "--" is marked, since the parser takes it for options as soon as a command has
// all arguments that it requires. Throws TOOL_ERROR(USAGE) for the value of an option that takes none, which the parser
// would take for a number or the opposite of the option.
std::vector<std::string> words_for_parser(const CLI::App& app, int argc, const char* const* argv)
{
    std::vector<std::string> words;
    const CLI::App* command = &app;
    bool options_ended = false;
    for (int i = 1; i < argc; ++i)
    {
        const std::string word = argv[i];
        if (options_ended)
        {
            words.push_back(marked_as_argument(word));
            continue;
        }
        options_ended = word == "--";
        if (options_ended)
            continue;
        const std::string name = option_in(word);
        if (name.size() < word.size() && knows_option(command, name) && !takes_value(command, name))
            throw TOOL_ERROR(EXIT_CODE::USAGE,
                             "'" + name + "' takes no value; see " + spoken_name(command) + " --help");
        // The parser takes a word such as "-html" for -h and something more: a script would believe its value was set.
        if (word.size() > 2 && (word.starts_with("-h") || word.starts_with("-V")))
            throw TOOL_ERROR(EXIT_CODE::USAGE,
                             "there is no option '" + word + "'; put -- before an argument that begins with \"-\"");
        if (word.starts_with("--") && word.size() == name.size() + 1 && takes_value(command, name))
        {
            words.push_back(name);
            words.emplace_back();
            continue;
        }
        if (const CLI::App* const named = subcommand_of(command, word); named != nullptr)
            command = named;
        words.push_back(word);
        if (takes_value(command, word) && i + 1 < argc)
            words.emplace_back(argv[++i]);
    }
    return words;
}
}

std::unique_ptr<CLI::App> make_command_line(TOOL& tool)
{
    auto app = std::make_unique<CLI::App>(
        "Shows, explains, checks and edits what the configuration library answers: internal variables from the layers "
        "of velmar.ini, and user preferences from velmar2.ini.");
    app->name("velmar-cfg");
    app->set_version_flag("-V,--version", "velmar-cfg " VELMAR_CFG_VERSION ", release " + ver_get_version());
    app->require_subcommand(1);
    app->footer("Example:\n  velmar-cfg --project designs/cpu list\n"
                "      every internal variable that a run in designs/cpu would see\n\n"
                "Exit codes: 0 fine; 1 unset, findings or differences; 2 usage; 3 input missing, unreadable or\n"
                "malformed; 4 could not write or lock; 5 name or value refused.\n");
    add_global_options(*app, tool);
    const COMMAND commands(*app);
    add_get_command(commands, tool);
    add_list_command(commands, tool);
    add_explain_command(commands, tool);
    add_layers_command(commands, tool);
    add_paths_command(commands, tool);
    add_lint_command(commands, tool);
    add_set_commands(commands, tool);
    add_prefs_command(commands, tool);
    add_run_report_command(commands, tool);
    add_snapshot_command(commands, tool);
    add_diff_command(commands, tool);
    add_help_command(*app, tool);
    return app;
}

std::string summary(const std::string& description)
{
    return description.substr(0, std::min({description.find(". "), description.find(": "), description.find("; ")}));
}

CLI::App* named_command(CLI::App* app)
{
    while (!app->get_subcommands().empty())
        app = app->get_subcommands().front();
    return app;
}

std::vector<CLI::App*> all_commands(CLI::App& app)
{
    std::vector<CLI::App*> commands = {&app};
    for (CLI::App* const command : app.get_subcommands([](CLI::App*) { return true; }))
    {
        const std::vector<CLI::App*> more = all_commands(*command);
        commands.insert(commands.end(), more.begin(), more.end());
    }
    return commands;
}

std::vector<CLI::Option*> options_of(CLI::App* command)
{
    return command->get_options([](CLI::Option* option) { return option->nonpositional(); });
}

std::vector<CLI::Option*> arguments_of(CLI::App* command)
{
    return command->get_options([](CLI::Option* option) { return option->get_positional(); });
}

std::vector<std::string> names_of(const CLI::Option* option)
{
    std::vector<std::string> names;
    for (const std::string& name : option->get_lnames())
        names.push_back("--" + name);
    for (const std::string& name : option->get_snames())
        names.push_back("-" + name);
    return names;
}

std::string spoken_name(const CLI::App* command)
{
    const CLI::App* const parent = command->get_parent();
    return parent == nullptr ? command->get_name() : spoken_name(parent) + " " + command->get_name();
}

void parse_command_line(CLI::App& app, int argc, const char* const* argv)
{
    std::vector<std::string> words = words_for_parser(app, argc, argv);
    std::ranges::reverse(words); // as the parser wants them
    app.parse(std::move(words));
}

// The parser's messages that name no option of ours, or say in riddles what is wrong with its value, as in "--of: At
// Most 1 required but received 2" and "--of: 1 required STATE missing". Any other message stays as it is.
std::string in_plain_words(const std::string& what)
{
    const std::size_t colon = what.find(": ");
    const std::string option = in_single_quotes(what.substr(0, colon));
    const std::string_view rest = std::string_view(what).substr(std::min(colon, what.size()));
    constexpr std::string_view too_many = ": At Most 1 required";
    constexpr std::string_view too_few = ": 1 required ";
    constexpr std::string_view missing = " missing";
    constexpr std::string_view not_in = " not in {";
    if (rest.starts_with(too_many))
        return option + " may be given only once";
    if (const std::size_t list = rest.rfind(not_in); list != std::string_view::npos && rest.ends_with('}'))
    {
        std::string choices;
        for (const char c : rest.substr(list + not_in.size(), rest.size() - list - not_in.size() - 1))
            choices += c == ',' ? std::string(", ") : std::string(1, c);
        return option + " takes one of " + choices + ", not " + in_single_quotes(rest.substr(2, list - 2));
    }
    if (rest.starts_with(too_few) && rest.ends_with(missing))
        return option + " needs a value: " +
               std::string(rest.substr(too_few.size(), rest.size() - too_few.size() - missing.size()));
    return what;
}

// What is wrong with the first word that was left over.
std::string surplus_word(CLI::App* command, const std::string& word)
{
    if (is_marked_as_argument(word))
        return "'" + (word.starts_with(marked_as_argument("-")) ? option_in(without_mark(word)) : without_mark(word)) +
               "' stands behind \"--\", so it is an argument, and there is one too many; put options before \"--\"";
    if (looks_like_an_option(word))
        return surplus_option(command, word);
    return "the argument " + in_single_quotes(word) + " is one too many";
}

// The words that are arguments of the command, as they were typed.
std::vector<std::string> arguments_in(const CLI::App& app, const std::vector<std::string>& words)
{
    std::vector<std::string> arguments;
    const CLI::App* command = &app;
    for (std::size_t i = 0; i < words.size(); ++i)
    {
        const CLI::App* const named = arguments.empty() ? subcommand_of(command, words[i]) : nullptr;
        if (named != nullptr)
            command = named;
        else if (takes_value(command, words[i]))
            ++i;
        else if (!looks_like_an_option(words[i]))
            arguments.push_back(without_mark(words[i]));
    }
    return arguments;
}

// For a command that sets a value, where "a=3" or "a = 3" was typed.
std::string hint_at_equals_sign(CLI::App* command, const CLI::App& app, const std::vector<std::string>& words)
{
    const bool sets =
        std::ranges::any_of(arguments_of(command), [](const CLI::Option* one) { return one->get_name() == "VALUE"; });
    const std::vector<std::string> arguments = arguments_in(app, words);
    const bool has_equals_sign = (!arguments.empty() && arguments.front().find('=') != std::string::npos) ||
                                 std::ranges::find(arguments, "=") != arguments.end();
    return sets && has_equals_sign ? "; write the name and the value as two words, without an equals sign" : "";
}

std::string usage_complaint(CLI::App* app, const CLI::ParseError& error, int argc, const char* const* argv)
{
    const std::vector<std::string> words = words_for_parser(*app, argc, argv);
    const std::vector<std::string> left_over = app->remaining(true);
    const NAMED_COMMAND named = walk(*app, words);
    const bool option_is_left_over = !left_over.empty() && looks_like_an_option(left_over.front());
    if (named.unknown_word && !option_is_left_over)
        return no_such_command(named.command, *named.unknown_word) + named.hint() + "; see " +
               spoken_name(named.command) + " --help";
    CLI::App* const command = named_command(app);
    std::string what = in_plain_words(error.what());
    if (option_is_left_over)
        what = surplus_word(command, left_over.front());
    else if (!left_over.empty() && named.lacks_a_command())
        what = "\"--\" stands before the command; put it behind, before an argument that begins with \"-\"";
    else if (!left_over.empty())
        what = surplus_word(command, left_over.front()) + hint_at_equals_sign(command, *app, words);
    else if (what == "A subcommand is required")
        what = "name a command" + named.hint();
    else if (what == "VALUE is required")
        what += hint_at_equals_sign(command, *app, words);
    return what + "; see " + spoken_name(command) + " --help";
}

std::vector<std::string> all_options(CLI::App& app)
{
    std::vector<std::string> names;
    for (CLI::App* const command : all_commands(app))
    {
        for (const CLI::Option* const option : options_of(command))
        {
            for (std::string& name : names_of(option))
                names.push_back(std::move(name));
        }
    }
    return names;
}

std::string without_typed_secrets(std::string_view message, int argc, const char* const* argv,
                                  const std::vector<std::string>& options, SECRETS& secrets)
{
    constexpr std::string_view default_option = "--default";
    const auto is_secret = [&secrets](std::string_view name) { return is_secret_preference_name(name, secrets); };
    const std::vector<std::string_view> words(argv + 1, argv + std::max(1, argc));
    const bool has_secret_name =
        std::ranges::any_of(words, [&](std::string_view word)
                            { return std::ranges::find(options, word) == options.end() && is_secret(word); });
    std::string hidden(message);
    const auto hide = [&](std::string_view word)
    {
        if (!is_plain_value(word))
            hidden = hide_in_text(hidden, word, secrets);
    };
    bool behind_set = false;
    bool behind_secret_key = false;
    for (std::size_t i = 0; i < words.size(); ++i)
    {
        const std::string_view word = words[i];
        const std::string_view option = word.substr(0, word.starts_with("--") ? word.find('=') : 0);
        hidden = hide_typed_value(hidden, word, is_secret, secrets);
        if (has_secret_name && i > 0 && words[i - 1] == default_option)
            hide(word);
        if (has_secret_name && option == default_option && option.size() < word.size())
            hide(word.substr(option.size() + 1));
        // One letter off: of a secret, more may look like an option by chance.
        const bool is_option = std::ranges::any_of(options, [option](const std::string& name)
                                                   { return edit_distance(option, name) <= 1; });
        if (behind_secret_key && (option.empty() || !is_option))
        {
            hide(word);
            hide(option); // what a message says of a value that was taken for an option
        }
        behind_secret_key |= behind_set && is_secret(word);
        behind_set |= word == "set";
    }
    return hidden;
}
