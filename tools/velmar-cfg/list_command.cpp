// velmar-cfg list: every variable.
#include <nlohmann/json.hpp>

#include "tools/velmar-cfg/commands.h"
#include "tools/velmar-cfg/settings.h"

namespace
{
EXIT_CODE list(TOOL& tool)
{
    read_settings(tool.options);
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (const VARIABLE& variable : all_variables())
    {
        if (tool.options.json)
            rows.push_back({{"name", variable.name}, {"value", variable.value}, {"external", variable.external}});
        else if (tool.options.nul_terminated)
            tool.out << variable.name << "=" << variable.value << std::string_view("\0", 1);
        else
            tool.out << printable(variable.name) << "=" << printable(variable.value) << "\n";
    }
    if (tool.options.json)
        tool.out.json(rows);
    return EXIT_CODE::FINE;
}
}

void add_list_command(CLI::App& app, TOOL& tool)
{
    CLI::App* const command =
        add_command(app, tool, "list", "List every internal variable with its value",
                    "velmar-cfg --project designs/cpu list\n      the variables that a run in designs/cpu would see",
                    [&tool] { return list(tool); });
    add_nul_option(command, tool);
}
