// Messages on standard error, apart from the answer of a command.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_DIAGNOSTICS_H
#define TOOLS_VELMAR_CFG_COMMANDS_DIAGNOSTICS_H

#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/settings/secrets.h"

// Writes "velmar-cfg: ", the text made printable and an end of line to standard error.
void complain(std::string_view text);

// The same for each of the texts. Returns whether there are none.
bool complain_of(const std::vector<std::string>& texts);

// If the masks of this run cannot be compared with those of other runs, says why.
void complain_of_key(const SECRETS& secrets);

#endif
