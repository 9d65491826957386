// Changing a file without risk: its new bytes are planned from the old ones, written beside it, and take its place if
// no other program has changed it meanwhile.
#ifndef TOOLS_VELMAR_CFG_BASE_FILE_EDIT_H
#define TOOLS_VELMAR_CFG_BASE_FILE_EDIT_H

#include <chrono>
#include <functional>
#include <string>

// What an edit does to a file only if it is told to.
struct FILE_EDIT_PERMISSIONS
{
    bool break_hard_links = false;  // --break-hard-links: the other names keep the old file
    bool replace_read_only = false; // --replace-read-only: the mode says that nobody should write
};

struct FILE_EDIT
{
    std::string path;    // links followed
    bool is_new = false; // there was no file, or in a dry run there is none
    std::string before;
    std::string after;
    std::string refusal; // why the file was not changed, or in a dry run would not be; empty when it was, or would be

    bool changed() const
    {
        return refusal.empty() && before != after;
    }
};

// What the plan makes of the bytes.
struct PLANNED_BYTES
{
    std::string after;
    std::string refusal = {}; // the plan's own reason to leave the file alone, which counts behind those of the file
};

// Given the path and the bytes of the file, of which there are none where there is no file. May be called several
// times; the last call counts.
using EDIT_PLAN = std::function<PLANNED_BYTES(const FILE_EDIT& file)>;

// What the edit would do. Nothing is written and nothing is locked. Throws as below.
FILE_EDIT try_file_edit(const std::string& path, const EDIT_PLAN& plan, const FILE_EDIT_PERMISSIONS& permissions,
                        std::chrono::milliseconds patience);

// Makes the edit, unless there is a refusal. Waits up to `patience` for another velmar-cfg, and for other programs that
// write the file. Throws TOOL_ERROR: BAD_INPUT for a file that cannot be read, NOT_WRITTEN for everything else, and
// what the plan throws. The file is then untouched, unless the text says otherwise.
FILE_EDIT edit_file(const std::string& path, const EDIT_PLAN& plan, const FILE_EDIT_PERMISSIONS& permissions,
                    std::chrono::milliseconds patience);

#endif
