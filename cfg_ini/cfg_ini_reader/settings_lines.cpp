#include "cfg_ini/cfg_ini_reader/settings_lines.h"

#include <algorithm>

namespace zon_cfg
{
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
    std::clearerr(file.get()); // the file's error is that of its last reading
    filled = std::fread(buffer.get(), 1, buffer_size, file.get());
    return filled > 0;
}

bool SETTINGS_LINES::next(std::string_view& line)
{
    if (file == nullptr)
        return false;

    divided.clear();
    while (position < filled || fill())
    {
        const std::string_view rest(buffer.get() + position, filled - position);
        const std::size_t newline = rest.find('\n');
        const std::string_view part = rest.substr(0, newline);
        position += part.size();
        if (newline != std::string_view::npos)
        {
            ++position;
            line = divided.empty() ? part : divided.append(part);
            return true;
        }
        divided.append(part);
    }
    line = divided;
    return !divided.empty() && std::ferror(file.get()) == 0; // half a line is none
}

std::size_t SETTINGS_LINES::size_hint()
{
    if (file == nullptr || !fill())
        return 0;
    if (filled < buffer_size)
        return filled;
    const long here = std::ftell(file.get());
    if (here < 0 || std::fseek(file.get(), 0, SEEK_END) != 0)
        return 0;
    const long end = std::ftell(file.get());
    std::fseek(file.get(), here, SEEK_SET);
    return static_cast<std::size_t>(std::max(end, here));
}
}
