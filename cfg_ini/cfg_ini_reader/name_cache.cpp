#include "cfg_ini/cfg_ini_reader/name_cache.h"

#include <cstring>

namespace zon_cfg
{
alignas(sizeof(CACHE_SET)) constinit CACHE_SET name_cache[1U << cache_index_bits] = {};
constinit std::uint32_t name_cache_epoch = 1;

namespace
{
// Alternates at each eviction, so that no name keeps its way for ever.
constinit std::size_t way_to_evict ZON_GUARDED = 0;

bool is_free(const CACHED_NAME& way) ZON_LOCK_HELD
{
    return way.epoch != name_cache_epoch;
}
}

CFG_INI_RECORD* SOUGHT_NAME::cached_in_second_way() const
{
    return is_in(ways[1]) ? ways[1].record : nullptr;
}

CFG_INI_RECORD* SOUGHT_NAME::cache(CFG_INI_RECORD* record) const
{
    if (text.size() > CACHED_NAME::longest)
        return record;
    const std::size_t chosen = is_free(ways[0]) ? 0 : is_free(ways[1]) ? 1 : (way_to_evict ^= 1);
    CACHED_NAME& way = ways[chosen];
    way.record = record;
    way.epoch = name_cache_epoch;
    way.length = static_cast<std::uint8_t>(text.size());
    std::memcpy(way.characters, text.data(), text.size());
    return record;
}

void clear_name_cache()
{
    // Mostly without touching the entries' memory.
    if (++name_cache_epoch == 0)
    {
        std::memset(name_cache, 0, sizeof name_cache);
        name_cache_epoch = 1;
    }
}
}
