// Replaces a file so that it is complete at every moment: either the old or the new one. This holds even if the process
// is killed.
#ifndef TOOLS_VELMAR_CFG_BASE_STAGED_FILE_H
#define TOOLS_VELMAR_CFG_BASE_STAGED_FILE_H

#include <string>
#include <string_view>
#include <sys/types.h>

#include "tools/velmar-cfg/base/file_place.h"
#include "tools/velmar-cfg/base/open_file.h"
#include "tools/velmar-cfg/base/settled_file.h"

// A new file beside another one, under a name that no file of a user has. The object removes the file at its end,
// unless it was renamed. remove_abandoned_files() removes those of killed processes.
class NEW_FILE
{
public:
    // `path` is for messages. The process's umask applies to `mode`. All functions throw TOOL_ERROR(NOT_WRITTEN) on
    // failure, unless they say otherwise. `beside` must outlive this.
    NEW_FILE(const FILE_PLACE& beside, mode_t mode, std::string path);
    ~NEW_FILE();
    NEW_FILE(const NEW_FILE&) = delete;
    NEW_FILE& operator=(const NEW_FILE&) = delete;

    void write(std::string_view bytes);

    // Renames the file in its directory. Returns false if another file has that name, or if this one is gone.
    bool rename_to_new(const std::string& new_name);

    // Exchanges the names of this file and that one. The object then removes that file at its end, which now has this
    // one's name. Returns 0 or the error number.
    int exchange_with(const std::string& other_name);

    // Renames the file over that one.
    void rename_over(const std::string& other_name);

    // The object no longer removes the file that has its name.
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
    CHANGED_MEANWHILE, // another program has changed the target since it was read, or is about to
    OPEN_FOR_WRITING,  // another program has the target open, and may write to it at any time
};

// The new content of a file, in a file beside it.
class STAGED_FILE
{
public:
    // Writes `bytes` to a new file and gives it what belongs to the old file besides its bytes. If there is no old
    // file, the new one gets the mode that the directory and the umask give it. Throws TOOL_ERROR(NOT_WRITTEN). Both
    // references must outlive this.
    STAGED_FILE(const FILE_PLACE& target, const SEEN_FILE& old_file, std::string_view bytes);

    // Puts the new file in the place of the old one, and makes sure that a power cut cannot undo that. If the result is
    // not DONE, the target is as the other program left it. Throws TOOL_ERROR(NOT_WRITTEN); the message says whether
    // the target was changed.
    //
    // If the file system has leases, a program that opens the target for writing waits during the replacement, and then
    // writes to the file that is the target by then. Without leases, its save is lost if it begins between the last
    // check and the replacement.
    REPLACEMENT replace_target();

private:
    REPLACEMENT replace_existing();
    void synchronise_directory() const;

    const FILE_PLACE& place;
    const SEEN_FILE& old;
    NEW_FILE made;
};

// Removes the new files that killed processes left beside the file. The caller makes sure that no other process still
// needs its own.
void remove_abandoned_files(const FILE_PLACE& place);

#endif
