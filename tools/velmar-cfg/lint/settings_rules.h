// Lines of settings files, and items of VELMAR_INI_VARS, that are ignored or read otherwise than they look, each with
// the text to write instead.
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

// The rules with what they need of all statements of the layers, which must outlive this.
class SETTINGS_RULES
{
public:
    explicit SETTINGS_RULES(const LAYERS& all_layers) : layers(all_layers), namesakes(layers), intentions(namesakes) {}

    // The findings of one statement. `number` is its own, or that of the next assignment when it is none; its texts
    // must be parts of the layers.
    std::vector<FINDING> findings(const STATEMENT& statement, ASSIGNMENT_NUMBER number, bool is_first = false);

    // Hands every statement with its findings over, in the order of the statements.
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

// Hands the findings of every statement over, in the order of the statements.
void lint_settings(const LAYERS& layers, const std::function<void(const FINDING&)>& take);

// The same, all at once.
std::vector<FINDING> lint_settings(const LAYERS& layers);

#endif
