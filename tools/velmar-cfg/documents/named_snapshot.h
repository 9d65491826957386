// A snapshot by what a user calls it.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_NAMED_SNAPSHOT_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_NAMED_SNAPSHOT_H

#include <string>

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/documents/snapshot_differences.h"
#include "tools/velmar-cfg/settings/layers.h"

// The file of a snapshot is read, "-" from standard input; of a project's directory a snapshot is taken, as `scope`
// says but for the project. Throws TOOL_ERROR(BAD_INPUT) for a file that is no snapshot and for a directory that cannot
// be searched; what else cannot be read is among the problems of `files`.
COMPARED_SNAPSHOT named_snapshot(const std::string& path, const SETTINGS_SCOPE& scope, INPUT_FILES& files);

#endif
