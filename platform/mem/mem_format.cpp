#include "platform/mem/mem.h"

#include <cstdio>

std::string MEM_DETAIL::stl_raw_sprintf(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    va_list measuring;
    va_copy(measuring, args);
    const int length = std::vsnprintf(nullptr, 0, format, measuring);
    va_end(measuring);

    std::string text;
    if (length > 0)
    {
        // The terminating zero that vsnprintf writes falls on the string's own.
        text.resize(static_cast<std::size_t>(length));
        std::vsnprintf(text.data(), text.size() + 1, format, args);
    }
    va_end(args);
    return text;
}
