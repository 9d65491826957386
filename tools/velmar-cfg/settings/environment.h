// The environment variables that decide which settings and preferences hold.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_ENVIRONMENT_H
#define TOOLS_VELMAR_CFG_SETTINGS_ENVIRONMENT_H

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

struct ENVIRONMENT_VARIABLE
{
    std::string name;
    std::optional<std::string> value; // nothing when it is not set

    bool operator==(const ENVIRONMENT_VARIABLE&) const = default;
};

// All of them, set or not, in the order in which they take part.
std::vector<ENVIRONMENT_VARIABLE> environment_that_matters();

// A list of {"name", "value"}, "value" null when not set.
nlohmann::ordered_json environment_as_json(const std::vector<ENVIRONMENT_VARIABLE>& variables);

#endif
