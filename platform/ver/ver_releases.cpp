#include "platform/ver/ver.h"

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
    // Never destroyed: preferences may still be asked for when static objects are gone.
    static const std::vector<std::string>& releases = *new std::vector<std::string>{ZON_KNOWN_VERSIONS};
    return releases;
}
