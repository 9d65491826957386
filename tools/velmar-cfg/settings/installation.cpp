// Defines the path services of this program instead of the default ones. If no installation is set, they call the
// default ones. The whole process has one installation, which no lock protects.
#include "tools/velmar-cfg/settings/installation.h"

#include <string_view>
#include <utility>

#include "platform/gen/gen.h"

// The services that platform/gen/gen_paths.cpp defines, compiled for this program under these names.
std::string default_gen_get_module_path();
std::string default_gen_get_velmar_path();

namespace
{
INSTALLATION& installation_in_effect()
{
    static INSTALLATION installation;
    return installation;
}

std::string with_slash(const std::string& directory)
{
    return directory.ends_with('/') ? directory : directory + "/";
}
}

INSTALLATION installation_of_root(const std::string& root)
{
    return {with_slash(root) + "bin/", with_slash(root)};
}

INSTALLATION installation_of_programs(const std::string& directory)
{
    constexpr std::string_view bin = "/bin/";
    INSTALLATION installation{with_slash(directory), with_slash(directory)};
    if (installation.root.ends_with(bin))
        installation.root.resize(installation.root.size() - bin.size() + 1);
    return installation;
}

INSTALLATION set_installation(INSTALLATION installation)
{
    return std::exchange(installation_in_effect(), std::move(installation));
}

std::string gen_get_module_path()
{
    const std::string& programs = installation_in_effect().programs;
    return programs.empty() ? default_gen_get_module_path() : programs;
}

std::string gen_get_velmar_path()
{
    const std::string& root = installation_in_effect().root;
    return root.empty() ? default_gen_get_velmar_path() : root;
}
