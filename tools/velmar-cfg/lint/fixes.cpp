// Suggestions are applied in rounds, each of which examines the text that the last one made. A replacement changes only
// the variables of its own line, whatever becomes of others in the same round. But replacements that set the same
// variable must agree on its spelling, or one would cause a finding in the other. If they do not agree, only the first
// is applied, and the others wait for the next round, which suggests the spelling of the first to all of them. A line
// behind a line that waits also waits, so that none overrides a line that is still to be replaced.
//
// Before the text is handed over, every variable that no replaced line names is compared with what it was.
//
// Cost: a round is one run of the rules, whose time grows with the text alone. The number of rounds does not depend on
// the number of lines: nearly every file needs two, the last of which finds nothing to do.
#include "tools/velmar-cfg/lint/fixes.h"

#include <algorithm>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/base/text_edits.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/lint/settings_rules.h"
#include "tools/velmar-cfg/settings/library_rules.h"
#include "tools/velmar-cfg/settings/settings_edit.h"

namespace
{
constexpr int most_rounds = 100; // more than a file was seen to need by far: that the rounds end hangs on no rule

// What the findings of a line suggest for it, which is the same text for all; null for nothing, or when one that would
// go is ignored.
const std::string* suggestion_of(const std::vector<FINDING>& findings, const REASONS& ignored)
{
    const std::string* text = nullptr;
    for (const FINDING& finding : findings)
    {
        if (!finding.replacement)
            continue;
        if (ignored.contains(finding.reason))
            return nullptr;
        text = &*finding.replacement;
    }
    return text;
}

// Whether one of the variables that the text in the place of the line sets is not set by the line, and was set by
// something before any fix. Which of the two values was meant is for a person to decide.
bool sets_what_others_set(const STATEMENT& statement, const std::vector<std::string>& names, const SETTINGS& before)
{
    return std::ranges::any_of(names,
                               [&](const std::string& name)
                               {
                                   const bool own =
                                       statement.outcome == OUTCOME::STORED && same_name(statement.name, name);
                                   return !own && before.find(name) != nullptr;
                               });
}

// The variables that the replaced lines of a round come to set, each as they spell it; nothing for one for which a line
// waits.
using NEW_SPELLINGS = BY_VARIABLE_NAME<std::optional<std::string>>;

// Whether the line whose replacement sets these variables is replaced in this round.
bool can_go_now(const std::vector<std::string>& names, NEW_SPELLINGS& spellings)
{
    const bool can_go = std::ranges::all_of(names,
                                            [&spellings](const std::string& name)
                                            {
                                                const auto found = spellings.find(name);
                                                return found == spellings.end() || found->second == name;
                                            });
    for (const std::string& name : names)
        spellings[name] = can_go ? std::optional(name) : std::nullopt;
    return can_go;
}

// Adds the names of the lines that are replaced to `named`, before and afterwards.
std::vector<TEXT_EDIT> edits_of_round(const LAYERS& layers, std::size_t index, const REASONS& ignored,
                                      const SETTINGS& before, VARIABLE_NAMES& named)
{
    const std::string& text = layers[index].source->bytes;
    NEW_SPELLINGS spellings;
    std::vector<TEXT_EDIT> edits;
    SETTINGS_RULES(layers).run(
        [&](const STATEMENT& statement, const std::vector<FINDING>& findings)
        {
            if (statement.layer != index)
                return;
            const std::string* const replacement = suggestion_of(findings, ignored);
            if (replacement == nullptr)
                return;
            const std::vector<std::string> names = names_set_in(*replacement);
            if (sets_what_others_set(statement, names, before) || !can_go_now(names, spellings))
                return;
            edits.push_back(
                {static_cast<std::size_t>(statement.text.data() - text.data()), statement.text.size(), *replacement});
            named.insert(names.begin(), names.end());
            if (statement.outcome == OUTCOME::STORED)
                named.emplace(statement.name);
        });
    return edits;
}
}

FIXED_TEXT fix_findings(LAYERS layers, std::size_t index, const REASONS& ignored)
{
    const SETTINGS before(layers);
    VARIABLE_NAMES named;
    std::size_t fixes = 0;
    for (int round = 0; round < most_rounds; ++round)
    {
        const std::vector<TEXT_EDIT> edits = edits_of_round(layers, index, ignored, before, named);
        if (edits.empty())
            break;
        fixes += edits.size();
        INPUT_FILE fixed = *layers[index].source;
        fixed.bytes = with_edits(fixed.bytes, edits);
        layers[index].source = std::make_shared<const INPUT_FILE>(std::move(fixed));
    }
    FIXED_TEXT result{layers[index].source->bytes, fixes, {}};
    if (const std::optional<std::string> changed = other_change(before, SETTINGS(std::move(layers)), named))
        result.refusal = in_single_quotes(*changed) +
                         " would change too, which no replaced line names; report this as a fault of velmar-cfg";
    return result;
}

std::optional<std::string> other_change(const SETTINGS& before, const SETTINGS& after, const VARIABLE_NAMES& named)
{
    for (const SETTINGS* const settings : {&before, &after})
    {
        const SETTINGS& others = settings == &before ? after : before;
        for (const VARIABLE& variable : settings->variables())
        {
            std::string name(settings->name_of(variable));
            const VARIABLE* const other = others.find(name);
            if ((other == nullptr || others.value_of(*other) != settings->value_of(variable)) && !named.contains(name))
                return name;
        }
    }
    return std::nullopt;
}

std::string with_secrets_shown(std::string_view text, std::string_view hidden, std::string_view original)
{
    std::map<std::string_view, std::string_view> secrets; // by their marks
    TEXT_PARTS known(hidden);
    std::size_t at = 0; // in the original
    for (TEXT_PART part{}; known.next(part);)
    {
        const std::size_t size = part.hidden ? hidden_part(part.text).size : part.text.size();
        if (part.hidden)
            secrets[part.text] = original.substr(at, size);
        at += size;
    }
    std::string shown;
    TEXT_PARTS parts(text);
    for (TEXT_PART part{}; parts.next(part);)
        shown += part.hidden ? secrets.at(part.text) : part.text;
    return shown;
}
