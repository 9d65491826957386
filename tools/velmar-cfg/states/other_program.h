// How another program sees the settings: a process that runs, or an executable that would be started.
#ifndef TOOLS_VELMAR_CFG_STATES_OTHER_PROGRAM_H
#define TOOLS_VELMAR_CFG_STATES_OTHER_PROGRAM_H

#include <string>
#include <sys/types.h>

#include "tools/velmar-cfg/base/open_file.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/states/perspective.h"

struct OTHER_PROGRAM
{
    PERSPECTIVE perspective;
    std::string executable; // its path
    std::string directory;  // the current directory of a process; empty for an executable
};

// A process of this user. The object stays with this process even if its number is given to another one. look() throws
// once the process has ended.
class RUNNING_PROCESS
{
public:
    // Throws TOOL_ERROR(BAD_INPUT) when there is none of that number.
    explicit RUNNING_PROCESS(pid_t its_number);

    // The view of the process: the environment variables that matter, with the values that it was started with, its
    // current directory, and the installation of its executable. Throws TOOL_ERROR(BAD_INPUT) with the reason if that
    // cannot be found out, or if the same paths would lead this process to other files. The reasons are: it has ended,
    // or has started another program meanwhile; it is the kernel's or a thread; it belongs to another user; it has
    // another root directory or other mounts; its executable or directory was removed or replaced; its environment was
    // overwritten.
    //
    // Root may not look at processes of other users either: root can read files that they cannot.
    OTHER_PROGRAM look() const;

private:
    OTHER_PROGRAM look_once(bool is_last) const;
    [[noreturn]] void refuse(const std::string& why) const;
    [[noreturn]] void refuse_for_now(const std::string& why) const;
    [[noreturn]] void refuse_error(const char* what, int error) const;
    void require_own_process() const;
    void require_same_files() const;
    std::string text_of(const char* file) const;
    std::string path_of(const char* link, const OPEN_FILE& file) const;
    OPEN_FILE open_member(const char* name, int flags) const;
    std::vector<ENVIRONMENT_VARIABLE> environment_in(const std::string& bytes) const;

    pid_t number;
    OPEN_FILE directory; // in /proc
};

// The view of an executable that is started here, in the environment of this process. Throws TOOL_ERROR(BAD_INPUT)
// unless it is one that this user may run.
OTHER_PROGRAM program_started_here(const std::string& path);

#endif
