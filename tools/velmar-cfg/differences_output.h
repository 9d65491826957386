// How the differences between two snapshots are shown.
#ifndef TOOLS_VELMAR_CFG_DIFFERENCES_OUTPUT_H
#define TOOLS_VELMAR_CFG_DIFFERENCES_OUTPUT_H

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "tools/velmar-cfg/output.h"
#include "tools/velmar-cfg/run_reports.h"
#include "tools/velmar-cfg/snapshot.h"
#include "tools/velmar-cfg/snapshot_differences.h"

// One side of the comparison: what it is called, "now" for the present, and what holds there.
struct COMPARED_SNAPSHOT
{
    std::string title;
    SNAPSHOT snapshot;
};

// For people: nothing when there is no difference.
void write_differences(const COMPARED_SNAPSHOT& a, const COMPARED_SNAPSHOT& b, const SNAPSHOT_DIFFERENCES& differences,
                       const std::optional<RUN_REPORT>& run, OUTPUT& out);

// {"a", "b", "used", "same", "installation", "environment", "files", "variables", "preferences"}.
nlohmann::ordered_json differences_as_json(const COMPARED_SNAPSHOT& a, const COMPARED_SNAPSHOT& b,
                                           const SNAPSHOT_DIFFERENCES& differences,
                                           const std::optional<RUN_REPORT>& run);

#endif
