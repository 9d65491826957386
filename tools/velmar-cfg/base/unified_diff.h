// The difference of two texts in the unified form that patch(1) reads.
#ifndef TOOLS_VELMAR_CFG_BASE_UNIFIED_DIFF_H
#define TOOLS_VELMAR_CFG_BASE_UNIFIED_DIFF_H

#include <string>
#include <string_view>

// With three lines of context; empty when the texts are equal. The least number of lines is removed and added, unless
// that is thousands: then everything between the common beginning and the common end is.
std::string unified_diff(std::string_view before, std::string_view after, const std::string& before_name,
                         const std::string& after_name);

#endif
