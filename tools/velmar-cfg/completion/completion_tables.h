// What the completion scripts know of the command line and the catalogues, as functions of a shell.
#ifndef TOOLS_VELMAR_CFG_COMPLETION_COMPLETION_TABLES_H
#define TOOLS_VELMAR_CFG_COMPLETION_COMPLETION_TABLES_H

#include <string>

// The functions, which bash and zsh both understand; each prints lines or returns a status:
//
//     _velmar_cfg_is_command NAME           whether there is such a command, such as "prefs set"
//     _velmar_cfg_commands COMMAND          its commands, each with a tabulator and a description
//     _velmar_cfg_options COMMAND           its options, and those of every command, in the same way
//     _velmar_cfg_option_takes COMMAND OPTION   the kind of its value, nothing for one that takes none
//     _velmar_cfg_argument_is COMMAND NUMBER    the kind of its argument of that number, counted from 0
//     _velmar_cfg_variables, _velmar_cfg_keys   names of known variables, keys of preferences
//     _velmar_cfg_values KEY                the allowed values of a preference
//
// A kind is file, directory, variable, key, value, text, or "words:" with words separated by blanks.
std::string completion_tables();

#endif
