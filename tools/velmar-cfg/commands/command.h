// What a command's source file needs to add the command to the command line.
//
// A command is one source file with one function add_..._command(). commands.h lists it, and make_command_line() calls
// it. The function makes a COMMAND and adds options and arguments to it. It also hands over the function that does the
// command's work. That runs when the whole command line is parsed and the global options have taken effect.
//
// This header does without the parser's, which takes longer to compile than all the rest of a command.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_COMMAND_H
#define TOOLS_VELMAR_CFG_COMMANDS_COMMAND_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/commands/tool.h"

namespace CLI
{
class App;
}

// A word that stood behind "--". The mark is a zero byte before it, which no word of a command line holds, and makes
// the parser take the word for an argument, whatever it begins with. The variable of an argument gets the word without
// it.
std::string marked_as_argument(const std::string& word);
bool is_marked_as_argument(std::string_view word);
std::string without_mark(const std::string& word);

// A handle of a command, which the command line owns. Copies stand for the same command. The variables for options and
// arguments must live as long as the command line. Names of options are "--long" or "-s,--long".
class COMMAND
{
public:
    explicit COMMAND(CLI::App& parsed) : app(&parsed) {}

    // A subcommand. `example`, for the help text, is a command line and what it does. `run` returns the exit code, or
    // throws TOOL_ERROR.
    COMMAND add_command(TOOL& tool, const std::string& name, const std::string& description, const std::string& example,
                        std::function<EXIT_CODE()> run);

    // A subcommand that only groups others, of which one must be named.
    COMMAND add_group(const std::string& name, const std::string& description, const std::string& example);

    // A required argument, given once or at least once.
    void add_argument(const std::string& name, std::string& value, const std::string& description);
    void add_argument(const std::string& name, std::vector<std::string>& values, const std::string& description);

    // An optional argument, given once or any number of times. An empty text counts as given.
    void add_optional_argument(const std::string& name, std::optional<std::string>& value,
                               const std::string& description);
    void add_optional_argument(const std::string& name, std::vector<std::string>& values,
                               const std::string& description);

    // An option with a value, called `value_name` in the help text. An empty text counts as given.
    void add_option(const std::string& names, const std::string& value_name, std::optional<std::string>& value,
                    const std::string& description);
    void add_option(const std::string& names, const std::string& value_name, unsigned int& value,
                    const std::string& description);

    // The same, any number of times.
    void add_option(const std::string& names, const std::string& value_name, std::vector<std::string>& values,
                    const std::string& description);

    // The same. Calls `take` with each value as it is parsed, so that several such options keep the order in which they
    // are given.
    void add_repeated_option(const std::string& names, const std::string& value_name,
                             const std::function<void(const std::string&)>& take, const std::string& description);

    // The same, for a value that must be one of `choices`. Completion offers them.
    void add_repeated_choice(const std::string& names, const std::string& value_name,
                             const std::vector<std::string>& choices,
                             const std::function<void(const std::string&)>& take, const std::string& description);

    // An option whose value must be one of `choices`. Completion offers them.
    void add_choice(const std::string& names, const std::string& value_name, std::string& value,
                    const std::vector<std::string>& choices, const std::string& description);

    // An option without a value.
    void add_flag(const std::string& names, bool& value, const std::string& description);

    // The option -z, for a command whose records scripts read.
    void add_nul_flag(TOOL& tool);

    // Adds a check of the command's options, which runs before anything is read (see TOOL::checks).
    void add_check(TOOL& tool, std::function<void()> check);

    // Refuses `option` without `other`. Both must have been added.
    void require_with(const std::string& option, const std::string& other);

private:
    CLI::App* app;
};

#endif
