// velmar-cfg set and unset: changing a settings file. The change is planned by settings/settings_edit.h and made by
// base/file_edit.h. Then the layers are loaded again, to tell whether a run now gets what was asked for.
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/file_edit.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/edit_options.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/change_effect.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/library_rules.h"
#include "tools/velmar-cfg/settings/secrets.h"
#include "tools/velmar-cfg/settings/secrets_in_messages.h"
#include "tools/velmar-cfg/settings/settings_difference.h"
#include "tools/velmar-cfg/settings/settings_edit.h"

namespace
{
struct SET_OPTIONS : EDIT_OPTIONS
{
    std::string name;
    std::string value;
    std::optional<std::string> file;
    FILE_EDIT_PERMISSIONS permissions;
};

// An edit of a settings file, and what came of it.
struct SETTINGS_EDIT
{
    SETTINGS_CHANGE change;
    FILE_EDIT file;
    std::vector<CHANGED_LINE> lines;
    std::string in_its_place;            // the file that a run has read until now, where a new one takes its place
    std::optional<CHANGE_EFFECT> effect; // nothing after a refusal

    const DECIDING_ASSIGNMENT* deciding() const
    {
        return effect && effect->deciding ? &*effect->deciding : nullptr;
    }

    // Whether a run gets what was asked for.
    bool takes_effect() const
    {
        return effect && (deciding() == nullptr ? !change.value : change.value && deciding()->value == *change.value);
    }
};

std::string target_of(const SET_OPTIONS& options, const TOOL& tool)
{
    std::string path = options.file.value_or(own_settings_file(tool.options.scope.project));
    if (path == "-")
        throw TOOL_ERROR(EXIT_CODE::USAGE, "--file takes the path of a file");
    return path;
}

// Makes the edit, or with --dry-run only plans it.
SETTINGS_EDIT edited(const SETTINGS_CHANGE& change, const SET_OPTIONS& options, TOOL& tool)
{
    const SETTINGS_SCOPE& scope = tool.options.scope;
    const std::string path = target_of(options, tool);
    SETTINGS_EDIT edit{change, {}, {}, {}, {}};
    const auto plan = [&](const FILE_EDIT& file)
    {
        if (is_preference_file(path) || is_preference_file(file.path, file.before))
            throw TOOL_ERROR(EXIT_CODE::USAGE,
                             file.path + ": is a preference file; change it with velmar-cfg prefs set or prefs reset");
        refuse_utf_16(file.path, file.before);
        SETTINGS_PLAN planned = plan_settings_change(file.path, file.before, change);
        edit.lines = std::move(planned.lines);
        edit.in_its_place = file.is_new ? file_in_whose_place(scope, file.path) : "";
        PLANNED_BYTES bytes{std::move(planned.after), {}};
        if (!edit.in_its_place.empty() && !options.file)
            bytes.refusal = file.path + ": there is no such file, and a new one would be read instead of " +
                            edit.in_its_place +
                            ", whose settings would then not apply; name the file to change with --file";
        return bytes;
    };
    edit.file = (options.dry_run ? try_file_edit : edit_file)(path, plan, options.permissions, options.patience());
    if (edit.file.refusal.empty())
        edit.effect = effect_of_change(scope, change.name, edit.file, options.dry_run, tool.files);
    if (options.dry_run && edit.file.is_new && edit.file.changed())
        tool.files.forget(path); // a link that names nothing now would name the new file
    return edit;
}

// The same, with secrets hidden in the message of what goes wrong.
SETTINGS_EDIT edited_or_told(const SETTINGS_CHANGE& change, const SET_OPTIONS& options, TOOL& tool)
{
    try
    {
        check_settings_change(change);
        return edited(change, options, tool);
    }
    catch (const TOOL_ERROR& error)
    {
        SECRETS& secrets = *tool.options.scope.secrets;
        if (!change.value || !secrets.is_secret_name(change.name) || is_plain_value(*change.value))
            throw;
        throw TOOL_ERROR(error.exit_code, hide_in_text(error.what(), *change.value, secrets));
    }
}

void complain_of_file(const SETTINGS_EDIT& edit, bool dry_run)
{
    const FILE_EDIT& file = edit.file;
    if (!edit.change.value && file.refusal.empty() && edit.lines.empty())
        complain(file.path + ": no line sets " + in_single_quotes(edit.change.name) +
                 did_you_mean(edit.change.name, names_set_in(file.before)));
    if (!file.is_new || !file.changed())
        return;
    complain(file.path + ": " + (dry_run ? "would be created" : "created") + ", since there was no such file" +
             (edit.in_its_place.empty()
                  ? ""
                  : "; it is read instead of " + edit.in_its_place + (dry_run ? " then" : " from now on")));
}

// Says who decides on the variable unless that is the file that was changed.
void complain_of_effect(const SETTINGS_EDIT& edit, SECRETS& secrets)
{
    constexpr std::size_t most_of_value = 200;
    if (!edit.effect->file_is_read && (!edit.file.is_new || edit.file.changed()))
    {
        complain(edit.file.path + ": is not read by a run here; see velmar-cfg paths");
        return;
    }
    const DECIDING_ASSIGNMENT* const deciding = edit.deciding();
    if (deciding == nullptr || deciding->in_file)
        return;
    const std::string location = location_as_text(deciding->location());
    const std::string value = hide_in_value(edit.change.name, deciding->value, secrets,
                                            is_file(deciding->layer) ? kept_in_lines : kept_in_items);
    if (edit.takes_effect())
        complain(location + " sets the same value, and decides");
    else
        complain(location + " still says " +
                 (value.empty() ? "''" : shortened(value, length_by_shown_length(value, most_of_value))));
}

void write_json(JSON_WRITER& out, const SETTINGS_EDIT& edit, bool dry_run, const std::string& difference,
                SECRETS& secrets)
{
    const auto shown = [&](const std::optional<std::string>& value)
    { return value ? std::optional(hide_in_value(edit.change.name, *value, secrets)) : std::nullopt; };
    const DECIDING_ASSIGNMENT* const deciding = edit.deciding();
    const std::optional<LOCATION> location = deciding == nullptr ? std::nullopt : std::optional(deciding->location());
    out.begin_object();
    out.field("name", edit.change.name);
    out.field("value", shown(edit.change.value));
    out.field("path", edit.file.path);
    out.field("changed", edit.file.changed());
    out.field("made", edit.file.changed() && edit.file.is_new);
    out.field_or_null("refusal", edit.file.refusal);
    out.field("dry_run", dry_run);
    out.key("changed_lines");
    out.list(edit.lines,
             [](JSON_WRITER& row, const CHANGED_LINE& line)
             {
                 row.begin_object();
                 row.field("number", line.number);
                 row.field("change", line_change_word(line.change));
                 row.end_object();
             });
    out.field("difference", difference);
    out.field("is_read", edit.effect ? std::optional(edit.effect->file_is_read) : std::nullopt);
    out.field("takes_effect", edit.effect ? std::optional(edit.takes_effect()) : std::nullopt);
    out.field("now", deciding == nullptr ? std::nullopt : shown(deciding->value));
    write_location_fields(out, location ? &*location : nullptr);
    out.end_object();
}

EXIT_CODE change_settings(const SET_OPTIONS& options, bool unset, TOOL& tool)
{
    SECRETS& secrets = *tool.options.scope.secrets;
    SETTINGS_CHANGE change{options.name, {}};
    if (!unset)
        change.value = options.value;
    const SETTINGS_EDIT edit = edited_or_told(change, options, tool);
    complain_of_file(edit, options.dry_run);
    if (edit.effect)
        complain_of_effect(edit, secrets);
    const std::string difference = options.dry_run ? shown_settings_difference(edit.file, secrets) : "";
    try
    {
        if (tool.options.json)
            answer_in_json(tool,
                           [&](JSON_WRITER& out) { write_json(out, edit, options.dry_run, difference, secrets); });
        else
            write_difference(difference, tool.out);
        tool.out.finish();
    }
    catch (const TOOL_ERROR& error)
    {
        if (!edit.file.changed() || options.dry_run)
            throw;
        throw TOOL_ERROR(error.exit_code, edit.file.path + " was changed; " + error.what());
    }
    if (!edit.file.refusal.empty())
        throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, edit.file.refusal);
    // A file that is not read here may be meant for another run, but only if it was named.
    const bool for_another_run = options.file && !edit.effect->file_is_read;
    return edit.takes_effect() || for_another_run ? EXIT_CODE::FINE : EXIT_CODE::FINDINGS;
}

