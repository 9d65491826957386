// The differences between two snapshots as JSON.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_DIFFERENCES_JSON_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_DIFFERENCES_JSON_H

#include <optional>

#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/documents/run_reports.h"
#include "tools/velmar-cfg/documents/snapshot_differences.h"

// {"a", "b", "used", "same", "installation", "environment", "files", "variables", "preferences", "cannot_tell"}.
void write_differences_json(JSON_WRITER& out, const COMPARED_SNAPSHOT& a, const COMPARED_SNAPSHOT& b,
                            const SNAPSHOT_DIFFERENCES& differences, const std::optional<RUN_REPORT>& run);

#endif
