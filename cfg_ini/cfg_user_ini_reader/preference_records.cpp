#include "cfg_ini/cfg_user_ini_reader/preference_records.h"

#include <utility>

#include "cfg_ini/cfg_user_ini_reader/preference_cache.h"

constinit zon_cfg::CFG_USER_VALUE_MAP* cfg_user_ini_records = nullptr;
constinit zon_cfg::CFG_USER_VALUE_MAP* cfg_user_ini_sections_read = nullptr;

namespace zon_cfg
{
void DELETE_WITH_RECORDS::operator()(CFG_USER_VALUE_MAP* map) const noexcept
{
    for (const auto& [key, record] : *map)
        delete record;
    delete map;
}

PREFERENCE_MAPS make_preference_maps()
{
    PREFERENCE_MAPS maps;
    maps.records.reset(new CFG_USER_VALUE_MAP);
    maps.sections = std::make_unique<CFG_USER_VALUE_MAP>();
    return maps;
}

// The cache points into the loaded maps, so that both functions clear it: no caller can forget to.

void publish_preferences(PREFERENCE_MAPS&& maps) noexcept
{
    clear_preference_cache();
    cfg_user_ini_records = maps.records.release();
    cfg_user_ini_sections_read = maps.sections.release();
}

PREFERENCE_MAPS withdraw_preferences() noexcept
{
    clear_preference_cache();
    PREFERENCE_MAPS maps;
    maps.records.reset(std::exchange(cfg_user_ini_records, nullptr));
    maps.sections.reset(std::exchange(cfg_user_ini_sections_read, nullptr));
    return maps;
}
}
