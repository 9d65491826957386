// What lint has to say about one place of a file.
#ifndef TOOLS_VELMAR_CFG_LINT_FINDING_H
#define TOOLS_VELMAR_CFG_LINT_FINDING_H

#include <cstddef>
#include <optional>
#include <string>

#include "tools/velmar-cfg/base/json_writer.h"

enum class SEVERITY
{
    NOTE,    // as it should be, but worth knowing
    WARNING, // does something else than it looks
    ERROR,   // does nothing, or cannot work
};

struct FINDING
{
    std::string file;                // or VELMAR_INI_VARS
    std::optional<std::size_t> line; // counted from 1; one of line and item is there
    std::optional<std::size_t> item;
    std::size_t column; // of the byte, counted from 1
    SEVERITY severity;
    std::string reason;  // one word, stable, for scripts
    std::string message; // what happens
    std::string instead; // what to write instead, or what to do
};

// "note", "warning" or "error".
const char* severity_word(SEVERITY severity);

// {"file", "line", "item", "column", "severity", "reason", "message", "instead"}.
void write_json(JSON_WRITER& out, const FINDING& finding);

#endif
