// Reads the environment variables that matter, and hides the secrets in their values.
#include "tools/velmar-cfg/settings/environment.h"

#include <cstdlib>

#include "tools/velmar-cfg/base/hidden_text.h"

std::vector<ENVIRONMENT_VARIABLE> environment_that_matters(SECRETS& secrets)
{
    std::vector<ENVIRONMENT_VARIABLE> variables;
    for (const char* const name :
         {"VELMAR_INI", "HOME", "VELMAR_INI_DISABLED", "APPENDED_VELMAR_INI", "VELMAR_INI_VARS", "VELMAR2_INI"})
    {
        const char* const value = std::getenv(name);
        variables.push_back({name, value == nullptr ? std::nullopt : std::optional<std::string>(value)});
        hide_in_environment(variables.back(), secrets);
    }
    return variables;
}

void hide_in_environment(ENVIRONMENT_VARIABLE& variable, SECRETS& secrets)
{
    if (!variable.value || has_hidden_parts(*variable.value))
        return;
    if (variable.name != "VELMAR_INI_VARS")
        variable.value = hide_in_value("", *variable.value, secrets); // of an assignment that was meant for that one
    else if (std::optional<std::string> hidden = hide_in_inline_text(*variable.value, secrets))
        variable.value = std::move(hidden);
}

void write_json(JSON_WRITER& out, const ENVIRONMENT_VARIABLE& variable)
{
    out.begin_object();
    out.field("name", variable.name);
    out.field("value", variable.value);
    out.end_object();
}
