// Suggestions are applied in rounds. In a round, no two replaced lines have a variable in common, neither by what they
// set before nor by what they set afterwards: what the rules say of a line depends on the lines of the same variables,
// so that each suggestion of the round stays as right as if it were the only one. What is left over waits for the next
// round, which examines the new text.
//
// Cost: a round is one run of the rules; nearly every file needs one or two, the last of which finds nothing to do.
#include "tools/velmar-cfg/lint/fixes.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/text_edits.h"
#include "tools/velmar-cfg/lint/settings_rules.h"
#include "tools/velmar-cfg/settings/library_rules.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/settings_edit.h"
#include "tools/velmar-cfg/settings/variable_name.h"

namespace
{
constexpr int most_rounds = 100; // for a file in which hundreds of lines set one variable wrongly

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

// Whether it is a guess that the line was meant to set what its replacement sets: it assigns nothing as it stands, or
// has one of these findings.
bool is_guess(const STATEMENT& statement, const std::vector<FINDING>& findings)
{
    constexpr std::string_view reasons[] = {"almost-known", "blanks-in-name", "second-assignment"};
    return statement.outcome != OUTCOME::STORED ||
           std::ranges::any_of(findings, [&reasons](const FINDING& finding)
                               { return std::ranges::find(reasons, finding.reason) != std::end(reasons); });
}

// Whether the text in the place of the line sets a variable that the line does not set, and that something set before
// any fix.
bool sets_what_others_set(const STATEMENT& statement, const std::string& replacement, const SETTINGS& before)
{
    return std::ranges::any_of(names_set_in(replacement),
                               [&](const std::string& name)
                               {
                                   const bool own =
                                       statement.outcome == OUTCOME::STORED && same_name(statement.name, name);
                                   return !own && before.find(name) != nullptr;
                               });
}

// Takes the variables of a line and of its replacement, unless one of them is taken.
bool take_variables(const STATEMENT& statement, const std::string& replacement, VARIABLE_NAMES& taken)
{
    std::vector<std::string> names = names_set_in(replacement);
    if (statement.outcome == OUTCOME::STORED)
        names.emplace_back(statement.name);
    if (std::ranges::any_of(names, [&taken](const std::string& name) { return taken.contains(name); }))
        return false;
    taken.insert(names.begin(), names.end());
    return true;
}

std::vector<TEXT_EDIT> edits_of_round(const LAYERS& layers, std::size_t index, const REASONS& ignored,
                                      const SETTINGS& before)
{
    const std::string& text = layers[index].source->bytes;
    VARIABLE_NAMES taken;
    std::vector<TEXT_EDIT> edits;
    SETTINGS_RULES(layers).run(
        [&](const STATEMENT& statement, const std::vector<FINDING>& findings)
        {
            if (statement.layer != index)
                return;
            const std::string* const replacement = suggestion_of(findings, ignored);
            if (replacement != nullptr &&
                !(is_guess(statement, findings) && sets_what_others_set(statement, *replacement, before)) &&
                take_variables(statement, *replacement, taken))
                edits.push_back({static_cast<std::size_t>(statement.text.data() - text.data()), statement.text.size(),
                                 *replacement});
        });
    return edits;
}
}

FIXED_TEXT fix_findings(LAYERS layers, std::size_t index, const REASONS& ignored)
{
    const LAYERS unchanged = layers;
    const SETTINGS before(unchanged);
    std::size_t fixes = 0;
    for (int round = 0; round < most_rounds; ++round)
    {
        const std::vector<TEXT_EDIT> edits = edits_of_round(layers, index, ignored, before);
        if (edits.empty())
            break;
        fixes += edits.size();
        INPUT_FILE fixed = *layers[index].source;
        fixed.bytes = with_edits(fixed.bytes, edits);
        layers[index].source = std::make_shared<const INPUT_FILE>(std::move(fixed));
    }
    return {layers[index].source->bytes, fixes};
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
