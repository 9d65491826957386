#include "platform/gen/gen.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <pwd.h>
#include <string_view>
#include <system_error>
#include <unistd.h>

std::string gen_get_module_path()
{
    std::error_code error;
    const std::string executable = std::filesystem::read_symlink("/proc/self/exe", error).string();
    return executable.substr(0, executable.rfind('/') + 1);
}

std::string gen_get_velmar_path()
{
    constexpr std::string_view bin = "/bin/";
    std::string directory = gen_get_module_path();
    if (directory.ends_with(bin))
        directory.resize(directory.size() - bin.size() + 1);
    return directory;
}

std::string gen_get_user_profile_directory()
{
    if (const char* const home = std::getenv("HOME"); home != nullptr && *home != '\0')
        return home;

    std::array<char, 16384> texts;
    struct passwd entry;
    struct passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, texts.data(), texts.size(), &found) == 0 && found != nullptr)
        return found->pw_dir;
    return {};
}
