// Environment variables that do something else than they look, and what is not there to be checked.
#ifndef TOOLS_VELMAR_CFG_LINT_ENVIRONMENT_RULES_H
#define TOOLS_VELMAR_CFG_LINT_ENVIRONMENT_RULES_H

#include <vector>

#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/secrets.h"

// The findings of the variables that choose settings files, as they are set now. The value of each counts as its first
// and only item, and is shown with what is assigned to secret names hidden. VELMAR_INI_VARS is a layer of the settings
// and has rules of its own.
std::vector<FINDING> lint_environment(SECRETS& secrets);

// That no settings file was found and VELMAR_INI_VARS is not set: there is nothing to check.
FINDING no_settings_file();

// The same of the preference file.
FINDING no_preference_file();

// The findings beside those of lines and items: of the environment, and that there are no layers.
std::vector<FINDING> findings_beside_lines(const LAYERS& layers, SECRETS& secrets);

#endif
