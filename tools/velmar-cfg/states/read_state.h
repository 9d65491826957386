// Reads a state of any kind.
#ifndef TOOLS_VELMAR_CFG_STATES_READ_STATE_H
#define TOOLS_VELMAR_CFG_STATES_READ_STATE_H

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/states/state.h"
#include "tools/velmar-cfg/states/state_name.h"

// The state of that name: the parts asked for, as far as it knows them, with the scope's changes. The scope's project
// is used only for the present state, and its `regtest` for all but documents. Throws TOOL_ERROR(USAGE) if the scope
// asks for regression runs and the document is not of one. Throws TOOL_ERROR(BAD_INPUT) if the state cannot be read at
// all; what else cannot be read is among the problems of `files`. No other thread may use the environment or the
// current directory meanwhile.
STATE read_state(const STATE_NAME& name, const STATE_PARTS& parts, const SETTINGS_SCOPE& scope, INPUT_FILES& files);

// The scope of the present state, to be compared with the state of that name. It has the project of that state, unless
// `scope` names one, and the `regtest` of a document. Everything else is as in `scope`. Throws TOOL_ERROR(BAD_INPUT) if
// the document's project is no directory now.
SETTINGS_SCOPE scope_to_compare_with(const STATE_NAME& name, const STATE& state, const SETTINGS_SCOPE& scope);

#endif
