// Preference files and values with the secrets in them hidden: those that the catalogue marks, and those of secret
// names.
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_SECRETS_H
#define TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_SECRETS_H

#include <optional>
#include <string>
#include <string_view>

#include "tools/velmar-cfg/settings/secrets.h"

// The name in any letter case.
bool is_secret_preference_name(std::string_view name, const SECRETS& secrets);

// The text of a preference file with the secret values in it hidden; the library reads the same from it otherwise. Of a
// line without an assignment, what follows a secret name is hidden. Nothing when nothing is to be hidden.
std::optional<std::string> hide_in_preference_text(std::string_view text, SECRETS& secrets);

// A message about an edit of the file, with the secret values of its text and of the change hidden wherever they stand.
std::string hide_in_message(std::string_view message, std::string_view text, std::string_view name,
                            std::string_view value, SECRETS& secrets, SHORT_SECRETS of_short = SHORT_SECRETS::QUOTED);

// The value as it is to be shown.
std::string hide_in_preference(std::string_view name, std::string_view value, SECRETS& secrets);

#endif
