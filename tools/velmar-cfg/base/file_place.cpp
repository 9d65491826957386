// The path is opened one component at a time, each from the descriptor of the directory before it. The kernel follows
// no link by itself: the components of a link's target take its place in the list of those that are still to be opened.
// After 40 links the path is taken for a loop, as the kernel does.
#include "tools/velmar-cfg/base/file_place.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <filesystem>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/velmar-cfg/base/errors.h"

namespace
{
constexpr int most_links = 40; // as the kernel follows

// What is there is no file, as for whoever only reads it.
[[noreturn]] void fail_to_read(const std::string& path, const std::string& what)
{
    throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, path + ": " + what);
}

std::deque<std::string> components_of(const std::string& path)
{
    std::deque<std::string> components;
    for (const std::filesystem::path& component : std::filesystem::path(path).relative_path())
    {
        if (!component.empty() && component != ".")
            components.push_back(component.string());
    }
    return components;
}
}

std::string real_path(const std::string& path)
{
    std::error_code error;
    const std::filesystem::path real = std::filesystem::weakly_canonical(path, error);
    return error ? path : std::filesystem::absolute(real, error).string();
}

void fail_to_write(const std::string& path, const std::string& what)
{
    throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, path + ": " + what);
}

std::optional<std::string> name_of_user(uid_t user)
{
    std::array<char, 4096> buffer{};
    struct passwd entry;
    struct passwd* found = nullptr;
    if (getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr)
        return std::nullopt;
    return found->pw_name;
}

std::string user_in_words(uid_t user)
{
    const std::optional<std::string> name = name_of_user(user);
    return name ? "'" + *name + "'" : "number " + std::to_string(user);
}

FILE_PLACE::FILE_PLACE(const std::string& path)
{
    walk(path);
    if (file_name.empty())
        fail_to_read(path, "is a directory, not a file");
}

bool FILE_PLACE::has(int file, const std::string& name) const
{
    struct stat own;
    struct stat named;
    return fstat(file, &own) == 0 && fstatat(directory(), name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           own.st_dev == named.st_dev && own.st_ino == named.st_ino;
}

std::string FILE_PLACE::target_of_link(int link, uid_t owner) const
{
    if (geteuid() == 0 && owner != 0)
        fail_to_write(path(), "is a link that belongs to the user " + user_in_words(owner) +
                                  ", which root does not follow; run the command as that user");
    std::array<char, PATH_MAX> text;
    const ssize_t size = readlinkat(link, "", text.data(), text.size());
    if (size < 0)
        fail_to_write(path(), std::strerror(errno));
    return {text.data(), static_cast<std::size_t>(size)};
}

// Whether a file of that name, or none, is there. Opens nothing.
bool FILE_PLACE::is_no_link(const std::string& name) const
{
    struct stat found;
    return fstatat(opened.get(), name.c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0 ? !S_ISLNK(found.st_mode)
                                                                                 : errno == ENOENT;
}

void FILE_PLACE::walk(const std::string& path)
{
    const bool absolute = path.starts_with('/');
    std::error_code error;
    directory_path = absolute ? "/" : std::filesystem::current_path(error).string();
    if (error)
        fail_to_write(path, "the current directory is not known: " + error.message() + "; give an absolute path");
    OPEN_FILE start(open(absolute ? "/" : ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    opened.swap(start);
    std::deque<std::string> rest = components_of(path);
    for (int links = 0; !rest.empty();)
    {
        file_name = rest.front();
        rest.pop_front();
        struct stat found;
        if (rest.empty() && is_no_link(file_name))
            return;
        OPEN_FILE component(openat(opened.get(), file_name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
        if (component.get() < 0 || fstat(component.get(), &found) != 0)
            fail_to_write(path,
                          std::strerror(errno) + std::string(errno == ENOENT ? "; make the directory first" : ""));
        if (S_ISLNK(found.st_mode))
        {
            if (++links > most_links)
                fail_to_read(path, "symbolic links that lead back to themselves; remove one of them");
            const std::string target = target_of_link(component.get(), found.st_uid);
            const std::deque<std::string> instead = components_of(target);
            rest.insert(rest.begin(), instead.begin(), instead.end());
            if (rest.empty())
                fail_to_read(path, "is a link to a directory, not to a file");
            if (target.starts_with('/'))
            {
                OPEN_FILE root(open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
                root.swap(opened);
                directory_path = "/";
            }
        }
        else if (!rest.empty())
        {
            component.swap(opened);
            directory_path =
                file_name == ".." ? std::filesystem::path(directory_path).parent_path().string() : this->path();
        }
    }
}
