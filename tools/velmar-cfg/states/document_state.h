// The states that documents hold.
#ifndef TOOLS_VELMAR_CFG_STATES_DOCUMENT_STATE_H
#define TOOLS_VELMAR_CFG_STATES_DOCUMENT_STATE_H

#include <string>

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/states/state.h"

// The state of a snapshot or a run report, with those parts of it that it knows, and the scope's changes made to it.
// Throws TOOL_ERROR(BAD_INPUT) for a file that is neither, and TOOL_ERROR(USAGE) when the scope asks for regression
// runs and the document is of another. All but its name is set. Among the problems of `files` are those that kept what
// is asked for from being read when the document was written.
STATE document_state(const std::string& path, const STATE_PARTS& parts, const SETTINGS_SCOPE& scope,
                     INPUT_FILES& files);

#endif
