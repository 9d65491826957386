// Shows an edit of a settings file without secrets.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_SETTINGS_DIFFERENCE_H
#define TOOLS_VELMAR_CFG_SETTINGS_SETTINGS_DIFFERENCE_H

#include <string>

#include "tools/velmar-cfg/base/file_edit.h"
#include "tools/velmar-cfg/settings/secrets.h"

// The unified diff of the edit with secrets hidden. Secrets of the old text are hidden even if they stand below another
// name in the new one.
std::string shown_settings_difference(const FILE_EDIT& edit, SECRETS& secrets);

#endif
