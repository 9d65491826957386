// Gives this process the environment, the current directory and the installation of another, and takes them back at the
// end.
//
// The directory comes first, since it may refuse to be entered: then nothing has been changed. Before that, this
// process enters its own current directory once more, through a descriptor: what cannot be entered now could not be
// gone back to. Only what the perspective names is changed.
#include "tools/velmar-cfg/states/perspective.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/settings/secrets.h"

namespace
{
void set_environment(const std::vector<ENVIRONMENT_VARIABLE>& variables)
{
    for (const auto& [name, value] : variables)
    {
        if (value)
            setenv(name.c_str(), value->c_str(), 1);
        else
            unsetenv(name.c_str());
    }
}

// As it is, secrets shown.
std::vector<ENVIRONMENT_VARIABLE> environment_now()
{
    SECRETS none;
    none.show_all();
    return environment_that_matters(none);
}

[[noreturn]] void refuse_directory(const char* whose, int error)
{
    throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, std::string("the current directory ") + whose + " cannot be entered: " +
                                               std::strerror(error) + "; let this user search the directory");
}
}

PERSPECTIVE_IN_EFFECT::PERSPECTIVE_IN_EFFECT(const PERSPECTIVE& perspective)
{
    if (perspective.directory.get() >= 0)
    {
        OPEN_FILE before(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC));
        // What cannot be entered now could not be come back to.
        if (before.get() < 0 || fchdir(before.get()) != 0)
            refuse_directory("of this velmar-cfg", errno);
        if (fchdir(perspective.directory.get()) != 0)
            refuse_directory("of the process", errno);
        directory_before = std::move(before);
    }
    if (perspective.environment)
    {
        environment_before = environment_now();
        set_environment(*perspective.environment);
    }
    if (perspective.installation)
        installation_before = set_installation(*perspective.installation);
}

PERSPECTIVE_IN_EFFECT::~PERSPECTIVE_IN_EFFECT()
{
    // It could be entered a moment ago. Files must not be written to another directory by their relative paths.
    if (directory_before.get() >= 0 && fchdir(directory_before.get()) != 0)
        std::abort();
    if (environment_before)
        set_environment(*environment_before);
    if (installation_before)
        set_installation(*installation_before);
}
