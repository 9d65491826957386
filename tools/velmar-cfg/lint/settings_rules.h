// Lines of settings files, and items of VELMAR_INI_VARS, that are ignored or read otherwise than they look.
//
// What becomes of a line is taken from the layers, and with them from the library; only the question whether that is
// what the line looks like is answered here.
#ifndef TOOLS_VELMAR_CFG_LINT_SETTINGS_RULES_H
#define TOOLS_VELMAR_CFG_LINT_SETTINGS_RULES_H

#include <vector>

#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/settings/settings.h"

// The findings of every statement, in the order of the statements. The settings are those of all their layers'
// variables.
std::vector<FINDING> lint_settings(const SETTINGS& settings);

// The findings of one statement. `assignment` is its index among the assignments, when it is stored.
std::vector<FINDING> lint_statement(const SETTINGS& settings, const STATEMENT& statement, ASSIGNMENT_INDEX assignment);

#endif
