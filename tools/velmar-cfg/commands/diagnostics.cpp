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

bool complain_of(const std::vector<std::string>& texts)
{
    for (const std::string& text : texts)
        complain(text);
    return texts.empty();
}
