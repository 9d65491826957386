// A perspective: all that the search for settings and preferences depends on in the process that makes it.
//
// While everything is read, this process takes on the perspective of another. So the library's own rules find what they
// would find there, and the tool has no search of its own.
#ifndef TOOLS_VELMAR_CFG_STATES_PERSPECTIVE_H
#define TOOLS_VELMAR_CFG_STATES_PERSPECTIVE_H

#include <optional>
#include <vector>

#include "tools/velmar-cfg/base/open_file.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/installation.h"

// What differs from this process. By default, nothing differs.
struct PERSPECTIVE
{
    // The environment variables that matter, each once; nothing for those of this process.
    std::optional<std::vector<ENVIRONMENT_VARIABLE>> environment;

    OPEN_FILE directory; // the current directory; none for that of this process
    std::optional<INSTALLATION> installation;
};

// In effect from construction to destruction. Changes the environment, the current directory and the path services of
// the whole process: no other thread may use any of them meanwhile.
class PERSPECTIVE_IN_EFFECT
{
public:
    // The perspective must outlive this. Throws TOOL_ERROR(BAD_INPUT) when its directory cannot be entered.
    explicit PERSPECTIVE_IN_EFFECT(const PERSPECTIVE& perspective);
    ~PERSPECTIVE_IN_EFFECT();

    PERSPECTIVE_IN_EFFECT(const PERSPECTIVE_IN_EFFECT&) = delete;
    PERSPECTIVE_IN_EFFECT& operator=(const PERSPECTIVE_IN_EFFECT&) = delete;

private:
    OPEN_FILE directory_before;
    std::optional<std::vector<ENVIRONMENT_VARIABLE>> environment_before;
    std::optional<INSTALLATION> installation_before;
};

#endif
