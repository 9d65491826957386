// The states that documents hold.
#ifndef TOOLS_VELMAR_CFG_STATES_DOCUMENT_STATE_H
#define TOOLS_VELMAR_CFG_STATES_DOCUMENT_STATE_H

#include <string>

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/states/state.h"

// The state of a snapshot or a run report: the parts asked for, as far as it knows them, with the scope's changes. The
// caller sets the name and the description of the changes. Throws TOOL_ERROR(BAD_INPUT) for a file that is neither, and
// TOOL_ERROR(USAGE) if the scope asks for regression runs and the document is not of one. If files for these parts
// could not be read when the document was written, the problems of `files` say so.
STATE document_state(const std::string& path, const STATE_PARTS& parts, const SETTINGS_SCOPE& scope,
                     INPUT_FILES& files);

#endif
