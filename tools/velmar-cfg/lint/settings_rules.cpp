// A statement is examined in two steps. The rules say what is odd about it; then, if anything is, the text that was
// meant is made of it, and the rules examine that text in the place of the statement. A finding suggests the text only
// if the text is free of that finding and has no finding that the statement did not have. So each suggestion removes
// its finding and causes no other, whatever the other rules say of it.
//
// A statement without findings, as nearly all are, costs one pass of the rules. The place of its variable is not looked
// up where it is known to be the first assignment of all to it. Findings are handed over statement by statement, so
// that a file full of them takes no memory for them.
#include "tools/velmar-cfg/lint/settings_rules.h"

#include <algorithm>
#include <memory>

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/lint/written_form.h"
#include "tools/velmar-cfg/settings/library_rules.h"
#include "tools/velmar-cfg/settings/variable_name.h"

namespace
{
constexpr const char* separator_reason = "separator";

void add_reasons(REASONS& reasons, EXAMINATION examination)
{
    for (NOTICE& notice : examination.notices())
        reasons.insert(std::move(notice.finding.reason));
}

REASONS reasons_of(const std::vector<NOTICE>& notices)
{
    REASONS reasons;
    for (const NOTICE& notice : notices)
        reasons.insert(notice.finding.reason);
    return reasons;
}

// The lines of a text that takes the place of a line.
std::vector<std::string_view> lines_of(std::string_view text)
{
    std::vector<std::string_view> lines{text.substr(0, text.find('\n'))};
    while (lines.back().data() + lines.back().size() != text.data() + text.size())
    {
        text.remove_prefix(lines.back().size() + 1);
        lines.push_back(text.substr(0, text.find('\n')));
    }
    return lines;
}

// "write 'a = 1'", as far as people want to read it.
std::string advice_for(std::string_view text)
{
    constexpr std::size_t most = 3; // lines that are shown
    const std::vector<std::string_view> lines = lines_of(text);
    std::string advice;
    for (std::size_t i = 0; i < std::min(most, lines.size()); ++i)
        advice += (i == 0 ? "write " : " and ") + in_single_quotes(without_outer_white(lines[i]));
    if (lines.size() > most)
        advice += " and " + std::to_string(lines.size() - most) + " more";
    return advice + (lines.size() > 1 ? " on lines of their own" : "");
}

// Whether its statements are items of a text.
bool is_inline_text(const LAYER& layer)
{
    return !is_file(layer.kind) && layer.literals == nullptr;
}

// The layers with another inline text.
LAYERS with_inline_text(const LAYERS& layers, const std::string& text)
{
    LAYERS changed = layers;
    for (LAYER& layer : changed)
    {
        if (is_inline_text(layer))
            layer.source = std::make_shared<const INPUT_FILE>(INPUT_FILE{inline_source, text, {}});
    }
    return changed;
}
}

// What the rules say of the inline text alone.
REASONS SETTINGS_RULES::reasons_of_items() const
{
    REASONS reasons;
    STATEMENTS statements(layers);
    STATEMENT statement{};
    for (ASSIGNMENT_NUMBER number = 0; statements.next(statement);)
    {
        const bool is_assignment = statement.outcome == OUTCOME::STORED;
        if (is_inline_text(layers[statement.layer]))
            add_reasons(reasons, EXAMINATION(layers, namesakes, statement, {number, is_assignment, false, false}));
        number += is_assignment ? 1 : 0;
    }
    return reasons;
}

std::optional<std::string> SETTINGS_RULES::text_meant_by(const STATEMENT& statement) const
{
    const LAYER& layer = layers[statement.layer];
    if (is_file(layer.kind))
        return intentions.of_line(statement.text, statement.position == 1);
    return statement.outcome == OUTCOME::STORED && is_inline_text(layer)
               ? intentions.of_item(statement.text, separator_of_items(layer.source->bytes))
               : std::nullopt;
}

// What the rules say of a text in the place of the statement; nothing when they say anything but what is `allowed`.
std::optional<REASONS> SETTINGS_RULES::reasons_of_text(const std::string& text, const STATEMENT& statement,
                                                       const STANDING& standing, const REASONS& allowed) const
{
    REASONS reasons;
    VARIABLE_NAMES names;
    STATEMENT changed = statement;
    const auto examine = [&]
    {
        add_reasons(reasons,
                    EXAMINATION(layers, namesakes, changed, {standing.number, standing.is_assignment, false, true}));
        if (changed.outcome == OUTCOME::STORED)
        {
            // Another part of the text may set the same variable, and may spell it in another way.
            const auto [first, is_new] = names.emplace(changed.name);
            if (!is_new)
                reasons.emplace("overridden");
            if (*first != changed.name)
                reasons.emplace("letter-case");
        }
        return std::ranges::includes(allowed, reasons);
    };
    if (is_file(layers[statement.layer].kind))
    {
        LINE_PARTS parts;
        for (const std::string_view line : lines_of(text))
        {
            changed.text = line;
            changed.outcome = outcome_of_line(line, parts);
            changed.name = parts.name;
            changed.value = parts.value;
            if (!examine())
                return std::nullopt;
        }
        return reasons;
    }
    // The separator is that of the whole text: it stands first.
    const std::string items = separator_of_items(layers[statement.layer].source->bytes) + text;
    INLINE_ITEMS walk(items);
    std::string name;
    std::string value;
    while (walk.next(changed.outcome, name, value))
    {
        changed.text = walk.text();
        changed.name = name;
        changed.value = value;
        if (!examine())
            return std::nullopt;
    }
    return reasons;
}

