#include "cfg_ini/cfg_ini_reader/record_table.h"

#include "cfg_ini/cfg_ini.h"

constinit std::atomic<zon_cfg::CFG_INI_TABLE*> cfg_ini_file = nullptr;
constinit bool cfg_ini_dirty = true;

namespace zon_cfg
{
namespace
{
// Takes the lock and finds the record, if there is a store. What visit(record) answers, or false without a record.
template <typename VISIT>
bool with_record(std::string_view name, VISIT visit)
{
    const SOUGHT_NAME sought(name);
    if (!store_exists())
        return false;
    const STORE_LOCK lock(HANDLE_EXISTS{});
    if (store_table() == nullptr)
        return false;
    CFG_INI_RECORD* const record = find_record(sought);
    return record != nullptr && visit(*record);
}
}

CFG_INI_RECORD* find_record_in_table(const SOUGHT_NAME& name)
{
    const CFG_INI_TABLE& table = *store_table();
    const auto entry = table.find(HASHED_NAME(name.text));
    return entry == table.end() ? nullptr : name.cache(entry->second);
}

CFG_INI_RECORD& find_or_insert_record_in_table(std::string_view name)
{
    CFG_INI_TABLE& table = *store_table();
    const auto [entry, is_new] = table.try_emplace(std::string(name), nullptr);
    if (!is_new)
        return *entry->second;
    try
    {
        entry->second = table.make_record();
    }
    catch (...)
    {
        table.erase(entry);
        throw;
    }
    return *entry->second;
}

void reserve_records(std::size_t further)
{
    CFG_INI_TABLE& table = *store_table();
    table.reserve(table.size() + further);
}

void discard_store()
{
    clear_name_cache();
    delete cfg_ini_file.exchange(nullptr, std::memory_order_relaxed);
}

bool mark_had_valid_read(std::string_view name)
{
    return with_record(name, [](CFG_INI_RECORD& record) ZON_LOCK_HELD { return record.had_valid_read = true; });
}
}

bool cfg_ini_is_external(const std::string& name)
{
    return zon_cfg::with_record(name, [](const CFG_INI_RECORD& record) ZON_LOCK_HELD { return record.external; });
}
