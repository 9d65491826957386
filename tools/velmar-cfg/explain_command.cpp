// velmar-cfg explain: why a variable has its value.
#include <algorithm>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/ini_text.h"
#include "tools/velmar-cfg/command.h"
#include "tools/velmar-cfg/commands.h"
#include "tools/velmar-cfg/finding.h"
#include "tools/velmar-cfg/json_values.h"
#include "tools/velmar-cfg/known_variables.h"
#include "tools/velmar-cfg/layers.h"
#include "tools/velmar-cfg/lint_settings.h"
#include "tools/velmar-cfg/nearest_name.h"
#include "tools/velmar-cfg/output.h"
#include "tools/velmar-cfg/readings.h"
#include "tools/velmar-cfg/settings.h"
#include "tools/velmar-cfg/tool.h"
#include "tools/velmar-cfg/variable_name.h"

using namespace zon_cfg;

namespace
{
struct HINT
{
    std::string reason;
    std::string text;
};

struct EXPLANATION
{
    std::string name;
    const KNOWN_VARIABLE* known; // null for any other
    std::string value;
    bool external;
    READINGS readings;
    std::vector<const STATEMENT*> assignments; // in layering order; the last one won
    std::vector<HINT> hints;
};

// Whether the comment of a statement, or the line that is all comment, would set the variable if it were none.
bool would_set(const STATEMENT& statement, const std::string& name)
{
    std::string_view comment = statement.text;
    comment.remove_prefix(std::min(statement.kept, comment.size()));
    comment.remove_prefix(std::min(comment.find_first_not_of(";#/ \t"), comment.size()));
    std::string line(comment);
    std::string commented_name;
    std::string value;
    return parse_settings_line(line, commented_name, value) == SETTINGS_LINE::ASSIGNMENT &&
           same_name(commented_name, name);
}

void add_hints_of_statements(EXPLANATION& explanation, const SETTINGS_LAYERS& layers)
{
    for (const STATEMENT& statement : layers.statements)
    {
        if (statement.outcome == OUTCOME::STORED && same_name(statement.name, explanation.name))
        {
            for (const FINDING& finding : lint_statement(layers, statement))
            {
                // The table of assignments shows that a later one won.
                if (finding.reason != "overridden")
                    explanation.hints.push_back({finding.reason, place_of(layers, statement) + ": " + finding.message +
                                                                     "; " + finding.instead});
            }
        }
        if (layers.layer_of(statement).is_file() && would_set(statement, explanation.name))
            explanation.hints.push_back({"in-comment", place_of(layers, statement) +
                                                           ": an assignment to it stands in a comment and is ignored"});
    }
}

void add_hint_of_spelling(EXPLANATION& explanation)
{
    const auto other = std::ranges::find_if(explanation.assignments, [&](const STATEMENT* statement)
                                            { return statement->name != explanation.name; });
    if (other != explanation.assignments.end())
        explanation.hints.push_back({"spelling", "set as '" + (*other)->name +
                                                     "': the same variable, since the case of A to Z does not count"});
}

void add_hint_of_near_miss(EXPLANATION& explanation, const SETTINGS& settings)
{
    if (explanation.known != nullptr)
        return;
    std::vector<std::string> names = known_variable_names();
    for (const VARIABLE& variable : settings.variables)
        names.push_back(variable.name);
    if (const std::optional<std::string> nearest = nearest_name(explanation.name, names))
        explanation.hints.push_back({"near-miss", "there is also '" + *nearest + "'; is that the one?"});
}

EXPLANATION explain(const std::string& name, const SETTINGS& settings)
{
    EXPLANATION explanation{name,
                            find_known_variable(name),
                            cfg_get_value(name),
                            cfg_ini_is_external(name),
                            read_typed(name),
                            settings.layers.assignments_of(name),
                            {}};
    add_hint_of_spelling(explanation);
    add_hints_of_statements(explanation, settings.layers);
    add_hint_of_near_miss(explanation, settings);
    return explanation;
}

nlohmann::ordered_json as_json(const EXPLANATION& explanation, const SETTINGS_LAYERS& layers)
{
    nlohmann::ordered_json assignments = nlohmann::ordered_json::array();
    for (const STATEMENT* const statement : explanation.assignments)
    {
        nlohmann::ordered_json row = {{"name", statement->name}, {"value", statement->value}};
        row.update(place_as_json(layers, statement));
        row["text"] = statement->text;
        row["won"] = statement == explanation.assignments.back();
        assignments.push_back(std::move(row));
    }
    nlohmann::ordered_json hints = nlohmann::ordered_json::array();
    for (const HINT& hint : explanation.hints)
        hints.push_back({{"reason", hint.reason}, {"text", hint.text}});
    return {{"name", explanation.name},
            {"set", !explanation.assignments.empty()},
            {"value", explanation.value},
            {"external", explanation.external},
            {"assignments", assignments},
            {"readings", readings_as_json(explanation.readings)},
            {"known", explanation.known != nullptr},
            {"default", text_or_null(explanation.known == nullptr ? "" : explanation.known->default_text)},
            {"hints", hints}};
}

void write_assignments(const EXPLANATION& explanation, const SETTINGS_LAYERS& layers, OUTPUT& out)
{
    std::size_t width = 0;
    for (const STATEMENT* const statement : explanation.assignments)
        width = std::max(width, place_of(layers, *statement).size());
    out << "assignments, the last one wins:\n";
    for (const STATEMENT* const statement : explanation.assignments)
    {
        const bool won = statement == explanation.assignments.back();
        std::string place = place_of(layers, *statement);
        place.resize(width, ' ');
        out << (won ? "  won   " : "  lost  ")
            << out.painted(won ? STYLE::GOOD : STYLE::FAINT,
                           printable(place) + "  " + printable(statement->name + " = " + statement->value))
            << "  (" << layer_title(layers.layer_of(*statement).kind) << ")\n";
    }
}

void write_readings(const READINGS& readings, OUTPUT& out)
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

void write_text(const EXPLANATION& explanation, const SETTINGS_LAYERS& layers, OUTPUT& out)
{
    const std::string name = out.painted(STYLE::STRONG, printable(explanation.name));
    if (explanation.assignments.empty())
        out << name << " is not set\n";
    else
    {
        out << name << " = " << printable(explanation.value) << "\n";
        write_assignments(explanation, layers, out);
    }
    write_readings(explanation.readings, out);
    if (explanation.known != nullptr && !explanation.known->default_text.empty())
        out << "default: " << explanation.known->default_text << ", of the catalogue, for readers that name none\n";
    out << "external: " << (explanation.external ? "yes" : "no") << "\n";
    for (const HINT& hint : explanation.hints)
        out << out.painted(STYLE::WARNING, "hint:") << " " << printable(hint.text) << "\n";
}

EXIT_CODE explain(const std::string& name, TOOL& tool)
{
    const SETTINGS settings = load_settings(tool.options);
    const EXPLANATION explanation = explain(name, settings);
    if (tool.options.json)
        tool.out.json(as_json(explanation, settings.layers));
    else
        write_text(explanation, settings.layers, tool.out);

    const EXIT_CODE compared = compare_with_library(settings);
    if (compared != EXIT_CODE::FINE)
        return compared;
    return explanation.assignments.empty() ? EXIT_CODE::FINDINGS : EXIT_CODE::FINE;
}
}

void add_explain_command(COMMAND app, TOOL& tool)
{
    auto name = std::make_shared<std::string>();
    COMMAND command = app.add_command(
        tool, "explain",
        "Show why a variable has its value: every assignment in the order in which the layers are laid over each "
        "other, "
        "the one that won, what each type of reader makes of it, and what may be a mistake. Exit code 1 when it is not "
        "set.",
        "velmar-cfg --project designs/cpu --regtest explain max_fanout\n"
        "      which file of a regression run sets max_fanout, and what the others said",
        [name, &tool] { return explain(*name, tool); });
    command.add_argument("NAME", *name, "The variable, in any letter case");
}
