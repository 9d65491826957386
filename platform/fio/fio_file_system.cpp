#include "platform/fio/fio.h"

#include <filesystem>
#include <sys/stat.h>
#include <system_error>

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
    std::error_code error;
    return std::filesystem::current_path(error).string();
}
