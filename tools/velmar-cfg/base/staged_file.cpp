// The target is replaced by an exchange of the two names, after which the old file is still at hand. If another program
// turns out to have been faster, the exchange is undone: no save of another program is lost, at whatever moment it
// comes.
//
//     lease on the old file        nobody has it open for writing; who opens it from now on waits
//     look at it for the last time by device, number, size, times and bytes
//     exchange                     who opens the target from now on opens the new file
//     look at what it gave         a file of another program's own, put there in that moment: exchange back
//     look at the lease            who waits for it wants to write to the old file: exchange back
//     remove the old file
//
// Without leases, a change is noticed only if it can be seen right after the exchange. Without an exchange, no change
// during the replacement is noticed.
#include "tools/velmar-cfg/base/staged_file.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "tools/velmar-cfg/base/file_attributes.h"
#include "tools/velmar-cfg/base/text.h"

namespace
{
constexpr std::string_view infix = ".velmar-cfg-";
constexpr std::string_view suffix = ".tmp";
constexpr std::size_t random_bytes = 6;

constexpr const char* nothing_changed = "; nothing was changed";

std::string new_name_beside(const std::string& name)
{
    std::array<char, random_bytes> bytes = {};
    while (getrandom(bytes.data(), bytes.size(), 0) < 0 && errno == EINTR)
    {
    }
    return name + std::string(infix) + as_hexadecimal({bytes.data(), bytes.size()}) + std::string(suffix);
}

bool is_such_a_name(std::string_view entry, const std::string& name)
{
    const std::string prefix = name + std::string(infix);
    if (entry.size() != prefix.size() + 2 * random_bytes + suffix.size() || !entry.starts_with(prefix) ||
        !entry.ends_with(suffix))
        return false;
    return from_hexadecimal(entry.substr(prefix.size(), 2 * random_bytes)).has_value();
}

bool cannot_do_that(int error)
{
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP;
}

// While it lives, who opens the file for writing waits; at the longest for as long as the system lets them.
class WRITERS_WAIT
{
public:
    explicit WRITERS_WAIT(int opened) : file(opened)
    {
        fcntl(file, F_SETSIG, SIGURG); // a signal for who waits, which is ignored unless somebody asks for it
        is_held = fcntl(file, F_SETLEASE, F_RDLCK) == 0;
        is_open_for_writing = !is_held && errno == EAGAIN;
    }
    ~WRITERS_WAIT()
    {
        if (is_held)
            fcntl(file, F_SETLEASE, F_UNLCK);
    }
    WRITERS_WAIT(const WRITERS_WAIT&) = delete;
    WRITERS_WAIT& operator=(const WRITERS_WAIT&) = delete;

    // Whether a program has it open for writing, or waits for that.
    bool is_wanted() const
    {
        return is_open_for_writing || (is_held && fcntl(file, F_GETLEASE) != F_RDLCK);
    }

private:
    const int file;
    bool is_held;
    bool is_open_for_writing;
};
}

// --- A new file ---

