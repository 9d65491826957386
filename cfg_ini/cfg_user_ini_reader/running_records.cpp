#include "cfg_ini/cfg_user_ini_reader/running_records.h"

#include <array>
#include <cstring>

namespace
{
constinit std::array<REMEMBERED_RECORD, CFG_USER_INI_ENUMS_END + 1> remembered = {};
constinit std::array<char, 32> remembered_version = {};
}

REMEMBERED_RECORD* remembered_record(CFG_USER_INI_ENUMS preference, const std::string& version,
                                     const std::vector<std::string>* versions)
{
    // Never destroyed: preferences may still be asked for when static objects are gone.
    static std::vector<std::string>& remembered_versions = *new std::vector<std::string>;
    if (versions != nullptr && *versions != remembered_versions)
    {
        forget_running_records();
        remembered_versions = *versions;
    }
    if (version.compare(remembered_version.data()) != 0)
    {
        if (version.size() >= remembered_version.size())
            return nullptr;
        forget_running_records();
        std::memcpy(remembered_version.data(), version.c_str(), version.size() + 1);
    }
    return &remembered[static_cast<std::size_t>(preference)];
}

void forget_running_records()
{
    remembered.fill({});
}
