// How the commands that check something show what they found.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_FINDINGS_OUTPUT_H
#define TOOLS_VELMAR_CFG_COMMANDS_FINDINGS_OUTPUT_H

#include <optional>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/lint/finding.h"

// Writes one line, or one JSON row, a finding; nothing is kept of them.
class FINDINGS_OUTPUT
{
public:
    // With `strict`, warnings fail as well as errors.
    FINDINGS_OUTPUT(bool strict, TOOL& the_tool);

    void write(const FINDING& finding);

    // Ends the answer. To be called once. Returns FINDINGS if there was one that fails, else FINE.
    EXIT_CODE finish();

private:
    TOOL& tool;
    const SEVERITY least; // that fails
    std::optional<JSON_WRITER> json;
    bool fails = false;
};

#endif
