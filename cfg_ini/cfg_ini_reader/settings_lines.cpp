// Reads a settings file through a buffer of 64 KiB and finds its lines there.
//
// A line is handed out as a view of the buffer. Only a line that runs over the end of the buffer is copied, piece by
// piece, into a string. Each byte is searched once for a newline and each read asks for a whole buffer, so the cost is
// linear in the size of the file, whatever the lengths of its lines.
//
// The host's signals must not shorten a file: a call that a signal interrupted is repeated. A read that fails otherwise
// is tried once more; it left the position where it was, so nothing is lost or read twice. Two failures in a row end
// the file, so that a directory or a dead device cannot hold the reader. The line that such an end cuts short is
// dropped: half a value is worse than none.
//
// A callback may fork while its file is being read, and parent and child may both go on reading it. They share the
// descriptor, hence its position; so each reads at a position of its own. Only what has no positions, such as a pipe,
// is read as it comes.
#include "cfg_ini/cfg_ini_reader/settings_lines.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace zon_cfg
{
namespace
{
constexpr std::size_t buffer_size = std::size_t{64} * 1024;

// Repeats call() until no signal interrupts it, and returns its result.
template <typename CALL>
auto uninterrupted(CALL call)
{
    for (;;)
    {
        const auto result = call();
        if (result >= 0 || errno != EINTR)
            return result;
    }
}

int open_for_reading(const std::string& path)
{
    // Programs that the host starts get no descriptor of ours, and a terminal does not become the host's own.
    return uninterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY); });
}
}

// The buffer comes first: without memory for it nothing has been opened.
SETTINGS_LINES::SETTINGS_LINES(const std::string& path)
    : buffer(std::make_unique_for_overwrite<char[]>(buffer_size)), descriptor(open_for_reading(path)),
      ended(descriptor < 0)
{
}

SETTINGS_LINES::~SETTINGS_LINES()
{
    // Not repeated when a signal interrupts it: the descriptor is free by then, and may be another thread's.
    if (descriptor >= 0)
        ::close(descriptor);
}

// Reads the next piece into the buffer. Returns what ::read returns.
ssize_t SETTINGS_LINES::read_piece()
{
    if (has_positions)
    {
        const ssize_t size = ::pread(descriptor, buffer.get(), buffer_size, file_position);
        has_positions = size >= 0 || errno != ESPIPE;
        if (has_positions)
            return size;
    }
    return ::read(descriptor, buffer.get(), buffer_size);
}

bool SETTINGS_LINES::fill()
{
    if (ended)
        return false;
    const auto read = [this] { return uninterrupted([this] { return read_piece(); }); };
    ssize_t size = read();
    if (size < 0)
        size = read();
    failed = size < 0;
    ended = size <= 0;
    position = 0;
    filled = ended ? 0 : static_cast<std::size_t>(size);
    file_position += static_cast<off_t>(filled);
    return !ended;
}

bool SETTINGS_LINES::next(std::string_view& line)
{
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
    return !divided.empty() && !failed;
}

struct stat SETTINGS_LINES::status() const
{
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0)
        status = {};
    return status;
}
}
