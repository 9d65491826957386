#include "tools/velmar-cfg/findings_output.h"

#include <algorithm>

#include "tools/velmar-cfg/json_values.h"
#include "tools/velmar-cfg/output.h"

namespace
{
const char* severity_word(SEVERITY severity)
{
    return severity == SEVERITY::ERROR ? "error" : severity == SEVERITY::WARNING ? "warning" : "note";
}

STYLE severity_style(SEVERITY severity)
{
    return severity == SEVERITY::ERROR ? STYLE::BAD : severity == SEVERITY::WARNING ? STYLE::WARNING : STYLE::FAINT;
}

nlohmann::ordered_json row_of(const FINDING& finding)
{
    return {{"file", finding.file},
            {"line", value_or_null(finding.line)},
            {"item", value_or_null(finding.item)},
            {"column", finding.column},
            {"severity", severity_word(finding.severity)},
            {"reason", finding.reason},
            {"message", finding.message},
            {"instead", finding.instead}};
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
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (const FINDING& finding : findings)
    {
        if (tool.options.json)
            rows.push_back(row_of(finding));
        else
            write_line(finding, tool.out);
    }
    if (tool.options.json)
        tool.out.json(rows);

    const SEVERITY least = strict ? SEVERITY::WARNING : SEVERITY::ERROR;
    const bool fails = std::ranges::any_of(findings, [&](const FINDING& finding) { return finding.severity >= least; });
    return fails ? EXIT_CODE::FINDINGS : EXIT_CODE::FINE;
}
