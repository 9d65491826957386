// Where a file is, held open: what is done there later is done in that directory, whoever renames it or puts a link in
// its way.
#ifndef TOOLS_VELMAR_CFG_BASE_FILE_PLACE_H
#define TOOLS_VELMAR_CFG_BASE_FILE_PLACE_H

#include <optional>
#include <string>
#include <sys/types.h>

#include "tools/velmar-cfg/base/open_file.h"

// The directory of a file, as a descriptor for openat and its like, and the file's name there. The file itself need not
// exist, and is no link.
class FILE_PLACE
{
public:
    // Follows the links of `path`. Root follows its own links only: anybody can put one into a directory of his to have
    // root write elsewhere. Throws TOOL_ERROR(NOT_WRITTEN) for those and for a directory that does not exist or
    // cannot be searched, and TOOL_ERROR(BAD_INPUT) for a directory and for links in a circle.
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

    // Without links; for messages.
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

// The path without links, as far as it exists: two such paths are of one file if they are equal. Throws nothing.
std::string real_path(const std::string& path);

// Throws TOOL_ERROR(NOT_WRITTEN): "PATH: WHAT".
[[noreturn]] void fail_to_write(const std::string& path, const std::string& what);

// Nothing for a user without a name.
std::optional<std::string> name_of_user(uid_t user);

// The user's name in quotes, such as "'lea'", or "number 1000" when he has none.
std::string user_in_words(uid_t user);

#endif
