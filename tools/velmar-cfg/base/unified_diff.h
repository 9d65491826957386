// The difference of two texts in the unified form that patch(1) reads.
#ifndef TOOLS_VELMAR_CFG_BASE_UNIFIED_DIFF_H
#define TOOLS_VELMAR_CFG_BASE_UNIFIED_DIFF_H

#include <string>
#include <string_view>

// Has three lines of context; empty if the texts are equal. Removes and adds as few lines as possible. If these are
// more than 2000, removes and adds everything between the common beginning and the common end instead.
std::string unified_diff(std::string_view before, std::string_view after, const std::string& before_name,
                         const std::string& after_name);

#endif
