// The cache is an array with one entry for each preference, by number. All entries belong to one running release. The
// name of the release is kept in a fixed array of characters. So nothing here is allocated, and clearing cannot fail.
// Nothing is destroyed at exit, when preferences may still be asked for.
//
// A lookup with another running release clears all entries. Hosts have one release and never pay for it; programs that
// change it (tests, tools that look at another installation) pay with searches.
//
// Cost: a comparison of the release's name and an access to an array. A release is never cached if its name is longer
// than the array.
#include "cfg_ini/cfg_user_ini_reader/preference_cache.h"

#include <array>
#include <string_view>

namespace zon_cfg
{
namespace
{
constinit std::array<CACHED_RECORD, CFG_USER_INI_ENUMS_END> cached_records = {};
constinit std::array<char, 32> cached_version = {};
constinit std::size_t cached_version_size = 0;
}

CACHED_RECORD* cached_record(CFG_USER_INI_ENUMS preference, const std::string& version)
{
    if (version != std::string_view(cached_version.data(), cached_version_size))
    {
        // Clears also for a release whose name is not kept, since its assignments may change the results cached for
        // another.
        clear_preference_cache();
        if (version.size() > cached_version.size())
            return nullptr;
        cached_version_size = version.copy(cached_version.data(), cached_version.size());
    }
    return &cached_records[static_cast<std::size_t>(preference)];
}

void clear_preference_cache() noexcept
{
    cached_records.fill({});
}
}
