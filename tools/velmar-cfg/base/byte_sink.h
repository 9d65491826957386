// The interface for everything that bytes are written to.
#ifndef TOOLS_VELMAR_CFG_BASE_BYTE_SINK_H
#define TOOLS_VELMAR_CFG_BASE_BYTE_SINK_H

#include <string>
#include <string_view>

class BYTE_SINK
{
public:
    BYTE_SINK() = default;
    virtual ~BYTE_SINK() = default;
    BYTE_SINK(const BYTE_SINK&) = delete;
    BYTE_SINK& operator=(const BYTE_SINK&) = delete;

    // Takes the bytes, or throws.
    virtual void write(std::string_view bytes) = 0;
};

// Keeps the bytes in memory.
class TEXT_SINK : public BYTE_SINK
{
public:
    void write(std::string_view bytes) override
    {
        text += bytes;
    }

    std::string text;
};

#endif
