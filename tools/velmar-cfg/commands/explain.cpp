// velmar-cfg explain: why a variable has its value: every assignment to it, which one counts, and how each type of
// reader reads it. lint/explanation.h makes the explanation; this file writes it.
#include <algorithm>
#include <cstdint>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/state_options.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/lint/explanation.h"
#include "tools/velmar-cfg/settings/known_variables.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/typed_readings.h"
#include "tools/velmar-cfg/states/state.h"

namespace
{
std::string heading_of(const EXPLANATION& explanation, KNOWN_LINES known)
{
    if (known != KNOWN_LINES::WINNERS)
        return "assignments, the last one wins:\n";
    return explanation.assignments.size() == 1 ? "assignment that won, others are not known:\n"
                                               : "assignments that are known, the last one won:\n";
}

void write_assignments(const EXPLANATION& explanation, KNOWN_LINES known, OUTPUT& out)
{
    std::size_t width = 0;
    for (const EXPLAINED_ASSIGNMENT& assignment : explanation.assignments)
        width = std::max(width, location_as_text(assignment.location).size());
    out << heading_of(explanation, known);
    for (const EXPLAINED_ASSIGNMENT& assignment : explanation.assignments)
    {
        const bool won = &assignment == &explanation.assignments.back();
        std::string location = location_as_text(assignment.location);
        location.resize(width, ' ');
        std::string text(assignment.name);
        text.append(" = ").append(assignment.value);
        out << (won ? "  won   " : "  lost  ")
            << out.painted(won ? STYLE::GOOD : STYLE::FAINT, printable(location) + "  " + printable(text)) << "  ("
            << layer_title(assignment.location.layer) << ")\n";
    }
}

std::string reads_in_words(std::uint64_t count)
{
    if (count == 0)
        return "never";
    return std::to_string(count) + (count == 1 ? " time" : " times");
}

void write_readings(const TYPED_READINGS& readings, OUTPUT& out)
{
    out << "read as:\n";
    out << "  bool    " << (readings.boolean ? boolean_as_text(*readings.boolean) : "no value") << "\n";
    out << "  int     " << (readings.signed_integer ? std::to_string(*readings.signed_integer) : "no value") << "\n";
    out << "  uint    " << (readings.unsigned_integer ? std::to_string(*readings.unsigned_integer) : "no value")
        << "\n";
    out << "  double  " << (readings.floating ? number_as_text(*readings.floating) : "no value")
        << (readings.floating && !readings.floating_is_whole
                ? ", read from the start of the text; 0 when no number is there"
                : "")
        << "\n";
}

void write_text(const EXPLANATION& explanation, const STATE& state, OUTPUT& out)
{
    const std::string name = out.painted(STYLE::STRONG, printable(explanation.name));
    if (!explanation.assignments.empty())
    {
        out << name << " = " << printable(explanation.value) << "\n";
        write_assignments(explanation, state.known_lines, out);
    }
    else if (explanation.is_set == true)
        out << name << " is set, its value is not recorded\n";
    else if (explanation.is_set == false)
        out << name << " is not set\n";
    else
        out << name << " " << state.why_not_known(explanation.name) << "\n";
    if (const std::optional<std::uint64_t> count = state.reads_of(explanation.name))
        out << "read: " << reads_in_words(*count) << "\n";
    if (explanation.assignments.empty() && explanation.is_set != false)
        out << "read as: not known\n";
    else if (has_hidden_parts(explanation.value))
        out << "read as: not shown, since the value is masked\n";
    else
        write_readings(explanation.readings, out);
    if (explanation.known != nullptr && !explanation.known->default_text.empty())
        out << "default: " << explanation.known->default_text
            << ", from the catalogue, for readers that give no default\n";
    if (explanation.is_set)
        out << "external: " << (explanation.external ? "yes" : "no") << "\n";
    for (const HINT& hint : explanation.hints)
        out << out.painted(STYLE::WARNING, "hint:") << " " << printable(hint.text) << "\n";
}

struct EXPLAIN_OPTIONS
{
    STATE_OPTIONS state;
    std::string name;
};

EXIT_CODE explain(const EXPLAIN_OPTIONS& options, TOOL& tool)
{
    const STATE state = state_of(options.state, {.settings = true}, tool);
    const SETTINGS settings(state.layers);
    EXPLANATION explanation = explain_variable(options.name, settings, state.names_in_report());
    if (explanation.assignments.empty())
        explanation.is_set = is_set_without_value(state.absent_variable(options.name));
    if (tool.options.json)
    {
        answer_with_view(tool, state,
                         [&](JSON_WRITER& out)
                         {
                             write_fields(out, explanation);
                             out.field("reads", state.reads_of(options.name));
                         });
    }
    else
    {
        write_view(state, tool.out);
        write_text(explanation, state, tool.out);
    }
    return explanation.is_set == true ? EXIT_CODE::FINE : EXIT_CODE::FINDINGS;
}
}

void add_explain_command(COMMAND app, TOOL& tool)
{
    auto options = std::make_shared<EXPLAIN_OPTIONS>();
    COMMAND command = app.add_command(
        tool, "explain",
        "Show why a variable has its value: every assignment in the order in which the layers apply, "
        "the one that won, its value as each type, and what may be a mistake. Exit code 1 when it is not "
        "set, or when it is not known whether it is set.",
        "velmar-cfg --project designs/cpu --regtest explain max_fanout\n"
        "      which file of a regression run sets max_fanout, and what the others set",
        [options, &tool] { return explain(*options, tool); });
    command.add_argument("NAME", options->name, "The variable, in any letter case");
    add_state_option(command, options->state, tool);
    add_what_if_options(command, options->state.what_if);
}
