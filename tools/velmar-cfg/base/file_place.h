// The location of a file, with its directory held open. Later operations work in that directory, even if somebody
// renames it or puts a link in its place.
#ifndef TOOLS_VELMAR_CFG_BASE_FILE_PLACE_H
#define TOOLS_VELMAR_CFG_BASE_FILE_PLACE_H

#include <optional>
#include <string>
#include <sys/types.h>

#include "tools/velmar-cfg/base/open_file.h"

// The directory of a file, as a descriptor for openat() and similar functions, and the name of the file in it. The file
// is no link, and need not exist.
class FILE_PLACE
{
public:
    // Follows the links of `path`. Root follows only links that belong to root: any user can make a link that would
    // lead root to another file. Throws TOOL_ERROR(NOT_WRITTEN) for a link that root does not follow, and for a
    // directory that does not exist or cannot be searched. Throws TOOL_ERROR(BAD_INPUT) if the path leads to a
    // directory, or if its links form a circle.
    explicit FILE_PLACE(const std::string& path);

    int directory() const
    {
        return opened.get();
    }

    const std::string& name() const
    {
        return file_name;
    }

    // Whether the open file has that name in the directory.
    bool has(int file, const std::string& name) const;

    // The path without links, for messages.
    std::string path() const
    {
        return directory_path + (directory_path.ends_with('/') ? "" : "/") + file_name;
    }

private:
    void walk(const std::string& path);
    bool is_no_link(const std::string& name) const;
    std::string target_of_link(int link, uid_t owner) const;

    OPEN_FILE opened;
    std::string directory_path;
    std::string file_name;
};

// The path with its links resolved, as far as it exists; on an error, the path as it is. Equal results mean the same
// file. Throws nothing.
std::string real_path(const std::string& path);

// Throws TOOL_ERROR(NOT_WRITTEN): "PATH: WHAT".
[[noreturn]] void fail_to_write(const std::string& path, const std::string& what);

// The user's name; nothing for a user without one.
std::optional<std::string> name_of_user(uid_t user);

// The user's name in quotes, such as "'lea'", or "number 1000" when he has none.
std::string user_in_words(uid_t user);

#endif
