// Whether texts of documents are the same, of which parts are hidden on one side and shown on the other.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_TEXT_COMPARISON_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_TEXT_COMPARISON_H

#include <functional>
#include <string>
#include <string_view>

#include "tools/velmar-cfg/base/hidden_text.h"

// The mark of a text, under the user's key.
using MARK_MAKER = std::function<std::string(std::string_view)>;

// As compare_texts; besides, a mark is compared with what stands in its place in a text of which nothing is hidden.
// Without a maker it is not known whether both are the same.
SAMENESS compare_masked(std::string_view a, std::string_view b, const MARK_MAKER& mark);

#endif
