// The search is that of A. V. Aho and M. J. Corasick, "Efficient String Matching: An Aid to Bibliographic Search". The
// words make a tree in which each node is a beginning of words. The walk through a text is always at the node that is
// the longest beginning with which the text so far ends. Where that node has no child for the next byte, the walk goes
// on at the node's suffix: the longest other beginning with which the node ends.
//
// Invariants:
// - Nodes are linked by depth, so the suffix of a node, which is shorter, is complete before the node is.
// - A node knows the longest word with which it ends: its own if it is a word, else that of its suffix.
//
// Cost for words of m bytes together and a text of n bytes: O(m) time and 24 bytes of memory a byte to make it, O(n)
// time for a search, whatever the words have in common. standing_in() also takes O(m).
#include "tools/velmar-cfg/base/word_search.h"

#include <limits>
#include <new>

WORD_SEARCH::WORD_SEARCH(const std::vector<std::string_view>& words) : nodes(1)
{
    ends.reserve(words.size());
    for (const std::string_view word : words)
    {
        STATE node = 0;
        for (const char c : word)
            node = child_to_add_to(node, static_cast<unsigned char>(c));
        ends.push_back(node);
        if (nodes[node].word == 0)
            nodes[node].word = static_cast<std::uint32_t>(ends.size());
    }
    link_suffixes();
}

WORD_SEARCH::STATE WORD_SEARCH::child(STATE node, unsigned char byte) const
{
    if (node == 0)
        return children_of_root[byte];
    STATE found = nodes[node].first_child;
    while (found != 0 && nodes[found].byte != byte)
        found = nodes[found].next_sibling;
    return found;
}

WORD_SEARCH::STATE WORD_SEARCH::child_to_add_to(STATE node, unsigned char byte)
{
    if (const STATE found = child(node, byte); found != 0)
        return found;
    if (nodes.size() == std::numeric_limits<STATE>::max())
        throw std::bad_alloc();
    const auto added = static_cast<STATE>(nodes.size());
    nodes.push_back({0, nodes[node].first_child, 0, 0, byte});
    nodes[node].first_child = added;
    if (node == 0)
        children_of_root[byte] = added;
    return added;
}

// From a node to the one for the text with that byte behind it.
WORD_SEARCH::STATE WORD_SEARCH::step(STATE node, unsigned char byte) const
{
    STATE next = child(node, byte);
    while (next == 0 && node != 0)
    {
        node = nodes[node].suffix;
        next = child(node, byte);
    }
    return next;
}

void WORD_SEARCH::link_suffixes()
{
    by_depth.reserve(nodes.size());
    by_depth.push_back(0);
    for (std::size_t i = 0; i < by_depth.size(); ++i)
    {
        const STATE parent = by_depth[i];
        for (STATE node = nodes[parent].first_child; node != 0; node = nodes[node].next_sibling)
        {
            by_depth.push_back(node);
            if (parent == 0)
                continue; // the suffix is the root
            nodes[node].suffix = step(nodes[parent].suffix, nodes[node].byte);
            if (nodes[node].word == 0)
                nodes[node].word = nodes[nodes[node].suffix].word;
        }
    }
}

std::vector<bool> WORD_SEARCH::standing_in(std::string_view text) const
{
    std::vector<bool> seen(nodes.size());
    STATE node = 0;
    for (const char c : text)
    {
        node = step(node, static_cast<unsigned char>(c));
        seen[node] = true;
    }
    // Where a node stands, its suffix does, which comes later in this order.
    for (std::size_t i = by_depth.size(); i-- > 0;)
    {
        if (seen[by_depth[i]])
            seen[nodes[by_depth[i]].suffix] = true;
    }
    std::vector<bool> standing;
    standing.reserve(ends.size());
    for (const STATE end : ends)
        standing.push_back(seen[end]);
    return standing;
}
