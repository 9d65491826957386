#include "tools/velmar-cfg/settings.h"

#include <algorithm>
#include <array>

#include "cfg_ini/cfg_ini.h"
#include "platform/gen/gen.h"

namespace
{
// A variable that steers the library's ranked report, set for the moment so that the report lists every variable.
struct STEERING_VARIABLE
{
    const char* name;
    int wanted;
    std::string own_value = cfg_get_value(name);

    bool is(const std::string& other) const
    {
        return gen_stricmp(name, other.c_str()) == 0;
    }
};
}

void read_settings(const GLOBAL_OPTIONS& options)
{
    if (!options.project.empty())
    {
        cfg_read_project_ini_file(options.project.c_str(), options.regtest);
        return;
    }
    cfg_read_ini_file();
    if (options.regtest)
    {
        if (const std::string path = cfg_get_default_ini_file(true); !path.empty())
            cfg_read_regtest_ini_file(path);
    }
}

std::vector<VARIABLE> all_variables()
{
    const std::array<STEERING_VARIABLE, 2> steering = {
        STEERING_VARIABLE{"cfg_min_accessed_to_report", 0},
        STEERING_VARIABLE{"cfg_max_to_report", -1},
    };
    for (const STEERING_VARIABLE& variable : steering)
        cfg_set_int_value(variable.name, variable.wanted);

    std::vector<std::pair<std::string, std::string>> usages;
    cfg_get_most_accessed(&usages);

    for (const STEERING_VARIABLE& variable : steering)
        cfg_set_value(variable.name, variable.own_value);

    std::vector<VARIABLE> variables;
    for (const auto& [name, count] : usages)
    {
        // Two lookups so far, the one above and the report's own: the first is not counted when it made the variable.
        const bool only_asked_for =
            count == "1" && std::ranges::any_of(steering, [&](const auto& variable) { return variable.is(name); });
        if (!only_asked_for)
            variables.push_back({name, cfg_get_value(name), cfg_ini_is_external(name)});
    }
    std::ranges::sort(variables, {}, &VARIABLE::name);
    return variables;
}
