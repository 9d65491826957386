// Writes each finding in the format asked for and forgets it. All that is remembered is whether one was severe enough
// for the command to fail.
#include "tools/velmar-cfg/commands/findings_output.h"

#include <string>
#include <utility>

#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"

namespace
{
STYLE severity_style(SEVERITY severity)
{
    return severity == SEVERITY::ERROR ? STYLE::BAD : severity == SEVERITY::WARNING ? STYLE::WARNING : STYLE::FAINT;
}

void write_line(const FINDING& finding, OUTPUT& out)
{
    out << printable(finding.file) << ":";
    for (const std::optional<std::size_t>& number : {finding.line, finding.item, finding.column})
    {
        if (number)
            out << std::to_string(*number) << ":";
    }
    out << " " << out.painted(severity_style(finding.severity), severity_word(finding.severity)) << ": "
        << printable(finding.message) << "; " << printable(finding.instead) << " [" << printable(finding.reason)
        << "]\n";
}
}

FINDINGS_OUTPUT::FINDINGS_OUTPUT(FINDINGS_OPTIONS the_options, CHECKED_TEXTS texts, TOOL& the_tool)
    : options(std::move(the_options)), tool(the_tool)
{
    if (options.format == FINDINGS_FORMAT::JSON)
    {
        json.emplace(tool.out);
        json->begin_list();
    }
    else if (options.format == FINDINGS_FORMAT::SARIF)
        sarif.emplace(std::move(texts), tool);
}

void FINDINGS_OUTPUT::write(const FINDING& finding)
{
    if (options.ignored.contains(finding.reason))
        return;
    fails = fails || finding.severity >= (options.strict ? SEVERITY::WARNING : SEVERITY::ERROR);
    if (json)
        write_json(*json, finding);
    else if (sarif)
        sarif->write(finding);
    else if (options.format == FINDINGS_FORMAT::TEXT)
        write_line(finding, tool.out);
}

EXIT_CODE FINDINGS_OUTPUT::finish()
{
    if (json)
    {
        json->end_list();
        json->finish();
    }
    else if (sarif)
        sarif->finish();
    return fails ? EXIT_CODE::FINDINGS : EXIT_CODE::FINE;
}
