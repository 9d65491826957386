// velmar-cfg explain: why a variable has its value.
#include <algorithm>

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/lint/explanation.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/typed_readings.h"

namespace
{
void write_assignments(const EXPLANATION& explanation, OUTPUT& out)
{
    std::size_t width = 0;
    for (const EXPLAINED_ASSIGNMENT& assignment : explanation.assignments)
        width = std::max(width, location_as_text(assignment.location).size());
    out << "assignments, the last one wins:\n";
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

void write_text(const EXPLANATION& explanation, OUTPUT& out)
{
    const std::string name = out.painted(STYLE::STRONG, printable(explanation.name));
    if (explanation.assignments.empty())
        out << name << " is not set\n";
    else
    {
        out << name << " = " << printable(explanation.value) << "\n";
        write_assignments(explanation, out);
    }
    if (has_hidden_parts(explanation.value))
        out << "read as: not shown, since the value is masked\n";
    else
        write_readings(explanation.readings, out);
    if (explanation.known != nullptr && !explanation.known->default_text.empty())
        out << "default: " << explanation.known->default_text << ", of the catalogue, for readers that name none\n";
    out << "external: " << (explanation.external ? "yes" : "no") << "\n";
    for (const HINT& hint : explanation.hints)
        out << out.painted(STYLE::WARNING, "hint:") << " " << printable(hint.text) << "\n";
}

EXIT_CODE explain(const std::string& name, TOOL& tool)
{
    LAYERS layers = load_layers(tool.options.scope, tool.files);
    const SETTINGS settings(std::move(layers));
    const EXPLANATION explanation = explain_variable(name, settings);
    if (tool.options.json)
        answer_in_json(tool, [&](JSON_WRITER& out) { write_json(out, explanation); });
    else
        write_text(explanation, tool.out);
    return explanation.assignments.empty() ? EXIT_CODE::FINDINGS : EXIT_CODE::FINE;
}
}

void add_explain_command(COMMAND app, TOOL& tool)
{
    auto name = std::make_shared<std::string>();
    COMMAND command = app.add_command(
        tool, "explain",
        "Show why a variable has its value: every assignment in the order in which the layers apply, "
        "the one that won, what each type of reader makes of it, and what may be a mistake. Exit code 1 when it is not "
        "set.",
        "velmar-cfg --project designs/cpu --regtest explain max_fanout\n"
        "      which file of a regression run sets max_fanout, and what the others said",
        [name, &tool] { return explain(*name, tool); });
    command.add_argument("NAME", *name, "The variable, in any letter case");
}
