#include "cfg_ini/cfg_user_ini_reader/running_records.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace
{
constinit std::array<REMEMBERED_RECORD, CFG_USER_INI_ENUMS_END> remembered = {};
constinit std::array<char, 32> remembered_version = {};
constinit std::size_t remembered_version_size = 0;

// Never destroyed: preferences may still be asked for when static objects are gone.
constinit std::vector<std::string>* remembered_versions = nullptr;

// Releases have short names, mostly of four to eight characters: a call of memcmp takes longer than to compare the
// first and the last four.
bool is_same_release(std::string_view a, std::string_view b)
{
    const std::size_t size = a.size();
    if (size != b.size())
        return false;
    if (size < 4 || size > 8)
        return std::equal(a.begin(), a.end(), b.begin());
    const auto four = [](const char* from)
    {
        std::uint32_t characters;
        std::memcpy(&characters, from, sizeof characters);
        return characters;
    };
    const std::size_t last = size - 4;
    return four(a.data()) == four(b.data()) && four(a.data() + last) == four(b.data() + last);
}
}

REMEMBERED_RECORD* remembered_record(CFG_USER_INI_ENUMS preference, const std::string& version)
{
    if (!is_same_release(version, std::string_view(remembered_version.data(), remembered_version_size)))
    {
        // Also for a release whose name is not kept: assignments for it may change what others were refused.
        forget_running_records();
        if (version.size() > remembered_version.size())
            return nullptr;
        remembered_version_size = version.copy(remembered_version.data(), remembered_version.size());
    }
    return &remembered[static_cast<std::size_t>(preference)];
}

void forget_unless_known_are(const std::vector<std::string>& versions)
{
    if (remembered_versions == nullptr)
        remembered_versions = new std::vector<std::string>;
    const auto is_same = [](const std::string& a, const std::string& b) { return is_same_release(a, b); };
    if (!std::ranges::equal(versions, *remembered_versions, is_same))
    {
        forget_running_records();
        *remembered_versions = versions;
    }
}

void forget_running_records()
{
    remembered.fill({});
}
