// The sources of the store, for hosts: one walk over the list and the records with the lock held.
#include "cfg_ini/cfg_ini_reader/applied_sources.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"
#include "cfg_ini/cfg_settings_sources.h"

CFG_SETTINGS_SOURCES cfg_get_settings_sources()
{
    using namespace zon_cfg;
    CFG_SETTINGS_SOURCES report;
    if (!store_exists())
        return report;
    const STORE_LOCK lock;
    const CFG_INI_TABLE* const table = store_table();
    if (table == nullptr)
        return report;
    const auto& applied = table->sources.in_order();
    report.applied.assign(applied.begin(), applied.end());
    report.lost_until = table->sources.lost_until();
    for (const auto& [name, record] : *table)
    {
        if (record->value.empty())
            report.empty_variables.push_back(name);
    }
    return report;
}
