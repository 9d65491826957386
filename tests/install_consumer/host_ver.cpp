// A host's own version service: its product is called "acme", so the library looks for acme.ini.
#include "platform/ver/ver.h"

const char* ver_get_kestrin_product_filename()
{
    return "acme";
}

std::string ver_get_version()
{
    return "7.1";
}

std::vector<std::string> ver_get_all_versions()
{
    return {"7.1", "7.0"};
}
