// Files that the tool reads: each once, whole, with every error seen. The library takes an unreadable file for an empty
// one; the tool says what is wrong.
#ifndef TOOLS_VELMAR_CFG_BASE_INPUT_FILE_H
#define TOOLS_VELMAR_CFG_BASE_INPUT_FILE_H

#include <cstddef>
#include <map>
#include <memory>
#include <string>

struct INPUT_FILE
{
    std::string path;
    std::string bytes;   // all of them; with a problem, those before it
    std::string problem; // what kept the file from being read whole, and what to do about it; empty when nothing did

    // Throws TOOL_ERROR(BAD_INPUT) with the path when there is such a problem.
    void require_whole() const;

    // Throws TOOL_ERROR(BAD_INPUT) for such a problem, and with the line for a zero byte.
    void require_text() const;
};

// Opens the file once and reads it to its end. Waits for nothing: a pipe or a device counts as a problem.
INPUT_FILE read_whole_file(const std::string& path);

// The same for a file that is open at its beginning, and stays open. `path` is for messages.
INPUT_FILE read_open_file(int file, const std::string& path);

// The files of one command: what is asked for again is not read again, so that all answers are about the same bytes.
class INPUT_FILES
{
public:
    // Never null; stays as it is when the files go.
    std::shared_ptr<const INPUT_FILE> read(const std::string& path);

private:
    std::map<std::string, std::shared_ptr<const INPUT_FILE>> files; // by path as given
};

// What would keep the file from being read, by its type and permissions; empty when nothing would. Opens nothing.
std::string input_problem(const std::string& path);

// Throws TOOL_ERROR(BAD_INPUT) with the path unless it is a directory whose files can be reached; `advice` is for one
// that is none.
void check_input_directory(const std::string& path, const std::string& advice);

// The bytes of a file. Throws TOOL_ERROR(BAD_INPUT) with the path unless it can be read whole.
std::string read_input_file(const std::string& path);

#endif
