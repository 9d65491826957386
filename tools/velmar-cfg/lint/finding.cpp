// What every finding has in common: its severity as a word, its column before secrets were hidden, its JSON. And the
// finding that settings and preference files have in common.
#include "tools/velmar-cfg/lint/finding.h"

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/input_file.h"

FINDING utf_16_finding(const std::string& file)
{
    return {file,         1, {}, 1, SEVERITY::ERROR, "byte-order-mark", std::string("the file ") + utf_16_problem,
            utf_16_advice};
}

const char* severity_word(SEVERITY severity)
{
    return severity == SEVERITY::ERROR ? "error" : severity == SEVERITY::WARNING ? "warning" : "note";
}

std::optional<SEVERITY> severity_of_word(std::string_view word)
{
    for (const SEVERITY severity : {SEVERITY::NOTE, SEVERITY::WARNING, SEVERITY::ERROR})
    {
        if (word == severity_word(severity))
            return severity;
    }
    return std::nullopt;
}

std::optional<std::size_t> column_before_hiding(std::string_view text, std::size_t offset)
{
    const std::optional<std::size_t> before = offset_before_hiding(text, offset);
    return before ? std::optional(*before + 1) : std::nullopt;
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
