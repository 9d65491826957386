// A lock among runs of velmar-cfg that change the same file.
#ifndef TOOLS_VELMAR_CFG_BASE_FILE_LOCK_H
#define TOOLS_VELMAR_CFG_BASE_FILE_LOCK_H

#include <string>

#include "tools/velmar-cfg/base/file_place.h"
#include "tools/velmar-cfg/base/open_file.h"
#include "tools/velmar-cfg/base/settled_file.h"

// Holds the lock while it lives: on a file beside the one that is to change, of its name and ".lock", that is made for
// it and removed at the end. A run that was killed leaves the file behind, but no lock on it, and the next run removes
// it. A file of that name that no run of velmar-cfg made is locked as well, and stays.
class FILE_LOCK
{
public:
    // Waits for whoever holds the lock, but not beyond the deadline. Throws TOOL_ERROR(NOT_WRITTEN) when it has to give
    // up, and names the user whose run holds the lock; and when the lock cannot be had at all.
    FILE_LOCK(const FILE_PLACE& changed, MOMENT deadline);
    ~FILE_LOCK();
    FILE_LOCK(const FILE_LOCK&) = delete;
    FILE_LOCK& operator=(const FILE_LOCK&) = delete;

private:
    bool try_to_lock();
    bool lock_existing(OPEN_FILE& opened);
    bool make_locked();
    std::string obstacle() const;

    const FILE_PLACE& place;
    const std::string name;
    const std::string path; // for messages
    OPEN_FILE file;
    bool is_ours = false;   // to be removed
    bool is_barred = false; // another user's file that only he can open
};

#endif
