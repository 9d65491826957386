#include "tools/velmar-cfg/commands/findings_output.h"

#include <algorithm>

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
    const std::size_t position = finding.line ? *finding.line : *finding.item;
    out << printable(finding.file) << ":" << std::to_string(position) << ":" << std::to_string(finding.column) << ": "
        << out.painted(severity_style(finding.severity), severity_word(finding.severity)) << ": "
        << printable(finding.message) << "; " << printable(finding.instead) << " [" << finding.reason << "]\n";
}
}

EXIT_CODE write_findings(const std::vector<FINDING>& findings, bool strict, TOOL& tool)
{
    if (tool.options.json)
        answer_in_json(
            tool, [&](JSON_WRITER& out)
            { out.list(findings, [](JSON_WRITER& writer, const FINDING& finding) { write_json(writer, finding); }); });
    else
    {
        for (const FINDING& finding : findings)
            write_line(finding, tool.out);
    }

    const SEVERITY least = strict ? SEVERITY::WARNING : SEVERITY::ERROR;
    const bool fails = std::ranges::any_of(findings, [&](const FINDING& finding) { return finding.severity >= least; });
    return fails ? EXIT_CODE::FINDINGS : EXIT_CODE::FINE;
}
