// Version service: the product's name and its releases. The default returns what was set when the build was configured
// (ZON_PRODUCT_NAME, ZON_VERSION and ZON_KNOWN_VERSIONS).
//
// What the library expects. The answers do not change while the process runs. Any thread may call the functions; the
// product's name may be asked for with the store's lock held. They may throw std::bad_alloc and nothing else. They do
// not call the library.
//
// Example of an implementation, with which the library looks for acme.ini instead of velmar.ini:
//
//     const char* ver_get_kestrin_product_filename() { return "acme"; }
//     std::string ver_get_version() { return "7.1"; }
//     std::vector<std::string> ver_get_all_versions() { return {"7.1", "7.0"}; }
#ifndef PLATFORM_VER_VER_H
#define PLATFORM_VER_VER_H

#include <string>
#include <vector>

// The base name of the settings file, such as "velmar" for velmar.ini. The files regtest.ini and velmar2.ini do not
// depend on it. The text must not be null, and must stay valid while the process runs.
const char* ver_get_kestrin_product_filename();

// The running release, such as "23.4". Preferences are stored in a section of this release.
std::string ver_get_version();

// Every release that this installation knows, with the running one, newest first. Preferences are carried over from the
// older ones in this order.
std::vector<std::string> ver_get_all_versions();

#endif
