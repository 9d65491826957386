// A host's own path services: its users' profiles are beside each other, in a directory of the host's.
#include <cstdlib>

#include "platform/gen/gen.h"

std::string gen_get_module_path()
{
    return "/opt/acme/bin/";
}

std::string gen_get_velmar_path()
{
    return "/opt/acme/";
}

std::string gen_get_user_profile_directory()
{
    const char* const profiles = std::getenv("ACME_PROFILES");
    return profiles == nullptr ? "" : std::string(profiles) + "/someone";
}
