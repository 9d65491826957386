// Rules for lines of a preference file that are ignored, mean something else than they seem to, or are lost at the next
// save.
#ifndef TOOLS_VELMAR_CFG_LINT_PREFERENCE_RULES_H
#define TOOLS_VELMAR_CFG_LINT_PREFERENCE_RULES_H

#include <functional>

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/settings/secrets.h"

// Hands the findings over in the order of the lines, as far as the file could be read.
void lint_preferences(const INPUT_FILE& file, SECRETS& secrets, const std::function<void(const FINDING&)>& take);

#endif
