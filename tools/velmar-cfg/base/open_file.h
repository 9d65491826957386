// Owns a file descriptor, and closes it.
#ifndef TOOLS_VELMAR_CFG_BASE_OPEN_FILE_H
#define TOOLS_VELMAR_CFG_BASE_OPEN_FILE_H

#include <unistd.h>
#include <utility>

// A negative number means no descriptor.
class OPEN_FILE
{
public:
    OPEN_FILE() = default;
    explicit OPEN_FILE(int number) : descriptor(number) {}
    ~OPEN_FILE()
    {
        if (descriptor >= 0)
            close(descriptor);
    }
    OPEN_FILE(OPEN_FILE&& other) noexcept : descriptor(std::exchange(other.descriptor, -1)) {}
    OPEN_FILE& operator=(OPEN_FILE&& other) noexcept
    {
        swap(other);
        return *this;
    }

    int get() const
    {
        return descriptor;
    }

    void swap(OPEN_FILE& other) noexcept
    {
        std::swap(descriptor, other.descriptor);
    }

private:
    int descriptor = -1;
};

#endif
