// A lock file is made under another name, gets its content, is locked, and is then renamed to its own name. So nobody
// can find it unlocked, and its content tells it from a file that a user happens to have under that name.
//
// Invariants:
// - A lock counts only on the file that has the name after it was locked: between the opening and the locking, the last
//   owner may have removed the file.
// - The name is removed only while the file is locked, and only from a file with the content.
#include "tools/velmar-cfg/base/file_lock.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "tools/velmar-cfg/base/staged_file.h"

namespace
{
constexpr std::string_view mark = "A lock of velmar-cfg, which removes it.\n";

bool has_mark(int file)
{
    std::array<char, mark.size() + 1> content{};
    const ssize_t size = pread(file, content.data(), content.size(), 0);
    return size == static_cast<ssize_t>(mark.size()) && mark == std::string_view(content.data(), mark.size());
}
}

FILE_LOCK::FILE_LOCK(const FILE_PLACE& changed, MOMENT deadline)
    : place(changed), name(changed.name() + ".lock"), path(changed.path() + ".lock")
{
    constexpr std::chrono::milliseconds pause(20);
    while (!try_to_lock())
    {
        if (std::chrono::steady_clock::now() >= deadline)
            fail_to_write(path, obstacle());
        std::this_thread::sleep_for(pause);
    }
}

FILE_LOCK::~FILE_LOCK()
{
    if (is_ours)
        unlinkat(place.directory(), name.c_str(), 0); // while it is locked
}

bool FILE_LOCK::try_to_lock()
{
    is_barred = false;
    constexpr int flags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    int opened = openat(place.directory(), name.c_str(), O_RDWR | flags);
    // Another user's may be read, which is enough for a lock.
    if (opened < 0 && (errno == EACCES || errno == EROFS))
        opened = openat(place.directory(), name.c_str(), O_RDONLY | flags);
    if (opened < 0 && errno == ENOENT)
        return make_locked();
    if (opened < 0 && errno == ELOOP)
        fail_to_write(path, "is a link, where velmar-cfg keeps its lock; remove it");
    const int problem = errno;
    struct stat found;
    if (opened < 0 && problem == EACCES)
    {
        is_barred = fstatat(place.directory(), name.c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0;
        if (is_barred || errno == ENOENT) // gone meanwhile
            return false;
    }
    const bool is_other_than_file = problem == EISDIR || problem == ENXIO; // a directory, a socket
    if (opened < 0 && !is_other_than_file)
        fail_to_write(path, std::strerror(problem));
    OPEN_FILE existing(opened);
    if (opened < 0 || fstat(opened, &found) != 0 || !S_ISREG(found.st_mode))
        fail_to_write(path, "is no file, where velmar-cfg keeps its lock; remove it");
    return lock_existing(existing);
}

bool FILE_LOCK::lock_existing(OPEN_FILE& opened)
{
    if (flock(opened.get(), LOCK_EX | LOCK_NB) != 0)
    {
        if (errno == EWOULDBLOCK || errno == EINTR)
            return false;
        fail_to_write(path, std::strerror(errno) + std::string("; this file system cannot lock files, so the file "
                                                               "cannot be changed safely"));
    }
    if (!place.has(opened.get(), name))
        return false;
    is_ours = has_mark(opened.get());
    // What another user's killed run left: one's own instead, so that others are told who holds the lock.
    struct stat found;
    if (is_ours && fstat(opened.get(), &found) == 0 && found.st_uid != geteuid() &&
        unlinkat(place.directory(), name.c_str(), 0) == 0)
        return make_locked();
    file.swap(opened);
    return true;
}

bool FILE_LOCK::make_locked()
{
    NEW_FILE made(place, 0644, path); // so that other users can lock it as well
    made.write(mark);
    fchmod(made.descriptor(), 0644); // whatever the process's mask
    if (flock(made.descriptor(), LOCK_EX | LOCK_NB) != 0)
        fail_to_write(path, std::strerror(errno) + std::string("; this file system cannot lock files, so the file "
                                                               "cannot be changed safely"));
    if (!made.rename_to_new(name))
        return false; // another run was faster
    file.swap(made.opened());
    is_ours = true;
    return true;
}

// Why the lock cannot be had.
std::string FILE_LOCK::obstacle() const
{
    struct stat found;
    const bool is_there = fstatat(place.directory(), name.c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0;
    if (is_there && is_barred)
        return "belongs to the user " + user_in_words(found.st_uid) +
               " and cannot be opened, so it is unknown whether a velmar-cfg of that user holds it; nothing was "
               "changed, run the command again when the file has gone";
    const std::string holder = !is_there || found.st_uid == geteuid()
                                   ? "another velmar-cfg"
                                   : "a velmar-cfg of the user " + user_in_words(found.st_uid);
    return holder + " holds this lock; run the command again when it has ended";
}
