// Changes a file safely. The new bytes are computed from the old ones and written to a new file beside it. The new file
// takes the place of the old one if no other program has changed that meanwhile.
#ifndef TOOLS_VELMAR_CFG_BASE_FILE_EDIT_H
#define TOOLS_VELMAR_CFG_BASE_FILE_EDIT_H

#include <chrono>
#include <functional>
#include <string>

// What an edit does only with permission.
struct FILE_EDIT_PERMISSIONS
{
    bool break_hard_links = false;  // --break-hard-links: change a file with several names
    bool replace_read_only = false; // --replace-read-only: change a file whose mode forbids writing
};

struct FILE_EDIT
{
    std::string path;    // with links followed
    bool is_new = false; // there was no file before the edit
    std::string before;
    std::string after;
    std::string refusal; // why the file is not changed; empty if nothing forbids the change

    bool changed() const
    {
        return refusal.empty() && before != after;
    }
};

// What a plan makes of the bytes of a file.
struct PLANNED_BYTES
{
    std::string after;
    std::string refusal = {}; // the plan's reason not to change the file; used if the file itself gives none
};

// Computes the new bytes from the path and the bytes of the file (`before`), which are empty if there is no file. May
// be called several times; the last call counts.
using EDIT_PLAN = std::function<PLANNED_BYTES(const FILE_EDIT& file)>;

// A dry run: returns what edit_file() would do. Writes nothing and locks nothing. Throws as edit_file() does.
FILE_EDIT try_file_edit(const std::string& path, const EDIT_PLAN& plan, const FILE_EDIT_PERMISSIONS& permissions,
                        std::chrono::milliseconds patience);

// Makes the edit, unless there is a refusal. Waits up to `patience` for another velmar-cfg, and for other programs that
// write the file. Throws TOOL_ERROR: BAD_INPUT for a file that cannot be read, NOT_WRITTEN for all other failures. Also
// throws what the plan throws. After an exception the file is unchanged, unless the message says otherwise.
FILE_EDIT edit_file(const std::string& path, const EDIT_PLAN& plan, const FILE_EDIT_PERMISSIONS& permissions,
                    std::chrono::milliseconds patience);

#endif
