// Writes the tables of the completion scripts from the declarations that parse the command line, and from the
// catalogues: no option or name is listed a second time.
//
// Each table is a shell function with one `case`. Its branches are patterns of quoted words; where a question has two
// parts, such as a command and an option, they are joined by ":". The program's own options stand under "*" and hold
// for all commands. The kind of a value follows from the word that the help text has for it: a word without a kind here
// throws std::out_of_range, so that the build fails. Keys with the same allowed values share a branch.
//
// This runs once, when the tool is built.
#include "tools/velmar-cfg/completion/completion_tables.h"

#include <algorithm>
#include <map>
#include <memory>

#include "cfg_ini/cfg_ini.h"
#include "tools/velmar-cfg/commands/command_line.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/lint/reasons.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/known_variables.h"

namespace
{
// As one word of a shell.
std::string quoted_word(const std::string& text)
{
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::string print_lines(const std::vector<std::string>& lines)
{
    std::string command = "printf '%s\\n'";
    for (const std::string& line : lines)
        command += " \\\n            " + quoted_word(line);
    return command;
}

// A function that chooses among branches by `subject`; each is a pattern with a command.
std::string choice(const std::string& name, const std::string& subject,
                   const std::vector<std::pair<std::string, std::string>>& branches)
{
    std::string text = name + "()\n{\n    case " + subject + " in\n";
    for (const auto& [pattern, command] : branches)
        text.append("        ").append(pattern).append(") ").append(command).append(" ;;\n");
    return text + "    esac\n}\n\n";
}

// "prefs set": the name of the command under which the tables have it; empty for the program.
std::string table_name(const CLI::App* command)
{
    const std::string spoken = spoken_name(command);
    const std::size_t blank = spoken.find(' ');
    return blank == std::string::npos ? "" : spoken.substr(blank + 1);
}

// The kind of what the help calls so. Every option and argument must have one here.
std::string kind_of_placeholder(const std::string& placeholder)
{
    static const std::map<std::string, std::string> kinds = {
        {"A", "file"},       {"B", "file"},        {"COMMAND", "commands"}, {"DIR", "directory"},    {"FILE", "file"},
        {"KEY", "key"},      {"NAME", "variable"}, {"NAME=VALUE", "text"},  {"PATTERN", "variable"}, {"REPORT", "file"},
        {"SECONDS", "text"}, {"STATE", "file"},    {"VALUE", "text"},
    };
    return kinds.at(placeholder);
}

// With a blank between two.
std::string words_of(const std::vector<std::string>& all)
{
    std::string words;
    for (const std::string& word : all)
        words += (words.empty() ? "" : " ") + word;
    return words;
}

std::string kind_of_option(CLI::Option* option)
{
    const std::string placeholder = option->get_type_name();
    if (placeholder == "TYPE" || placeholder == "WHEN" || placeholder == "SECTION" || placeholder == "FORMAT")
        return "words:" + option->get_validator(0)->get_name();
    if (placeholder == "REASON")
        return "words:" + words_of(reason_names());
    return kind_of_placeholder(placeholder);
}

std::string kind_of_argument(const CLI::App* command, const CLI::Option* argument)
{
    const std::string placeholder = argument->get_name(true);
    if (placeholder == "VALUE")
        return "value";
    if (placeholder == "PATTERN" && table_name(command).starts_with("prefs "))
        return "key";
    return kind_of_placeholder(placeholder);
}

std::string is_command_table(const std::vector<CLI::App*>& commands)
{
    std::vector<std::pair<std::string, std::string>> branches;
    for (const CLI::App* const command : commands)
    {
        if (const std::string name = table_name(command); !name.empty())
            branches.emplace_back(quoted_word(name), "return 0");
    }
    branches.emplace_back("*", "return 1");
    return choice("_velmar_cfg_is_command", "$1", branches);
}

std::string commands_table(const std::vector<CLI::App*>& commands)
{
    std::vector<std::pair<std::string, std::string>> branches;
    for (const CLI::App* const command : commands)
    {
        std::vector<std::string> lines;
        for (const CLI::App* const subcommand : command->get_subcommands([](const CLI::App*) { return true; }))
            lines.push_back(subcommand->get_name() + "\t" + summary(subcommand->get_description()));
        if (!lines.empty())
            branches.emplace_back(quoted_word(table_name(command)), print_lines(lines));
    }
    return choice("_velmar_cfg_commands", "$1", branches);
}

std::vector<std::string> option_lines(CLI::App* command)
{
    std::vector<std::string> lines;
    for (const CLI::Option* const option : options_of(command))
    {
        for (const std::string& name : names_of(option))
            lines.push_back(name + "\t" + summary(option->get_description()));
    }
    return lines;
}

std::string options_table(const std::vector<CLI::App*>& commands)
{
    const std::vector<std::string> global = option_lines(commands.front());
    std::vector<std::pair<std::string, std::string>> branches;
    for (CLI::App* const command : commands)
    {
        std::vector<std::string> lines = option_lines(command);
        for (const std::string& line : global)
        {
            if (std::ranges::count(lines, line) == 0)
                lines.push_back(line);
        }
        branches.emplace_back(quoted_word(table_name(command)), print_lines(lines));
    }
    return choice("_velmar_cfg_options", "$1", branches);
}

std::string option_values_table(const std::vector<CLI::App*>& commands)
{
    std::vector<std::pair<std::string, std::string>> branches;
    for (CLI::App* const command : commands)
    {
        const std::string name = table_name(command);
        for (CLI::Option* const option : options_of(command))
        {
            if (option->get_items_expected_max() == 0)
                continue;
            for (const std::string& spelling : names_of(option))
                branches.emplace_back((name.empty() ? "*" : quoted_word(name)) + ":" + spelling,
                                      print_lines({kind_of_option(option)}));
        }
    }
    return choice("_velmar_cfg_option_takes", "$1:$2", branches);
}

std::string arguments_table(const std::vector<CLI::App*>& commands)
{
    std::vector<std::pair<std::string, std::string>> branches;
    for (CLI::App* const command : commands)
    {
        std::size_t number = 0;
        for (const CLI::Option* const argument : arguments_of(command))
        {
            const bool repeated = argument->get_items_expected_max() > 1;
            branches.emplace_back(repeated ? quoted_word(table_name(command) + ":") + "*"
                                           : quoted_word(table_name(command) + ":" + std::to_string(number)),
                                  print_lines({kind_of_argument(command, argument)}));
            ++number;
        }
    }
    return choice("_velmar_cfg_argument_is", "$1:$2", branches);
}

// Keys that allow the same values share a branch.
std::string values_table()
{
    std::vector<std::pair<std::string, std::string>> branches;
    for (const CFG_USER_INI_ENUMS number : all_preference_numbers())
    {
        const std::vector<std::string> allowed = allowed_preference_values(number);
        if (allowed.empty())
            continue;
        const std::string key = cfg_get_user_ini_ini_string(number);
        const std::string command = print_lines(allowed);
        const auto shared = std::ranges::find(branches, command, &std::pair<std::string, std::string>::second);
        if (shared == branches.end())
            branches.emplace_back(key, command);
        else
            shared->first += " | " + key;
    }
    return choice("_velmar_cfg_values", "$(printf '%s' \"$1\" | LC_ALL=C tr '[:lower:]' '[:upper:]')", branches);
}

std::string list(const std::string& name, const std::vector<std::string>& lines)
{
    return name + "()\n{\n    " + print_lines(lines) + "\n}\n\n";
}
}

std::string completion_tables()
{
    TOOL tool;
    const std::unique_ptr<CLI::App> app = make_command_line(tool);
    const std::vector<CLI::App*> commands = all_commands(*app);
    return is_command_table(commands) + commands_table(commands) + options_table(commands) +
           option_values_table(commands) + arguments_table(commands) +
           list("_velmar_cfg_variables", known_variable_names()) + list("_velmar_cfg_keys", all_preference_keys()) +
           values_table();
}
