// How a command ends, and the one exception that ends it early.
#ifndef TOOLS_VELMAR_CFG_BASE_ERRORS_H
#define TOOLS_VELMAR_CFG_BASE_ERRORS_H

#include <stdexcept>
#include <string>

enum class EXIT_CODE : int
{
    FINE = 0,
    FINDINGS = 1,    // no usable value, findings, or differences
    USAGE = 2,       // the command line makes no sense
    BAD_INPUT = 3,   // something to read is missing, unreadable or malformed
    NOT_WRITTEN = 4, // something could not be written, or not be locked
    REFUSED = 5,     // the catalogue has no such name or does not allow the value
};

// Ends the command. `what` is one line that names what is wrong and says what to do.
class TOOL_ERROR : public std::runtime_error
{
public:
    TOOL_ERROR(EXIT_CODE code, const std::string& what) : std::runtime_error(what), exit_code(code) {}

    const EXIT_CODE exit_code;
};

#endif
