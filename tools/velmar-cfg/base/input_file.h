// Files that the tool is to read: the library takes an unreadable one for an empty one, the tool says what is wrong.
#ifndef TOOLS_VELMAR_CFG_BASE_INPUT_FILE_H
#define TOOLS_VELMAR_CFG_BASE_INPUT_FILE_H

#include <cstddef>
#include <string>

// What keeps the file from being read, and what to do about it; empty when nothing does. Waits for nothing: a pipe or a
// device counts as unreadable, since it cannot be read twice.
std::string input_problem(const std::string& path);

// Throws TOOL_ERROR(BAD_INPUT) with the path when there is such a problem.
void check_input_file(const std::string& path);

// Throws TOOL_ERROR(BAD_INPUT) with the path unless it is a directory whose files can be reached; `advice` is for one
// that is none.
void check_input_directory(const std::string& path, const std::string& advice);

// Throws TOOL_ERROR(BAD_INPUT): line `line` of the file holds a zero byte.
[[noreturn]] void throw_binary_file(const std::string& path, std::size_t line);

// The bytes of a file that check_input_file accepts; throws as it does.
std::string read_input_file(const std::string& path);

#endif
