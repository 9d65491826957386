// Rules for environment variables that do not do what they seem to, and findings for missing files.
#ifndef TOOLS_VELMAR_CFG_LINT_ENVIRONMENT_RULES_H
#define TOOLS_VELMAR_CFG_LINT_ENVIRONMENT_RULES_H

#include <vector>

#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/secrets.h"

// The findings for the variables that choose settings files, with the values that they have now. A finding is about
// item 1 of its variable. What is assigned to secret names is hidden. VELMAR_INI_VARS is not checked here: it is a
// layer of the settings and has rules of its own.
std::vector<FINDING> lint_environment(SECRETS& secrets);

// The finding that there is nothing to check: no settings file was found, and VELMAR_INI_VARS is not set.
FINDING no_settings_file();

// The same for the preference file.
FINDING no_preference_file();

// The findings besides those of the layers: those of lint_environment(), and no_settings_file() if there are no layers.
std::vector<FINDING> findings_beside_lines(const LAYERS& layers, SECRETS& secrets);

#endif
