#include "platform/gen/gen.h"

#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <pwd.h>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace
{
// A directory in which nobody can create a file, not even root, since the device is no directory.
constexpr const char* nowhere = "/dev/null/";

// The home directory of the running user in the password database; empty when there is none.
std::string home_in_password_database()
{
    // An entry from a directory service may be of any length; a longer one than this is an error of the service.
    constexpr std::size_t most_characters = std::size_t{1} << 24U;
    for (std::vector<char> texts(1024); texts.size() <= most_characters;)
    {
        struct passwd entry;
        struct passwd* found = nullptr;
        const int error = getpwuid_r(getuid(), &entry, texts.data(), texts.size(), &found);
        if (error == ERANGE)
            texts.resize(2 * texts.size());
        else if (error != EINTR)
            return error == 0 && found != nullptr ? found->pw_dir : "";
    }
    return {};
}
}

std::string gen_get_module_path()
{
    char executable[PATH_MAX]; // the kernel hands out no longer path
    const ssize_t size = readlink("/proc/self/exe", executable, sizeof executable);
    const std::string_view path(executable, size < 0 ? 0 : static_cast<std::size_t>(size));
    return std::string(path.substr(0, path.rfind('/') + 1));
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
    const std::string home = home_in_password_database();
    return home.empty() ? nowhere : home;
}
