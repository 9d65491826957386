#include "tools/velmar-cfg/settings/environment.h"

#include <cstdlib>

#include "tools/velmar-cfg/base/json_values.h"

std::vector<ENVIRONMENT_VARIABLE> environment_that_matters()
{
    std::vector<ENVIRONMENT_VARIABLE> variables;
    for (const char* const name :
         {"VELMAR_INI", "HOME", "VELMAR_INI_DISABLED", "APPENDED_VELMAR_INI", "VELMAR_INI_VARS", "VELMAR2_INI"})
    {
        const char* const value = std::getenv(name);
        variables.push_back({name, value == nullptr ? std::nullopt : std::optional<std::string>(value)});
    }
    return variables;
}

nlohmann::ordered_json environment_as_json(const std::vector<ENVIRONMENT_VARIABLE>& variables)
{
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (const ENVIRONMENT_VARIABLE& variable : variables)
        rows.push_back({{"name", variable.name}, {"value", value_or_null(variable.value)}});
    return rows;
}
