#include "tools/velmar-cfg/base/file_lock.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "tools/velmar-cfg/base/errors.h"

FILE_LOCK::FILE_LOCK(const std::string& lock_file, std::chrono::milliseconds patience) : path(lock_file)
{
    constexpr std::chrono::milliseconds pause(20);
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!try_to_lock())
    {
        if (std::chrono::steady_clock::now() >= deadline)
            throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, path +
                                                         ": another velmar-cfg holds this lock; run the command again "
                                                         "when it has ended");
        std::this_thread::sleep_for(pause);
    }
}

FILE_LOCK::~FILE_LOCK()
{
    unlink(path.c_str()); // while it is locked, so that nobody can have locked this very file
    close(file);
}

bool FILE_LOCK::try_to_lock()
{
    file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file < 0)
        throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, path + ": " + std::strerror(errno) +
                                                     "; the directory must be writable to change the file safely");
    // Between opening and locking, the last owner may have removed the file: a lock on it would keep nobody out.
    struct stat locked;
    struct stat named;
    if (flock(file, LOCK_EX | LOCK_NB) == 0 && fstat(file, &locked) == 0 && stat(path.c_str(), &named) == 0 &&
        locked.st_dev == named.st_dev && locked.st_ino == named.st_ino)
        return true;
    close(file);
    file = -1;
    return false;
}
