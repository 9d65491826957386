// Lines of settings files, and items of VELMAR_INI_VARS, that are ignored or read otherwise than they look.
//
// What becomes of a line is taken from the layers, and with them from the library; only the question whether that is
// what the line looks like is answered here.
#ifndef TOOLS_VELMAR_CFG_LINT_SETTINGS_RULES_H
#define TOOLS_VELMAR_CFG_LINT_SETTINGS_RULES_H

#include <vector>

#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/settings/layers.h"

// The findings of every statement, in the order of the statements.
std::vector<FINDING> lint_settings(const SETTINGS_LAYERS& layers);

// The findings of one statement of `layers`.
std::vector<FINDING> lint_statement(const SETTINGS_LAYERS& layers, const STATEMENT& statement);

#endif
