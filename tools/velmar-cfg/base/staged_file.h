// Replacing a file so that at every moment, also when the process is killed, it is whole: either the old or the new
// one.
#ifndef TOOLS_VELMAR_CFG_BASE_STAGED_FILE_H
#define TOOLS_VELMAR_CFG_BASE_STAGED_FILE_H

#include <string>

// A private directory in which the new file is made before it takes the old one's place. Gone with the object; one that
// a killed process left is removed with remove_abandoned_staging.
class STAGED_FILE
{
public:
    // Makes the directory: beside `target` (a path without symbolic links), or with `beside_target` false, when the
    // file is never to be put in its place, among the temporary files. If the target exists, the file in the directory,
    // which has the name `file_name`, begins as a copy of it. Throws TOOL_ERROR(NOT_WRITTEN).
    STAGED_FILE(const std::string& target, const std::string& file_name, bool beside_target);
    ~STAGED_FILE();
    STAGED_FILE(const STAGED_FILE&) = delete;
    STAGED_FILE& operator=(const STAGED_FILE&) = delete;

    const std::string& directory() const
    {
        return staging;
    }

    std::string path() const
    {
        return staging + "/" + name;
    }

    // What the target held when the copy was made; empty without a target.
    const std::string& bytes_before() const
    {
        return before;
    }

    // Puts the file in the target's place, with the target's owner and mode, and makes that last through a power cut.
    // Throws TOOL_ERROR(NOT_WRITTEN), with the target untouched, when it cannot, or when someone else has changed the
    // target since the copy was made.
    void replace_target();

private:
    const std::string target;
    const std::string name;
    std::string staging;
    std::string before;
};

// Removes what killed processes left beside `target`. To be called while no other process may be at it.
void remove_abandoned_staging(const std::string& target, const std::string& file_name);

#endif
