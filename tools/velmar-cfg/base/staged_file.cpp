#include "tools/velmar-cfg/base/staged_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/input_file.h"

namespace
{
constexpr std::string_view infix = ".edit-";
constexpr std::string_view unique_part = "XXXXXX";

[[noreturn]] void fail(const std::string& path, const std::string& what)
{
    throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, path + ": " + what);
}

[[noreturn]] void fail_with_errno(const std::string& path, const char* then = "; nothing was changed")
{
    fail(path, std::strerror(errno) + std::string(then));
}

std::string parent_of(const std::string& path)
{
    const std::string parent = std::filesystem::path(path).parent_path().string();
    return parent.empty() ? "." : parent;
}

bool exists(const std::string& path)
{
    struct stat found;
    return stat(path.c_str(), &found) == 0;
}

// Closes a descriptor at the end of a scope.
class DESCRIPTOR
{
public:
    DESCRIPTOR(const std::string& path, int flags) : number(open(path.c_str(), flags | O_CLOEXEC)) {}
    ~DESCRIPTOR()
    {
        if (number >= 0)
            close(number);
    }
    DESCRIPTOR(const DESCRIPTOR&) = delete;
    DESCRIPTOR& operator=(const DESCRIPTOR&) = delete;

    const int number;
};

void synchronise(const std::string& path, int flags)
{
    const DESCRIPTOR file(path, flags);
    if (file.number < 0 || fsync(file.number) != 0)
        fail_with_errno(path);
}
}

std::string followed_path(const std::string& path)
{
    std::filesystem::path followed(path);
    std::error_code error;
    for (int links = 0; links < 40 && std::filesystem::is_symlink(followed, error); ++links)
        followed = followed.parent_path() / std::filesystem::read_symlink(followed, error);
    const std::filesystem::path directory = std::filesystem::canonical(parent_of(followed.string()), error);
    if (error || std::filesystem::is_symlink(followed))
        fail(path, "no such directory, or links in a circle; make the directory first");
    return (directory / followed.filename()).string();
}

STAGED_FILE::STAGED_FILE(const std::string& the_target, const std::string& file_name, bool beside_target)
    : target(the_target), name(file_name)
{
    std::error_code error;
    const std::string location =
        beside_target ? target : (std::filesystem::temp_directory_path(error) / file_name).string();
    staging = location + std::string(infix) + std::string(unique_part);
    if (error || mkdtemp(staging.data()) == nullptr)
        fail_with_errno(parent_of(location), "; the directory must be writable");
    try
    {
        if (!exists(target))
            return;
        before = read_input_file(target);
        std::ofstream copy(path(), std::ios::binary);
        copy << before;
        copy.close();
        if (!copy)
            fail(path(), "cannot be written; nothing was changed");
    }
    catch (...)
    {
        std::filesystem::remove_all(staging, error);
        throw;
    }
}

STAGED_FILE::~STAGED_FILE()
{
    std::error_code ignored;
    std::filesystem::remove_all(staging, ignored);
}

void STAGED_FILE::copy_ownership(int file) const
{
    struct stat old_file;
    struct stat new_file;
    if (stat(target.c_str(), &old_file) != 0)
        return; // there was none: the new file is as its maker made it
    if (fstat(file, &new_file) != 0)
        fail_with_errno(path());
    const bool same_owner = old_file.st_uid == new_file.st_uid && old_file.st_gid == new_file.st_gid;
    if (!same_owner && fchown(file, old_file.st_uid, old_file.st_gid) != 0)
        fail(target, "belongs to somebody else, and its owner could not be kept; nothing was changed");
    if (fchmod(file, old_file.st_mode & 07777U) != 0)
        fail_with_errno(path());
}

void STAGED_FILE::replace_target()
{
    {
        const DESCRIPTOR file(path(), O_RDONLY);
        if (file.number < 0)
            fail_with_errno(path());
        copy_ownership(file.number);
        if (fsync(file.number) != 0)
            fail_with_errno(path());
    }
    // Programs that save preferences themselves know nothing of the lock.
    const std::string now = exists(target) ? read_input_file(target) : std::string();
    if (now != before)
        fail(target, "another program changed it meanwhile; nothing was changed, run the command again");
    if (std::rename(path().c_str(), target.c_str()) != 0)
        fail_with_errno(target);
    synchronise(parent_of(target), O_RDONLY | O_DIRECTORY);
}

void remove_abandoned_staging(const std::string& target, const std::string& file_name)
{
    const std::string prefix = std::filesystem::path(target).filename().string() + std::string(infix);
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(parent_of(target), error))
    {
        const std::string entry_name = entry.path().filename().string();
        if (!entry_name.starts_with(prefix) || entry_name.size() != prefix.size() + unique_part.size() ||
            !entry.is_directory(error) || entry.is_symlink(error))
            continue;
        std::filesystem::remove(entry.path() / file_name, error);
        std::filesystem::remove(entry.path(), error); // stays if something else is in it
    }
}
