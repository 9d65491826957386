// The text that a command answers with, in colours where they are wanted.
#ifndef TOOLS_VELMAR_CFG_BASE_OUTPUT_H
#define TOOLS_VELMAR_CFG_BASE_OUTPUT_H

#include <cstddef>
#include <string>
#include <string_view>

#include "tools/velmar-cfg/base/byte_sink.h"

enum class STYLE
{
    PLAIN,
    STRONG,
    FAINT,
    GOOD,
    WARNING,
    BAD,
};

// Writes to a descriptor through a buffer, hidden parts of texts by name, whole, also where it does not block. A reader
// that has gone is no error: what it did not want is dropped. Any other failure throws TOOL_ERROR(NOT_WRITTEN), which
// calls the descriptor standard output.
class OUTPUT : public BYTE_SINK
{
public:
    explicit OUTPUT(int where) : descriptor(where) {}

    // "always", "never", or "auto": when the descriptor is a terminal that shows colours and NO_COLOR is not set.
    void choose_color(std::string_view choice);

    void write(std::string_view text) override;

    OUTPUT& operator<<(std::string_view text)
    {
        write(text);
        return *this;
    }

    // `text` in that style; as it is when there is no colour.
    std::string painted(STYLE style, std::string text) const;

    bool is_terminal() const;

    // The columns of a line: what COLUMNS says, or the terminal; 80 for neither.
    std::size_t width() const;

    // Writes what is left in the buffer. To be called when all is said; without it, the rest is dropped.
    void finish();

private:
    const int descriptor;
    std::string buffer;
    bool reader_has_gone = false;
    bool colored = false;
};

#endif
