// velmar-cfg prefs set and reset: changing the preference file.
#include <algorithm>
#include <map>
#include <span>

#include "cfg_ini/cfg_ini.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/base/unified_diff.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/edit_options.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/preferences/preference_edit.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"
#include "tools/velmar-cfg/preferences/preferences.h"

namespace
{
struct PREFERENCE_OPTIONS : EDIT_OPTIONS
{
    std::string key;
    std::string value;
    EDIT_PERMISSIONS permissions;
};

void write_lost_line(JSON_WRITER& out, const LOST_LINE& line)
{
    out.begin_object();
    out.field("line", line.number);
    out.field("reason", loss_word(line.reason));
    out.field("text", line.text);
    out.field("value_lost", line.value_lost);
    out.end_object();
}

std::optional<std::string> shown_value(const PREFERENCE_CHANGE& change, SECRETS& secrets)
{
    if (!change.value)
        return std::nullopt;
    return hide_in_preference(cfg_get_user_ini_ini_string(change.number), *change.value, secrets);
}

void write_json(JSON_WRITER& out, const PREFERENCE_OPTIONS& options, const PREFERENCE_CHANGE& change,
                const EDITED_FILE& file, const std::string& difference, SECRETS& secrets)
{
    out.begin_object();
    out.field("key", cfg_get_user_ini_ini_string(change.number));
    out.field("value", shown_value(change, secrets));
    out.field("path", file.path);
    out.field("changed", file.changed());
    out.field_or_null("refusal", file.refusal);
    out.field("dry_run", options.dry_run);
    out.field("dropped_lines", file.plan.lost.size());
    out.key("lost_lines");
    out.list(file.plan.lost, write_lost_line);
    out.field("difference", difference);
    out.end_object();
}

// The reasons of lost lines, with secrets hidden.
class SHOWN_REASONS
{
public:
    SHOWN_REASONS(std::string_view text_of_file, SECRETS& the_secrets) : text(text_of_file), secrets(the_secrets) {}

    std::string of(const LOST_LINE& line)
    {
        // A bracket may have made a section of a piece of a secret, of which no part is to be left by a cut.
        if (line.reason != LOSS::BRACKET_IN_VALUE && line.section_in_its_place.empty())
            return loss_as_text(line);
        LOST_LINE shown = line;
        for (std::string* const section : {&shown.section, &shown.section_in_its_place})
            *section = hidden(*section);
        return loss_as_text(shown);
    }

private:
    // The whole file is searched for secrets, so once for all lines of a section.
    const std::string& hidden(const std::string& section)
    {
        const auto [found, is_new] = hidden_sections.try_emplace(section);
        if (is_new)
            found->second = hide_in_message(section, text, "", "", secrets);
        return found->second;
    }

