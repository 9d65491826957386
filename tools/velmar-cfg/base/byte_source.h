// Where bytes come from, a part at a time.
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

    // Puts the next bytes, at most `room` of them and at least one, where `to` points, and returns how many; 0 at the
    // end. `room` is not 0.
    virtual std::size_t read(char* to, std::size_t room) = 0;
};

#endif
