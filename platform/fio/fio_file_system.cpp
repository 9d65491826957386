#include "platform/fio/fio.h"

#include <climits>
#include <cstdlib>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

bool FIO_FILE_SYSTEM::exists(const FIO_PATH& path)
{
    return exists(static_cast<const char*>(path));
}

bool FIO_FILE_SYSTEM::exists(const char* path)
{
    struct stat found;
    return status(path, &found);
}

bool FIO_FILE_SYSTEM::status(const char* path, struct stat* result)
{
    return ::stat(path, result) == 0;
}

std::string FIO_FILE_SYSTEM::get_current_directory()
{
    char directory[PATH_MAX]; // mostly enough; the C library takes memory for any length
    if (getcwd(directory, sizeof directory) != nullptr)
        return directory;
    const std::unique_ptr<char, decltype(&std::free)> longer(getcwd(nullptr, 0), std::free);
    return longer != nullptr ? longer.get() : std::string();
}
