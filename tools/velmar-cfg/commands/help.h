// Help texts.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_HELP_H
#define TOOLS_VELMAR_CFG_COMMANDS_HELP_H

#include <CLI/CLI.hpp>
#include <string>

// Everything about one command: description, arguments, its options and those of every command, its own commands, an
// example. Lines are no longer than `width` columns where words allow it; command lines of examples stay whole.
std::string help_of(const CLI::App* command, std::size_t width);

#endif
