// The library's settings as the global options ask for them, side by side with the layers that they came from.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_SETTINGS_H
#define TOOLS_VELMAR_CFG_SETTINGS_SETTINGS_H

#include <string>
#include <vector>

#include "tools/velmar-cfg/settings/layers.h"

// A variable as the library answers for it.
struct VARIABLE
{
    std::string name; // as first spelt
    std::string value;
    bool external;
};

struct SETTINGS
{
    SETTINGS_LAYERS layers;
    std::vector<VARIABLE> variables; // in the byte order of the names
};

// Reads the layers and has the library read its settings: for the project when one is given, else the default file;
// with
// --regtest the project's regtest.ini, or else the one of the search, laid over it. Throws TOOL_ERROR for a file that
// cannot be read.
SETTINGS load_settings(const SETTINGS_SCOPE& scope);

// What the layers say otherwise than the library answers, one line each: nothing unless a file changed in between.
std::vector<std::string> differences_from_library(const SETTINGS& settings);

#endif
