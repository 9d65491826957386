// The whole command line: every command, option and argument.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_COMMAND_LINE_H
#define TOOLS_VELMAR_CFG_COMMANDS_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/settings/secrets.h"

// Parsing stores everything in `tool`, which must outlive the result.
std::unique_ptr<CLI::App> make_command_line(TOOL& tool);

// The innermost command that the parsed command line names; the program itself when it names none.
CLI::App* named_command(CLI::App* app);

// The program itself, then every command, each followed by its own commands.
std::vector<CLI::App*> all_commands(CLI::App& app);

// The options, --help included, and the arguments that the command itself declares.
std::vector<CLI::Option*> options_of(CLI::App* command);
std::vector<CLI::Option*> arguments_of(CLI::App* command);

// Every spelling of the option: "--output" and "-o".
std::vector<std::string> names_of(const CLI::Option* option);

// The first sentence of a description, or the clause before a colon or semicolon.
std::string summary(const std::string& description);

// "velmar-cfg prefs set" for the command set of prefs.
std::string spoken_name(const CLI::App* command);

// Throws CLI::ParseError.
void parse_command_line(CLI::App& app, int argc, const char* const* argv);

// One line that says what is wrong with the command line, and where the help stands.
std::string usage_complaint(CLI::App* app, const CLI::ParseError& error, int argc, const char* const* argv);

// Every spelling of the options of the tool and of all its commands.
std::vector<std::string> all_options(CLI::App& app);

// A message that may repeat words of the command line, with the secrets among them hidden. These are the value in a
// word such as "api_token=VALUE"; the words after a secret name that is to be set; and the value of --default if there
// is a secret name on the command line. Words after a secret name stay if they are `options`, or differ from one in a
// single letter.
std::string without_typed_secrets(std::string_view message, int argc, const char* const* argv,
                                  const std::vector<std::string>& options, SECRETS& secrets);

#endif
