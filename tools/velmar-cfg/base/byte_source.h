// The interface for everything that bytes are read from, a part at a time.
#ifndef TOOLS_VELMAR_CFG_BASE_BYTE_SOURCE_H
#define TOOLS_VELMAR_CFG_BASE_BYTE_SOURCE_H

#include <cstddef>

class BYTE_SOURCE
{
public:
    BYTE_SOURCE() = default;
    virtual ~BYTE_SOURCE() = default;
    BYTE_SOURCE(const BYTE_SOURCE&) = delete;
    BYTE_SOURCE& operator=(const BYTE_SOURCE&) = delete;

    // Copies the next bytes to `to`: at least one and at most `room`. Returns how many they are, or 0 at the end.
    // `room` must not be 0.
    virtual std::size_t read(char* to, std::size_t room) = 0;
};

#endif
