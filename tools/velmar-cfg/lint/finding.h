// What lint has to say about one place of a file.
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
    WARNING, // does something else than it looks
    ERROR,   // does nothing, or cannot work
};

struct FINDING
{
    std::string file;                // or the name of an environment variable
    std::optional<std::size_t> line; // counted from 1; one of line and item is there, or neither
    std::optional<std::size_t> item;
    std::optional<std::size_t> column; // of the byte, counted from 1; nothing where there is no text
    SEVERITY severity;
    std::string reason;  // one word, stable, for scripts
    std::string message; // what happens
    std::string instead; // what to write instead, or what to do: for people, long texts are cut

    // What takes the place of the whole line or item: whole, with a newline between lines. It is free of this finding
    // and brings no other. Nothing where a person must decide.
    std::optional<std::string> replacement = std::nullopt;
};

// "note", "warning" or "error". And back, if it is one.
const char* severity_word(SEVERITY severity);
std::optional<SEVERITY> severity_of_word(std::string_view word);

// The column of the byte at `offset` of a text in which parts are hidden; nothing where it is not known.
std::optional<std::size_t> column_before_hiding(std::string_view text, std::size_t offset);

// {"file", "line", "item", "column", "severity", "reason", "message", "instead", "replacement"}.
void write_json(JSON_WRITER& out, const FINDING& finding);

#endif
