#include "tools/velmar-cfg/commands/findings_output.h"

#include <string>

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

FINDINGS_OUTPUT::FINDINGS_OUTPUT(bool strict, TOOL& the_tool)
    : tool(the_tool), least(strict ? SEVERITY::WARNING : SEVERITY::ERROR)
{
    if (!tool.options.json)
        return;
    json.emplace(tool.out);
    json->begin_list();
}

void FINDINGS_OUTPUT::write(const FINDING& finding)
{
    fails = fails || finding.severity >= least;
    if (json)
        write_json(*json, finding);
    else
        write_line(finding, tool.out);
}

EXIT_CODE FINDINGS_OUTPUT::finish()
{
    if (json)
    {
        json->end_list();
        json->finish();
    }
    return fails ? EXIT_CODE::FINDINGS : EXIT_CODE::FINE;
}
