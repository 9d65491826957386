#include "tools/velmar-cfg/base/input_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/velmar-cfg/base/errors.h"

namespace
{
std::string problem_of_type(const struct stat& found)
{
    if (S_ISDIR(found.st_mode))
        return "is a directory, not a file; remove it or name another path";
    if (!S_ISREG(found.st_mode))
        return "is no regular file, so it cannot be read twice; copy what it holds into a file";
    return {};
}

std::string problem_of_errno(const char* advice)
{
    return std::string(std::strerror(errno)) + advice;
}

constexpr const char* not_found = "; check the path";
constexpr const char* not_permitted = "; make the file readable for this user";

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
        const ssize_t got = ::read(file, bytes.data() + size, bytes.size() - size);
        if (got > 0)
            size += static_cast<std::size_t>(got);
        else if (got == 0 || errno != EINTR)
        {
            bytes.resize(size);
            return got == 0 ? std::string()
                            : problem_of_errno((", after " + std::to_string(size) +
                                                " bytes; check the device, or name a copy of the file")
                                                   .c_str());
        }
    }
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
        result.problem = problem_of_errno(not_found);
        return result;
    }
    result.problem = problem_of_type(found);
    if (!result.problem.empty())
        return result;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (file < 0)
    {
        result.problem = problem_of_errno(errno == ENOENT ? not_found : not_permitted);
        return result;
    }
    // Another file may stand there by now.
    result = read_open_file(file, path);
    close(file);
    return result;
}

void INPUT_FILE::require_whole() const
{
    if (!problem.empty())
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, path + ": " + problem);
}

void INPUT_FILE::require_text() const
{
    require_whole();
    if (const std::size_t zero = bytes.find('\0'); zero != std::string::npos)
        throw TOOL_ERROR(
            EXIT_CODE::BAD_INPUT,
            path + ": binary file: line " +
                std::to_string(1 + std::count(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(zero), '\n')) +
                " holds a zero byte; remove it or name another file");
}

std::shared_ptr<const INPUT_FILE> INPUT_FILES::read(const std::string& path)
{
    std::shared_ptr<const INPUT_FILE>& file = files[path];
    if (file == nullptr)
        file = std::make_shared<const INPUT_FILE>(read_whole_file(path));
    return file;
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

void check_input_directory(const std::string& path, const std::string& advice)
{
    struct stat found;
    const bool exists = stat(path.c_str(), &found) == 0;
    if (exists ? !S_ISDIR(found.st_mode) : errno == ENOENT || errno == ENOTDIR)
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, path + ": no such directory; " + advice);
    if (!exists || access(path.c_str(), X_OK) != 0)
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT,
                         path + ": " + std::strerror(errno) + "; let this user search the directory");
}

std::string read_input_file(const std::string& path)
{
    INPUT_FILE file = read_whole_file(path);
    file.require_whole();
    return std::move(file.bytes);
}
