// The output of a command, in colours if wanted.
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

// Writes to a descriptor through a buffer. Shows hidden parts as \(masked). Writes everything, even if the descriptor
// is non-blocking. If the reader has gone, the rest is dropped without an error. Any other failure throws
// TOOL_ERROR(NOT_WRITTEN); its message calls the descriptor standard output.
class OUTPUT : public BYTE_SINK
{
public:
    explicit OUTPUT(int where) : descriptor(where) {}

    // "always", "never" or "auto". "auto" means: if the descriptor is a terminal that shows colours, and NO_COLOR is
    // not set.
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

    // The width of a line in columns: that of COLUMNS, else that of the terminal, else 80.
    std::size_t width() const;

    // Writes what is left in the buffer. Must be called at the end; otherwise the rest is lost.
    void finish();

private:
    const int descriptor;
    std::string buffer;
    bool reader_has_gone = false;
    bool colored = false;
};

#endif
