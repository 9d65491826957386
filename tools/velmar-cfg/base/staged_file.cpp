#include "tools/velmar-cfg/base/staged_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <sys/stat.h>

#include "cfg_run_report/whole_file.h"
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

[[noreturn]] void fail_with_errno(const std::string& path, const char* then)
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

void STAGED_FILE::replace_target()
{
    // Programs that save preferences themselves know nothing of the lock.
    const std::string now = exists(target) ? read_input_file(target) : std::string();
    if (now != before)
        fail(target, "another program changed it meanwhile; nothing was changed, run the command again");
    try
    {
        if (const std::error_code not_lasting = replace_file(path(), target, FILE_OWNER::KEPT))
            fail(target, "was changed, but a power cut may undo that: " + not_lasting.message());
    }
    catch (const OWNER_NOT_KEPT&)
    {
        fail(target, "belongs to somebody else, and its owner could not be kept; nothing was changed");
    }
    catch (const std::system_error& error)
    {
        fail(target, error.code().message() + "; nothing was changed");
    }
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
