// velmar-cfg prefs explain: why a preference has its value.
#include <algorithm>
#include <string>

#include "cfg_ini/cfg_user_ini_enums.h"
#include "platform/ver/ver.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/state_options.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/preferences/preference_explanation.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/states/state.h"

namespace
{
std::string location_of(const EXPLAINED_PREFERENCE_LINE& line)
{
    return "line " + std::to_string(line.number) + "  " + (line.section ? "[" + *line.section + "]" : "no section");
}

void write_lines(const PREFERENCE_EXPLANATION& explanation, OUTPUT& out)
{
    std::size_t width = 0;
    for (const EXPLAINED_PREFERENCE_LINE& line : explanation.lines)
        width = std::max(width, location_of(line).size());
    out << "lines of " << printable(explanation.path) << ", at most one counts:\n";
    for (const EXPLAINED_PREFERENCE_LINE& line : explanation.lines)
    {
        std::string text = location_of(line);
        text.resize(width + 2, ' ');
        text += line.name + " = " + line.value;
        const std::string why = fate_as_text(line, explanation.preference);
        out << (line.counts() ? "  counts   " : "  ignored  ")
            << out.painted(line.counts() ? STYLE::GOOD : STYLE::FAINT, printable(text))
            << (line.old_name ? "  (an old name)" : "") << (why.empty() ? "" : "  (" + printable(why) + ")") << "\n";
    }
}

void write_text(const PREFERENCE_EXPLANATION& explanation, OUTPUT& out)
{
    const PREFERENCE& preference = explanation.preference;
    out << out.painted(STYLE::STRONG, preference.key)
        << (preference.value.empty() ? " has no value" : " = " + printable(preference.value)) << ": "
        << printable(origin_as_text(preference.origin)) << "\n";
    if (explanation.path.empty())
        out << "there is no preference file\n";
    else if (explanation.lines.empty())
        out << "no line of " << printable(explanation.path) << " concerns it\n";
    else
        write_lines(explanation, out);
    out << "default: " << (preference.default_value.empty() ? "none" : preference.default_value) << "\n"
        << "allowed: " << allowed_as_text(preference.allowed) << "\n";
}

struct PREFS_EXPLAIN_OPTIONS
{
    STATE_OPTIONS state;
    std::string key;
};

EXIT_CODE explain(const PREFS_EXPLAIN_OPTIONS& options, TOOL& tool)
{
    const CFG_USER_INI_ENUMS number = preference_number(options.key);
    const STATE state = state_of(options.state, {.preferences = true}, tool);
    state.require(!state.is_document || state.candidates.has_value()); // which come with the lines
    if (!state.release.empty() && state.release != ver_get_version())
        throw TOOL_ERROR(EXIT_CODE::USAGE, state.name + ": is of release " + state.release +
                                               ", and this velmar-cfg explains preferences of release " +
                                               ver_get_version() + "; see prefs list and prefs get");
    if (state.preference_file != nullptr && state.preference_file->bytes.empty())
        state.preference_file->require_whole(); // nothing is known of its lines
    const PREFERENCE_EXPLANATION explanation =
        explain_preference(state.preference_file.get(), number, *tool.options.scope.secrets);
    if (tool.options.json)
    {
        answer_with_view(tool, state, [&](JSON_WRITER& out) { write_fields(out, explanation); });
    }
    else
    {
        write_view(state, tool.out);
        write_text(explanation, tool.out);
    }
    return explanation.preference.value.empty() ? EXIT_CODE::FINDINGS : EXIT_CODE::FINE;
}
}

void add_prefs_explain_command(COMMAND prefs, TOOL& tool)
{
    auto options = std::make_shared<PREFS_EXPLAIN_OPTIONS>();
    COMMAND command =
        prefs.add_command(tool, "explain",
                          "Show why a preference has its value: every line of the preference file that concerns it, "
                          "which one counts, and why the others do not. The lines may be of any release, and have "
                          "the preference's own or an old name. Exit code 1 when it has no value, not even a default.",
                          "velmar-cfg prefs explain HDL_PREFERENCE\n      which release's line decides, and why",
                          [options, &tool] { return explain(*options, tool); });
    command.add_argument("KEY", options->key, "The preference, in any letter case");
    add_state_option(command, options->state, tool);
}
