// Hides secrets in preference files and values. Secret are the preferences that the catalogue marks, and those with
// secret names.
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_SECRETS_H
#define TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_SECRETS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/settings/secrets.h"
#include "tools/velmar-cfg/settings/secrets_in_messages.h"

// Whether the name is secret, in any letter case.
bool is_secret_preference_name(std::string_view name, const SECRETS& secrets);

// The text of a preference file with its secret values hidden. The library reads everything else from it as before. In
// a line without an assignment, what follows a secret name is hidden. Nothing if there is nothing to hide.
std::optional<std::string> hide_in_preference_text(std::string_view text, SECRETS& secrets);

// Adds the value to the secrets that are to be hidden in messages about it, if it is one.
void add_secret_of_preference(std::string_view name, std::string_view value, const SECRETS& secrets,
                              std::vector<SECRET_TEXT>& to);

// All secret values of the text of a preference file, as views of it.
std::vector<SECRET_TEXT> secrets_of_preference_text(std::string_view text, const SECRETS& secrets);

// The value as it is to be shown.
std::string hide_in_preference(std::string_view name, std::string_view value, SECRETS& secrets);

#endif
