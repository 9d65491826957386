// What is shown of an edit of a settings file, without secrets.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_SETTINGS_DIFFERENCE_H
#define TOOLS_VELMAR_CFG_SETTINGS_SETTINGS_DIFFERENCE_H

#include <string>
#include <string_view>

#include "tools/velmar-cfg/base/file_edit.h"
#include "tools/velmar-cfg/settings/secrets.h"

// In the unified form, with secrets hidden: also those of the old text that stand below another name in the new one.
std::string shown_settings_difference(const FILE_EDIT& edit, SECRETS& secrets);

// `text` with every word of `secret` hidden that does not stand in `shown`.
std::string hide_words(std::string text, std::string_view secret, std::string_view shown, SECRETS& secrets);

#endif
