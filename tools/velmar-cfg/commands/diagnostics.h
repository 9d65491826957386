// What the tool says beside its data.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_DIAGNOSTICS_H
#define TOOLS_VELMAR_CFG_COMMANDS_DIAGNOSTICS_H

#include <string>
#include <string_view>
#include <vector>

// Writes "velmar-cfg: ", the text made printable and an end of line to standard error.
void complain(std::string_view text);

// The same for each of the texts. Whether there was none.
bool complain_of(const std::vector<std::string>& texts);

#endif
