// Why a variable has its value.
#ifndef TOOLS_VELMAR_CFG_LINT_EXPLANATION_H
#define TOOLS_VELMAR_CFG_LINT_EXPLANATION_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/settings/known_variables.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/typed_readings.h"

// A hint at a possible mistake.
struct HINT
{
    std::string reason; // one word, stable, for scripts
    std::string text;
};

struct EXPLAINED_ASSIGNMENT
{
    std::string_view name;
    std::string_view value;
    LOCATION location;
    std::string text; // the line or the item as it stands
};

// Contains views into the settings, which must outlive it.
struct EXPLANATION
{
    std::string name;
    const KNOWN_VARIABLE* known = nullptr; // null if it is not a known variable
    std::string_view value;                // empty when it has none, or none is known
    std::optional<bool> is_set = false;    // nothing if the state does not know
    bool external = false;                 // meaningless if is_set is nothing
    TYPED_READINGS readings;
    std::vector<EXPLAINED_ASSIGNMENT> assignments; // in layering order; the last one won
    std::vector<HINT> hints;
};

// A hint may suggest the nearest name. `other_names`, which are not in the settings, are candidates for it too.
EXPLANATION explain_variable(const std::string& name, const SETTINGS& settings,
                             const std::vector<std::string>& other_names = {});

// {"name", "set", "value", "external", "assignments", "readings", "known", "default", "hints"}.
void write_json(JSON_WRITER& out, const EXPLANATION& explanation);

// Its fields, for an object that has others too.
void write_fields(JSON_WRITER& out, const EXPLANATION& explanation);

#endif
