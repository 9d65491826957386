// velmar-cfg prefs load: the preferences of another file become the user's own. The file is checked as a whole first:
// one line that cannot be loaded keeps all others from being loaded. The changes are then made in one edit.
#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "cfg_ini/cfg_ini.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/preference_changes.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/lint/preference_rules.h"
#include "tools/velmar-cfg/preferences/preference_plan.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"
#include "tools/velmar-cfg/preferences/preference_transfer.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/secrets.h"

namespace
{
struct LOAD_OPTIONS : PREFERENCE_OPTIONS
{
    std::string file;
};

constexpr std::size_t most_told = 50;

// Says what `as_text` makes of the first of the rows, and how many there are beyond these.
template <typename ROW, typename AS_TEXT>
void complain_of_rows(const std::vector<ROW>& rows, AS_TEXT as_text, const std::string& where_all_are)
{
    for (std::size_t i = 0; i < std::min(rows.size(), most_told); ++i)
        complain(as_text(rows[i]));
    if (rows.size() > most_told)
        complain("and " + std::to_string(rows.size() - most_told) + " more; " + where_all_are);
}

// --- Lines that cannot be loaded ---

struct REFUSED_LINE
{
    std::size_t number;
    std::string reason;
};

std::vector<REFUSED_LINE> refused_lines(const GIVEN_PREFERENCES& given, const std::vector<UNKNOWN_PREFERENCE>& unknown,
                                        SECRETS& secrets)
{
    std::vector<REFUSED_LINE> refused;
    for (const GIVEN_PREFERENCE& preference : given.known)
    {
        const PREFERENCE_CHANGE change{preference.number, preference.value};
        try
        {
            check_preference_value(change);
        }
        catch (const TOOL_ERROR& error)
        {
            refused.push_back({preference.line, hide_in_message(error.what(), {change}, secrets)});
        }
    }
    const std::vector<std::string> keys = all_preference_keys();
    for (const UNKNOWN_PREFERENCE& preference : unknown)
        refused.push_back({preference.line, "there is no preference " + in_single_quotes(preference.name) +
                                                did_you_mean(preference.name, keys)});
    std::ranges::stable_sort(refused, {}, &REFUSED_LINE::number);
    return refused;
}

void refuse(const std::string& title, const std::vector<REFUSED_LINE>& refused)
{
    if (refused.empty())
        return;
    complain_of_rows(
        refused,
        [&title](const REFUSED_LINE& line) { return title + ":" + std::to_string(line.number) + ": " + line.reason; },
        "velmar-cfg prefs lint lists them all");
    throw TOOL_ERROR(EXIT_CODE::REFUSED, title + ": lines that cannot be loaded: " + std::to_string(refused.size()) +
                                             "; nothing was changed");
}

// --- Lines that say nothing ---

// Of these lines a preference is read all the same.
bool is_about_a_value(std::string_view reason)
{
    return reason == "old-name" || reason == "not-allowed" || reason == "merged-section" || reason == "changed-value";
}

// Lines that say nothing for any preference, as prefs lint names them, but for those that are refused, and for what
// prefs dump has left out.
std::vector<FINDING> lines_passed_over(const INPUT_FILE& file, const GIVEN_PREFERENCES& given,
                                       const std::vector<REFUSED_LINE>& refused, SECRETS& secrets)
{
    std::vector<FINDING> findings;
    lint_preferences(file, secrets,
                     [&](const FINDING& finding)
                     {
                         const bool is_refused =
                             std::ranges::binary_search(refused, finding.line.value_or(0), {}, &REFUSED_LINE::number);
                         const bool is_note_of_dump =
                             std::ranges::binary_search(given.notes_of_dump, finding.line.value_or(0));
                         if (!is_about_a_value(finding.reason) && !is_refused && !is_note_of_dump)
                             findings.push_back(finding);
                     });
    return findings;
}

std::string as_text(const FINDING& finding)
{
    return finding.file + ":" + std::to_string(finding.line.value_or(0)) + ":" +
           std::to_string(finding.column.value_or(0)) + ": " + severity_word(finding.severity) + ": " +
           finding.message + "; " + finding.instead + " [" + finding.reason + "]";
}

// --- The command ---

void write_subject(JSON_WRITER& out, const INPUT_FILE& file, const GIVEN_PREFERENCES& given,
                   const std::vector<FINDING>& passed_over, SECRETS& secrets)
{
    out.field("file", file.path);
    out.key("given");
    out.list(given.known,
             [&secrets](JSON_WRITER& row, const GIVEN_PREFERENCE& preference)
             {
                 row.begin_object();
                 row.field("line", preference.line);
                 row.field("key", cfg_get_user_ini_ini_string(preference.number));
                 row.field("value", shown_value({preference.number, preference.value}, secrets));
                 row.end_object();
             });
    out.key("passed_over");
    out.list(passed_over,
             [](JSON_WRITER& row, const FINDING& finding)
             {
                 row.begin_object();
                 row.field("line", finding.line);
                 row.field("reason", finding.reason);
                 row.field("message", finding.message);
                 row.end_object();
             });
}

EXIT_CODE load(const LOAD_OPTIONS& options, TOOL& tool)
{
    SECRETS& secrets = *tool.options.scope.secrets;
    const INPUT_FILE file = read_named_file(options.file);
    file.require_whole();
    refuse_utf_16(file.path, file.bytes);
    const GIVEN_PREFERENCES given = preferences_given_by(file.bytes);
    // Their names are for messages: a line may hold a secret before its "=".
    const std::vector<UNKNOWN_PREFERENCE> unknown =
        preferences_given_by(hide_in_preference_text(file.bytes, secrets).value_or(file.bytes)).unknown;
    const std::vector<REFUSED_LINE> refused = refused_lines(given, unknown, secrets);
    const std::vector<FINDING> passed_over = lines_passed_over(file, given, refused, secrets);
    complain_of_rows(passed_over, as_text,
                     tool.options.json ? "\"passed_over\" has them all" : "velmar-cfg prefs lint lists them all");
    refuse(file.path, refused);

    std::vector<PREFERENCE_CHANGE> changes;
    std::ranges::transform(given.known, std::back_inserter(changes),
                           [](const GIVEN_PREFERENCE& preference) {
                               return PREFERENCE_CHANGE{preference.number, preference.value, true};
                           });
    make_preference_changes(
        changes, options, [&](JSON_WRITER& out) { write_subject(out, file, given, passed_over, secrets); }, tool);
    const bool is_fine =
        std::ranges::all_of(passed_over, [](const FINDING& finding) { return finding.severity == SEVERITY::NOTE; });
    return is_fine ? EXIT_CODE::FINE : EXIT_CODE::FINDINGS;
}
}

void add_prefs_load_command(COMMAND prefs, TOOL& tool)
{
    auto options = std::make_shared<LOAD_OPTIONS>();
    COMMAND command = prefs.add_command(
        tool, "load",
        "Set every preference that a preference file gives, all of them or none. The file may be of any machine or "
        "release, and is read as the library reads its own. Nothing is set if the file gives a preference a value "
        "that the catalogue does not allow, or has an unknown key in a section that lookups search. Ignored lines are "
        "shown; exit code 1 when one is an error or a warning.",
        "velmar-cfg prefs load mine.ini --dry-run\n      what that would change in your own file",
        [options, &tool] { return load(*options, tool); });
    command.add_argument("FILE", options->file,
                         "A text as in velmar2.ini, such as prefs dump prints; - is standard "
                         "input");
    add_preference_options(command, *options);
}
