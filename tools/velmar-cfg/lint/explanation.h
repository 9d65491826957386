// Why a variable has its value.
#ifndef TOOLS_VELMAR_CFG_LINT_EXPLANATION_H
#define TOOLS_VELMAR_CFG_LINT_EXPLANATION_H

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "tools/velmar-cfg/settings/known_variables.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/typed_readings.h"

// What may be a mistake.
struct HINT
{
    std::string reason; // one word, stable, for scripts
    std::string text;
};

// Points into the settings that were asked, which must outlive it.
struct EXPLANATION
{
    std::string name;
    const KNOWN_VARIABLE* known; // null for any other
    std::string value;
    bool external;
    TYPED_READINGS readings;
    std::vector<const STATEMENT*> assignments; // in layering order; the last one won
    std::vector<HINT> hints;
};

EXPLANATION explain_variable(const std::string& name, const SETTINGS& settings);

// {"name", "set", "value", "external", "assignments", "readings", "known", "default", "hints"}.
nlohmann::ordered_json explanation_as_json(const EXPLANATION& explanation, const SETTINGS_LAYERS& layers);

#endif
