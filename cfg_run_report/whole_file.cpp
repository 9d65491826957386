// Writes a file beside the one that it is to replace, synchronises it with the disk, and renames it to that one's name:
// at every moment there is either the old file or the new one.
//
// The path is followed through symbolic links first, so that the file that they lead to is replaced and not a link. The
// new file's name is the old one's with the number of this process and a count, which goes up while the name is taken.
// Owner and group are taken over before the mode, since a change of the owner takes bits of the mode away. A file that
// is write-protected is not replaced, although its directory would allow that.
//
// Invariants:
// - The new file is removed unless the rename was done, also when an exception ends the writing.
// - The rename is not done before all bytes are on the disk. The directory is then synchronised too, so that a power
//   cut does not undo the rename; a failure of that is not reported.
//
// What is no regular file is written to directly, without any of that. Cost: one pass over the bytes, none of which is
// kept.
#include "cfg_run_report/whole_file.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr mode_t mode_of_new_files = 0666; // less the process's umask
constexpr mode_t owners_rights = 0700;

[[noreturn]] void fail()
{
    throw std::system_error(errno, std::generic_category());
}

std::string directory_of(const std::string& path)
{
    const std::string directory = std::filesystem::path(path).parent_path().string();
    return directory.empty() ? "." : directory;
}

// Where a path leads once every symbolic link is followed, its directory without links; the file itself need not exist.
std::string followed_path(const std::string& path)
{
    constexpr int most_links = 40;
    std::filesystem::path followed(path);
    for (int links = 0; std::filesystem::is_symlink(std::filesystem::symlink_status(followed)); ++links)
    {
        if (links == most_links)
            throw std::system_error(ELOOP, std::generic_category());
        followed = followed.parent_path() / std::filesystem::read_symlink(followed);
    }
    std::error_code error;
    const std::filesystem::path directory = std::filesystem::canonical(directory_of(followed.string()), error);
    if (error)
        throw std::system_error(error.value(), std::generic_category());
    return (directory / followed.filename()).string();
}

// The owner only if possible: root alone can give a file away.
void take_over(int file, const struct stat& existing, mode_t rights)
{
    struct stat own;
    if (fstat(file, &own) != 0)
        fail();
    const bool same = existing.st_uid == own.st_uid && existing.st_gid == own.st_gid;
    [[maybe_unused]] const bool kept = same || fchown(file, existing.st_uid, existing.st_gid) == 0;
    // After the owner, because a change of the owner clears bits of the mode.
    if (fchmod(file, existing.st_mode & rights) != 0)
        fail();
}

// Ignores failures: they matter only if there is a power cut.
void synchronise_directory(const std::string& path)
{
    const int directory = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0)
        return;
    fsync(directory);
    close(directory);
}
}

// An open file. The destructor closes it, and removes a new file that was not put in place.
class WHOLE_FILE_WRITER::OPEN_FILE
{
public:
    explicit OPEN_FILE(const std::string& device) : descriptor(open(device.c_str(), O_WRONLY | O_CLOEXEC))
    {
        if (descriptor < 0)
            fail();
    }

    struct BESIDE
    {
        const std::string& target;
        mode_t mode;
    };

    explicit OPEN_FILE(BESIDE place)
    {
        // A killed process that had the same number may have left a file with this name behind.
        constexpr int tries = 100;
        for (int i = 0; i < tries && descriptor < 0; ++i)
        {
            made = place.target + "." + std::to_string(getpid()) + "." + std::to_string(i) + ".tmp";
            descriptor = open(made.c_str(), O_WRONLY | O_CLOEXEC | O_CREAT | O_EXCL, place.mode);
            if (descriptor < 0 && errno != EEXIST)
                break;
        }
        if (descriptor < 0)
            fail();
    }

    ~OPEN_FILE()
    {
        if (descriptor >= 0)
            ::close(descriptor);
        if (!made.empty())
            unlink(made.c_str());
    }

    OPEN_FILE(const OPEN_FILE&) = delete;
    OPEN_FILE& operator=(const OPEN_FILE&) = delete;

    int number() const
    {
        return descriptor;
    }

    void write(std::string_view bytes)
    {
        while (!bytes.empty())
        {
            const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
            if (written >= 0)
                bytes.remove_prefix(static_cast<std::size_t>(written));
            else if (errno != EINTR)
                fail();
        }
    }

    void close()
    {
        const int closing = descriptor;
        descriptor = -1;
        if (::close(closing) != 0)
            fail();
    }

    void put_in_place_of(const std::string& replaced)
    {
        if (fsync(descriptor) != 0)
            fail();
        close();
        if (rename(made.c_str(), replaced.c_str()) != 0)
            fail();
        made.clear();
    }

private:
    int descriptor = -1;
    std::string made;
};

WHOLE_FILE_WRITER::WHOLE_FILE_WRITER(const std::string& path, FILE_READERS readers)
{
    struct stat found;
    const bool exists = stat(path.c_str(), &found) == 0;
    if (exists && !S_ISREG(found.st_mode))
    {
        file = std::make_unique<OPEN_FILE>(path);
        return;
    }
    target = followed_path(path);
    if (exists && faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0)
        fail();
    const mode_t rights = readers == FILE_READERS::OWNER ? owners_rights : mode_t{07777};
    // Nobody opens the new file who may not open the old one.
    const mode_t as_now = exists ? found.st_mode : mode_of_new_files;
    file = std::make_unique<OPEN_FILE>(OPEN_FILE::BESIDE{target, mode_of_new_files & rights & as_now});
    if (exists)
        take_over(file->number(), found, rights);
}

WHOLE_FILE_WRITER::~WHOLE_FILE_WRITER() = default;

void WHOLE_FILE_WRITER::write(std::string_view bytes)
{
    file->write(bytes);
}

void WHOLE_FILE_WRITER::put_in_place()
{
    if (target.empty())
    {
        file->close();
        return;
    }
    file->put_in_place_of(target);
    synchronise_directory(directory_of(target));
}

std::string write_whole_file(const std::string& path, std::string_view bytes, FILE_READERS readers)
{
    try
    {
        WHOLE_FILE_WRITER file(path, readers);
        file.write(bytes);
        file.put_in_place();
        return {};
    }
    catch (const std::exception& error)
    {
        return error.what();
    }
}
