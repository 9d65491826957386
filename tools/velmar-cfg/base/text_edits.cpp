// Replaces parts of a text in one pass: it copies what stands between two edits, then the new text of the edit. The
// edits are in order, so nothing is searched or sorted. Cost: O(n + m) for a text of n bytes and new texts of m bytes.
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
