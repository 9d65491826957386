// The lines of a preference file, each read by the library's rule for lines.
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_LINES_H
#define TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_LINES_H

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "tools/velmar-cfg/preferences/library_preferences.h"

// Calls visit(number, text, line, section) for each line: its number, counted from 1; its text without the line feed;
// what the reader takes from it; and the section that holds from there on, which is empty before the first header.
template <typename VISIT>
void for_each_preference_line(std::string_view bytes, VISIT visit)
{
    std::string section;
    for (std::size_t number = 1; !bytes.empty(); ++number)
    {
        const std::string_view text = bytes.substr(0, bytes.find('\n'));
        bytes.remove_prefix(std::min(text.size() + 1, bytes.size()));
        const zon_cfg::PREFERENCE_LINE line = zon_cfg::classify_preference_line(text);
        if (line.kind == zon_cfg::PREFERENCE_LINE_KIND::HEADER)
            section = line.section;
        visit(number, text, line, section);
    }
}

#endif