    const std::string_view text;
    SECRETS& secrets;
    std::map<std::string, std::string> hidden_sections; // by the section as it is
};

// Of very many lines only the first, where all can be seen elsewhere: in the JSON of this run, or of a dry run as long
// as the file is as it was. Of a file that was changed, what is told here is all that remains of them.
void complain_of_lost_lines(const EDITED_FILE& file, const PREFERENCE_OPTIONS& options, bool json, SECRETS& secrets)
{
    constexpr std::size_t enough = 50;
    const std::vector<LOST_LINE>& lost = file.plan.lost;
    if (lost.empty())
        return;
    const bool are_gone = !options.dry_run && file.refusal.empty();
    complain(file.path + ": lines that " + (are_gone ? "were not" : "would not be") +
             " kept as they were: " + std::to_string(lost.size()));
    const std::size_t shown = are_gone && !json ? lost.size() : std::min(lost.size(), enough);
    SHOWN_REASONS reasons(file.before, secrets);
    for (const LOST_LINE& line : std::span(lost).first(shown))
        complain("line " + std::to_string(line.number) + ": " + in_single_quotes(line.text) + ": " + reasons.of(line));
    if (shown < lost.size())
        complain("and " + std::to_string(lost.size() - shown) + " more; " +
                 (json ? "\"lost_lines\" has them all" : "--dry-run --json lists them all"));
}

// The difference that the edit makes, with secrets hidden: also those of the old text that the new one has elsewhere.
std::string shown_difference(const EDITED_FILE& file, SECRETS& secrets)
{
    const auto hidden = [&secrets](const std::string& text)
    { return hide_in_preference_text(text, secrets).value_or(text); };
    return unified_diff(hidden(file.before), hide_in_message(hidden(file.plan.after), file.before, "", "", secrets),
                        file.path, file.path + " (new)");
}

// Makes the change. What it tells of values goes to terminals and logs: no secret is in it.
EDITED_FILE edited(const PREFERENCE_CHANGE& change, const PREFERENCE_OPTIONS& options, SECRETS& secrets)
{
    const std::string key = cfg_get_user_ini_ini_string(change.number);
    const auto hide = [&](std::string& message, std::string_view text)
    { message = hide_in_message(message, text, key, change.value.value_or(""), secrets); };
    try
    {
        EDITED_FILE file = options.dry_run ? try_preference_change(change, options.permissions, options.patience())
                                           : change_preference(change, options.permissions, options.patience());
        for (std::string& warning : file.plan.warnings)
            hide(warning, file.before);
        for (std::string& other_value : file.plan.other_values)
            hide(other_value, file.before);
        hide(file.refusal, file.before);
        for (LOST_LINE& line : file.plan.lost)
            line.text = hide_in_preference_text(line.text, secrets).value_or(line.text);
        return file;
    }
    catch (const TOOL_ERROR& error)
    {
        std::string message = error.what();
        hide(message, read_whole_file(preference_file_location().path).bytes);
        throw TOOL_ERROR(error.exit_code, message);
    }
}

EXIT_CODE edit(const PREFERENCE_OPTIONS& options, bool reset, TOOL& tool)
{
    SECRETS& secrets = *tool.options.scope.secrets;
    PREFERENCE_CHANGE change{preference_number(options.key), {}};
    if (!reset)
        change.value = options.value;
    const EDITED_FILE file = edited(change, options, secrets);
    complain_of(file.plan.warnings);
    if (file.refusal.empty())
    {
        for (const std::string& other_value : file.plan.other_values)
            complain("this also changes " + other_value);
    }
    complain_of_lost_lines(file, options, tool.options.json, secrets);
    const std::string difference = options.dry_run ? shown_difference(file, secrets) : "";
    try
    {
        if (tool.options.json)
            answer_in_json(tool,
                           [&](JSON_WRITER& out) { write_json(out, options, change, file, difference, secrets); });
        else
            write_difference(difference, tool.out);
        tool.out.finish();
    }
    catch (const TOOL_ERROR& error)
    {
        if (!file.changed() || options.dry_run)
            throw;
        throw TOOL_ERROR(error.exit_code, file.path + " was changed; " + error.what());
    }
    if (!file.refusal.empty())
        throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, file.refusal);
    return EXIT_CODE::FINE;
}

COMMAND add_edit(COMMAND prefs, TOOL& tool, const std::string& name, const std::string& description,
                 const std::string& example)
{
    auto options = std::make_shared<PREFERENCE_OPTIONS>();
    const bool reset = name == "reset";
    COMMAND command = prefs.add_command(tool, name, description, example,
                                        [options, reset, &tool] { return edit(*options, reset, tool); });
    command.add_argument("KEY", options->key, "The preference, in any letter case");
    if (!reset)
        command.add_argument("VALUE", options->value,
                             "One of the allowed values; put -- before one that begins with \"-\"");
    add_edit_options(command, *options, options->permissions,
                     "Change nothing: show the difference, with the comments and other lines that would be lost");
    command.add_flag("--allow-loss", options->permissions.lose_values,
                     "Change the file also where values in other lines go or change with that");
    return command;
}
}

void add_prefs_edit_commands(COMMAND prefs, TOOL& tool)
{
    add_edit(
        prefs, tool, "set",
        "Give a preference a value, for the running release. The file is replaced as a whole; other preferences keep "
        "their values. Lines that a save does not keep, such as comments, are shown, and where values would go the "
        "file is not changed.",
        "velmar-cfg prefs set HDL_PREFERENCE VHDL\n      new designs are in VHDL from now on");
    add_edit(prefs, tool, "reset", "Bring a preference back to its default",
             "velmar-cfg prefs reset HDL_PREFERENCE --dry-run\n      what the file would lose");
}
