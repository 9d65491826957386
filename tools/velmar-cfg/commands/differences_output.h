// How the differences between two snapshots are shown.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_DIFFERENCES_OUTPUT_H
#define TOOLS_VELMAR_CFG_COMMANDS_DIFFERENCES_OUTPUT_H

#include <optional>

#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/documents/run_reports.h"
#include "tools/velmar-cfg/documents/snapshot_differences.h"

// Writes the differences for people. Writes nothing if there are neither differences nor undecided rows.
void write_differences(const COMPARED_SNAPSHOT& a, const COMPARED_SNAPSHOT& b, const SNAPSHOT_DIFFERENCES& differences,
                       const std::optional<RUN_REPORT>& run, OUTPUT& out);

#endif
