// Finds the entries of a list by their hashes. Uses open addressing in a table that is at most half full.
//
// A slot holds an entry's index and half of its hash. So a search looks at hardly any entry but the one it finds, and
// growing looks at no entry. A table of a million entries takes 16 MiB; entries need no memory of their own. The list
// itself belongs to the caller, who also decides whether two entries are equal.
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
    // The index of the entry with that hash that `is_it`, given an index, accepts; nothing if there is none.
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

    // Adds an entry, which must not be in the table yet. Its index is at most UINT32_MAX - 1.
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

    std::vector<SLOT> slots; // their number is a power of two
    int unused_bits = 0;     // of half a hash: its other bits are the number of its first slot
    std::size_t entries = 0;
};

#endif
