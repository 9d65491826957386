// One invocation of velmar-cfg: what the command line asks for, and how it ends.
#ifndef TOOLS_VELMAR_CFG_TOOL_H
#define TOOLS_VELMAR_CFG_TOOL_H

#include <functional>
#include <stdexcept>
#include <string>

#include "tools/velmar-cfg/output.h"

enum class EXIT_CODE : int
{
    FINE = 0,
    FINDINGS = 1,    // nothing usable, findings, or differences
    USAGE = 2,       // the command line makes no sense
    BAD_INPUT = 3,   // something to read is missing, unreadable or malformed
    NOT_WRITTEN = 4, // something could not be written, or not be locked
    REFUSED = 5,     // the catalogue has no such name or does not allow the value
};

// Ends the command: `what` goes to standard error as one line.
class TOOL_ERROR : public std::runtime_error
{
public:
    TOOL_ERROR(EXIT_CODE code, const std::string& what) : std::runtime_error(what), exit_code(code) {}

    const EXIT_CODE exit_code;
};

// The options that every command takes. A path that was not given is empty.
struct GLOBAL_OPTIONS
{
    std::string project;
    bool regtest = false;
    std::string root;
    bool json = false;
    bool nul_terminated = false; // only by commands that list for scripts
    std::string color = "auto";
};

struct TOOL
{
    GLOBAL_OPTIONS options;
    OUTPUT out;
    std::function<EXIT_CODE()> command; // the one that the command line names
};

#endif
