#include "tools/velmar-cfg/settings/environment.h"

#include <cstdlib>

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

void write_json(JSON_WRITER& out, const ENVIRONMENT_VARIABLE& variable)
{
    out.begin_object();
    out.field("name", variable.name);
    out.field("value", variable.value);
    out.end_object();
}
