// Finds and makes records when the first way of the name cache, into which the header looks, does not have the name.
//
// A lookup searches for the name before it inserts, because an insertion copies the name first, and most names exist.
// Lines of files insert at once, since their names are mostly new. Both hash the name once: an insertion after a search
// uses the same hash.
#include "cfg_ini/cfg_ini_reader/record_table.h"

#include "cfg_ini/cfg_ini.h"

constinit std::atomic<zon_cfg::CFG_INI_TABLE*> cfg_ini_file = nullptr;
constinit bool cfg_ini_dirty = true;

namespace zon_cfg
{
namespace
{
// Takes the lock and finds the record. Returns the result of visit(record), or false if there is no store or no record.
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

CFG_INI_RECORD* find_record_elsewhere(const char* characters, std::size_t length, const CACHED_NAME& second_way)
{
    const std::string_view name(characters, length);
    if (second_way.is_of(name))
        return second_way.record;
    CFG_INI_RECORD* const record = store_table()->find_record(HASHED_NAME(name));
    return record != nullptr ? cache_record(name, record) : nullptr;
}

CFG_INI_RECORD& find_or_insert_record_elsewhere(const char* characters, std::size_t length,
                                                const CACHED_NAME& second_way)
{
    const std::string_view name(characters, length);
    if (second_way.is_of(name))
        return *second_way.record;
    CFG_INI_TABLE& table = *store_table();
    const HASHED_NAME hashed(name);
    // Inserting at once would copy the name, and most names exist.
    CFG_INI_RECORD* const record = table.find_record(hashed);
    return *cache_record(name, record != nullptr ? record : table.find_or_insert_record(hashed));
}

CFG_INI_RECORD& find_counted_or_insert_record_elsewhere(const char* characters, std::size_t length,
                                                        const CACHED_NAME& second_way)
{
    const std::string_view name(characters, length);
    if (second_way.is_of(name))
    {
        ++second_way.record->access_count;
        return *second_way.record;
    }
    CFG_INI_TABLE& table = *store_table();
    const HASHED_NAME hashed(name);
    CFG_INI_RECORD* record = table.find_record(hashed);
    if (record != nullptr)
        ++record->access_count;
    else
        record = table.find_or_insert_record(hashed);
    return *cache_record(name, record);
}

CFG_INI_RECORD& find_or_insert_record_in_table(std::string_view name)
{
    return *store_table()->find_or_insert_record(HASHED_NAME(name));
}

void reserve_records(std::size_t names_of_file)
{
    store_table()->reserve_records(names_of_file);
}

void discard_store()
{
    clear_name_cache(); // first: no entry may name a record that is gone
    delete cfg_ini_file.exchange(nullptr, std::memory_order_relaxed);
}

bool mark_had_valid_read(std::string_view name)
{
    return with_record(name, [](CFG_INI_RECORD& record) ZON_LOCK_HELD { return record.had_valid_read = true; });
}

bool mark_had_valid_read(std::string_view name, const FOUND_RECORD& found)
{
    const STORE_LOCK lock(HANDLE_EXISTS{});
    if (store_table() == nullptr)
        return false;
    CFG_INI_RECORD* const record = found.epoch == name_cache.epoch ? found.record : find_record(SOUGHT_NAME(name));
    return record != nullptr && (record->had_valid_read = true);
}
}

bool cfg_ini_is_external(const std::string& name)
{
    return zon_cfg::with_record(name, [](const CFG_INI_RECORD& record) ZON_LOCK_HELD { return record.external; });
}
