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
    return {ZON_KNOWN_VERSIONS};
}
