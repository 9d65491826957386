#include "tools/velmar-cfg/base/input_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/velmar-cfg/base/errors.h"

std::string input_problem(const std::string& path)
{
    struct stat found;
    if (stat(path.c_str(), &found) != 0)
        return std::string(std::strerror(errno)) + "; check the path";
    if (S_ISDIR(found.st_mode))
        return "is a directory, not a file; remove it or name another path";
    if (!S_ISREG(found.st_mode))
        return "is no regular file, so it cannot be read twice; copy what it holds into a file";
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return std::string(std::strerror(errno)) + "; make the file readable for this user";
    close(file);
    return {};
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

void check_input_file(const std::string& path)
{
    if (const std::string problem = input_problem(path); !problem.empty())
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, path + ": " + problem);
}

void throw_binary_file(const std::string& path, std::size_t line)
{
    throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, path + ": binary file: line " + std::to_string(line) +
                                               " holds a zero byte; remove it or name another file");
}

std::string read_input_file(const std::string& path)
{
    check_input_file(path);
    const std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return std::move(bytes).str();
}
