#include "cfg_ini/cfg_ini_reader/name_cache.h"

#include <cstring>
#include <limits>

namespace zon_cfg
{
namespace
{
constexpr std::size_t most_sets = std::size_t{1} << most_cache_bits;

alignas(sizeof(CACHE_SET)) constinit CACHE_SET sets[most_sets] = {};

// Alternates at each eviction, so that no name keeps its way for ever.
constinit std::size_t way_to_evict ZON_GUARDED = 0;

// The number of names at which a cache of so many sets is doubled. Up to 64 KiB, the cache gets fuller than beyond:
// most hosts use a few hundred names and should spend little memory. Hosts with more names should have a way for nearly
// every name.
constexpr std::size_t most_names_in(std::size_t number_of_sets)
{
    if (number_of_sets == most_sets)
        return std::numeric_limits<std::size_t>::max();
    return number_of_sets <= 512 ? number_of_sets * 7 / 16 : number_of_sets / 4;
}

constinit std::size_t cached_names ZON_GUARDED = 0;
constinit std::size_t most_cached_names ZON_GUARDED = most_names_in(std::size_t{1} << least_cache_bits);

bool is_free(const CACHED_NAME& way) ZON_LOCK_HELD
{
    return way.epoch != name_cache.epoch;
}

std::size_t number_of_sets()
{
    return std::size_t{1} << (64 - name_cache.shift.load(std::memory_order_relaxed));
}

// Moves the names of each set n to the sets 2n and 2n + 1. The last set is first, so the names of those two sets have
// moved on already, and their ways are free. So no name is lost.
[[gnu::noinline]] void double_name_cache() ZON_LOCK_HELD
{
    std::size_t set = number_of_sets();
    name_cache.shift.fetch_sub(1, std::memory_order_relaxed);
    most_cached_names = most_names_in(number_of_sets());
    while (set-- > 0)
    {
        CACHE_SET names;
        std::memcpy(names, sets[set], sizeof names);
        for (CACHED_NAME& way : sets[set])
            way.epoch = 0;
        for (const CACHED_NAME& name : names)
        {
            if (is_free(name))
                continue;
            CACHED_NAME* const ways = cache_set_of({name.characters, name.length});
            ways[is_free(ways[0]) ? 0 : 1] = name;
        }
    }
}
}

constinit NAME_CACHE name_cache = {.sets = sets, .shift = 64 - least_cache_bits, .epoch = 1};

CFG_INI_RECORD* cache_record(std::string_view name, CFG_INI_RECORD* record)
{
    if (name.size() > CACHED_NAME::longest)
        return record;
    if (cached_names >= most_cached_names) [[unlikely]]
        double_name_cache();
    CACHED_NAME* const ways = cache_set_of(name); // those found ahead of the lock may be out of date
    std::size_t chosen = 0;
    if (!is_free(ways[0]))
        chosen = is_free(ways[1]) ? 1 : (way_to_evict ^= 1);
    CACHED_NAME& way = ways[chosen];
    if (is_free(way))
        ++cached_names;
    way.record = record;
    way.epoch = name_cache.epoch;
    way.length = static_cast<std::uint8_t>(name.size());
    std::memcpy(way.characters, name.data(), name.size());
    return record;
}

void clear_name_cache()
{
    cached_names = 0;
    if (++name_cache.epoch == 0)
    {
        // An entry of 2^32 epochs ago would seem valid.
        std::memset(sets, 0, number_of_sets() * sizeof(CACHE_SET));
        name_cache.epoch = 1;
    }
}
}
