#include "tools/velmar-cfg/commands/diagnostics.h"

#include <cstdio>

#include "tools/velmar-cfg/base/text.h"

void complain(std::string_view text)
{
    const std::string line = "velmar-cfg: " + printable(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
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
