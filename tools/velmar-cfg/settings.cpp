#include "tools/velmar-cfg/settings.h"

#include <algorithm>
#include <array>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/own_variables.h"
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

void have_library_read(const GLOBAL_OPTIONS& options)
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

// Every variable, by name. To be called before anything else is looked up.
std::vector<VARIABLE> all_variables()
{
    const std::array<STEERING_VARIABLE, 2> steering = {
        STEERING_VARIABLE{OWN_VARIABLE::cfg_min_accessed_to_report, 0},
        STEERING_VARIABLE{OWN_VARIABLE::cfg_max_to_report, -1},
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
        const bool only_asked_for = count == "1" && std::ranges::any_of(steering, [&asked = name](const auto& variable)
                                                                        { return variable.is(asked); });
        if (!only_asked_for)
            variables.push_back({name, cfg_get_value(name), cfg_ini_is_external(name)});
    }
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
                              place_of(layers, *winner) + " says " + said(winner->value, external));
}
}

SETTINGS load_settings(const GLOBAL_OPTIONS& options)
{
    SETTINGS settings;
    settings.layers = read_layers(options);
    have_library_read(options);
    settings.variables = all_variables();
    return settings;
}

EXIT_CODE compare_with_library(const SETTINGS& settings)
{
    std::vector<std::string> differences;
    for (const VARIABLE& variable : settings.variables)
        compare(settings.layers, variable, differences);
    if (settings.variables.size() < settings.layers.assignments.size())
        differences.emplace_back("the library does not have every variable that the layers set");

    for (const std::string& difference : differences)
        complain(difference);
    if (differences.empty())
        return EXIT_CODE::FINE;
    complain("a settings file changed while it was read; run the command again");
    return EXIT_CODE::BAD_INPUT;
}
