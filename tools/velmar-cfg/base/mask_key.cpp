// The key is made under a name of its own, written whole, and then renamed to its place, which fails when there is a
// key already: at every moment there is either no key or a whole one, and the first one stays. What is used is always
// what is then found in the file, so that processes which make a key at once agree on one. What killed processes left
// is removed once there is a key: others that are about to make one find it.
//
// Root makes nothing in a directory of another user, who could not use it, and follows no link that such a user
// planted.
//
// The file is opened without following a link, and judged by what was opened.
#include "tools/velmar-cfg/base/mask_key.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "platform/gen/gen.h"
#include "tools/velmar-cfg/base/file_place.h"
#include "tools/velmar-cfg/base/keyed_hash.h"
#include "tools/velmar-cfg/base/staged_file.h"
#include "tools/velmar-cfg/base/text.h"

namespace
{
constexpr std::size_t key_bytes = 32;
constexpr std::size_t file_size = 2 * key_bytes + 1; // hexadecimal digits and a newline

class DESCRIPTOR
{
public:
    explicit DESCRIPTOR(int opened) : number(opened) {}
    ~DESCRIPTOR()
    {
        if (number >= 0)
            close(number);
    }
    DESCRIPTOR(const DESCRIPTOR&) = delete;
    DESCRIPTOR& operator=(const DESCRIPTOR&) = delete;

    const int number;
};

[[noreturn]] void fail()
{
    throw std::system_error(errno, std::generic_category());
}

MASK_KEY key_of(std::string bytes, bool lasting)
{
    // The name must not help to find the key.
    std::string name = hmac_of(bytes, "the name of this key");
    return {std::move(bytes), std::move(name), lasting, {}};
}

MASK_KEY without_lasting_key(const std::string& problem)
{
    MASK_KEY key = passing_mask_key();
    key.problem = problem + "; until then masks cannot be compared with those of other runs";
    return key;
}

void require_own_directory(const FILE_PLACE& place)
{
    struct stat found;
    if (fstat(place.directory(), &found) != 0)
        fail();
    if (geteuid() == 0 && found.st_uid != 0)
        fail_to_write(place.path(), "is in a directory of the user " + user_in_words(found.st_uid));
}

// Each directory that does not exist, for the user alone.
void make_directories(const std::string& path)
{
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1))
    {
        const FILE_PLACE place(path.substr(0, slash));
        struct stat found;
        if (place.name().empty() || // the root directory
            fstatat(place.directory(), place.name().c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0)
            continue;
        require_own_directory(place);
        if (mkdirat(place.directory(), place.name().c_str(), 0700) != 0 && errno != EEXIST)
            fail();
    }
}

// Makes the file unless there is one. Throws std::system_error or TOOL_ERROR.
void make_key_file(const std::string& path)
{
    make_directories(path);
    const FILE_PLACE place(path);
    require_own_directory(place);
    NEW_FILE made(place, 0600, path);
    made.write(as_hexadecimal(random_bytes(key_bytes)) + "\n");
    if (fsync(made.descriptor()) != 0)
        fail();
    made.rename_to_new(place.name()); // unless another process was faster
    remove_abandoned_files(place);
}

// What is wrong with the file as a place for a key; empty for nothing.
std::string problem_of_file(const struct stat& found)
{
    if (!S_ISREG(found.st_mode))
        return "is no regular file; remove it";
    if (found.st_uid != geteuid())
        return "belongs to another user; remove it or have XDG_DATA_HOME name a directory of your own";
    if ((found.st_mode & 077U) != 0)
        return "others may have read or written it; remove it, so that a new key is made";
    if (static_cast<std::size_t>(found.st_size) != file_size)
        return "holds no key; remove it, so that a new one is made";
    return {};
}

std::optional<std::string> read_key(int file)
{
    std::array<char, file_size> text;
    std::size_t size = 0;
    while (size < text.size())
    {
        const ssize_t got = read(file, text.data() + size, text.size() - size);
        if (got == 0 || (got < 0 && errno != EINTR))
            return std::nullopt;
        size += got < 0 ? 0 : static_cast<std::size_t>(got);
    }
    return text.back() == '\n' ? from_hexadecimal({text.data(), 2 * key_bytes}) : std::nullopt;
}
}

MASK_KEY passing_mask_key()
{
    return key_of(random_bytes(key_bytes), false);
}

std::string mask_key_path()
{
    const char* const data = std::getenv("XDG_DATA_HOME");
    std::string directory =
        data != nullptr && *data == '/' ? std::string(data) : gen_get_user_profile_directory() + "/.local/share";
    return directory + "/velmar-cfg/mask-key";
}

MASK_KEY lasting_mask_key(const std::string& path)
{
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    try
    {
        int opened = open(path.c_str(), flags);
        if (opened < 0 && errno == ENOENT)
        {
            make_key_file(path);
            opened = open(path.c_str(), flags);
        }
        const DESCRIPTOR file(opened);
        struct stat found;
        if (file.number < 0 || fstat(file.number, &found) != 0)
            return without_lasting_key(path + ": " + (errno == ELOOP ? "is a symbolic link" : std::strerror(errno)) +
                                       "; remove it or make it readable for this user");
        if (const std::string problem = problem_of_file(found); !problem.empty())
            return without_lasting_key(path + ": " + problem);
        std::optional<std::string> bytes = read_key(file.number);
        return bytes ? key_of(*std::move(bytes), true)
                     : without_lasting_key(path + ": holds no key; remove it, so that a new one is made");
    }
    catch (const std::exception& error)
    {
        return without_lasting_key(path + ": the key for masks cannot be made: " + error.what() +
                                   "; let XDG_DATA_HOME name a directory of this user that can be written");
    }
}
