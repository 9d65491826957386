// Reads files to their end, and makes the message when a file cannot be read.
//
// A file is read until nothing is left, whatever size it was said to have, since it may grow meanwhile. The buffer has
// room for one byte more than that size: for most files one allocation is enough.
//
// The type of a file is checked twice: before it is opened, because to open a pipe would let its writer go on, and once
// it is open, because another file may have taken its place. Only files that the user names to be read once may be
// pipes or devices.
//
// When nothing is found at a path, absence_of() shortens the path until something is found, and so tells a missing file
// from a link that leads nowhere.
//
// Invariants:
// - INPUT_FILES reads a path again only after forget(). Its files are shared and never change.
// - Standard input is read once in the life of the process.
//
// Cost: O(n) time and memory for n bytes; NAMED_FILE keeps nothing.
#include "tools/velmar-cfg/base/input_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "tools/velmar-cfg/base/errors.h"

namespace
{
constexpr const char* is_directory = "is a directory, not a file; check the path";

std::string problem_of_type(const struct stat& found)
{
    constexpr dev_t null_device = 0x103; // reads as an empty file, and files are linked to it to be just that
    if (S_ISDIR(found.st_mode))
        return is_directory;
    if (!S_ISREG(found.st_mode) && !(S_ISCHR(found.st_mode) && found.st_rdev == null_device))
        return "is no regular file, so it cannot be read twice; copy what it holds into a file";
    return {};
}

std::string problem_of_errno(const char* advice)
{
    return std::string(std::strerror(errno)) + advice;
}

constexpr const char* not_found = "; check the path";
constexpr const char* not_permitted = "; make the file readable for this user";

// What kept a file from being found or opened, with that error: a link or a directory on the way is told as such.
std::string problem_of_opening(const std::string& path, int error)
{
    if (std::string problem = absence_of(path).problem; !problem.empty())
        return problem;
    errno = error;
    return problem_of_errno(error == EACCES ? not_permitted : not_found);
}

// Reads what there is, at least one byte but at the end, and waits for it: standard input may not block. Negative, with
// errno set, when the disk fails.
ssize_t read_some(int file, char* to, std::size_t room)
{
    for (;;)
    {
        const ssize_t got = ::read(file, to, room);
        if (got >= 0 || (errno != EINTR && errno != EAGAIN))
            return got;
        if (errno == EAGAIN)
        {
            pollfd readable{file, POLLIN, 0};
            poll(&readable, 1, -1);
        }
    }
}

std::string problem_of_reading(std::size_t bytes_before)
{
    return problem_of_errno(
        (", after " + std::to_string(bytes_before) + " bytes; check the device, or name a copy of the file").c_str());
}

// Reads until nothing is left, whatever size the file was said to have: it may grow meanwhile.
std::string read_to_end(int file, std::size_t expected_size, std::string& bytes)
{
    constexpr std::size_t least_room = 4096;
    std::size_t size = 0;
    for (;;)
    {
        // One byte more than expected, so that the end is seen without a further allocation.
        if (size == bytes.size())
            bytes.resize(size == 0 ? expected_size + 1 : size + std::max(size / 2, least_room));
        const ssize_t got = read_some(file, bytes.data() + size, bytes.size() - size);
        if (got <= 0)
        {
            std::string problem = got == 0 ? std::string() : problem_of_reading(size);
            bytes.resize(size);
            return problem;
        }
        size += static_cast<std::size_t>(got);
    }
}

struct OPENED_FILE
{
    int descriptor = -1;
    std::size_t expected_size = 0; // in bytes, where it is known
    std::string problem;           // which left it closed
    bool gone = false;
};

// A file that the user named to be read once, or standard input.
OPENED_FILE open_named_file(const std::string& path)
{
    OPENED_FILE file;
    if (path == "-")
    {
        static bool already_read = false;
        if (std::exchange(already_read, true))
            throw TOOL_ERROR(EXIT_CODE::USAGE,
                             "standard input has been read already; only one argument or option can take it");
        file.descriptor = STDIN_FILENO;
        return file;
    }
    file.descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    if (file.descriptor < 0)
    {
        file.gone = errno == ENOENT;
        file.problem = problem_of_opening(path, errno);
        return file;
    }
    struct stat found;
    const bool known = fstat(file.descriptor, &found) == 0;
    if (known && S_ISREG(found.st_mode))
        file.expected_size = static_cast<std::size_t>(found.st_size);
    if (known && S_ISDIR(found.st_mode))
    {
        file.problem = is_directory;
        close(std::exchange(file.descriptor, -1));
    }
    return file;
}

void close_named_file(int descriptor)
{
    if (descriptor >= 0 && descriptor != STDIN_FILENO)
        close(descriptor);
}
}

