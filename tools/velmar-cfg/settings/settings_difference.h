// What is shown of an edit of a settings file, without secrets.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_SETTINGS_DIFFERENCE_H
#define TOOLS_VELMAR_CFG_SETTINGS_SETTINGS_DIFFERENCE_H

#include <string>

#include "tools/velmar-cfg/base/file_edit.h"
#include "tools/velmar-cfg/settings/secrets.h"

// In the unified form, with secrets hidden: also those of the old text that stand below another name in the new one.
std::string shown_settings_difference(const FILE_EDIT& edit, SECRETS& secrets);

#endif
