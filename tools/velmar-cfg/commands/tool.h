// One invocation of velmar-cfg: what the command line asks for.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_TOOL_H
#define TOOLS_VELMAR_CFG_COMMANDS_TOOL_H

#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/settings/layers.h"

// The options that every command takes. A path that was not given is empty.
struct GLOBAL_OPTIONS
{
    SETTINGS_SCOPE scope;
    std::string root;
    bool with_secrets = false;
    std::vector<std::string> secret_patterns;
    bool json = false;
    bool nul_terminated = false; // -z, only for commands that have it
    std::string color = "auto";
};

struct TOOL
{
    GLOBAL_OPTIONS options;
    INPUT_FILES files; // all that the command reads, each once
    OUTPUT out = OUTPUT(STDOUT_FILENO);
    std::function<EXIT_CODE()> command; // the one that the command line names

    // Checks that run before any file is looked at. Each throws TOOL_ERROR(USAGE) if options of the command contradict
    // each other.
    std::vector<std::function<void()>> checks;
};

// Answers with one JSON document. Calls write(writer) to write it.
template <typename WRITE>
void answer_in_json(TOOL& tool, WRITE write)
{
    JSON_WRITER writer(tool.out);
    write(writer);
    writer.finish();
}

#endif
