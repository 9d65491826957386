// Where the tool's words go: data to standard output, diagnostics to standard error.
#ifndef TOOLS_VELMAR_CFG_OUTPUT_H
#define TOOLS_VELMAR_CFG_OUTPUT_H

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

enum class STYLE
{
    PLAIN,
    STRONG,
    FAINT,
    GOOD,
    WARNING,
    BAD,
};

// Collects what goes to standard output and writes it at the end of the command, so that a failure to write is noticed.
class OUTPUT
{
public:
    // "always", "never", or "auto": when standard output is a terminal that shows colours and NO_COLOR is not set.
    void choose_color(std::string_view choice);

    OUTPUT& operator<<(std::string_view text);

    // The document as document_as_text has it.
    void json(const nlohmann::ordered_json& document);

    // `text` in that style; as it is when there is no colour.
    std::string painted(STYLE style, std::string_view text) const;

    // Writes everything. A reader that has gone is no error: what it did not want is dropped. Any other failure throws
    // TOOL_ERROR.
    void flush();

private:
    std::string bytes;
    bool colored = false;
};

// `text` fit for one line of a terminal: control characters as \n, \t or \x1b, and the backslash itself as it is.
std::string printable(std::string_view text);

// Writes "velmar-cfg: ", the text and an end of line to standard error.
void complain(std::string_view text);

#endif
