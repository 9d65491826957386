// The library's settings as the global options ask for them, side by side with the layers that they came from.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_H
#define TOOLS_VELMAR_CFG_SETTINGS_H

#include <string>
#include <vector>

#include "tools/velmar-cfg/layers.h"
#include "tools/velmar-cfg/tool.h"

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
SETTINGS load_settings(const GLOBAL_OPTIONS& options);

// Compares what the layers say with what the library answers, and complains about every difference: there is none
// unless a file changed in between. Returns FINE or BAD_INPUT.
EXIT_CODE compare_with_library(const SETTINGS& settings);

#endif
