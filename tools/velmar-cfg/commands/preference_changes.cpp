// Makes a change of preferences and reports its effects: the difference, lost lines, other values that change.
//
// Secrets are hidden in all that is shown, messages of errors included: those that are to be set, and the values of
// secret names anywhere in the file. In a difference they are hidden wherever they stand in either text, since a line
// that shows what another hides would tell the secret.
//
// Cost: the plan, and for each text that is shown one search for all secrets of the file.
#include "tools/velmar-cfg/commands/preference_changes.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "cfg_ini/cfg_ini.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/base/unified_diff.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/preferences/preference_save.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/secrets_in_messages.h"

namespace
{
void write_lost_line(JSON_WRITER& out, const LOST_LINE& line)
{
    out.begin_object();
    out.field("line", line.number);
    out.field("reason", loss_word(line.reason));
    out.field("text", line.text);
    out.field("value_lost", line.value_lost);
    out.end_object();
}

void write_fields(JSON_WRITER& out, const PREFERENCE_OPTIONS& options, const EDITED_FILE& file,
                  const std::string& difference)
{
    out.field("path", file.path);
    out.field("changed", file.changed());
    out.field_or_null("refusal", file.refusal);
    out.field("dry_run", options.dry_run);
    out.field("dropped_lines", file.plan.lost.size());
    out.key("lost_lines");
    out.list(file.plan.lost, write_lost_line);
    out.field("difference", difference);
}

// The reasons of lost lines, with secrets hidden.
class SHOWN_REASONS
{
public:
    SHOWN_REASONS(std::string_view text_of_file, SECRETS& secrets)
        : known_secrets(secrets_of_preference_text(text_of_file, secrets), secrets, SHORT_SECRETS::APART)
    {
    }

    std::string of(const LOST_LINE& line) const
    {
        // A bracket may have made a section of a piece of a secret, of which no part is to be left by a cut.
        if (line.reason != LOSS::BRACKET_IN_VALUE && line.section_in_its_place.empty())
            return loss_as_text(line);
        LOST_LINE shown = line;
        for (std::string* const section : {&shown.section, &shown.section_in_its_place})
            *section = known_secrets.hide_in(*section);
        return loss_as_text(shown);
    }

private:
    const SECRET_TEXTS known_secrets;
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
    const SHOWN_REASONS reasons(file.before, secrets);
    for (const LOST_LINE& line : std::span(lost).first(shown))
        complain("line " + std::to_string(line.number) + ": " + in_single_quotes(line.text) + ": " + reasons.of(line));
    if (shown < lost.size())
        complain("and " + std::to_string(lost.size() - shown) + " more; " +
                 (json ? "\"lost_lines\" has them all" : "--dry-run --json lists them all"));
}

// The difference that the edit makes, with secrets hidden: also those of the old text that are elsewhere in either one.
// Both are treated alike, since a line that is shown as it was and hidden as it is would tell the secret.
std::string shown_difference(const EDITED_FILE& file, SECRETS& secrets)
{
    const SECRET_TEXTS known_secrets(secrets_of_preference_text(file.before, secrets), secrets, SHORT_SECRETS::APART);
    const auto hidden = [&](const std::string& text)
    { return known_secrets.hide_in(hide_in_preference_text(text, secrets).value_or(text)); };
    return unified_diff(hidden(file.before), hidden(file.plan.after), file.path, file.path + " (new)");
}

void add_secrets_of_changes(const std::vector<PREFERENCE_CHANGE>& changes, const SECRETS& secrets,
                            std::vector<SECRET_TEXT>& to)
{
    for (const PREFERENCE_CHANGE& change : changes)
    {
        if (change.value)
            add_secret_of_preference(cfg_get_user_ini_ini_string(change.number), *change.value, secrets, to);
    }
}

// Makes the changes. What is told of values goes to terminals and logs: no secret is in it.
EDITED_FILE edited(const std::vector<PREFERENCE_CHANGE>& changes, const PREFERENCE_OPTIONS& options, SECRETS& secrets)
{
    const auto known_secrets = [&](std::string_view text)
    {
        std::vector<SECRET_TEXT> known = secrets_of_preference_text(text, secrets);
        add_secrets_of_changes(changes, secrets, known);
        return SECRET_TEXTS(known, secrets);
    };
    // Another file is changed than the user named.
    if (const std::string remark = preference_file_location().remark; !remark.empty())
        complain(hide_in_value("", remark, secrets));
    try
    {
        EDITED_FILE file = options.dry_run ? try_preference_changes(changes, options.permissions, options.patience())
                                           : change_preferences(changes, options.permissions, options.patience());
        const SECRET_TEXTS known = known_secrets(file.before);
        for (std::string& warning : file.plan.warnings)
            warning = known.hide_in(warning);
        for (std::string& other_value : file.plan.other_values)
            other_value = known.hide_in(other_value);
        file.refusal = known.hide_in(file.refusal);
        for (LOST_LINE& line : file.plan.lost)
            line.text = hide_in_preference_text(line.text, secrets).value_or(line.text);
        return file;
    }
    catch (const TOOL_ERROR& error)
    {
        const std::string bytes = read_whole_file(preference_file_location().path).bytes;
        throw TOOL_ERROR(error.exit_code, known_secrets(bytes).hide_in(error.what()));
    }
}
}

void add_preference_options(COMMAND& command, PREFERENCE_OPTIONS& options)
{
    add_edit_options(command, options, options.permissions,
                     "Change nothing: show the difference, with the comments and other lines that would be lost");
    command.add_flag("--allow-loss", options.permissions.lose_values,
                     "Change the file even if that loses or changes values in other lines");
}

void make_preference_changes(const std::vector<PREFERENCE_CHANGE>& changes, const PREFERENCE_OPTIONS& options,
                             const std::function<void(JSON_WRITER&)>& write_subject, TOOL& tool)
{
    SECRETS& secrets = *tool.options.scope.secrets;
    const EDITED_FILE file = edited(changes, options, secrets);
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
                           [&](JSON_WRITER& out)
                           {
                               out.begin_object();
                               write_subject(out);
                               write_fields(out, options, file, difference);
                               out.end_object();
                           });
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
}

std::optional<std::string> shown_value(const PREFERENCE_CHANGE& change, SECRETS& secrets)
{
    if (!change.value)
        return std::nullopt;
    return hide_in_preference(cfg_get_user_ini_ini_string(change.number), *change.value, secrets);
}

std::string hide_in_message(const std::string& message, const std::vector<PREFERENCE_CHANGE>& changes, SECRETS& secrets)
{
    std::vector<SECRET_TEXT> known;
    add_secrets_of_changes(changes, secrets, known);
    return SECRET_TEXTS(known, secrets).hide_in(message);
}