void add_change(COMMAND app, TOOL& tool, const std::string& name, const std::string& description,
                const std::string& example)
{
    auto options = std::make_shared<SET_OPTIONS>();
    const bool unset = name == "unset";
    COMMAND command = app.add_command(tool, name, description, example,
                                      [options, unset, &tool] { return change_settings(*options, unset, tool); });
    command.add_argument("NAME", options->name, "The internal variable, in any letter case");
    if (!unset)
        command.add_argument("VALUE", options->value,
                             "The text after the \"=\"; put -- before one that begins with \"-\"");
    command.add_option("--file", "FILE", options->file,
                       "Change this file, and not velmar.ini in the project's or the current directory");
    add_edit_options(command, *options, options->permissions, "Change nothing: show the difference");
}
}

void add_set_commands(COMMAND app, TOOL& tool)
{
    add_change(app, tool, "set",
               "Set an internal variable in the project's velmar.ini. This changes only the value on the line that "
               "decides there, or adds a line if there is none. If a run still gets another value, the line that "
               "decides is shown, and the exit code is 1.",
               "velmar-cfg --project designs/cpu set max_fanout 16\n      all else in the file stays as it is");
    add_change(app, tool, "unset",
               "Remove every line of the project's velmar.ini that sets an internal variable. If a run still gets a "
               "value, the line that decides is shown, and the exit code is 1.",
               "velmar-cfg --project designs/cpu unset max_fanout --dry-run\n      the lines that would go");
}
