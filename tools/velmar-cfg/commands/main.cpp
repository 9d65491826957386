// velmar-cfg: shows, explains, checks and edits what the configuration library would answer.
#include <algorithm>
#include <csignal>
#include <new>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/commands/command_line.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/help.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/settings/installation.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/secrets.h"

namespace
{
void apply_global_options(const CLI::App& app, TOOL& tool)
{
    for (const auto& [option, directory] :
         {std::pair("--project", &tool.options.scope.project), std::pair("--root", &tool.options.root)})
    {
        if (app.count(option) == 0)
            continue;
        if (directory->empty())
            throw TOOL_ERROR(EXIT_CODE::USAGE, std::string(option) + " is empty; give the path of a directory");
        check_input_directory(*directory, std::string("give ") + option + " ");
    }
    if (tool.options.json && tool.options.nul_terminated)
        throw TOOL_ERROR(EXIT_CODE::USAGE, "--json and -z exclude each other");
    if (!tool.options.root.empty())
        set_installation(installation_of_root(tool.options.root));
    SECRETS& secrets = *tool.options.scope.secrets;
    for (const std::string& pattern : tool.options.secret_patterns)
        secrets.add_pattern(pattern);
    if (tool.options.with_secrets)
        secrets.show_all();
    tool.out.choose_color(tool.options.color);
}

EXIT_CODE run(CLI::App& app, int argc, const char* const* argv, TOOL& tool)
{
    EXIT_CODE end = EXIT_CODE::FINE;
    try
    {
        parse_command_line(app, argc, argv);
        for (const std::function<void()>& check : tool.checks)
            check();
        apply_global_options(app, tool);
        end = tool.command();
    }
    catch (const CLI::CallForVersion&)
    {
        tool.out << app.version() << "\n";
    }
    catch (const CLI::CallForHelp&)
    {
        tool.out << help_of(named_command(&app), tool.out.width());
    }
    catch (const CLI::ParseError& error)
    {
        throw TOOL_ERROR(EXIT_CODE::USAGE, usage_complaint(&app, error, argc, argv));
    }
    tool.out.finish();
    // What could be read has been answered, as the library goes on.
    const bool all_was_read = complain_of(tool.files.problems());
    return all_was_read ? end : std::max(end, EXIT_CODE::BAD_INPUT);
}
}

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN); // "velmar-cfg list | head -1" ends as if all had been read
    std::signal(SIGXFSZ, SIG_IGN); // a write beyond a limit fails like one to a full device
    try
    {
        TOOL tool;
        const std::unique_ptr<CLI::App> app = make_command_line(tool);
        try
        {
            return static_cast<int>(run(*app, argc, argv, tool));
        }
        catch (const TOOL_ERROR& error)
        {
            complain(without_typed_secrets(error.what(), argc, argv, all_options(*app), *tool.options.scope.secrets));
            return static_cast<int>(error.exit_code);
        }
    }
    catch (const std::bad_alloc&)
    {
        complain("not enough memory; look at fewer or smaller files, or raise the limit (ulimit -v)");
        return static_cast<int>(EXIT_CODE::BAD_INPUT);
    }
    catch (const std::exception& error)
    {
        complain(error.what());
        return static_cast<int>(EXIT_CODE::BAD_INPUT);
    }
}
