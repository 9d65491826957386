// How the commands that check something show what they found.
#ifndef TOOLS_VELMAR_CFG_FINDINGS_OUTPUT_H
#define TOOLS_VELMAR_CFG_FINDINGS_OUTPUT_H

#include <vector>

#include "tools/velmar-cfg/finding.h"
#include "tools/velmar-cfg/tool.h"

// Writes one line, or one JSON row, a finding. Returns FINDINGS if there is an error, with `strict` also if there is a
// warning; else FINE.
EXIT_CODE write_findings(const std::vector<FINDING>& findings, bool strict, TOOL& tool);

#endif
