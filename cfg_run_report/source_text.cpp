// Reads a settings file again only if it is the one that was applied. Device, number, size and time of the last change
// are compared before it is opened, once it is open, and after it was read to its end; a file that changes in between
// does not count as the same. A file that is not regular is not opened. Neither is a relative path, since the current
// directory may be another one than when the file was applied.
//
// Nothing is kept. Cost: O(n) time and memory for a file of n bytes, a few system calls for any other.
#include "cfg_run_report/source_text.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
class DESCRIPTOR
{
public:
    explicit DESCRIPTOR(int opened) : number(opened) {}
    ~DESCRIPTOR()
    {
        if (number >= 0)
            ::close(number);
    }
    DESCRIPTOR(const DESCRIPTOR&) = delete;
    DESCRIPTOR& operator=(const DESCRIPTOR&) = delete;

    const int number;
};

bool is_as_applied(const CFG_SETTINGS_SOURCE& source, const struct stat& now)
{
    return now.st_dev == source.device && now.st_ino == source.inode &&
           static_cast<std::uint64_t>(now.st_size) == source.size && now.st_mtim.tv_sec == source.modified_seconds &&
           now.st_mtim.tv_nsec == source.modified_nanoseconds;
}

SOURCE_STATE state_of_failure()
{
    return errno == ENOENT || errno == ENOTDIR ? SOURCE_STATE::GONE : SOURCE_STATE::UNREADABLE;
}

// Whether all could be read.
bool read_all(int descriptor, std::string& bytes)
{
    bytes.clear();
    char piece[16 * 1024];
    for (;;)
    {
        const ssize_t size = ::read(descriptor, piece, sizeof piece);
        if (size > 0)
            bytes.append(piece, static_cast<std::size_t>(size));
        else if (size == 0 || errno != EINTR)
            return size == 0;
    }
}

SOURCE_STATE read_file(const CFG_SETTINGS_SOURCE& source, std::string& bytes)
{
    // The current directory may have changed, so a relative path could now lead to another file.
    if (!S_ISREG(source.mode) || source.path.front() != '/')
        return S_ISDIR(source.mode)
                   ? SOURCE_STATE::DIRECTORY
                   : (source.mode != 0 && !S_ISREG(source.mode) ? SOURCE_STATE::NO_FILE : SOURCE_STATE::UNREADABLE);
    struct stat now = {};
    if (::stat(source.path.c_str(), &now) != 0)
        return state_of_failure();
    if (!is_as_applied(source, now))
        return SOURCE_STATE::CHANGED;
    // Does not wait if a pipe has taken the file's place meanwhile.
    const DESCRIPTOR file(::open(source.path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (file.number < 0)
        return state_of_failure();
    if (::fstat(file.number, &now) != 0 || !is_as_applied(source, now))
        return SOURCE_STATE::CHANGED;
    if (!read_all(file.number, bytes))
        return SOURCE_STATE::UNREADABLE;
    // A file that was changed while it was read does not count as the same.
    return ::fstat(file.number, &now) == 0 && is_as_applied(source, now) && bytes.size() == source.size
               ? SOURCE_STATE::SAME
               : SOURCE_STATE::CHANGED;
}
}

const char* source_state_name(SOURCE_STATE state)
{
    switch (state)
    {
    case SOURCE_STATE::SAME:
        return "same";
    case SOURCE_STATE::CHANGED:
        return "changed";
    case SOURCE_STATE::GONE:
        return "gone";
    case SOURCE_STATE::UNREADABLE:
        return "unreadable";
    case SOURCE_STATE::NO_FILE:
        return "no file";
    case SOURCE_STATE::DIRECTORY:
        return "directory";
    case SOURCE_STATE::PARTLY_APPLIED:
        break;
    }
    return "partly applied";
}

SOURCE_STATE read_source(const CFG_SETTINGS_SOURCE& source, std::string& bytes)
{
    const bool is_text = source.path.empty();
    if (!source.whole && (is_text || S_ISREG(source.mode)))
        return SOURCE_STATE::PARTLY_APPLIED;
    if (!is_text)
        return read_file(source, bytes);
    bytes = source.text;
    return SOURCE_STATE::SAME;
}
