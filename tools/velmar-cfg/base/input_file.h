// Files that the tool reads: each once, whole, with every error seen. The library takes an unreadable file for an empty
// one; the tool says what is wrong.
#ifndef TOOLS_VELMAR_CFG_BASE_INPUT_FILE_H
#define TOOLS_VELMAR_CFG_BASE_INPUT_FILE_H

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/byte_source.h"

struct INPUT_FILE
{
    std::string path;
    std::string bytes;   // all of them; with a problem, those before it
    std::string problem; // what kept the file from being read whole, and what to do about it; empty when nothing did
    bool gone = false;   // the problem is that nothing is there

    // The bytes; with a problem only the whole lines of them, with which the library goes on.
    std::string_view whole_lines() const;

    // Throws TOOL_ERROR(BAD_INPUT) with the path when there is such a problem.
    void require_whole() const;
};

// Opens the file once and reads it to its end. Waits for nothing: a pipe or a device other than the null device counts
// as a problem.
INPUT_FILE read_whole_file(const std::string& path);

// The same for a file that is open at its beginning, and stays open. `path` is for messages.
INPUT_FILE read_open_file(int file, const std::string& path);

// The same for a file that the user named to be read once, to its end: "-" is standard input, and a pipe or a device is
// waited for. Throws TOOL_ERROR(USAGE) when standard input is to be read again.
INPUT_FILE read_named_file(const std::string& path);

// The same a part at a time. What keeps it from being read throws TOOL_ERROR(BAD_INPUT) with the path.
class NAMED_FILE : public BYTE_SOURCE
{
public:
    explicit NAMED_FILE(const std::string& path);
    ~NAMED_FILE() override;

    std::size_t read(char* to, std::size_t room) override;

private:
    const std::string title;
    int descriptor;
    std::size_t bytes_read = 0;
};

// Throws TOOL_ERROR(BAD_INPUT) for bytes of which no line means anything to the library, and to which none can be
// added: UTF-16, as its byte order mark shows. `path` is for the message.
void refuse_utf_16(const std::string& path, std::string_view bytes);

// What such a file is called: its path, or "standard input".
std::string title_of_named_file(const std::string& path);

// The files of one command: what is asked for again is not read again, so that all answers are about the same bytes.
// Nothing is thrown for a file that cannot be read: what can be is answered, and the problem told at the end.
class INPUT_FILES
{
public:
    INPUT_FILES() = default;

    // Files that are asked for by relative paths are called by absolute ones below this directory, which is the current
    // one while they are read.
    explicit INPUT_FILES(std::string current) : directory(std::move(current)) {}

    // Never null; stays as it is when the files go.
    std::shared_ptr<const INPUT_FILE> read(const std::string& path);

    // The same for a file that the user named (see read_named_file).
    std::shared_ptr<const INPUT_FILE> read_named(const std::string& path);

    // The file that was read and is called so; null for none. Reads nothing.
    std::shared_ptr<const INPUT_FILE> find(const std::string& title) const;

    // Has the file read again when it is asked for again, and neither its problem nor its absence told.
    void forget(const std::string& path);

    // Adds a problem, unless it is there.
    void add_problem(const std::string& text);

    // The same when nothing is found at the path although something may be there (see absence_of).
    void note_absence(const std::string& path);

    // What kept files from being read whole, each with its path, in the order in which they were asked for.
    const std::vector<std::string>& problems() const
    {
        return all_problems;
    }

private:
    using READER = INPUT_FILE (*)(const std::string&);
    std::shared_ptr<const INPUT_FILE> read_with(READER reader, const std::string& path);

    std::string directory;                                          // empty for paths as they are
    std::map<std::string, std::shared_ptr<const INPUT_FILE>> files; // by path as given
    std::vector<std::string> all_problems;
};

// The path from the root on, where `directory` is the current one. "" for the empty path; the path as it is where the
// directory is not known, which is empty then.
std::string absolute_path(const std::string& path, const std::string& directory);

// What would keep the file from being read, by its type and permissions; empty when nothing would. Opens nothing.
std::string input_problem(const std::string& path);

// Why nothing is found at a path.
enum class ABSENCE
{
    NONE,     // something is there
    MISSING,  // nothing is there
    DANGLING, // a link on the way leads nowhere, or in a circle
    BARRED,   // it cannot be told: a directory on the way cannot be searched, or a disk fails
};

struct ABSENT_FILE
{
    ABSENCE kind;
    std::string problem; // for DANGLING and BARRED, with what to do about it
};
ABSENT_FILE absence_of(const std::string& path);

// Throws TOOL_ERROR(BAD_INPUT) with the path unless it is a directory, or what it is cannot be told: a host finds
// nothing there and goes on (see note_absence). `advice`, such as "give --project ", stands before what to give
// instead.
void check_input_directory(const std::string& path, const std::string& advice);

// The bytes of a file. Throws TOOL_ERROR(BAD_INPUT) with the path unless it can be read whole.
std::string read_input_file(const std::string& path);

#endif