INPUT_FILE read_open_file(int file, const std::string& path)
{
    INPUT_FILE result{path, {}, {}};
    struct stat found;
    result.problem = fstat(file, &found) != 0 ? problem_of_errno(not_found) : problem_of_type(found);
    if (result.problem.empty())
        result.problem = read_to_end(file, static_cast<std::size_t>(found.st_size), result.bytes);
    return result;
}

INPUT_FILE read_whole_file(const std::string& path)
{
    INPUT_FILE result{path, {}, {}};
    // Asked before it is opened: to open a pipe would let its writer go on.
    struct stat found;
    if (stat(path.c_str(), &found) != 0)
    {
        result.gone = errno == ENOENT;
        result.problem = problem_of_opening(path, errno);
        return result;
    }
    result.problem = problem_of_type(found);
    if (!result.problem.empty())
        return result;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (file < 0)
    {
        result.gone = errno == ENOENT;
        result.problem = problem_of_opening(path, errno);
        return result;
    }
    // Another file may stand there by now.
    result = read_open_file(file, path);
    close(file);
    return result;
}

bool is_utf_16(std::string_view bytes)
{
    return bytes.starts_with("\xff\xfe") || bytes.starts_with("\xfe\xff");
}

void refuse_utf_16(const std::string& path, std::string_view bytes)
{
    if (is_utf_16(bytes))
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, path + ": " + utf_16_problem + "; " + utf_16_advice);
}

std::string title_of_named_file(const std::string& path)
{
    return path == "-" ? "standard input" : path;
}

INPUT_FILE read_named_file(const std::string& path)
{
    OPENED_FILE file = open_named_file(path);
    INPUT_FILE result{title_of_named_file(path), {}, std::move(file.problem), file.gone};
    if (result.problem.empty())
        result.problem = read_to_end(file.descriptor, file.expected_size, result.bytes);
    close_named_file(file.descriptor);
    return result;
}

NAMED_FILE::NAMED_FILE(const std::string& path) : title(title_of_named_file(path))
{
    const OPENED_FILE file = open_named_file(path);
    if (!file.problem.empty())
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, title + ": " + file.problem);
    descriptor = file.descriptor;
}

NAMED_FILE::~NAMED_FILE()
{
    close_named_file(descriptor);
}

std::size_t NAMED_FILE::read(char* to, std::size_t room)
{
    const ssize_t got = read_some(descriptor, to, room);
    if (got < 0)
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, title + ": " + problem_of_reading(bytes_read));
    bytes_read += static_cast<std::size_t>(got);
    return static_cast<std::size_t>(got);
}

std::string_view INPUT_FILE::whole_lines() const
{
    const std::string_view all = bytes;
    return problem.empty() ? all : all.substr(0, all.rfind('\n') + 1);
}

void INPUT_FILE::require_whole() const
{
    if (!problem.empty())
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, path + ": " + problem);
}

std::shared_ptr<const INPUT_FILE> INPUT_FILES::read_with(READER reader, const std::string& path)
{
    std::shared_ptr<const INPUT_FILE>& file = files[path];
    if (file == nullptr)
    {
        INPUT_FILE read = reader(path);
        read.path = absolute_path(read.path, directory);
        file = std::make_shared<const INPUT_FILE>(std::move(read));
        if (!file->problem.empty())
            add_problem(file->path + ": " + file->problem);
    }
    return file;
}

