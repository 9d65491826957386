// From where settings and preferences are looked for: what the library's own rules ask of the process that they run in.
//
// A perspective is put into effect for as long as all is read, and the library's rules then find what they would find
// in that other process. Nothing of the search is written a second time.
#ifndef TOOLS_VELMAR_CFG_STATES_PERSPECTIVE_H
#define TOOLS_VELMAR_CFG_STATES_PERSPECTIVE_H

#include <optional>
#include <vector>

#include "tools/velmar-cfg/base/open_file.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/installation.h"

// What differs from this process; a default-made one differs in nothing.
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
