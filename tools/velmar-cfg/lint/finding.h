// What lint reports about one position in a file.
#ifndef TOOLS_VELMAR_CFG_LINT_FINDING_H
#define TOOLS_VELMAR_CFG_LINT_FINDING_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "tools/velmar-cfg/base/json_writer.h"

enum class SEVERITY
{
    NOTE,    // as it should be, but worth knowing
    WARNING, // does something else than it seems to
    ERROR,   // does nothing, or cannot work
};

struct FINDING
{
    std::string file;                // or the name of an environment variable
    std::optional<std::size_t> line; // counted from 1; line and item are never both there
    std::optional<std::size_t> item;
    std::optional<std::size_t> column; // of the byte, counted from 1; nothing where there is no text
    SEVERITY severity;
    std::string reason;  // one word, stable, for scripts
    std::string message; // what happens
    std::string instead; // what to write instead, or what to do; shortened, for people

    // The text to replace the whole line or item, with a newline between lines. It does not have this finding and
    // causes no other. Nothing if a person must decide.
    std::optional<std::string> replacement = std::nullopt;
};

// That of the first line of a UTF-16 file. The library understands no line of such a file.
FINDING utf_16_finding(const std::string& file);

// "note", "warning" or "error". And back, if it is one.
const char* severity_word(SEVERITY severity);
std::optional<SEVERITY> severity_of_word(std::string_view word);

// The column that the byte at `offset` had before parts of the text were hidden; nothing if it is not known.
std::optional<std::size_t> column_before_hiding(std::string_view text, std::size_t offset);

// {"file", "line", "item", "column", "severity", "reason", "message", "instead", "replacement"}.
void write_json(JSON_WRITER& out, const FINDING& finding);

#endif
