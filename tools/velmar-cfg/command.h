// What a command's source file needs to add the command to the command line.
//
// A command is one source file with one function add_..._command, listed in commands.h and called by main.cpp. It adds
// its options and arguments to the subcommand that add_command gives it; its work is the function that it hands over,
// which runs once the whole command line is parsed and the global options hold.
#ifndef TOOLS_VELMAR_CFG_COMMAND_H
#define TOOLS_VELMAR_CFG_COMMAND_H

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

#include "tools/velmar-cfg/tool.h"

// A subcommand of `parent`. `example` is a command line and what it does, for the help text. `run` returns how the
// command ends, or throws TOOL_ERROR.
CLI::App* add_command(CLI::App& parent, TOOL& tool, const std::string& name, const std::string& description,
                      const std::string& example, std::function<EXIT_CODE()> run);

// A command that only groups subcommands.
CLI::App* add_command_group(CLI::App& parent, const std::string& name, const std::string& description,
                            const std::string& example);

// The option -z, for a command whose records scripts read.
void add_nul_option(CLI::App* command, TOOL& tool);

// The words that an option takes, and no other. The validator bears them, separated by blanks, as its name, from which
// completion has them.
CLI::Validator one_of(const std::vector<std::string>& words);

#endif
