#include "tools/velmar-cfg/command.h"

CLI::App* add_command_group(CLI::App& parent, const std::string& name, const std::string& description,
                            const std::string& example)
{
    CLI::App* const command = parent.add_subcommand(name, description);
    command->fallthrough(); // the global options may stand behind the command
    command->footer("Example:\n  " + example + "\n");
    return command;
}

CLI::App* add_command(CLI::App& parent, TOOL& tool, const std::string& name, const std::string& description,
                      const std::string& example, std::function<EXIT_CODE()> run)
{
    CLI::App* const command = add_command_group(parent, name, description, example);
    command->final_callback([&tool, run = std::move(run)] { tool.command = run; });
    return command;
}

void add_nul_option(CLI::App* command, TOOL& tool)
{
    command->add_flag("-z", tool.options.nul_terminated, "End each record with a zero byte, nothing escaped");
}

CLI::Validator one_of(const std::vector<std::string>& words)
{
    std::string name;
    for (const std::string& word : words)
        name += (name.empty() ? "" : " ") + word;
    CLI::Validator validator = CLI::IsMember(words);
    validator.description("");
    validator.name(name);
    return validator;
}
