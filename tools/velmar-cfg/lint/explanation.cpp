// Explains a variable in one walk over all statements. Those that assign to it are listed, with what the rules of lint
// say of each. A comment that would set it, were it none, is a hint. Only these statements are examined, but
// SETTINGS_RULES walks all layers once before that, to know what is assigned where.
//
// Assignments that are known by name and value alone are listed without findings: there is no text to examine. Cost:
// O(n) time for n bytes, and a search among all names for a similar one where the variable is not known.
#include "tools/velmar-cfg/lint/explanation.h"

#include <algorithm>
#include <iterator>

#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/lint/settings_rules.h"
#include "tools/velmar-cfg/settings/library_rules.h"
#include "tools/velmar-cfg/settings/typed_answer.h"

namespace
{
// Whether the comment of a line, or the line that is all comment, would set the variable if it were none.
bool would_set(std::string_view line, OUTCOME outcome, std::string_view name)
{
    line.remove_prefix(outcome == OUTCOME::TOO_SHORT ? line.size() : length_without_comment(line));
    line.remove_prefix(std::min(line.find_first_not_of(";#/ \t"), line.size()));
    LINE_PARTS parts;
    return outcome_of_line(line, parts) == OUTCOME::STORED && same_name(parts.name, name);
}

// The layers that have lines or items, for which there are rules. They stand before all others.
LAYERS layers_with_texts(const LAYERS& layers)
{
    LAYERS with_texts;
    std::ranges::copy_if(layers, std::back_inserter(with_texts),
                         [](const LAYER& layer) { return layer.literals == nullptr; });
    return with_texts;
}

// Goes through all statements: those that assign to the variable, and the comments that look as if they did.
void add_statements(EXPLANATION& explanation, const SETTINGS& settings)
{
    const LAYERS with_texts = layers_with_texts(settings.layers());
    SETTINGS_RULES rules(with_texts);
    STATEMENTS statements(settings.layers());
    STATEMENT statement{};
    for (ASSIGNMENT_INDEX assignment = 0; statements.next(statement);)
    {
        const LOCATION location = location_of(settings.layers(), statement);
        const bool is_literal = settings.layers()[statement.layer].literals != nullptr;
        if (statement.outcome == OUTCOME::STORED)
        {
            if (same_name(statement.name, explanation.name))
            {
                const ASSIGNMENT& assigned = settings.assignments()[assignment];
                explanation.assignments.push_back(
                    {assigned.name, assigned.value, location, std::string(statement.text)});
                for (const FINDING& finding :
                     is_literal ? std::vector<FINDING>() : rules.findings(statement, assignment))
                {
                    // The table of assignments shows that a later one won.
                    if (finding.reason != "overridden")
                        explanation.hints.push_back({finding.reason, location_as_text(location) + ": " +
                                                                         finding.message + "; " + finding.instead});
                }
            }
            ++assignment;
        }
        if (is_file(location.layer) && !is_literal && would_set(statement.text, statement.outcome, explanation.name))
            explanation.hints.push_back({"in-comment", location_as_text(location) +
                                                           ": an assignment to it stands in a comment and is ignored"});
    }
}

void add_hint_of_spelling(EXPLANATION& explanation)
{
    const auto other = std::ranges::find_if(explanation.assignments, [&](const EXPLAINED_ASSIGNMENT& assignment)
                                            { return assignment.name != explanation.name; });
    if (other != explanation.assignments.end())
        explanation.hints.insert(explanation.hints.begin(),
                                 {"spelling", "set as '" + std::string(other->name) +
                                                  "': the same variable, since the case of A to Z does not count"});
}

void add_hint_of_near_miss(EXPLANATION& explanation, const SETTINGS& settings,
                           const std::vector<std::string>& other_names)
{
    if (explanation.known != nullptr)
        return;
    if (const std::optional<std::string> nearest =
            nearest_name(explanation.name, names_that_may_be_meant(settings, explanation.name, other_names)))
        explanation.hints.push_back({"near-miss", "there is also '" + *nearest + "'; is that the one?"});
}

void write_assignment(JSON_WRITER& out, const EXPLAINED_ASSIGNMENT& assignment, bool won)
{
    out.begin_object();
    out.field("name", assignment.name);
    out.field("value", assignment.value);
    write_location_fields(out, &assignment.location);
    out.field("text", assignment.text);
    out.field("won", won);
    out.end_object();
}

void write_hint(JSON_WRITER& out, const HINT& hint)
{
    out.begin_object();
    out.field("reason", hint.reason);
    out.field("text", hint.text);
    out.end_object();
}
}

EXPLANATION explain_variable(const std::string& name, const SETTINGS& settings,
                             const std::vector<std::string>& other_names)
{
    EXPLANATION explanation;
    explanation.name = name;
    explanation.known = find_known_variable(name);
    if (const VARIABLE* const variable = settings.find(name); variable != nullptr)
    {
        explanation.is_set = true;
        explanation.value = settings.value_of(*variable);
        explanation.external = variable->layers.mark_external();
        explanation.readings = read_typed(explanation.value);
    }
    add_statements(explanation, settings);
    add_hint_of_spelling(explanation);
    add_hint_of_near_miss(explanation, settings, other_names);
    return explanation;
}

void write_json(JSON_WRITER& out, const EXPLANATION& explanation)
{
    out.begin_object();
    write_fields(out, explanation);
    out.end_object();
}

void write_fields(JSON_WRITER& out, const EXPLANATION& explanation)
{
    out.field("name", explanation.name);
    const bool value_is_known = !explanation.assignments.empty() || explanation.is_set == false;
    out.field("set", explanation.is_set);
    out.field("value", value_is_known ? std::optional(explanation.value) : std::nullopt);
    out.field("external", explanation.is_set ? std::optional(explanation.external) : std::nullopt);
    out.key("assignments");
    out.list(explanation.assignments, [&explanation](JSON_WRITER& writer, const EXPLAINED_ASSIGNMENT& assignment)
             { write_assignment(writer, assignment, &assignment == &explanation.assignments.back()); });
    out.key("readings");
    write_json(out, explanation.readings);
    out.field("known", explanation.known != nullptr);
    out.field_or_null("default", explanation.known == nullptr ? "" : explanation.known->default_text);
    out.key("hints");
    out.list(explanation.hints, write_hint);
}
