#include "tools/velmar-cfg/lint/finding.h"

#include "tools/velmar-cfg/base/json_values.h"

const char* severity_word(SEVERITY severity)
{
    return severity == SEVERITY::ERROR ? "error" : severity == SEVERITY::WARNING ? "warning" : "note";
}

nlohmann::ordered_json finding_as_json(const FINDING& finding)
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
