// The text that a command answers with, in colours where they are wanted.
#ifndef TOOLS_VELMAR_CFG_BASE_OUTPUT_H
#define TOOLS_VELMAR_CFG_BASE_OUTPUT_H

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

// Collects what a command answers; it is written at the end of the command, so that a failure to write is noticed.
class OUTPUT
{
public:
    // "always", "never", or "auto": when `descriptor` is a terminal that shows colours and NO_COLOR is not set.
    void choose_color(std::string_view choice, int descriptor);

    OUTPUT& operator<<(std::string_view text);

    // The document as document_as_text has it.
    void json(const nlohmann::ordered_json& document);

    // `text` in that style; as it is when there is no colour.
    std::string painted(STYLE style, std::string_view text) const;

    // Writes everything to the descriptor, standard output in a complaint's words. A reader that has gone is no error:
    // what it did not want is dropped. Any other failure throws TOOL_ERROR.
    void write_to(int descriptor);

private:
    std::string bytes;
    bool colored = false;
};

#endif
