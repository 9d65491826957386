// Version service: the product's name and its releases, set when the build is configured (ZON_PRODUCT_NAME, ZON_VERSION
// and ZON_KNOWN_VERSIONS).
//
// What the library expects. The answers do not change while the process runs. The functions may be called from any
// thread, the product name also with the store's lock held; they may throw std::bad_alloc only, and do not call the
// library back.
#ifndef PLATFORM_VER_VER_H
#define PLATFORM_VER_VER_H

#include <string>
#include <vector>

// The base name of the product's files, such as "velmar"; a constant.
const char* ver_get_kestrin_product_filename();

// The running release, such as "23.4".
std::string ver_get_version();

// Every release this installation knows, the running one included, newest first.
std::vector<std::string> ver_get_all_versions();

#endif
