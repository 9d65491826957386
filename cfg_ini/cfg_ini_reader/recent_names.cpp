#include "cfg_ini/cfg_ini_reader/recent_names.h"

#include <algorithm>

constinit RECENT_NAME cfg_ini_recent_names[1U << recent_bits] = {};
constinit std::uint32_t cfg_ini_recent_epoch = 1;

CFG_INI_RECORD* SOUGHT_NAME::remember(CFG_INI_RECORD* record) const
{
    if (text.size() <= RECENT_NAME::longest)
    {
        place->record = record;
        place->epoch = cfg_ini_recent_epoch;
        place->length = static_cast<std::uint8_t>(text.size());
        std::memcpy(place->characters, text.data(), text.size());
    }
    return record;
}

void forget_recent_names()
{
    // Mostly without touching their memory.
    if (++cfg_ini_recent_epoch == 0)
    {
        std::ranges::fill(cfg_ini_recent_names, RECENT_NAME{});
        cfg_ini_recent_epoch = 1;
    }
}
