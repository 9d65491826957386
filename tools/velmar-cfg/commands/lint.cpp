// velmar-cfg lint: what is ignored, or read otherwise than it looks.
#include <iterator>

#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/findings_output.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/lint/preference_rules.h"
#include "tools/velmar-cfg/lint/settings_rules.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"

namespace
{
struct LINT_OPTIONS
{
    std::vector<std::string> files;
    bool strict = false;
};

void append(std::vector<FINDING>& all, std::vector<FINDING> more)
{
    all.insert(all.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

bool is_preference_file(const std::string& path)
{
    return path.substr(path.rfind('/') + 1) == "velmar2.ini";
}

std::vector<FINDING> lint_settings_of(LAYERS layers)
{
    return lint_settings(SETTINGS(std::move(layers)));
}

// Of the preference file, if there is one.
std::vector<FINDING> lint_preferences_in_use(INPUT_FILES& files)
{
    const std::shared_ptr<const INPUT_FILE> file = preference_file_in_use(files);
    return file == nullptr ? std::vector<FINDING>() : lint_preferences(*file);
}

EXIT_CODE lint(const LINT_OPTIONS& options, TOOL& tool)
{
    std::vector<FINDING> findings;
    if (options.files.empty())
    {
        append(findings, lint_settings_of(load_layers(tool.options.scope, tool.files)));
        append(findings, lint_preferences_in_use(tool.files));
    }
    for (const std::string& file : options.files)
        append(findings, is_preference_file(file) ? lint_preferences(*tool.files.read_named(file))
                                                  : lint_settings_of(single_layer(file, tool.files)));
    return write_findings(findings, options.strict, tool);
}

EXIT_CODE lint_only_preferences(const LINT_OPTIONS& options, TOOL& tool)
{
    std::vector<FINDING> findings;
    if (options.files.empty())
        append(findings, lint_preferences_in_use(tool.files));
    for (const std::string& file : options.files)
        append(findings, lint_preferences(*tool.files.read_named(file)));
    return write_findings(findings, options.strict, tool);
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
