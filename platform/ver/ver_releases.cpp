#include "platform/ver/ver.h"

#include <cstddef>

namespace
{
// Makes strings from texts of known sizes. Many lookups of preferences ask for them, and this is cheaper than copies.
template <std::size_t... SIZES>
std::vector<std::string> strings(const char (&... texts)[SIZES])
{
    std::vector<std::string> all;
    all.reserve(sizeof...(texts));
    (all.emplace_back(texts, SIZES - 1), ...);
    return all;
}
}

const char* ver_get_kestrin_product_filename()
{
    return ZON_PRODUCT_NAME;
}

std::string ver_get_version()
{
    return ZON_VERSION;
}

std::vector<std::string> ver_get_all_versions()
{
    return strings(ZON_KNOWN_VERSIONS);
}
