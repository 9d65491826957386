#include "tools/velmar-cfg/lint/explanation.h"

#include <algorithm>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/ini_text.h"
#include "tools/velmar-cfg/base/json_values.h"
#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/lint/settings_rules.h"
#include "tools/velmar-cfg/settings/variable_name.h"

namespace
{
// Whether the comment of a statement, or the line that is all comment, would set the variable if it were none.
bool would_set(const STATEMENT& statement, const std::string& name)
{
    std::string_view comment = statement.text;
    comment.remove_prefix(std::min(statement.kept, comment.size()));
    comment.remove_prefix(std::min(comment.find_first_not_of(";#/ \t"), comment.size()));
    std::string line(comment);
    std::string commented_name;
    std::string value;
    return zon_cfg::parse_settings_line(line, commented_name, value) == zon_cfg::SETTINGS_LINE::ASSIGNMENT &&
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
                    explanation.hints.push_back({finding.reason, location_of(layers, statement) + ": " +
                                                                     finding.message + "; " + finding.instead});
            }
        }
        if (layers.layer_of(statement).is_file() && would_set(statement, explanation.name))
            explanation.hints.push_back({"in-comment", location_of(layers, statement) +
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

}

EXPLANATION explain_variable(const std::string& name, const SETTINGS& settings)
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

nlohmann::ordered_json explanation_as_json(const EXPLANATION& explanation, const SETTINGS_LAYERS& layers)
{
    nlohmann::ordered_json assignments = nlohmann::ordered_json::array();
    for (const STATEMENT* const statement : explanation.assignments)
    {
        nlohmann::ordered_json row = {{"name", statement->name}, {"value", statement->value}};
        row.update(location_as_json(layers, statement));
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
