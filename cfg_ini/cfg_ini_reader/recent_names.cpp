#include "cfg_ini/cfg_ini_reader/recent_names.h"

#include <cstring>

alignas(sizeof(RECENT_PAIR)) constinit RECENT_PAIR cfg_ini_recent_names[1U << recent_bits] = {};
constinit std::uint32_t cfg_ini_recent_epoch = 1;

namespace
{
// Turned at each use, so that no name keeps its place for ever.
constinit std::size_t place_to_reuse = 0;

bool is_free(const RECENT_NAME& place)
{
    return place.epoch != cfg_ini_recent_epoch;
}
}

CFG_INI_RECORD* SOUGHT_NAME::recent_in_second_place() const
{
    return is_in(places[1]) ? places[1].record : nullptr;
}

CFG_INI_RECORD* SOUGHT_NAME::remember(CFG_INI_RECORD* record) const
{
    if (text.size() > RECENT_NAME::longest)
        return record;
    const std::size_t chosen = is_free(places[0]) ? 0 : is_free(places[1]) ? 1 : (place_to_reuse ^= 1);
    RECENT_NAME& place = places[chosen];
    place.record = record;
    place.epoch = cfg_ini_recent_epoch;
    place.length = static_cast<std::uint8_t>(text.size());
    std::memcpy(place.characters, text.data(), text.size());
    return record;
}

void forget_recent_names()
{
    // Mostly without touching their memory.
    if (++cfg_ini_recent_epoch == 0)
    {
        std::memset(cfg_ini_recent_names, 0, sizeof cfg_ini_recent_names);
        cfg_ini_recent_epoch = 1;
    }
}
