// How the commands that check something show what they found.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_FINDINGS_OUTPUT_H
#define TOOLS_VELMAR_CFG_COMMANDS_FINDINGS_OUTPUT_H

#include <vector>

#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/lint/finding.h"

// Writes one line, or one JSON row, a finding. Returns FINDINGS if there is an error, with `strict` also if there is a
// warning; else FINE.
EXIT_CODE write_findings(const std::vector<FINDING>& findings, bool strict, TOOL& tool);

#endif
