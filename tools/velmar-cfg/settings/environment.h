// The environment variables that decide which settings and preferences hold.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_ENVIRONMENT_H
#define TOOLS_VELMAR_CFG_SETTINGS_ENVIRONMENT_H

#include <optional>
#include <string>
#include <vector>

#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/settings/secrets.h"

struct ENVIRONMENT_VARIABLE
{
    std::string name;
    std::optional<std::string> value; // nothing when it is not set

    bool operator==(const ENVIRONMENT_VARIABLE&) const = default;
};

// All of them, set or not, in the order in which they take part, with secrets hidden.
std::vector<ENVIRONMENT_VARIABLE> environment_that_matters(SECRETS& secrets);

// Hides the secrets in the variable's value, unless some are hidden already.
void hide_in_environment(ENVIRONMENT_VARIABLE& variable, SECRETS& secrets);

// {"name", "value"}, "value" null when not set.
void write_json(JSON_WRITER& out, const ENVIRONMENT_VARIABLE& variable);

#endif
