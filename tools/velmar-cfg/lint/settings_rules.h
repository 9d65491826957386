// Lines of settings files, and items of VELMAR_INI_VARS, that are ignored or read otherwise than they look, each with
// the text to write instead.
#ifndef TOOLS_VELMAR_CFG_LINT_SETTINGS_RULES_H
#define TOOLS_VELMAR_CFG_LINT_SETTINGS_RULES_H

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tools/velmar-cfg/lint/examination.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/lint/intentions.h"
#include "tools/velmar-cfg/settings/settings.h"

using REASONS = std::set<std::string>;

// The rules with what they need of all settings, which must outlive this and be those of all their layers' variables.
class SETTINGS_RULES
{
public:
    explicit SETTINGS_RULES(const SETTINGS& all_settings) : settings(all_settings), intentions(all_settings) {}

    // The findings of one statement. The standing's index is that of its assignment, or of the next one when it is
    // none.
    std::vector<FINDING> findings(const STATEMENT& statement, const STANDING& standing);

private:
    std::optional<std::string> text_meant_by(const STATEMENT& statement) const;
    REASONS reasons_of_text(const std::string& text, const STATEMENT& statement, const STANDING& standing) const;
    void suggest(std::vector<NOTICE>& notices, const STATEMENT& statement, const STANDING& standing) const;
    bool other_separator_helps(const std::string& text);
    void suggest_other_separator(std::vector<NOTICE>& notices, const STATEMENT& statement) const;

    const SETTINGS& settings;
    const INTENTIONS intentions;
    std::optional<bool> leading_separator_helps; // once asked
};

// Hands the findings of every statement over, in the order of the statements.
void lint_settings(const SETTINGS& settings, const std::function<void(const FINDING&)>& take);

// The same, all at once.
std::vector<FINDING> lint_settings(const SETTINGS& settings);

#endif
