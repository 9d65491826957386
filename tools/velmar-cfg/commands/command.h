// What a command's source file needs to add the command to the command line.
//
// A command is one source file with one function add_..._command, listed in commands.h and called by the command line's
// maker. It adds its options and arguments to the COMMAND that it makes; its work is the function that it hands over,
// which runs once the whole command line is parsed and the global options hold.
//
// Nothing here needs the parser's header: it takes longer to compile than all the rest of a command.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_COMMAND_H
#define TOOLS_VELMAR_CFG_COMMANDS_COMMAND_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/commands/tool.h"

namespace CLI
{
class App;
}

// A command of the command line, which owns it; copies stand for the same command. The variables that options and
// arguments are given live as long as the command line. Names of options are "--long" or "-s,--long".
class COMMAND
{
public:
    explicit COMMAND(CLI::App& parsed) : app(&parsed) {}

    // A subcommand. `example` is a command line and what it does, for the help text. `run` returns how the command
    // ends, or throws TOOL_ERROR.
    COMMAND add_command(TOOL& tool, const std::string& name, const std::string& description, const std::string& example,
                        std::function<EXIT_CODE()> run);

    // A subcommand that only groups others, of which one must be named.
    COMMAND add_group(const std::string& name, const std::string& description, const std::string& example);

    // An argument that must be given, once or once at least.
    void add_argument(const std::string& name, std::string& value, const std::string& description);
    void add_argument(const std::string& name, std::vector<std::string>& values, const std::string& description);

    // An argument that may be given, once or any number of times. An empty text counts as given.
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

    // The same; `take` has each value as it is parsed, so that several such options keep the order in which they are
    // given.
    void add_repeated_option(const std::string& names, const std::string& value_name,
                             const std::function<void(const std::string&)>& take, const std::string& description);

    // The same for a value of these and no other; completion offers them.
    void add_repeated_choice(const std::string& names, const std::string& value_name,
                             const std::vector<std::string>& choices,
                             const std::function<void(const std::string&)>& take, const std::string& description);

    // An option with a value of these and no other; completion offers them.
    void add_choice(const std::string& names, const std::string& value_name, std::string& value,
                    const std::vector<std::string>& choices, const std::string& description);

    // An option without a value.
    void add_flag(const std::string& names, bool& value, const std::string& description);

    // The option -z, for a command whose records scripts read.
    void add_nul_flag(TOOL& tool);

    // What is to be found out of the command's options before anything is read: one of TOOL::checks.
    void add_check(TOOL& tool, std::function<void()> check);

    // Refuses `option` without `other`; both were added.
    void require_with(const std::string& option, const std::string& other);

private:
    CLI::App* app;
};

#endif
