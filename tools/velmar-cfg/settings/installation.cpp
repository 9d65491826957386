#include "tools/velmar-cfg/settings/installation.h"

#include "platform/gen/gen.h"

// The services that platform/gen/gen_paths.cpp defines, compiled for this program under these names.
std::string default_gen_get_module_path();
std::string default_gen_get_velmar_path();

namespace
{
// With a final "/"; empty unless --root was given.
std::string& installation_root()
{
    static std::string root;
    return root;
}
}

void set_installation_root(const std::string& root)
{
    installation_root() = root.ends_with('/') ? root : root + "/";
}

std::string gen_get_module_path()
{
    return installation_root().empty() ? default_gen_get_module_path() : installation_root() + "bin/";
}

std::string gen_get_velmar_path()
{
    return installation_root().empty() ? default_gen_get_velmar_path() : installation_root();
}