NEW_FILE::NEW_FILE(const FILE_PLACE& beside, mode_t mode, std::string the_path)
    : place(beside), path(std::move(the_path)), name(new_name_beside(beside.name()))
{
    file = OPEN_FILE(openat(place.directory(), name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    if (file.get() >= 0)
        return;
    const bool forbidden = errno == EACCES || errno == EPERM || errno == EROFS;
    fail_to_write(path, std::strerror(errno) + std::string(forbidden ? "; the directory must be writable to change the "
                                                                       "file safely"
                                                                     : nothing_changed));
}

NEW_FILE::~NEW_FILE()
{
    if (!name.empty())
        unlinkat(place.directory(), name.c_str(), 0);
}

void NEW_FILE::write(std::string_view bytes)
{
    while (!bytes.empty())
    {
        const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
        if (written >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
        else if (errno != EINTR)
            fail_to_write(path, std::strerror(errno) + std::string(nothing_changed));
    }
}

bool NEW_FILE::rename_to_new(const std::string& new_name)
{
    const int directory = place.directory();
    bool done = renameat2(directory, name.c_str(), directory, new_name.c_str(), RENAME_NOREPLACE) == 0;
    if (!done && cannot_do_that(errno))
    {
        done = linkat(directory, name.c_str(), directory, new_name.c_str(), 0) == 0;
        if (done)
            unlinkat(directory, name.c_str(), 0);
    }
    if (!done && errno != EEXIST && errno != ENOENT)
        fail_to_write(path, std::strerror(errno) + std::string(nothing_changed));
    if (done)
        name.clear();
    return done;
}

int NEW_FILE::exchange_with(const std::string& other_name)
{
    const int directory = place.directory();
    return renameat2(directory, name.c_str(), directory, other_name.c_str(), RENAME_EXCHANGE) == 0 ? 0 : errno;
}

void NEW_FILE::rename_over(const std::string& other_name)
{
    const bool done = renameat(place.directory(), name.c_str(), place.directory(), other_name.c_str()) == 0;
    const int error = errno;
    // Over a network, the answer to a rename that was done may be that it failed.
    if (!done && !place.has(file.get(), other_name))
        fail_to_write(path, std::strerror(error) + std::string(nothing_changed));
    name.clear();
}

// --- The new content of a file ---

STAGED_FILE::STAGED_FILE(const FILE_PLACE& target, const SEEN_FILE& old_file, std::string_view bytes)
    : place(target), old(old_file), made(target, old_file.exists() ? 0600 : 0666, target.path())
{
    made.write(bytes);
    if (old.exists())
    {
        if (const std::string problem = take_over_attributes(old.descriptor(), made.descriptor()); !problem.empty())
            fail_to_write(place.path(), problem + nothing_changed);
    }
    if (fsync(made.descriptor()) != 0)
        fail_to_write(place.path(), std::strerror(errno) + std::string(nothing_changed));
}

REPLACEMENT STAGED_FILE::replace_target()
{
    REPLACEMENT result = REPLACEMENT::DONE;
    if (old.exists())
        result = replace_existing();
    else if (!made.rename_to_new(place.name()))
        result = REPLACEMENT::CHANGED_MEANWHILE;
    if (result == REPLACEMENT::DONE)
        synchronise_directory();
    return result;
}

REPLACEMENT STAGED_FILE::replace_existing()
{
    const WRITERS_WAIT lease(old.descriptor());
    if (lease.is_wanted())
        return REPLACEMENT::OPEN_FOR_WRITING;
    if (!old.is_still_at(place))
        return REPLACEMENT::CHANGED_MEANWHILE;
    const int error = made.exchange_with(place.name());
    if (cannot_do_that(error))
    {
        made.rename_over(place.name());
        return REPLACEMENT::DONE;
    }
    if (error == ENOENT)
        return REPLACEMENT::CHANGED_MEANWHILE; // one of the two was taken away
    if (error != 0)
        fail_to_write(place.path(), std::strerror(error) + std::string(nothing_changed));
    if (place.has(old.descriptor(), made.current_name()) && !lease.is_wanted() && old.is_unwritten())
        return REPLACEMENT::DONE;
    if (made.exchange_with(place.name()) == 0)
        return REPLACEMENT::CHANGED_MEANWHILE;
    const std::string left = made.current_name();
    made.forget();
    fail_to_write(place.path(), "was replaced while another program saved it; what that program saved is in " + left +
                                    ", in the same directory");
}

void STAGED_FILE::synchronise_directory() const
{
    const OPEN_FILE directory(openat(place.directory(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // A directory need not be readable for its files to be changed; and some file systems have nothing to synchronise,
    // and say so.
    const bool done = directory.get() >= 0
                          ? fsync(directory.get()) == 0 || errno == EINVAL
                          : errno == EACCES && syncfs(old.exists() ? old.descriptor() : made.descriptor()) == 0;
    if (!done)
        fail_to_write(place.path(), "was changed, but a power cut may undo that: " + std::string(std::strerror(errno)));
}

void remove_abandoned_files(const FILE_PLACE& place)
{
    const OPEN_FILE opened(openat(place.directory(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.get() < 0)
        return;
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(fdopendir(fcntl(opened.get(), F_DUPFD_CLOEXEC, 0)), closedir);
    if (directory == nullptr)
        return;
    while (const dirent* const entry = readdir(directory.get()))
    {
        struct stat found;
        if (is_such_a_name(entry->d_name, place.name()) &&
            fstatat(place.directory(), entry->d_name, &found, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(found.st_mode))
            unlinkat(place.directory(), entry->d_name, 0);
    }
}
