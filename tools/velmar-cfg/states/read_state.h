// Reads a state from wherever it is.
#ifndef TOOLS_VELMAR_CFG_STATES_READ_STATE_H
#define TOOLS_VELMAR_CFG_STATES_READ_STATE_H

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/states/state.h"
#include "tools/velmar-cfg/states/state_name.h"

// The state of that name, with those parts of it that it knows. What is here, or that of a process or an executable, is
// read with the scope's regression mark, here and now with its project too; the scope's changes are made to all of
// them. For documents the scope's project is not used, and its regression mark must be that of the document: else
// TOOL_ERROR(USAGE) is thrown. TOOL_ERROR(BAD_INPUT) says what cannot be read at all; what else cannot is among the
// problems of `files`. No other thread may use the environment or the current directory meanwhile.
STATE read_state(const STATE_NAME& name, const STATE_PARTS& parts, const SETTINGS_SCOPE& scope, INPUT_FILES& files);

// What is now, to be compared with the state of that name: for its project, and with the regression mark that a
// document was taken for, unless the scope names a project. The same as the scope for a state without a project.
SETTINGS_SCOPE scope_to_compare_with(const STATE_NAME& name, const STATE& state, const SETTINGS_SCOPE& scope);

#endif
