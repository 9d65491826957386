// Takes a snapshot of what holds now.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_TAKE_SNAPSHOT_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_TAKE_SNAPSHOT_H

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/documents/snapshot.h"
#include "tools/velmar-cfg/settings/layers.h"

// Takes a snapshot of the settings that `scope` asks for, and of the preferences. Each file is read once, so its hash
// is that of the bytes that the values come from. What cannot be read is among the problems of `files`.
//
// With `with_basis`, the snapshot has its basis, as a document needs it. The scope's changes apply only to the
// variables.
SNAPSHOT take_snapshot(const SETTINGS_SCOPE& scope, INPUT_FILES& files, bool with_basis = false);

#endif
