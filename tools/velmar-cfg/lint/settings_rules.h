// Rules for lines of settings files, and items of VELMAR_INI_VARS, that are ignored or mean something else than they
// seem to. Each finding says what to write instead.
#ifndef TOOLS_VELMAR_CFG_LINT_SETTINGS_RULES_H
#define TOOLS_VELMAR_CFG_LINT_SETTINGS_RULES_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/velmar-cfg/lint/examination.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/lint/intentions.h"
#include "tools/velmar-cfg/lint/namesakes.h"
#include "tools/velmar-cfg/lint/reasons.h"
#include "tools/velmar-cfg/settings/layers.h"

// The rules, and what they need to know of all statements of the layers. The layers must outlive this.
class SETTINGS_RULES
{
public:
    explicit SETTINGS_RULES(const LAYERS& all_layers) : layers(all_layers), namesakes(layers), intentions(namesakes) {}

    // The findings of one statement, whose texts must be parts of the layers. `number` is its own number, or that of
    // the next assignment if it is none.
    std::vector<FINDING> findings(const STATEMENT& statement, ASSIGNMENT_NUMBER number, bool is_first = false);

    // Hands over every statement with its findings, in the order of the statements.
    void run(const std::function<void(const STATEMENT&, const std::vector<FINDING>&)>& take);

private:
    std::optional<std::string> text_meant_by(const STATEMENT& statement) const;
    std::optional<REASONS> reasons_of_text(const std::string& text, const STATEMENT& statement,
                                           const STANDING& standing, const REASONS& allowed) const;
    void suggest(std::vector<NOTICE>& notices, const STATEMENT& statement, const STANDING& standing) const;
    bool other_separator_helps(const std::string& text);
    void suggest_other_separator(std::vector<NOTICE>& notices, const STATEMENT& statement) const;

    REASONS reasons_of_items() const;

    const LAYERS& layers;
    const NAMESAKES namesakes;
    const INTENTIONS intentions;
    std::optional<bool> leading_separator_helps; // once asked
};

// Hands over the findings of every statement, in the order of the statements.
void lint_settings(const LAYERS& layers, const std::function<void(const FINDING&)>& take);

// The same, all at once.
std::vector<FINDING> lint_settings(const LAYERS& layers);

#endif
