// A cache over the record table: most lookups are spared the hash and the walk through the table.
//
// The cache is two-way set-associative and keyed by the name as the lookup spells it. It answers what the table would
// answer; an entry may be evicted at any time.
#ifndef CFG_INI_CFG_INI_READER_NAME_CACHE_H
#define CFG_INI_CFG_INI_READER_NAME_CACHE_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "cfg_ini/cfg_ini_reader/name_matching.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"

struct CFG_INI_RECORD;

namespace zon_cfg
{
// One name as a lookup spelt it. Fills a cache line, so that most lookups touch this one and the record's.
struct alignas(64) CACHED_NAME
{
    static constexpr std::size_t longest = 48; // longer names are not cached

    CFG_INI_RECORD* record;
    std::uint32_t epoch; // the entry is valid while this is the current one
    std::uint8_t length;
    char characters[longest];
};
static_assert(sizeof(CACHED_NAME) == 64);

// The two ways of a set, tried in this order.
using CACHE_SET = CACHED_NAME[2];

inline constexpr unsigned int cache_index_bits = 12;

// Of a thousand names in use all but ten find a way of their set.
extern constinit CACHE_SET name_cache[1U << cache_index_bits] ZON_GUARDED;
extern constinit std::uint32_t name_cache_epoch ZON_GUARDED; // never 0

// A name to be looked up: its set in the cache is worked out, and prefetched, ahead of the lock.
class SOUGHT_NAME
{
public:
    // A null name (a view without characters) throws std::logic_error, as making a std::string of it does.
    explicit SOUGHT_NAME(std::string_view name) : text(not_null(name)), ways(set_of(name))
    {
        __builtin_prefetch(ways);
    }

    // The record cached for the name, or null.
    [[gnu::always_inline]] CFG_INI_RECORD* cached() const ZON_LOCK_HELD
    {
        if (is_in(ways[0])) [[likely]]
            return ways[0].record;
        return cached_in_second_way();
    }

    // Caches the record that the name was found to have, and returns it.
    CFG_INI_RECORD* cache(CFG_INI_RECORD* record) const ZON_LOCK_HELD;

    const std::string_view text;

private:
    CFG_INI_RECORD* cached_in_second_way() const ZON_LOCK_HELD;

    bool is_in(const CACHED_NAME& way) const ZON_LOCK_HELD
    {
        return way.epoch == name_cache_epoch && way.length == text.size() &&
               equal_bytes(way.characters, text.data(), text.size());
    }

    // Only the address of the set is worked out, which needs no lock.
    static CACHED_NAME* set_of(std::string_view name) ZON_UNCHECKED
    {
        return name_cache[index_of(name)];
    }

    // Mixes characters of the start, the middle and the end. Names of the same set only evict each other.
    static std::size_t index_of(std::string_view name)
    {
        const std::size_t length = name.size();
        const char* const start = name.data();
        std::uint64_t mix = length;
        if (length >= 8) [[likely]]
            mix += first_of<std::uint64_t>(start) * 0x9E3779B97F4A7C15U +
                   first_of<std::uint64_t>(start + length / 2 - 4) * 0xC2B2AE3D27D4EB4FU +
                   first_of<std::uint64_t>(start + length - 8) * 0x165667B19E3779F9U;
        else if (length >= 4)
            mix += (first_of<std::uint32_t>(start) | std::uint64_t{first_of<std::uint32_t>(start + length - 4)} << 32) *
                   0x9E3779B97F4A7C15U;
        else
        {
            for (const char c : name)
                mix = (mix + static_cast<unsigned char>(c)) * 0x9E3779B97F4A7C15U;
        }
        return mix >> (64 - cache_index_bits);
    }

    // Few branches, which names of most lengths share: the lengths of names that follow each other are hard to foresee.
    static bool equal_bytes(const char* a, const char* b, std::size_t length)
    {
        if (length >= 16) [[likely]]
        {
            // The first, the last and a middle part, each of sixteen characters; they may overlap.
            const std::size_t last = length - 16;
            const std::size_t middle = last < 16 ? last : 16;
            return (difference(a, b) | difference(a + 8, b + 8) | difference(a + middle, b + middle) |
                    difference(a + middle + 8, b + middle + 8) | difference(a + last, b + last) |
                    difference(a + last + 8, b + last + 8)) == 0;
        }
        if (length >= 8)
            return (difference(a, b) | difference(a + length - 8, b + length - 8)) == 0;
        if (length >= 4)
            return first_of<std::uint32_t>(a) == first_of<std::uint32_t>(b) &&
                   first_of<std::uint32_t>(a + length - 4) == first_of<std::uint32_t>(b + length - 4);
        return std::memcmp(a, b, length) == 0;
    }

    // Of eight characters each; 0 when they are equal.
    static std::uint64_t difference(const char* a, const char* b)
    {
        return first_of<std::uint64_t>(a) ^ first_of<std::uint64_t>(b);
    }

    template <typename T>
    static T first_of(const char* from)
    {
        T value;
        std::memcpy(&value, from, sizeof value);
        return value;
    }

    CACHED_NAME* const ways; // two
};

// Invalidates every entry; to be called before the table goes.
void clear_name_cache() ZON_LOCK_HELD;
}

#endif
