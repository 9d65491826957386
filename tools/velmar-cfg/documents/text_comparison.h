// Compares texts of documents. Parts of them may be hidden on one side and shown on the other.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_TEXT_COMPARISON_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_TEXT_COMPARISON_H

#include <functional>
#include <string>
#include <string_view>

#include "tools/velmar-cfg/base/hidden_text.h"

// Makes the mark of a text under the user's key.
using MARK_MAKER = std::function<std::string(std::string_view)>;

// As compare_texts(). If only one text has hidden parts, also compares each mark with what stands in its place in the
// other text. Without `mark`, the result of that is UNKNOWN or DIFFERENT.
SAMENESS compare_masked(std::string_view a, std::string_view b, const MARK_MAKER& mark);

#endif
