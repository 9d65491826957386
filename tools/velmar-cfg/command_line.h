// The whole command line: every command, option and argument.
#ifndef TOOLS_VELMAR_CFG_COMMAND_LINE_H
#define TOOLS_VELMAR_CFG_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "tools/velmar-cfg/tool.h"

// What is parsed goes into `tool`, which must outlive it.
std::unique_ptr<CLI::App> make_command_line(TOOL& tool);

// Throws CLI::ParseError.
void parse_command_line(CLI::App& app, int argc, const char* const* argv);

// One line that says what is wrong with the command line, and where the help stands.
std::string usage_complaint(CLI::App* app, const CLI::ParseError& error);

#endif
