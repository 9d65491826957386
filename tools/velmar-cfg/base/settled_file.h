// A file that other programs may write to at any time, read when none seems to.
#ifndef TOOLS_VELMAR_CFG_BASE_SETTLED_FILE_H
#define TOOLS_VELMAR_CFG_BASE_SETTLED_FILE_H

#include <chrono>
#include <optional>
#include <string>
#include <sys/stat.h>

#include "tools/velmar-cfg/base/file_place.h"
#include "tools/velmar-cfg/base/open_file.h"

using MOMENT = std::chrono::steady_clock::time_point;

// What a file held at one moment. Stays open, so that its number is not given to another file.
class SEEN_FILE
{
public:
    // The file at that place, read whole; or that there is none. Nothing when it changed meanwhile. Throws
    // TOOL_ERROR(BAD_INPUT) for a file that cannot be read whole.
    static std::optional<SEEN_FILE> look_at(const FILE_PLACE& place);

    bool exists() const
    {
        return file.get() >= 0;
    }

    const std::string& bytes() const
    {
        return content;
    }

    // Only of one that exists.
    int descriptor() const
    {
        return file.get();
    }

    const struct stat& status() const
    {
        return state;
    }

    // Whether the file at the place is still this one, by device, number, size, times, owner, mode and bytes.
    // Throws TOOL_ERROR(BAD_INPUT) when it cannot be read again.
    bool is_still_at(const FILE_PLACE& place) const;

    // Whether its bytes are as they were, by size and time of the last write.
    bool is_unwritten() const;

private:
    OPEN_FILE file;
    std::string content;
    struct stat state = {};
};

// Throws TOOL_ERROR(BAD_INPUT) when something is at the place that is no regular file. Opens nothing.
void require_file_or_none(const FILE_PLACE& place);

// Waits until the file has not been written for 50 ms, by its times or, where those lie in the future, as watched, and
// is not empty or missing where it was not so before: programs that save empty the file first. Then reads it. Gives up
// at the deadline, or 50 ms after the call where that is later, with TOOL_ERROR(NOT_WRITTEN): a file that nobody writes
// to meanwhile is always read.
SEEN_FILE read_settled_file(const FILE_PLACE& place, MOMENT deadline);

#endif
