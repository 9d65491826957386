#include "tools/velmar-cfg/settings/settings.h"

#include <algorithm>

#include "cfg_ini/cfg_ini.h"
#include "cfg_run_report/run_usage.h"
#include "tools/velmar-cfg/settings/variable_name.h"

namespace
{
void have_library_read(const SETTINGS_SCOPE& scope)
{
    if (!scope.project.empty())
    {
        cfg_read_project_ini_file(scope.project.c_str(), scope.regtest);
        return;
    }
    cfg_read_ini_file();
    if (scope.regtest)
    {
        if (const std::string path = cfg_get_default_ini_file(true); !path.empty())
            cfg_read_regtest_ini_file(path);
    }
}

// Every variable, by name.
std::vector<VARIABLE> all_variables()
{
    std::vector<VARIABLE> variables;
    for (const VARIABLE_USAGE& usage : usage_of_all_variables())
        variables.push_back({usage.name, cfg_get_value(usage.name), usage.external});
    std::ranges::sort(variables, {}, &VARIABLE::name);
    return variables;
}

std::string said(const std::string& value, bool external)
{
    return "'" + value + "'" + (external ? ", external" : ", not external");
}

void compare(const SETTINGS_LAYERS& layers, const VARIABLE& variable, std::vector<std::string>& differences)
{
    const std::string name = "'" + variable.name + "'";
    const std::string answered = said(variable.value, variable.external);
    const STATEMENT* const winner = layers.winner_of(variable.name);
    if (winner == nullptr)
        differences.push_back("the library answers " + answered + " for " + name + ", which no layer sets");
    else if (const bool external = layers.external(variable.name);
             winner->value != variable.value || external != variable.external)
        differences.push_back("the library answers " + answered + " for " + name + ", but " +
                              location_of(layers, *winner) + " says " + said(winner->value, external));
}
}

SETTINGS load_settings(const SETTINGS_SCOPE& scope)
{
    SETTINGS settings;
    settings.layers = read_layers(scope);
    have_library_read(scope);
    settings.variables = all_variables();
    return settings;
}

std::vector<std::string> differences_from_library(const SETTINGS& settings)
{
    std::vector<std::string> differences;
    for (const VARIABLE& variable : settings.variables)
        compare(settings.layers, variable, differences);
    if (settings.variables.size() < settings.layers.assignments.size())
        differences.emplace_back("the library does not have every variable that the layers set");
    if (!differences.empty())
        differences.emplace_back("a settings file changed while it was read; run the command again");
    return differences;
}
