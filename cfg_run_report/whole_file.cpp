#include "cfg_run_report/whole_file.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace
{
constexpr mode_t mode_of_new_files = 0666; // less the process's umask

[[noreturn]] void fail()
{
    throw std::system_error(errno, std::generic_category());
}

int open_for_writing(const std::string& path, int flags)
{
    return open(path.c_str(), O_WRONLY | O_CLOEXEC | flags, mode_of_new_files);
}

// An open file; closed at the latest by the destructor.
class OUTPUT_FILE
{
public:
    // Takes over what open_for_writing returned.
    explicit OUTPUT_FILE(int opened) : descriptor(opened)
    {
        if (descriptor < 0)
            fail();
    }

    ~OUTPUT_FILE()
    {
        if (descriptor >= 0)
            ::close(descriptor);
    }

    OUTPUT_FILE(const OUTPUT_FILE&) = delete;
    OUTPUT_FILE& operator=(const OUTPUT_FILE&) = delete;

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

    void take_mode(mode_t mode)
    {
        if (fchmod(descriptor, mode & 07777) != 0)
            fail();
    }

    void sync()
    {
        if (fsync(descriptor) != 0)
            fail();
    }

    void close()
    {
        const int closing = descriptor;
        descriptor = -1;
        if (::close(closing) != 0)
            fail();
    }

private:
    int descriptor;
};

// The file that `path` leads to through links; `path` itself when nothing stands there.
std::string resolved(const std::string& path)
{
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), std::free);
    return real != nullptr ? real.get() : path;
}

// A new file beside another one; removed again unless it is put in that one's place.
class FILE_BESIDE
{
public:
    explicit FILE_BESIDE(const std::string& place) : target(place), opened(create()) {}

    ~FILE_BESIDE()
    {
        if (!path.empty())
            unlink(path.c_str());
    }

    FILE_BESIDE(const FILE_BESIDE&) = delete;
    FILE_BESIDE& operator=(const FILE_BESIDE&) = delete;

    OUTPUT_FILE& file()
    {
        return opened;
    }

    void put_in_place()
    {
        opened.sync();
        opened.close();
        if (rename(path.c_str(), target.c_str()) != 0)
            fail();
        path.clear();
    }

private:
    int create()
    {
        // A name may be taken by what a killed process of the same number left behind.
        constexpr int tries = 100;
        int descriptor = -1;
        for (int i = 0; i < tries && descriptor < 0; ++i)
        {
            path = target + "." + std::to_string(getpid()) + "." + std::to_string(i) + ".tmp";
            descriptor = open_for_writing(path, O_CREAT | O_EXCL);
            if (descriptor < 0 && errno != EEXIST)
                break;
        }
        return descriptor;
    }

    const std::string target;
    std::string path;
    OUTPUT_FILE opened;
};

void replace_file(const std::string& target, const struct stat* existing, std::string_view bytes)
{
    if (existing != nullptr && faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0)
        fail();
    FILE_BESIDE beside(target);
    if (existing != nullptr)
        beside.file().take_mode(existing->st_mode);
    beside.file().write(bytes);
    beside.put_in_place();
}
}

std::string write_whole_file(const std::string& path, std::string_view bytes)
{
    try
    {
        const std::string target = resolved(path);
        struct stat found;
        const bool exists = stat(target.c_str(), &found) == 0;
        if (exists && !S_ISREG(found.st_mode))
        {
            OUTPUT_FILE file(open_for_writing(target, 0));
            file.write(bytes);
            file.close();
        }
        else
            replace_file(target, exists ? &found : nullptr, bytes);
        return {};
    }
    catch (const std::exception& error)
    {
        return error.what();
    }
}
