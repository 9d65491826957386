// Reads a file that other programs may write to at any time, at a moment when none seems to.
#ifndef TOOLS_VELMAR_CFG_BASE_SETTLED_FILE_H
#define TOOLS_VELMAR_CFG_BASE_SETTLED_FILE_H

#include <chrono>
#include <optional>
#include <string>
#include <sys/stat.h>

#include "tools/velmar-cfg/base/file_place.h"
#include "tools/velmar-cfg/base/open_file.h"

using MOMENT = std::chrono::steady_clock::time_point;

// The content of a file at one moment. The file stays open, so that its inode number is not given to another file.
class SEEN_FILE
{
public:
    // Reads the whole file at that place; if there is none, the result tells so (exists()). Nothing if the file changed
    // meanwhile. Throws TOOL_ERROR(BAD_INPUT) for a file that cannot be read whole.
    static std::optional<SEEN_FILE> look_at(const FILE_PLACE& place);

    bool exists() const
    {
        return file.get() >= 0;
    }

    const std::string& bytes() const
    {
        return content;
    }

    // Only for a file that exists.
    int descriptor() const
    {
        return file.get();
    }

    const struct stat& status() const
    {
        return state;
    }

    // Whether the file at the place is still this one, unchanged in its status and its bytes. Throws
    // TOOL_ERROR(BAD_INPUT) if it cannot be read again.
    bool is_still_at(const FILE_PLACE& place) const;

    // Whether nobody has written to it since, by its size and the time of its last write.
    bool is_unwritten() const;

private:
    OPEN_FILE file;
    std::string content;
    struct stat state = {};
};

// Throws TOOL_ERROR(BAD_INPUT) if something other than a regular file is at the place. Opens nothing.
void require_file_or_none(const FILE_PLACE& place);

// Waits until the file is settled, then reads it. It is settled when nobody has written to it for 50 ms. Its times tell
// that; if they lie in the future, the file is watched for 50 ms. A file that had content is not settled while it is
// empty or missing: programs that save a file empty it first. Throws TOOL_ERROR(NOT_WRITTEN) at the deadline, but never
// sooner than 50 ms after the call. So a file that nobody writes to is always read.
SEEN_FILE read_settled_file(const FILE_PLACE& place, MOMENT deadline);

#endif
