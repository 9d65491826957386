// Replaces parts of a text.
#ifndef TOOLS_VELMAR_CFG_BASE_TEXT_EDITS_H
#define TOOLS_VELMAR_CFG_BASE_TEXT_EDITS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// `size` bytes from `offset` on become `text`.
struct TEXT_EDIT
{
    std::size_t offset;
    std::size_t size;
    std::string text;
};

// The text with the edits made. They must be in the order of their offsets, and none may begin within another.
std::string with_edits(std::string_view text, const std::vector<TEXT_EDIT>& edits);

#endif
