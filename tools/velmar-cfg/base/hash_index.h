// Finds the entries of a list by their hashes: open addressing, in a table that is half full at most.
//
// A slot holds an entry's index and half of its hash, so that nearly every question is answered without a look at an
// entry that is not the one, and growing needs no entry at all. A table of a million entries takes 16 MiB; no entry has
// memory of its own. The list itself is the owner's, who also tells when two entries are the same.
#ifndef TOOLS_VELMAR_CFG_BASE_HASH_INDEX_H
#define TOOLS_VELMAR_CFG_BASE_HASH_INDEX_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

class HASH_INDEX
{
public:
    // The entry of that hash that `is_it` accepts, given an index; nothing when there is none.
    template <typename IS_IT>
    std::optional<std::uint32_t> find(std::uint64_t hash, IS_IT is_it) const
    {
        const std::uint64_t spread = spread_out(hash);
        for (std::size_t at = first_slot(spread); !slots.empty() && slots[at].next_index != 0; at = behind(at))
        {
            if (slots[at].hash == half_of(spread) && is_it(slots[at].next_index - 1))
                return slots[at].next_index - 1;
        }
        return std::nullopt;
    }

    // Adds an entry, which must not be there. Its index is at most UINT32_MAX - 1.
    void add(std::uint64_t hash, std::uint32_t index)
    {
        if (2 * (entries + 1) > slots.size())
            grow();
        const std::uint64_t spread = spread_out(hash);
        insert({half_of(spread), index + 1});
        ++entries;
    }

private:
    struct SLOT
    {
        std::uint32_t hash;       // the upper half, which also says where the search begins
        std::uint32_t next_index; // of the entry, plus 1; 0 for an empty slot
    };

    // Hashes may be regular in their low bits; a multiplication spreads them over the high ones.
    static std::uint64_t spread_out(std::uint64_t hash)
    {
        return hash * 0x9e3779b97f4a7c15U;
    }

    static std::uint32_t half_of(std::uint64_t spread)
    {
        return static_cast<std::uint32_t>(spread >> 32);
    }

    std::size_t first_slot(std::uint64_t spread) const
    {
        return slots.empty() ? 0 : first_slot_of_half(half_of(spread));
    }

    std::size_t first_slot_of_half(std::uint32_t half) const
    {
        return half >> unused_bits;
    }

    std::size_t behind(std::size_t at) const
    {
        return (at + 1) & (slots.size() - 1);
    }

    void insert(SLOT entry)
    {
        std::size_t at = first_slot_of_half(entry.hash);
        while (slots[at].next_index != 0)
            at = behind(at);
        slots[at] = entry;
    }

    void grow()
    {
        constexpr std::size_t fewest_slots = 16;
        std::vector<SLOT> smaller(slots.empty() ? fewest_slots : 2 * slots.size());
        smaller.swap(slots);
        unused_bits = 32 - std::countr_zero(slots.size());
        for (const SLOT& entry : smaller)
        {
            if (entry.next_index != 0)
                insert(entry);
        }
    }

    std::vector<SLOT> slots; // a power of two of them
    int unused_bits = 0;     // of the half of a hash: the others are the number of its first slot
    std::size_t entries = 0;
};

#endif
