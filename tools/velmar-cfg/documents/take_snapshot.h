// What holds now, as a snapshot.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_TAKE_SNAPSHOT_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_TAKE_SNAPSHOT_H

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/documents/snapshot.h"
#include "tools/velmar-cfg/settings/layers.h"

// What holds for the settings that `scope` asks for: each file is read once, and its hash is that of the bytes which
// the values come from. Throws TOOL_ERROR(BAD_INPUT) for a file that cannot be read as text.
//
// A snapshot that becomes a document has its basis, without the scope's changes.
SNAPSHOT take_snapshot(const SETTINGS_SCOPE& scope, INPUT_FILES& files, bool with_basis = false);

#endif
