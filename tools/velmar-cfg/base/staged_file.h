// Replacing a file so that at every moment, also when the process is killed, it is whole: either the old or the new
// one.
#ifndef TOOLS_VELMAR_CFG_BASE_STAGED_FILE_H
#define TOOLS_VELMAR_CFG_BASE_STAGED_FILE_H

#include <string>
#include <string_view>
#include <sys/types.h>

#include "tools/velmar-cfg/base/file_place.h"
#include "tools/velmar-cfg/base/open_file.h"
#include "tools/velmar-cfg/base/settled_file.h"

// A new file beside another one, under a name that no user's file has. Gone with the object, unless it was renamed; one
// that a killed process left is removed with remove_abandoned_files.
class NEW_FILE
{
public:
    // `path` begins the messages of failures; all functions that can fail throw TOOL_ERROR(NOT_WRITTEN). `mode` is
    // less the process's mask.
    NEW_FILE(const FILE_PLACE& beside, mode_t mode, std::string path);
    ~NEW_FILE();
    NEW_FILE(const NEW_FILE&) = delete;
    NEW_FILE& operator=(const NEW_FILE&) = delete;

    void write(std::string_view bytes);

    // Gives it this name in its directory. False when a file has that name, or this one was taken away.
    bool rename_to_new(const std::string& new_name);

    // Exchanges it with the file of that name: this one's name then is that file's, and goes with the object. Returns
    // 0, or the error.
    int exchange_with(const std::string& other_name);

    // Puts it in the place of that file.
    void rename_over(const std::string& other_name);

    // What is left under its name stays.
    void forget()
    {
        name.clear();
    }

    int descriptor() const
    {
        return file.get();
    }

    OPEN_FILE& opened()
    {
        return file;
    }

    const std::string& current_name() const
    {
        return name;
    }

private:
    const FILE_PLACE& place;
    const std::string path;
    OPEN_FILE file;
    std::string name; // empty when there is nothing to remove
};

enum class REPLACEMENT
{
    DONE,
    CHANGED_MEANWHILE, // another program changed the target since it was seen, or is about to
    OPEN_FOR_WRITING,  // another program has the target open, and may write to it at any time
};

// The new content of a file, on the disk beside it.
class STAGED_FILE
{
public:
    // Writes `bytes`, with all that belongs to the old file beside its bytes. A file where there was none gets the mode
    // that the directory and the process's mask give it. Throws TOOL_ERROR(NOT_WRITTEN). Both references stay.
    STAGED_FILE(const FILE_PLACE& target, const SEEN_FILE& old_file, std::string_view bytes);

    // Puts it in the old file's place and makes that last through a power cut. Unless that is done, the target is as
    // the other program left it. Throws TOOL_ERROR(NOT_WRITTEN), whose text says whether the target was changed.
    //
    // Where the file system has leases, a program that opens the target for writing waits meanwhile, and writes to the
    // target as it is then. Elsewhere its save is lost if it begins between the last look and the replacement.
    REPLACEMENT replace_target();

private:
    REPLACEMENT replace_existing();
    void synchronise_directory() const;

    const FILE_PLACE& place;
    const SEEN_FILE& old;
    NEW_FILE made;
};

// Removes what killed processes left beside the file. To be called while no other process may be at it.
void remove_abandoned_files(const FILE_PLACE& place);

#endif
