// Preference files and values with the secrets in them hidden: those that the catalogue marks, and those of secret
// names.
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_SECRETS_H
#define TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_SECRETS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/settings/secrets.h"
#include "tools/velmar-cfg/settings/secrets_in_messages.h"

// The name in any letter case.
bool is_secret_preference_name(std::string_view name, const SECRETS& secrets);

// The text of a preference file with the secret values in it hidden; the library reads the same from it otherwise. Of a
// line without an assignment, what follows a secret name is hidden. Nothing when nothing is to be hidden.
std::optional<std::string> hide_in_preference_text(std::string_view text, SECRETS& secrets);

// Adds the value to the secrets that are to be hidden in messages about it, if it is one.
void add_secret_of_preference(std::string_view name, std::string_view value, const SECRETS& secrets,
                              std::vector<SECRET_TEXT>& to);

// All secret values of the text of a preference file, as parts of it.
std::vector<SECRET_TEXT> secrets_of_preference_text(std::string_view text, const SECRETS& secrets);

// The value as it is to be shown.
std::string hide_in_preference(std::string_view name, std::string_view value, SECRETS& secrets);

#endif
