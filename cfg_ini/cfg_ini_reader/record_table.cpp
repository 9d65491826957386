#include "cfg_ini/cfg_ini_reader/record_table.h"

#include <mutex>

#include "cfg_ini/cfg_ini.h"

constinit std::atomic<CFG_INI_TABLE*> cfg_ini_file = nullptr;
constinit std::atomic<THR_MUTEX*> cfg_ini_mutex = nullptr;
constinit bool cfg_ini_dirty = true;

namespace
{
// Takes the lock and finds the record, if there is a store. What visit(record) answers, or false without a record.
template <typename VISIT>
bool with_record(const SOUGHT_NAME& name, VISIT visit)
{
    if (cfg_ini_file.load(std::memory_order_acquire) == nullptr)
        return false;
    const STORE_LOCK lock;
    if (cfg_ini_file.load(std::memory_order_relaxed) == nullptr)
        return false;
    CFG_INI_RECORD* const record = find_record(name);
    return record != nullptr && visit(*record);
}
}

THR_MUTEX* store_mutex()
{
    THR_MUTEX* mutex = cfg_ini_mutex.load(std::memory_order_acquire);
    if (mutex == nullptr) [[unlikely]]
    {
        static constinit std::mutex creation;
        const std::lock_guard only_one_creates(creation);
        mutex = cfg_ini_mutex.load(std::memory_order_relaxed);
        if (mutex == nullptr)
        {
            mutex = thr_mutex_create();
            cfg_ini_mutex.store(mutex, std::memory_order_release);
        }
    }
    return mutex;
}

CFG_INI_RECORD* find_record_in_table(const SOUGHT_NAME& name)
{
    const CFG_INI_TABLE& table = *cfg_ini_file.load(std::memory_order_relaxed);
    const auto entry = table.find(HASHED_NAME(name.text));
    return entry == table.end() ? nullptr : name.remember(entry->second);
}

CFG_INI_RECORD& find_or_insert_record_in_table(std::string_view name)
{
    CFG_INI_TABLE& table = *cfg_ini_file.load(std::memory_order_relaxed);
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

CFG_INI_RECORD* cfg_ini_get_record(const std::string& name)
{
    return find_record(SOUGHT_NAME(name));
}

void cfg_ini_insert_record(const std::string& name, CFG_INI_RECORD* record)
{
    CFG_INI_TABLE& table = *cfg_ini_file.load(std::memory_order_relaxed);
    if (table.try_emplace(name, record).second)
        table.adopt(record);
}

CFG_INI_RECORD* cfg_ini_get_record_or_insert_empty(const std::string& name)
{
    return &find_counted_or_insert_record(SOUGHT_NAME(name));
}

void reserve_records(std::size_t further)
{
    CFG_INI_TABLE& table = *cfg_ini_file.load(std::memory_order_relaxed);
    table.reserve(table.size() + further);
}

void discard_store()
{
    forget_recent_names();
    delete cfg_ini_file.exchange(nullptr, std::memory_order_relaxed);
}

bool mark_had_valid_read(const SOUGHT_NAME& name)
{
    return with_record(name, [](CFG_INI_RECORD& record) { return record.had_valid_read = true; });
}

bool cfg_mark_record_had_valid_read(const std::string& name)
{
    return mark_had_valid_read(SOUGHT_NAME(name));
}

bool cfg_ini_is_external(const std::string& name)
{
    return with_record(SOUGHT_NAME(name), [](const CFG_INI_RECORD& record) { return record.external; });
}
