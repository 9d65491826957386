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
    TEXT, // one line for each finding
    JSON, // one row for each finding
    SARIF,
    NONE, // nothing: only the exit code tells
};

struct FINDINGS_OPTIONS
{
    FINDINGS_FORMAT format = FINDINGS_FORMAT::TEXT;
    bool strict = false; // warnings fail as well as errors
    REASONS ignored;     // findings for these reasons are left out
};

// Writes each finding as it comes, and keeps none.
class FINDINGS_OUTPUT
{
public:
    // `texts` are those that findings may be about.
    FINDINGS_OUTPUT(FINDINGS_OPTIONS the_options, CHECKED_TEXTS texts, TOOL& the_tool);

    void write(const FINDING& finding);

    // Ends the output. Must be called once. Returns FINDINGS if a finding makes the command fail, else FINE.
    EXIT_CODE finish();

private:
    const FINDINGS_OPTIONS options;
    TOOL& tool;
    std::optional<JSON_WRITER> json;
    std::optional<SARIF_OUTPUT> sarif;
    bool fails = false;
};

#endif
