#include "platform/gen/gen.h"

#include <mutex>

namespace
{
struct SEARCH_PATHS
{
    std::mutex mutex;
    std::string user_libraries;
    std::string user_ip;
};

SEARCH_PATHS& search_paths()
{
    // Made on first use and never destroyed: preferences may be used before and after this file's static objects live.
    static SEARCH_PATHS& paths = *new SEARCH_PATHS;
    return paths;
}
}

void gen_set_user_library_paths(const std::string& paths)
{
    const std::lock_guard lock(search_paths().mutex);
    search_paths().user_libraries = paths;
}

void gen_set_user_ip_search_paths(const std::string& paths)
{
    const std::lock_guard lock(search_paths().mutex);
    search_paths().user_ip = paths;
}

std::string gen_get_user_library_paths()
{
    const std::lock_guard lock(search_paths().mutex);
    return search_paths().user_libraries;
}

std::string gen_get_user_ip_search_paths()
{
    const std::lock_guard lock(search_paths().mutex);
    return search_paths().user_ip;
}
