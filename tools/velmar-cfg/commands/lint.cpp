// velmar-cfg lint: what is ignored, or read otherwise than it looks.
#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/findings_output.h"
#include "tools/velmar-cfg/commands/state_options.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/lint/environment_rules.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/lint/preference_rules.h"
#include "tools/velmar-cfg/lint/settings_rules.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/layers.h"

namespace
{
struct LINT_OPTIONS
{
    STATE_OPTIONS state; // only of lint itself
    std::vector<std::string> files;
    bool strict = false;
};

using TAKE = std::function<void(const FINDING&)>;

// What a command checks, in order. All is read before the first finding is written: what cannot be read is an error and
// nothing else.
class CHECKS
{
public:
    explicit CHECKS(TOOL& the_tool) : tool(the_tool) {}

    void add_settings(LAYERS layers)
    {
        checks.emplace_back([layers = std::move(layers)](const TAKE& take) { lint_settings(layers, take); });
    }

    void add_preferences(std::shared_ptr<const INPUT_FILE> file)
    {
        checks.emplace_back([file = std::move(file), &secrets = *tool.options.scope.secrets](const TAKE& take)
                            { lint_preferences(*file, secrets, take); });
    }

    void add(std::vector<FINDING> findings)
    {
        checks.emplace_back([findings = std::move(findings)](const TAKE& take)
                            { std::ranges::for_each(findings, take); });
    }

    EXIT_CODE run(bool strict) const
    {
        FINDINGS_OUTPUT output(strict, tool);
        for (const std::function<void(const TAKE&)>& check : checks)
            check([&output](const FINDING& finding) { output.write(finding); });
        return output.finish();
    }

private:
    TOOL& tool;
    std::vector<std::function<void(const TAKE&)>> checks;
};

bool is_preference_file(const std::string& path)
{
    return path.substr(path.rfind('/') + 1) == "velmar2.ini";
}

EXIT_CODE lint(const LINT_OPTIONS& options, TOOL& tool)
{
    CHECKS checks(tool);
    if (options.state.of && !options.files.empty())
        throw TOOL_ERROR(EXIT_CODE::USAGE, "--of and files exclude each other");
    if (options.files.empty())
    {
        STATE state = state_of(options.state, {.checks = true}, tool);
        state.require(state.findings.has_value());
        if (!tool.options.json)
            write_view(state, tool.out);
        checks.add(std::move(*state.findings));
        checks.add_settings(std::move(state.layers));
        if (state.preference_file != nullptr)
            checks.add_preferences(std::move(state.preference_file));
    }
    for (const std::string& file : options.files)
    {
        if (is_preference_file(file))
            checks.add_preferences(tool.files.read_named(file));
        else
            checks.add_settings(single_layer(file, tool.files, *tool.options.scope.secrets));
    }
    return checks.run(options.strict);
}

EXIT_CODE lint_only_preferences(const LINT_OPTIONS& options, TOOL& tool)
{
    CHECKS checks(tool);
    if (options.files.empty())
    {
        auto file = preference_file_in_use(tool.files);
        if (file == nullptr)
            checks.add({no_preference_file()});
        else
            checks.add_preferences(std::move(file));
    }
    for (const std::string& file : options.files)
        checks.add_preferences(tool.files.read_named(file));
    return checks.run(options.strict);
}

void add_options(COMMAND& command, LINT_OPTIONS& options, const std::string& file_description)
{
    command.add_optional_argument("FILE", options.files, file_description);
    command.add_flag("--strict", options.strict, "Exit code 1 for warnings too");
}
}

void add_lint_command(COMMAND app, TOOL& tool)
{
    auto options = std::make_shared<LINT_OPTIONS>();
    COMMAND command = app.add_command(
        tool, "lint",
        "Show the lines that are ignored or read otherwise than they look, with what to write instead. Without FILE: "
        "of "
        "every file that the library would read now, preferences included, and of VELMAR_INI_VARS. Exit code 1 when "
        "there is an error.",
        "velmar-cfg lint --strict designs/cpu/velmar.ini\n      check one file; warnings too make the exit code 1",
        [options, &tool] { return lint(*options, tool); });
    add_state_option(command, options->state);
    add_options(command, *options, "A settings file, or a preference file when it is called velmar2.ini");
}

void add_prefs_lint_command(COMMAND prefs, TOOL& tool)
{
    auto options = std::make_shared<LINT_OPTIONS>();
    COMMAND command = prefs.add_command(
        tool, "lint",
        "Show the lines of a preference file that are ignored, or read otherwise than they look, or that the next save "
        "drops, with what to write instead. Without FILE: of the file in use. Exit code 1 when there is an error.",
        "velmar-cfg prefs lint --strict\n      check the own preferences; warnings too make the exit code 1",
        [options, &tool] { return lint_only_preferences(*options, tool); });
    add_options(command, *options, "A preference file");
}
