// velmar-cfg prefs set and reset: changing the preference file.
#include "cfg_ini/cfg_ini.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/base/unified_diff.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/preferences/preference_edit.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"
#include "tools/velmar-cfg/preferences/preferences.h"

namespace
{
struct EDIT_OPTIONS
{
    std::string key;
    std::string value;
    bool dry_run = false;
    unsigned int seconds_to_wait = 10;
};

STYLE style_of(std::string_view line)
{
    return line.starts_with("@@")  ? STYLE::FAINT
           : line.starts_with('-') ? STYLE::BAD
           : line.starts_with('+') ? STYLE::GOOD
                                   : STYLE::PLAIN;
}

void write_difference(std::string_view difference, OUTPUT& out)
{
    while (!difference.empty())
    {
        const std::string_view line = difference.substr(0, difference.find('\n'));
        out << out.painted(style_of(line), printable(line)) << "\n";
        difference.remove_prefix(line.size() + 1);
    }
}

// The difference that the edit makes, with secrets hidden: also those of the old text that the new one has elsewhere.
std::string shown_difference(const EDITED_FILE& file, SECRETS& secrets)
{
    const auto hidden = [&secrets](const std::string& text)
    { return hide_in_preference_text(text, secrets).value_or(text); };
    return unified_diff(hidden(file.before), hide_in_message(hidden(file.after), file.before, "", "", secrets),
                        file.path, file.path + " (new)");
}

// Makes the change. What it tells of values goes to terminals and logs: no secret is in it.
EDITED_FILE edited(const PREFERENCE_CHANGE& change, const EDIT_OPTIONS& options, TOOL& tool)
{
    SECRETS& secrets = *tool.options.scope.secrets;
    const auto without_secrets = [&](std::string_view message)
    {
        const INPUT_FILE file = read_whole_file(preference_file_location().path);
        return hide_in_message(message, file.bytes, cfg_get_user_ini_ini_string(change.number),
                               change.value.value_or(""), secrets);
    };
    try
    {
        EDITED_FILE file = edit_preference(change, options.dry_run, std::chrono::seconds(options.seconds_to_wait));
        for (std::string& warning : file.warnings)
            warning = hide_in_message(warning, file.before, "", "", secrets);
        return file;
    }
    catch (const TOOL_ERROR& error)
    {
        throw TOOL_ERROR(error.exit_code, without_secrets(error.what()));
    }
}

EXIT_CODE edit(const EDIT_OPTIONS& options, bool reset, TOOL& tool)
{
    SECRETS& secrets = *tool.options.scope.secrets;
    PREFERENCE_CHANGE change{preference_number(options.key), {}};
    if (!reset)
        change.value = options.value;
    const EDITED_FILE file = edited(change, options, tool);
    complain_of(file.warnings);
    const std::optional<std::string> shown_value =
        change.value
            ? std::optional(hide_in_preference(cfg_get_user_ini_ini_string(change.number), *change.value, secrets))
            : std::nullopt;
    const std::string difference = options.dry_run ? shown_difference(file, secrets) : "";

    if (tool.options.json)
        answer_in_json(tool,
                       [&](JSON_WRITER& out)
                       {
                           out.begin_object();
                           out.field("key", cfg_get_user_ini_ini_string(change.number));
                           out.field("value", shown_value);
                           out.field("path", file.path);
                           out.field("changed", file.changed());
                           out.field("dry_run", options.dry_run);
                           out.field("dropped_lines", file.dropped_lines);
                           out.field("difference", difference);
                           out.end_object();
                       });
    else
        write_difference(difference, tool.out);
    if (file.dropped_lines > 0)
        complain(file.path + ": lines that are no preferences, such as comments, " +
                 (options.dry_run ? "would not be kept: " : "were not kept: ") + std::to_string(file.dropped_lines));
    return EXIT_CODE::FINE;
}

COMMAND add_edit(COMMAND prefs, TOOL& tool, const std::string& name, const std::string& description,
                 const std::string& example)
{
    auto options = std::make_shared<EDIT_OPTIONS>();
    const bool reset = name == "reset";
    COMMAND command = prefs.add_command(tool, name, description, example,
                                        [options, reset, &tool] { return edit(*options, reset, tool); });
    command.add_argument("KEY", options->key, "The preference, in any letter case");
    if (!reset)
        command.add_argument("VALUE", options->value,
                             "One of the allowed values; put -- before one that begins with \"-\"");
    command.add_flag("--dry-run", options->dry_run,
                     "Change nothing: show the difference, with the comments and other lines that would be lost");
    command.add_option("--wait", "SECONDS", options->seconds_to_wait,
                       "How long to wait for another velmar-cfg that changes the file (10 by default)");
    return command;
}
}

void add_prefs_edit_commands(COMMAND prefs, TOOL& tool)
{
    add_edit(prefs, tool, "set",
             "Give a preference a value, for the running release. The file is replaced as a whole once the new one has "
             "been read back; other preferences keep their values.",
             "velmar-cfg prefs set HDL_PREFERENCE VHDL\n      new designs are in VHDL from now on");
    add_edit(prefs, tool, "reset", "Bring a preference back to its default",
             "velmar-cfg prefs reset HDL_PREFERENCE --dry-run\n      what the file would lose");
}
