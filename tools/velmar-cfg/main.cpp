// velmar-cfg: shows, explains, checks and edits what the configuration library would answer.
#include <csignal>
#include <sys/stat.h>

#include "platform/ver/ver.h"
#include "tools/velmar-cfg/commands.h"
#include "tools/velmar-cfg/installation.h"
#include "tools/velmar-cfg/nearest_name.h"

namespace
{
void add_global_options(CLI::App& app, TOOL& tool)
{
    GLOBAL_OPTIONS& options = tool.options;
    app.add_option("--project", options.project, "Read the settings as a host does for the project in DIR")
        ->type_name("DIR");
    app.add_flag("--regtest", options.regtest, "Lay regtest.ini over the settings, as regression runs do");
    app.add_option("--root", options.root, "Look at the installation in DIR, whose programs are in DIR/bin")
        ->type_name("DIR");
    app.add_flag("--json", options.json, "Write JSON");
    app.add_option("--color", options.color, "Colours: auto (on a terminal, unless NO_COLOR is set), always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}).description(""))
        ->type_name("WHEN");
}

std::unique_ptr<CLI::App> make_command_line(TOOL& tool)
{
    auto app = std::make_unique<CLI::App>(
        "Shows, explains, checks and edits what the configuration library answers: internal variables from the layers "
        "of velmar.ini, and user preferences from velmar2.ini.");
    app->name("velmar-cfg");
    app->set_version_flag("--version", "velmar-cfg " VELMAR_CFG_VERSION ", release " + ver_get_version());
    app->require_subcommand(1);
    app->footer("Example:\n  velmar-cfg --project designs/cpu list\n"
                "      every internal variable that a run in designs/cpu would see\n\n"
                "Exit codes: 0 fine; 1 unset, findings or differences; 2 usage; 3 input missing, unreadable or\n"
                "malformed; 4 could not write or lock; 5 name or value refused.\n");
    add_global_options(*app, tool);
    add_get_command(*app, tool);
    add_list_command(*app, tool);
    add_explain_command(*app, tool);
    add_paths_command(*app, tool);
    add_lint_command(*app, tool);
    add_prefs_command(*app, tool);
    add_run_report_command(*app, tool);
    return app;
}

// The innermost command that the command line named so far.
CLI::App* named_command(CLI::App* app)
{
    while (!app->get_subcommands().empty())
        app = app->get_subcommands().front();
    return app;
}

// "velmar-cfg prefs set" for the command set of prefs.
std::string spoken_name(const CLI::App* command)
{
    const CLI::App* const parent = command->get_parent();
    return parent == nullptr ? command->get_name() : spoken_name(parent) + " " + command->get_name();
}

std::string usage_complaint(CLI::App* app, const CLI::ParseError& error)
{
    const CLI::App* const command = named_command(app);
    std::string what = error.what();
    const std::vector<std::string> unknown = app->remaining(true);
    if (command->get_require_subcommand_min() > 0 && !unknown.empty() && !unknown.front().starts_with('-'))
    {
        std::vector<std::string> names;
        for (const CLI::App* subcommand : command->get_subcommands([](const CLI::App*) { return true; }))
            names.push_back(subcommand->get_name());
        what = "there is no command '" + unknown.front() + "'" + did_you_mean(unknown.front(), names);
    }
    return what + "; see " + spoken_name(command) + " --help";
}

void check_directory(const char* option, const std::string& directory)
{
    struct stat found;
    if (stat(directory.c_str(), &found) != 0 || !S_ISDIR(found.st_mode))
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, directory + ": no such directory; give " + option + " an existing one");
}

void apply_global_options(const CLI::App& app, TOOL& tool)
{
    for (const auto& [option, directory] :
         {std::pair("--project", &tool.options.project), std::pair("--root", &tool.options.root)})
    {
        if (app.count(option) > 0)
            check_directory(option, *directory);
    }
    if (tool.options.json && tool.options.nul_terminated)
        throw TOOL_ERROR(EXIT_CODE::USAGE, "--json and -z exclude each other");
    if (!tool.options.root.empty())
        set_installation_root(tool.options.root);
    tool.out.choose_color(tool.options.color);
}

EXIT_CODE run(int argc, const char* const* argv)
{
    TOOL tool;
    const std::unique_ptr<CLI::App> app = make_command_line(tool);
    EXIT_CODE end = EXIT_CODE::FINE;
    try
    {
        app->parse(argc, argv);
        apply_global_options(*app, tool);
        end = tool.command();
    }
    catch (const CLI::CallForVersion&)
    {
        tool.out << app->version() << "\n";
    }
    catch (const CLI::CallForHelp&)
    {
        tool.out << app->help();
    }
    catch (const CLI::ParseError& error)
    {
        throw TOOL_ERROR(EXIT_CODE::USAGE, usage_complaint(app.get(), error));
    }
    tool.out.flush();
    return end;
}
}

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN); // "velmar-cfg list | head -1" ends as if all had been read
    std::signal(SIGXFSZ, SIG_IGN); // a write beyond a limit fails like one to a full device
    try
    {
        return static_cast<int>(run(argc, argv));
    }
    catch (const TOOL_ERROR& error)
    {
        complain(error.what());
        return static_cast<int>(error.exit_code);
    }
    catch (const std::exception& error)
    {
        complain(error.what());
        return static_cast<int>(EXIT_CODE::BAD_INPUT);
    }
}