void SETTINGS_RULES::suggest(std::vector<NOTICE>& notices, const STATEMENT& statement, const STANDING& standing) const
{
    const std::optional<std::string> text = text_meant_by(statement);
    if (!text || *text == statement.text)
        return;
    const std::optional<REASONS> after = reasons_of_text(*text, statement, standing, reasons_of(notices));
    if (!after)
        return;
    // A text that keeps an error is not what was meant: the advice against the error says to write another.
    if (std::ranges::any_of(
            notices, [&after](const NOTICE& notice)
            { return notice.finding.severity == SEVERITY::ERROR && after->contains(notice.finding.reason); }))
        return;
    const bool is_comment = text->find(comment_sign) == text->find_first_not_of(" \t");
    for (NOTICE& notice : notices)
    {
        if (after->contains(notice.finding.reason))
            continue;
        notice.finding.replacement = text;
        if (notice.condition != nullptr)
            notice.finding.instead =
                is_comment ? "put \"#\" before it to make it a comment" : advice_for(*text) + notice.condition;
    }
}

// Whether the inline text mixes both separators and is free of that, and of all that it had not, with the other one at
// its beginning. Asked once a text, and a walk through all settings only for one that mixes them.
bool SETTINGS_RULES::other_separator_helps(const std::string& text)
{
    if (!leading_separator_helps)
    {
        const char other = separator_of_items(text) == ';' ? ':' : ';';
        leading_separator_helps = false;
        const REASONS before = mixes_separators(text) ? reasons_of_items() : REASONS();
        if (before.contains(separator_reason))
        {
            const LAYERS changed = with_inline_text(layers, other + text);
            const REASONS after = SETTINGS_RULES(changed).reasons_of_items();
            leading_separator_helps = !after.contains(separator_reason) && std::ranges::includes(before, after);
        }
    }
    return *leading_separator_helps;
}

// What one sign more at the beginning of the text puts right is told of its first item. The other items are then not
// those that were meant, and nothing is suggested for them.
void SETTINGS_RULES::suggest_other_separator(std::vector<NOTICE>& notices, const STATEMENT& statement) const
{
    const INPUT_FILE& source = *layers[statement.layer].source;
    std::erase_if(notices, [](const NOTICE& notice) { return notice.finding.reason == separator_reason; });
    if (statement.position != 1)
        return;
    FINDING finding = separator_finding(source, statement.text.size());
    finding.item = statement.position;
    const char other = separator_of_items(source.bytes) == ';' ? ':' : ';';
    finding.instead = std::string("begin the text with \"") + other + "\"";
    finding.replacement = other + std::string(statement.text);
    notices.push_back({std::move(finding), nullptr});
}

std::vector<FINDING> SETTINGS_RULES::findings(const STATEMENT& statement, ASSIGNMENT_NUMBER number, bool is_first)
{
    const STANDING standing{number, statement.outcome == OUTCOME::STORED, is_first, false};
    std::vector<NOTICE> notices = EXAMINATION(layers, namesakes, statement, standing).notices();
    const LAYER& layer = layers[statement.layer];
    if (is_inline_text(layer) && other_separator_helps(layer.source->bytes))
        suggest_other_separator(notices, statement);
    else if (!notices.empty())
        suggest(notices, statement, standing);
    std::vector<FINDING> findings;
    findings.reserve(notices.size());
    for (NOTICE& notice : notices)
    {
        findings.push_back(std::move(notice.finding));
        if (std::optional<std::size_t>& column = findings.back().column)
            column = column_before_hiding(statement.text, *column - 1);
    }
    return findings;
}

void SETTINGS_RULES::run(const std::function<void(const STATEMENT&, const std::vector<FINDING>&)>& take)
{
    STATEMENTS statements(layers);
    STATEMENT statement{};
    std::size_t variables = 0; // that a statement has set
    for (ASSIGNMENT_NUMBER number = 0; statements.next(statement);)
    {
        const bool is_assignment = statement.outcome == OUTCOME::STORED;
        const bool is_first = is_assignment && namesakes.is_first_in_layer(number, variables);
        take(statement, findings(statement, number, is_first));
        variables += is_first ? 1U : 0U;
        number += is_assignment ? 1 : 0;
    }
}

void lint_settings(const LAYERS& layers, const std::function<void(const FINDING&)>& take)
{
    SETTINGS_RULES(layers).run([&take](const STATEMENT&, const std::vector<FINDING>& findings)
                               { std::ranges::for_each(findings, take); });
}

std::vector<FINDING> lint_settings(const LAYERS& layers)
{
    std::vector<FINDING> findings;
    lint_settings(layers, [&findings](const FINDING& finding) { findings.push_back(finding); });
    return findings;
}
