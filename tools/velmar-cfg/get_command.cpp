// velmar-cfg get: one variable's value.
#include <nlohmann/json.hpp>

#include "cfg_ini/cfg_ini.h"
#include "tools/velmar-cfg/commands.h"
#include "tools/velmar-cfg/settings.h"

namespace
{
EXIT_CODE get(const std::string& name, TOOL& tool)
{
    read_settings(tool.options);
    const std::optional<std::string> value = cfg_get_value_as<std::string>(name);
    if (!value)
    {
        complain(name + " is not set");
        return EXIT_CODE::FINDINGS;
    }
    if (tool.options.json)
        tool.out.json({{"name", name}, {"value", *value}, {"external", cfg_ini_is_external(name)}});
    else
        tool.out << *value << "\n";
    return EXIT_CODE::FINE;
}
}

void add_get_command(CLI::App& app, TOOL& tool)
{
    auto name = std::make_shared<std::string>();
    CLI::App* const command = add_command(
        app, tool, "get", "Print the value of an internal variable; exit code 1 when it has none",
        "velmar-cfg get msg_sqlite\n      the text of msg_sqlite", [name, &tool] { return get(*name, tool); });
    command->add_option("NAME", *name, "The variable, in any letter case")->required();
}
