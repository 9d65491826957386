// The variables that the product is known to ask for: the catalogue's, and the library's own. Hosts ask for others too,
// so an unknown name is no mistake by itself.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_KNOWN_VARIABLES_H
#define TOOLS_VELMAR_CFG_SETTINGS_KNOWN_VARIABLES_H

#include <string>
#include <string_view>
#include <vector>

struct KNOWN_VARIABLE
{
    enum class KIND
    {
        SWITCH,
        INTEGER,
    };

    std::string name;
    KIND kind;
    std::string default_text; // of the catalogue; empty for the library's own variables
};

// All of them, the catalogue's first. Made once, never changed.
const std::vector<KNOWN_VARIABLE>& known_variables();

// Their names, in the same order.
const std::vector<std::string>& known_variable_names();

// The known variable of that name, in any letter case; null when there is none.
const KNOWN_VARIABLE* find_known_variable(std::string_view name);

#endif
