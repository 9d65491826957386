#include "cfg_ini/cfg_ini_reader/settings_lines.h"

#include <cstring>

namespace
{
constexpr std::size_t buffer_size = std::size_t{64} * 1024;
}

SETTINGS_LINES::SETTINGS_LINES(const std::string& path) : file(std::fopen(path.c_str(), "re"))
{
    if (file == nullptr)
        return;
    std::setvbuf(file.get(), nullptr, _IONBF, 0); // the buffer below is the only one
    buffer = std::make_unique_for_overwrite<char[]>(buffer_size);
}

bool SETTINGS_LINES::fill()
{
    position = 0;
    filled = std::fread(buffer.get(), 1, buffer_size, file.get());
    return filled > 0;
}

bool SETTINGS_LINES::next(std::string& line)
{
    line.clear();
    if (file == nullptr)
        return false;

    bool found_bytes = false;
    while (position < filled || fill())
    {
        found_bytes = true;
        const char* const start = buffer.get() + position;
        const std::size_t available = filled - position;
        const auto* const newline = static_cast<const char*>(std::memchr(start, '\n', available));
        if (newline != nullptr)
        {
            const auto length = static_cast<std::size_t>(newline - start);
            line.append(start, length);
            position += length + 1;
            return true;
        }
        line.append(start, available);
        position = filled;
    }
    return found_bytes;
}
