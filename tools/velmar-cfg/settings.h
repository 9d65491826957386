// The library's settings as the global options ask for them.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_H
#define TOOLS_VELMAR_CFG_SETTINGS_H

#include <optional>
#include <string>
#include <vector>

#include "tools/velmar-cfg/tool.h"

// Has the library read its settings: for the project when one is given, else the default file; with --regtest the
// project's regtest.ini, or else the one of the search, laid over it.
void read_settings(const GLOBAL_OPTIONS& options);

// A variable as the library answers for it.
struct VARIABLE
{
    std::string name; // as first spelt
    std::string value;
    bool external;
};

// Every variable, in the byte order of the names. Call it right after read_settings.
std::vector<VARIABLE> all_variables();

#endif
