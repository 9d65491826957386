// velmar-cfg prefs set and reset: changing the preference file.
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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
    EDIT_PERMISSIONS permissions;
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

// What an edit says goes to terminals and logs: no secret of the file or of the change is in it.
class SAID_OF_EDIT
{
public:
    SAID_OF_EDIT(const PREFERENCE_CHANGE& change_made, const EDITED_FILE& edited_file, SECRETS& hidden_secrets)
        : change(change_made), file(edited_file), secrets(hidden_secrets),
          before(hide_in_preference_text(edited_file.before, hidden_secrets).value_or(edited_file.before))
    {
        for (std::size_t begin = 0; begin < before.size();)
        {
            const std::size_t end = std::min(before.find('\n', begin), before.size());
            lines.push_back(std::string_view(before).substr(begin, end - begin));
            begin = end + 1;
        }
    }
    SAID_OF_EDIT(const SAID_OF_EDIT&) = delete;
    SAID_OF_EDIT& operator=(const SAID_OF_EDIT&) = delete;

    std::string message(std::string_view text) const
    {
        return hide_in_message(text, file.before, key(), change.value.value_or(""), secrets);
    }

    std::string key() const
    {
        return cfg_get_user_ini_ini_string(change.number);
    }

    std::optional<std::string> value() const
    {
        return change.value ? std::optional(hide_in_preference(key(), *change.value, secrets)) : std::nullopt;
    }

    std::string_view text(const LOST_LINE& line) const
    {
        return line.number <= lines.size() ? lines[line.number - 1] : std::string_view();
    }

    // With those secrets of the old text hidden, too, that the new one has elsewhere.
    std::string difference() const
    {
        const std::string after = hide_in_preference_text(file.plan.after, secrets).value_or(file.plan.after);
        return unified_diff(before, hide_in_message(after, file.before, "", "", secrets), file.path,
                            file.path + " (new)");
    }

private:
    const PREFERENCE_CHANGE& change;
    const EDITED_FILE& file;
    SECRETS& secrets;
    const std::string before;
    std::vector<std::string_view> lines; // of that
};

void write_lost_line(JSON_WRITER& out, const LOST_LINE& line, const SAID_OF_EDIT& said)
{
    out.begin_object();
    out.field("line", line.number);
    out.field("reason", loss_word(line.reason));
    out.field("text", said.text(line));
    out.field("value_lost", line.value_lost);
    out.end_object();
}

void write_json(JSON_WRITER& out, const EDIT_OPTIONS& options, const EDITED_FILE& file, const SAID_OF_EDIT& said,
                const std::string& difference)
{
    out.begin_object();
    out.field("key", said.key());
    out.field("value", said.value());
    out.field("path", file.path);
    out.field("changed", file.changed());
    out.field_or_null("refusal", said.message(file.refusal));
    out.field("dry_run", options.dry_run);
    out.field("dropped_lines", file.plan.lost.size());
    out.key("lost_lines");
    out.list(file.plan.lost, [&said](JSON_WRITER& list, const LOST_LINE& line) { write_lost_line(list, line, said); });
    out.field("difference", difference);
    out.end_object();
}

// Every lost line, but of very many only the first.
void complain_of_lost_lines(const EDITED_FILE& file, const SAID_OF_EDIT& said, bool dry_run)
{
    constexpr std::size_t most = 50;
    const std::vector<LOST_LINE>& lost = file.plan.lost;
    if (lost.empty())
        return;
    complain(file.path + ": lines that " + (dry_run || !file.refusal.empty() ? "would not be" : "were not") +
             " kept as they were: " + std::to_string(lost.size()));
    for (std::size_t i = 0; i < std::min(lost.size(), most); ++i)
        complain("line " + std::to_string(lost[i].number) + ": " + in_single_quotes(said.text(lost[i])) + ": " +
                 said.message(loss_as_text(lost[i])));
    if (lost.size() > most)
        complain("and " + std::to_string(lost.size() - most) + " more; --dry-run shows them all");

    // Makes the change, or tries it. What cannot be done may name a value of the file or of the change.
    EDITED_FILE edited(const PREFERENCE_CHANGE& change, const EDIT_OPTIONS& options, SECRETS& secrets)
    {
        const std::chrono::seconds patience(options.seconds_to_wait);
        try
        {
            return options.dry_run ? try_preference_change(change, options.permissions, patience)
                                   : change_preference(change, options.permissions, patience);
        }
        catch (const TOOL_ERROR& error)
        {
            const EDITED_FILE unchanged{.before = read_whole_file(preference_file_location().path).bytes};
            throw TOOL_ERROR(error.exit_code, SAID_OF_EDIT(change, unchanged, secrets).message(error.what()));
        }
    }
}

EXIT_CODE edit(const EDIT_OPTIONS& options, bool reset, TOOL& tool)
{
    SECRETS& secrets = *tool.options.scope.secrets;
    PREFERENCE_CHANGE change{preference_number(options.key), {}};
    if (!reset)
        change.value = options.value;
    const EDITED_FILE file = edited(change, options, secrets);
    const SAID_OF_EDIT said(change, file, secrets);
    for (const std::string& warning : file.plan.warnings)
        complain(said.message(warning));
    if (file.refusal.empty())
    {
        for (const std::string& other_value : file.plan.other_values)
            complain("this also changes " + said.message(other_value));
    }
    complain_of_lost_lines(file, said, options.dry_run);
    const std::string difference = options.dry_run ? said.difference() : "";
    try
    {
        if (tool.options.json)
            answer_in_json(tool, [&](JSON_WRITER& out) { write_json(out, options, file, said, difference); });
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
        throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, said.message(file.refusal));
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
                       "How long to wait for another velmar-cfg, or a program that writes the file (10 by default)");
    command.add_flag("--allow-loss", options->permissions.lose_values,
                     "Change the file also where values in other lines go or change with that");
    command.add_flag("--break-hard-links", options->permissions.break_hard_links,
                     "Change the file also where it has other names, which keep the old one");
    command.add_flag("--replace-read-only", options->permissions.replace_read_only,
                     "Change the file also where its mode forbids that");
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
