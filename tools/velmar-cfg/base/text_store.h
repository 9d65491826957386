// Keeps many short texts in few blocks of memory, at addresses that do not change.
#ifndef TOOLS_VELMAR_CFG_BASE_TEXT_STORE_H
#define TOOLS_VELMAR_CFG_BASE_TEXT_STORE_H

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class TEXT_STORE
{
public:
    // A copy of the text. It is valid as long as the store, even if that is moved.
    std::string_view keep(std::string_view text)
    {
        if (blocks.empty() || blocks.back().capacity() - blocks.back().size() < text.size())
            blocks.emplace_back().reserve(std::max(block_size, text.size()));
        std::string& block = blocks.back();
        block.append(text); // within its capacity: the texts in it stay
        return std::string_view(block).substr(block.size() - text.size());
    }

private:
    static constexpr std::size_t block_size = std::size_t{64} * 1024;

    std::vector<std::string> blocks;
};

#endif
