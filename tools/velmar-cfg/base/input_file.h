// Reads files. Each is read once and to its end, and every error is reported. The library treats an unreadable file as
// an empty one; the tool says what is wrong.
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
    std::string bytes;   // all of them; after a problem, those before it
    std::string problem; // why the file could not be read whole, and what to do about it; else empty
    bool gone = false;   // the problem is that nothing is there

    // The bytes. After a problem, only the complete lines, which the library uses too.
    std::string_view whole_lines() const;

    // Throws TOOL_ERROR(BAD_INPUT) with the path if there is a problem.
    void require_whole() const;
};

// Opens the file once and reads it to its end. Never waits: a pipe, or a device other than the null device, is a
// problem.
INPUT_FILE read_whole_file(const std::string& path);

// The same for a file that is open at its beginning. Leaves it open. `path` is for messages.
INPUT_FILE read_open_file(int file, const std::string& path);

// The same for a file that the user named and that is read only once. "-" is standard input. Waits for a pipe or a
// device. Throws TOOL_ERROR(USAGE) if standard input has been read already.
INPUT_FILE read_named_file(const std::string& path);

// The same, a part at a time. Throws TOOL_ERROR(BAD_INPUT) with the path if the file cannot be read.
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

// Whether the bytes begin with a byte order mark of UTF-16. The library understands no line of such a file, and no line
// can be added to it.
bool is_utf_16(std::string_view bytes);

// What is wrong with such a file, as the end of a sentence about it, and what to do.
inline constexpr const char* utf_16_problem = "is UTF-16, which the library does not understand";
inline constexpr const char* utf_16_advice = "save it as UTF-8 without a byte order mark";

// Throws TOOL_ERROR(BAD_INPUT) for such bytes. `path` is for the message.
void refuse_utf_16(const std::string& path, std::string_view bytes);

// The name of such a file in messages: its path, or "standard input".
std::string title_of_named_file(const std::string& path);

// The files that one command reads. A file is read only once, however often it is asked for, so all answers are about
// the same bytes. A file that cannot be read throws nothing: the command answers what it can and reports the problem at
// the end.
class INPUT_FILES
{
public:
    INPUT_FILES() = default;

    // Makes relative paths absolute, below this directory. It must be the current directory whenever a file is read.
    explicit INPUT_FILES(std::string current) : directory(std::move(current)) {}

    // Never null. The result stays valid when this object is destroyed.
    std::shared_ptr<const INPUT_FILE> read(const std::string& path);

    // The same for a file that the user named (see read_named_file).
    std::shared_ptr<const INPUT_FILE> read_named(const std::string& path);

    // The file with that title, if it has been read; else null. Reads nothing.
    std::shared_ptr<const INPUT_FILE> find(const std::string& title) const;

    // Forgets the file, its problem and its absence. If it is asked for again, it is read again.
    void forget(const std::string& path);

    // Adds a problem, unless the list has it already.
    void add_problem(const std::string& text);

    // Adds a problem if nothing is found at the path although something may be there (see absence_of).
    void note_absence(const std::string& path);

    // Why files could not be read whole, each with its path, in the order in which they were asked for.
    const std::vector<std::string>& problems() const
    {
        return all_problems;
    }

private:
    using READER = INPUT_FILE (*)(const std::string&);
    std::shared_ptr<const INPUT_FILE> read_with(READER reader, const std::string& path);

    std::string directory;                                          // empty: paths stay as they are
    std::map<std::string, std::shared_ptr<const INPUT_FILE>> files; // by path as given
    std::vector<std::string> all_problems;
};

// The path made absolute, for a path that is relative to `directory`. An empty `directory` is not known: the path then
// stays as it is. An empty path stays empty.
std::string absolute_path(const std::string& path, const std::string& directory);

// Why the file could not be read, judged by its type and permissions; empty if it could be. Opens nothing.
std::string input_problem(const std::string& path);

// Why nothing is found at a path.
enum class ABSENCE
{
    NONE,     // something is there
    MISSING,  // nothing is there
    DANGLING, // a link on the way leads nowhere, or in a circle
    BARRED,   // not known: a directory on the way cannot be searched, or a disk fails
};

struct ABSENT_FILE
{
    ABSENCE kind;
    std::string problem; // for DANGLING and BARRED, with what to do about it
};
ABSENT_FILE absence_of(const std::string& path);

// Throws TOOL_ERROR(BAD_INPUT) with the path if it is no directory. Does not throw if that is not known
// (ABSENCE::BARRED): a host finds nothing there and goes on (see note_absence). The message puts `advice`, such as
// "give --project ", before what to give instead.
void check_input_directory(const std::string& path, const std::string& advice);

// The bytes of a file. Throws TOOL_ERROR(BAD_INPUT) with the path unless it can be read whole.
std::string read_input_file(const std::string& path);

#endif
