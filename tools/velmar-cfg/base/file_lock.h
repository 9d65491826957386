// A lock among runs of velmar-cfg that change the same file.
#ifndef TOOLS_VELMAR_CFG_BASE_FILE_LOCK_H
#define TOOLS_VELMAR_CFG_BASE_FILE_LOCK_H

#include <string>

#include "tools/velmar-cfg/base/file_place.h"
#include "tools/velmar-cfg/base/open_file.h"
#include "tools/velmar-cfg/base/settled_file.h"

// Holds the lock while it lives. The lock is on a file beside the one to be changed, with ".lock" appended to its name.
// This file is made for the lock and removed at the end. A killed run leaves the file, but no lock on it; the next run
// removes it. A file of that name that velmar-cfg did not make is locked too, but never removed.
class FILE_LOCK
{
public:
    // Waits for whoever holds the lock, but not beyond the deadline. Throws TOOL_ERROR(NOT_WRITTEN) if the lock is not
    // free by then, or cannot be taken at all. The message names the other user if the lock file belongs to one.
    // `changed` must outlive this.
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
    bool is_ours = false;   // velmar-cfg made the file, and removes it
    bool is_barred = false; // another user's file, which this user cannot open
};

#endif
