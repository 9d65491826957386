// A cache over the record table. It spares most lookups the hash and the search of the table.
//
// It is two-way set-associative. Its key is the name as the lookup spells it. A mix of some characters of the name
// selects the set, and a hit compares the whole name. An entry points to its record, which does not move as long as the
// table lives. An entry is valid while it carries the current epoch, so emptying the cache takes one addition.
//
// The cache grows with the names in use, so that small hosts spend little memory on it. It begins with 64 sets and
// doubles as they fill, up to 4096. All sizes lie at the start of one array, for which the system provides only the
// pages that were touched. Every entry is in the set that its name has at the present size. Lookups find their set
// before they take the lock, while another thread may be doubling the cache. They may then look into the set of a
// smaller cache; at worst, this is a miss.
//
// A hit costs the mix, the comparison, and one cache line beside the record's. A miss costs the hash and the search,
// and may evict another name.
#ifndef CFG_INI_CFG_INI_READER_NAME_CACHE_H
#define CFG_INI_CFG_INI_READER_NAME_CACHE_H

#include <atomic>
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

    // Whether the entry is valid and of that name.
    bool is_of(std::string_view name) const ZON_LOCK_HELD;
};
static_assert(sizeof(CACHED_NAME) == 64);

// The two ways of a set, tried in this order.
using CACHE_SET = CACHED_NAME[2];

// The exponents of the smallest and the largest number of sets, which is a power of two. With a thousand names in use,
// all but about ten have a way.
inline constexpr unsigned int least_cache_bits = 6;
inline constexpr unsigned int most_cache_bits = 12;

struct NAME_CACHE
{
    CACHE_SET* const sets; // room for the largest number of sets
    // The index of a set is the mix, shifted right by this: 64 less the exponent of the number of sets. Changed only
    // under the lock; read without it.
    std::atomic<unsigned int> shift;
    std::uint32_t epoch ZON_GUARDED; // never 0
};
extern constinit NAME_CACHE name_cache;

// --- How names are mixed and compared ---

template <typename T>
T first_of(const char* from)
{
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

// The difference of eight characters of each text; 0 if they are equal.
inline std::uint64_t difference(const char* a, const char* b)
{
    return first_of<std::uint64_t>(a) ^ first_of<std::uint64_t>(b);
}

// Mixes characters from the start, the middle and the end of a name. Names of the same set only evict each other.
[[gnu::always_inline]] inline std::uint64_t mix_of(std::string_view name)
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
        for (const char c : not_null(name)) // a null view is of length 0
            mix = (mix + static_cast<unsigned char>(c)) * 0x9E3779B97F4A7C15U;
    }
    return mix;
}

// Has few branches, and names of most lengths take the same ones: processors predict the lengths of successive names
// badly.
[[gnu::always_inline]] inline bool equal_bytes(const char* a, const char* b, std::size_t length)
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

[[gnu::always_inline]] inline bool CACHED_NAME::is_of(std::string_view name) const
{
    return epoch == name_cache.epoch && length == name.size() && equal_bytes(characters, name.data(), name.size());
}

// --- Using the cache ---

// The two ways of a name's set. Needs no lock, since it only computes the address.
[[gnu::always_inline]] inline CACHED_NAME* cache_set_of(std::string_view name)
{
    // cppcheck-suppress CastIntegerToAddressAtReturn
    return name_cache.sets[mix_of(name) >> name_cache.shift.load(std::memory_order_relaxed)];
}

// A name to be looked up. Its set in the cache is computed and prefetched before the lock is taken. An object stays in
// registers: functions that are not inlined into the lookup take its parts as separate arguments.
class SOUGHT_NAME
{
public:
    // A null name (a view without characters) throws std::logic_error.
    [[gnu::always_inline]] explicit SOUGHT_NAME(std::string_view name) : text(name), ways(cache_set_of(name))
    {
        __builtin_prefetch(ways);
    }

    const std::string_view text;
    const CACHED_NAME* const ways; // two; guarded by the lock
};

// Caches the record that was found for the name, and returns it. Names that are too long are not cached.
CFG_INI_RECORD* cache_record(std::string_view name, CFG_INI_RECORD* record) ZON_LOCK_HELD;

// Invalidates every entry. Must be called before the table is destroyed.
void clear_name_cache() ZON_LOCK_HELD;
}

#endif
