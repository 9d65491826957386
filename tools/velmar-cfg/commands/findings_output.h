// How the commands that check something show what they found.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_FINDINGS_OUTPUT_H
#define TOOLS_VELMAR_CFG_COMMANDS_FINDINGS_OUTPUT_H

#include <optional>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/commands/sarif_output.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/lint/reasons.h"

enum class FINDINGS_FORMAT
{
    TEXT, // a line a finding
    JSON, // a row a finding
    SARIF,
    NONE, // only how the command ends
};

struct FINDINGS_OPTIONS
{
    FINDINGS_FORMAT format = FINDINGS_FORMAT::TEXT;
    bool strict = false; // warnings fail as well as errors
    REASONS ignored;     // findings that count as none
};

// Writes findings as they come; nothing is kept of them.
class FINDINGS_OUTPUT
{
public:
    // All that findings may be of.
    FINDINGS_OUTPUT(FINDINGS_OPTIONS the_options, CHECKED_TEXTS texts, TOOL& the_tool);

    void write(const FINDING& finding);

    // Ends the answer. To be called once. Returns FINDINGS if there was one that fails, else FINE.
    EXIT_CODE finish();

private:
    const FINDINGS_OPTIONS options;
    TOOL& tool;
    std::optional<JSON_WRITER> json;
    std::optional<SARIF_OUTPUT> sarif;
    bool fails = false;
};

#endif
