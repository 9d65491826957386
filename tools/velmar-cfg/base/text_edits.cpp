#include "tools/velmar-cfg/base/text_edits.h"

std::string with_edits(std::string_view text, const std::vector<TEXT_EDIT>& edits)
{
    std::string result;
    std::size_t end = 0; // of what is in the result
    for (const TEXT_EDIT& edit : edits)
    {
        result.append(text, end, edit.offset - end).append(edit.text);
        end = edit.offset + edit.size;
    }
    return result.append(text, end);
}
