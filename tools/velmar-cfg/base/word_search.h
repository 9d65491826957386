// Searches a text for many words at once.
#ifndef TOOLS_VELMAR_CFG_BASE_WORD_SEARCH_H
#define TOOLS_VELMAR_CFG_BASE_WORD_SEARCH_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

class WORD_SEARCH
{
public:
    // No word may be empty. Copies their bytes. Throws std::bad_alloc if these are too many, about 4 * 10^9.
    explicit WORD_SEARCH(const std::vector<std::string_view>& words);

    // Calls take(end, word) for each match, with the offset of its end and the index of the word, in the order of the
    // ends. Of several words that end at one offset, only the longest is a match; of several equal words, the first.
    template <typename TAKE>
    void for_each_longest_match(std::string_view text, TAKE take) const
    {
        STATE node = 0;
        for (std::size_t at = 0; at < text.size(); ++at)
        {
            node = step(node, static_cast<unsigned char>(text[at]));
            if (nodes[node].word != 0)
                take(at + 1, nodes[node].word - 1);
        }
    }

    // For each word, whether it stands in the text.
    std::vector<bool> standing_in(std::string_view text) const;

private:
    using STATE = std::uint32_t; // the index of a node; 0 is the root

    struct NODE
    {
        STATE first_child = 0;  // 0 for none
        STATE next_sibling = 0; // 0 for none
        STATE suffix = 0;
        std::uint32_t word = 0; // one more than the index of the longest word with which it ends; 0 for none
        unsigned char byte = 0;
    };

    STATE child(STATE node, unsigned char byte) const;
    STATE child_to_add_to(STATE node, unsigned char byte);
    STATE step(STATE node, unsigned char byte) const;
    void link_suffixes();

    std::vector<NODE> nodes;
    std::vector<STATE> by_depth; // all nodes, the root first
    std::vector<STATE> ends;     // by the word: the node that is the whole word
    std::array<STATE, 256> children_of_root = {};
};

#endif
