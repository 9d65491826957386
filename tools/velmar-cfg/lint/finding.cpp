#include "tools/velmar-cfg/lint/finding.h"

const char* severity_word(SEVERITY severity)
{
    return severity == SEVERITY::ERROR ? "error" : severity == SEVERITY::WARNING ? "warning" : "note";
}

void write_json(JSON_WRITER& out, const FINDING& finding)
{
    out.begin_object();
    out.field("file", finding.file);
    out.field("line", finding.line);
    out.field("item", finding.item);
    out.field("column", finding.column);
    out.field("severity", severity_word(finding.severity));
    out.field("reason", finding.reason);
    out.field("message", finding.message);
    out.field("instead", finding.instead);
    out.field("replacement", finding.replacement);
    out.end_object();
}
