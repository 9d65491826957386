// The name by which a user asks for a state.
#ifndef TOOLS_VELMAR_CFG_STATES_STATE_NAME_H
#define TOOLS_VELMAR_CFG_STATES_STATE_NAME_H

#include <string>
#include <sys/types.h>

struct STATE_NAME
{
    enum class KIND
    {
        NOW,        // here and now, for the project of the scope if it names one
        PROJECT,    // a directory
        DOCUMENT,   // a file, or "-" for standard input
        PROCESS,    // "pid:4711"
        EXECUTABLE, // "exe:PATH"
    };

    KIND kind = KIND::NOW;
    std::string text = {}; // as it was written
    std::string path = {}; // not of a process
    pid_t process = 0;

    // Whether its files are those that the library's search finds in this environment and installation.
    bool is_read_here() const
    {
        return kind == KIND::NOW || kind == KIND::PROJECT;
    }
};

// Parses DIR, FILE, "-", "pid:N" or "exe:PATH". A file or directory whose name begins like the last two is reached as
// "./pid:5". Throws TOOL_ERROR(USAGE) for a number that no process can have and for an empty text.
STATE_NAME state_name(const std::string& text);

#endif
