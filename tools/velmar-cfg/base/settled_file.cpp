// Reads a file at a moment when no other program seems to write to it.
//
// The state of the file (device, number, size, times, owner, mode, links) is looked at every 5 ms. It is settled when
// the last write lies 50 ms back by the clock, or when the state has stayed the same for 50 ms: times may lie in the
// future. A file that had content when it was first seen, or got some since, is not settled while it is empty or
// missing. A settled file is read whole. If its state is another one afterwards, the watch goes on.
//
// Invariants:
// - The state is looked at once more when the deadline, which is at least 50 ms away, has passed. So a file that nobody
//   writes to is always read.
// - The file that was read stays open, so that its number cannot become another file's.
// - is_still_at() compares the bytes too: the times of files tick in steps of some milliseconds, so a change within one
//   step does not show in them.
//
// Cost: a file that is settled from the beginning costs a few system calls and one pass over its bytes, which are kept.
#include "tools/velmar-cfg/base/settled_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <string_view>
#include <thread>
#include <unistd.h>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/input_file.h"

namespace
{
// The times of files tick in steps of some milliseconds.
constexpr std::chrono::milliseconds quiet_time(50);
constexpr std::chrono::milliseconds between_looks(5);

bool same_moment(const struct timespec& a, const struct timespec& b)
{
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

bool same_state(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           same_moment(a.st_mtim, b.st_mtim) && same_moment(a.st_ctim, b.st_ctim) && a.st_mode == b.st_mode &&
           a.st_uid == b.st_uid && a.st_gid == b.st_gid && a.st_nlink == b.st_nlink;
}

// The state of what stands at the place, a link not followed; nothing when nothing does.
std::optional<struct stat> state_at(const FILE_PLACE& place)
{
    struct stat state;
    if (fstatat(place.directory(), place.name().c_str(), &state, AT_SYMLINK_NOFOLLOW) == 0)
        return state;
    if (errno == ENOENT)
        return std::nullopt;
    throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, place.path() + ": " + std::strerror(errno) + "; check the path");
}

// Nanoseconds count up to 292 years, and a file may be dated further from now: an hour is enough either way.
std::chrono::nanoseconds since_last_write(const struct stat& state)
{
    constexpr time_t hour = 3600;
    struct timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    const time_t written = std::clamp(state.st_mtim.tv_sec, now.tv_sec - hour, now.tv_sec + hour);
    return std::chrono::seconds(now.tv_sec - written) + std::chrono::nanoseconds(now.tv_nsec - state.st_mtim.tv_nsec);
}

// `path` is for the error of a disk that fails.
bool holds_exactly(int file, std::string_view bytes, const std::string& path)
{
    std::array<char, 4096> buffer; // on stacks of 64 KiB too
    for (off_t offset = 0;;)
    {
        const ssize_t got = pread(file, buffer.data(), buffer.size(), offset);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, path + ": " + std::strerror(errno) + "; check the device");
        if (got == 0)
            return bytes.empty();
        const std::string_view piece(buffer.data(), static_cast<std::size_t>(got));
        if (!bytes.starts_with(piece))
            return false;
        bytes.remove_prefix(piece.size());
        offset += got;
    }
}

// Sees one state of a file after the other.
class WATCH
{
public:
    // Whether the file may be read, now that it is in this state.
    bool is_settled(const std::optional<struct stat>& state)
    {
        const MOMENT now = std::chrono::steady_clock::now();
        const bool changed =
            first_time || state.has_value() != last.has_value() || (state && !same_state(*state, *last));
        if (changed)
            since = now;
        first_time = false;
        last = state;
        const bool is_empty = !state || state->st_size == 0;
        was_filled |= !is_empty;
        if (was_filled && is_empty)
            return false;
        if (!state)
            return true;
        return since_last_write(*state) >= quiet_time || now - since >= quiet_time;
    }

private:
    std::optional<struct stat> last;
    MOMENT since;
    bool first_time = true;
    bool was_filled = false;
};
}

std::optional<SEEN_FILE> SEEN_FILE::look_at(const FILE_PLACE& place)
{
    SEEN_FILE seen;
    const std::optional<struct stat> found = state_at(place);
    if (!found)
        return seen;
    // Opened only if it is a file: to open a pipe would let its writer go on.
    const bool is_file = S_ISREG(found->st_mode);
    const int opened = !is_file ? -1
                                : openat(place.directory(), place.name().c_str(),
                                         O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    const int error = errno;
    if (is_file && opened < 0 && (error == ENOENT || error == ELOOP))
        return std::nullopt;
    if (opened < 0)
    {
        const std::string problem = input_problem(place.path());
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, place.path() + ": " +
                                                   (!problem.empty() ? problem
                                                    : is_file        ? std::strerror(error)
                                                                     : "is no regular file, and nothing can be changed "
                                                                       "in it; name another one"));
    }
    seen.file = OPEN_FILE(opened);
    INPUT_FILE read = read_open_file(opened, place.path());
    read.require_whole();
    seen.content = std::move(read.bytes);
    if (fstat(opened, &seen.state) != 0 || !same_state(seen.state, *found))
        return std::nullopt;
    return seen;
}

void require_file_or_none(const FILE_PLACE& place)
{
    if (const std::optional<struct stat> found = state_at(place); found && !S_ISREG(found->st_mode))
        SEEN_FILE::look_at(place);
}

bool SEEN_FILE::is_still_at(const FILE_PLACE& place) const
{
    const std::optional<struct stat> now = state_at(place);
    if (!exists() || !now)
        return !exists() && !now;
    return same_state(state, *now) && holds_exactly(descriptor(), content, place.path());
}

bool SEEN_FILE::is_unwritten() const
{
    struct stat now;
    return fstat(descriptor(), &now) == 0 && now.st_size == state.st_size && same_moment(now.st_mtim, state.st_mtim);
}

SEEN_FILE read_settled_file(const FILE_PLACE& place, MOMENT deadline)
{
    WATCH watch;
    bool settled = watch.is_settled(state_at(place));
    // Whoever has no time at all still sees whether a file that was just written is left alone from now on.
    deadline = std::max(deadline, std::chrono::steady_clock::now() + quiet_time);
    for (bool last_look = false;; settled = watch.is_settled(state_at(place)))
    {
        if (settled)
        {
            if (std::optional<SEEN_FILE> seen = SEEN_FILE::look_at(place))
                return std::move(*seen);
        }
        if (last_look)
            fail_to_write(place.path(), "another program is writing this file; nothing was changed, run the command "
                                        "again when that program has ended");
        std::this_thread::sleep_for(between_looks);
        last_look = std::chrono::steady_clock::now() >= deadline;
    }
}