std::shared_ptr<const INPUT_FILE> INPUT_FILES::read(const std::string& path)
{
    return read_with(read_whole_file, path);
}

std::shared_ptr<const INPUT_FILE> INPUT_FILES::read_named(const std::string& path)
{
    return read_with(read_named_file, path);
}

std::shared_ptr<const INPUT_FILE> INPUT_FILES::find(const std::string& title) const
{
    const auto found = std::ranges::find_if(files, [&title](const auto& file) { return file.second->path == title; });
    return found == files.end() ? nullptr : found->second;
}

void INPUT_FILES::forget(const std::string& path)
{
    std::erase(all_problems, path + ": " + absence_of(path).problem);
    if (const auto file = files.find(path); file != files.end())
    {
        std::erase(all_problems, file->second->path + ": " + file->second->problem);
        files.erase(file);
    }
}

void INPUT_FILES::note_absence(const std::string& path)
{
    const std::string absolute = absolute_path(path, directory);
    if (const ABSENT_FILE absent = absence_of(absolute); !absent.problem.empty())
        add_problem(absolute + ": " + absent.problem);
}

void INPUT_FILES::add_problem(const std::string& text)
{
    if (std::ranges::find(all_problems, text) == all_problems.end())
        all_problems.push_back(text);
}

std::string absolute_path(const std::string& path, const std::string& directory)
{
    if (path.empty() || path.starts_with('/') || directory.empty())
        return path;
    return directory + (directory.ends_with('/') ? "" : "/") + path.substr(path.starts_with("./") ? 2 : 0);
}

std::string input_problem(const std::string& path)
{
    struct stat found;
    if (stat(path.c_str(), &found) != 0)
        return problem_of_errno(not_found);
    if (std::string problem = problem_of_type(found); !problem.empty())
        return problem;
    return faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) == 0 ? std::string() : problem_of_errno(not_permitted);
}

ABSENT_FILE absence_of(const std::string& path)
{
    struct stat found;
    if (stat(path.c_str(), &found) == 0)
        return {ABSENCE::NONE, {}};
    const int error = errno;
    if (error != ENOENT && error != ENOTDIR && error != ELOOP)
        return {ABSENCE::BARRED, std::string(std::strerror(error)) +
                                     (error == EACCES ? "; let this user search the directories that it is in" : "")};
    // The furthest that the path leads: what is there is a link, or the next name is missing in it.
    std::string reached = path;
    while (lstat(reached.c_str(), &found) != 0 && reached.find('/') != std::string::npos && !reached.empty())
        reached.resize(reached.find_last_not_of('/', reached.rfind('/')) + 1);
    if (reached.empty() || lstat(reached.c_str(), &found) != 0 || !S_ISLNK(found.st_mode) ||
        (error != ELOOP && stat(reached.c_str(), &found) == 0))
        return {ABSENCE::MISSING, {}};
    return {ABSENCE::DANGLING,
            (reached == path ? "is" : "is reached through " + reached + ",") +
                std::string(error == ELOOP ? " a symbolic link that leads back to itself" : " a broken symbolic link") +
                "; remove it or create what it names"};
}

void check_input_directory(const std::string& path, const std::string& advice)
{
    struct stat found;
    if (stat(path.c_str(), &found) == 0)
    {
        if (S_ISDIR(found.st_mode))
            return;
        const std::size_t end = path.rfind('/');
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT,
                         path + ": is a file; " + advice + "a directory, such as " +
                             (end == std::string::npos ? "." : path.substr(0, std::max<std::size_t>(end, 1))));
    }
    const ABSENT_FILE absent = absence_of(path);
    if (absent.kind == ABSENCE::DANGLING)
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, path + ": " + absent.problem);
    if (absent.kind == ABSENCE::MISSING)
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, path + ": no such directory; " + advice + "an existing one");
}

std::string read_input_file(const std::string& path)
{
    INPUT_FILE file = read_whole_file(path);
    file.require_whole();
    return std::move(file.bytes);
}
