// Each text becomes one line on standard error, written at once. A failure to write it is not reported.
#include "tools/velmar-cfg/commands/diagnostics.h"

#include <unistd.h>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"

void complain(std::string_view text)
{
    try
    {
        OUTPUT out(STDERR_FILENO);
        out << "velmar-cfg: " << printable(text) << "\n";
        out.finish();
    }
    catch (const TOOL_ERROR&) // NOLINT(bugprone-empty-catch)
    {
        // There is nobody else to tell.
    }
}

void complain_of_key(const SECRETS& secrets)
{
    if (const std::string problem = secrets.key_problem(); !problem.empty())
        complain(problem);
}

bool complain_of(const std::vector<std::string>& texts)
{
    for (const std::string& text : texts)
        complain(text);
    return texts.empty();
}
