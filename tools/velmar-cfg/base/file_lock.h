// A lock among runs of velmar-cfg.
#ifndef TOOLS_VELMAR_CFG_BASE_FILE_LOCK_H
#define TOOLS_VELMAR_CFG_BASE_FILE_LOCK_H

#include <chrono>
#include <string>

// Holds the lock while it lives. The lock is on a file that is made for it and removed at the end; a run that was
// killed leaves the file behind, but no lock on it.
class FILE_LOCK
{
public:
    // Waits for a run that holds the lock, but not longer than `patience`. Throws TOOL_ERROR(NOT_WRITTEN) when it has
    // to give up or the file cannot be made.
    FILE_LOCK(const std::string& lock_file, std::chrono::milliseconds patience);
    ~FILE_LOCK();
    FILE_LOCK(const FILE_LOCK&) = delete;
    FILE_LOCK& operator=(const FILE_LOCK&) = delete;

private:
    bool try_to_lock();

    const std::string path;
    int file = -1;
};

#endif
