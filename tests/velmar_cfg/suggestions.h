// Lint's suggestions, applied as a program would apply them: the replacement takes the place of the whole line or item.
#ifndef TESTS_VELMAR_CFG_SUGGESTIONS_H
#define TESTS_VELMAR_CFG_SUGGESTIONS_H

#include <algorithm>
#include <cstdint>
#include <gmock/gmock.h>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tools/velmar-cfg/lint/settings_rules.h"
#include "tools/velmar-cfg/settings/settings.h"

inline LAYER layer_of(LAYER_KIND kind, const std::string& text)
{
    const char* const path = is_file(kind) ? "velmar.ini" : inline_source;
    return {kind, std::make_shared<const INPUT_FILE>(INPUT_FILE{path, text, {}})};
}

inline std::vector<FINDING> findings_of(LAYER_KIND kind, const std::string& text)
{
    return lint_settings({layer_of(kind, text)});
}

inline std::map<std::string, std::string> values_of(LAYER_KIND kind, const std::string& text)
{
    const SETTINGS settings({layer_of(kind, text)});
    std::map<std::string, std::string> values;
    for (const VARIABLE& variable : settings.variables())
        values[std::string(settings.name_of(variable))] = settings.value_of(variable);
    return values;
}

inline std::size_t position_of(const FINDING& finding)
{
    return finding.line ? *finding.line : *finding.item;
}

// The text with the suggestion in the place of its line or item, and how many lines or items it is.
struct APPLIED
{
    std::string text;
    std::size_t parts;
};

inline APPLIED apply(LAYER_KIND kind, const std::string& text, const FINDING& finding)
{
    const LAYERS layers = {layer_of(kind, text)};
    const std::string& old_text = layers[0].source->bytes; // what the statements look into
    STATEMENTS statements(layers);
    STATEMENT statement{};
    while (statements.next(statement) && statement.position != position_of(finding))
    {
    }
    const auto begin = static_cast<std::size_t>(statement.text.data() - old_text.data());
    const std::string& with = *finding.replacement;
    const char separator = is_file(kind) ? '\n' : separator_of_items(text);
    return {text.substr(0, begin) + with + text.substr(begin + statement.text.size()),
            1 + static_cast<std::size_t>(std::ranges::count(with, separator))};
}

inline std::set<std::string> reasons_at(const std::vector<FINDING>& findings, std::size_t first, std::size_t count)
{
    std::set<std::string> reasons;
    for (const FINDING& finding : findings)
    {
        if (position_of(finding) >= first && position_of(finding) < first + count)
            reasons.insert(finding.reason);
    }
    return reasons;
}

// Whether the finding concerns the whole inline text: it suggests the other separator before its first item.
inline bool concerns_whole_text(const std::string& text, const FINDING& finding)
{
    const std::string first_item = text.substr(0, text.find(separator_of_items(text)));
    const std::string other(1, separator_of_items(text) == ';' ? ':' : ';');
    return finding.reason == "separator" && finding.replacement == other + first_item;
}

// Fails unless every suggestion removes its finding, brings none that its line had not, and agrees with the others for
// its line. Returns how many there were; of more than `most` lines, the others are passed over.
inline std::size_t expect_that_suggestions_help(LAYER_KIND kind, const std::string& text, std::size_t most = SIZE_MAX)
{
    const std::vector<FINDING> findings = findings_of(kind, text);
    std::map<std::size_t, std::string> suggested;
    for (const FINDING& finding : findings)
    {
        if (!finding.replacement || suggested.size() >= most)
            continue;
        const std::size_t position = position_of(finding);
        const auto other = suggested.emplace(position, *finding.replacement).first;
        EXPECT_EQ(other->second, *finding.replacement) << finding.reason << " in '" << text << "'";
        const APPLIED applied = apply(kind, text, finding);
        const bool whole_text = !is_file(kind) && concerns_whole_text(text, finding);
        std::vector<FINDING> findings_after = findings_of(kind, applied.text);
        // What was told of a later item moves to the first one when the other separator now puts the text right.
        if (!is_file(kind) && !whole_text && reasons_at(findings, 1, SIZE_MAX - 1).contains("separator"))
            std::erase_if(findings_after,
                          [&](const FINDING& found) { return concerns_whole_text(applied.text, found); });
        const std::set<std::string> before =
            whole_text ? reasons_at(findings, 1, SIZE_MAX - 1) : reasons_at(findings, position, 1);
        const std::set<std::string> after = whole_text ? reasons_at(findings_after, 1, SIZE_MAX - 1)
                                                       : reasons_at(findings_after, position, applied.parts);
        EXPECT_FALSE(after.contains(finding.reason))
            << finding.reason << " in '" << text << "', applied: '" << applied.text << "'";
        EXPECT_THAT(before, testing::IsSupersetOf(after))
            << finding.reason << " in '" << text << "', applied: '" << applied.text << "'";
    }
    return suggested.size();
}

#endif
