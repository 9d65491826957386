// The internal variable store itself: the records, the table that finds them, and the one lock over both.
#ifndef CFG_INI_CFG_INI_READER_RECORD_TABLE_H
#define CFG_INI_CFG_INI_READER_RECORD_TABLE_H

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cfg_ini/cfg_ini_reader/name_matching.h"
#include "cfg_ini/cfg_ini_reader/recent_names.h"
#include "platform/thr/thr.h"

// One internal variable. Fills a cache line: a lookup in a large store is the price of the lines it touches. Guarded by
// the store's lock; owned by the table until the table is destroyed.
struct alignas(64) CFG_INI_RECORD
{
    std::string value;
    std::uint64_t access_count; // counted lookups; the lookup that creates the record is not one of them
    bool bool_valid;
    bool int_valid;
    bool uint_valid;
    bool had_valid_read; // some caller got a usable value since the text was last stored
    bool bool_value;     // each cached value is meaningful only while its flag above holds
    bool external;       // the value came from the main settings file or from VELMAR_INI_VARS; never cleared
    int int_value;
    unsigned int uint_value;

    // The cached value of T = bool, int or unsigned int, whatever it holds; `valid` says whether it is meaningful.
    template <typename T>
    T get_cached_value(bool& valid) const;
};

template <>
inline bool CFG_INI_RECORD::get_cached_value<bool>(bool& valid) const
{
    valid = bool_valid;
    return bool_value;
}

template <>
inline int CFG_INI_RECORD::get_cached_value<int>(bool& valid) const
{
    valid = int_valid;
    return int_value;
}

template <>
inline unsigned int CFG_INI_RECORD::get_cached_value<unsigned int>(bool& valid) const
{
    valid = uint_valid;
    return uint_value;
}

// Memory that single entries never give back, since no entry is ever removed: it is taken in pieces of growing size.
struct CFG_INI_TABLE_MEMORY
{
    std::pmr::monotonic_buffer_resource entry_memory;
    std::vector<std::unique_ptr<CFG_INI_RECORD[]>> record_blocks;
    std::size_t last_block_size = 0;
    std::size_t last_block_used = 0;
    std::vector<std::unique_ptr<CFG_INI_RECORD>> adopted_records;
};

// The table, with the memory of its entries and records.
class CFG_INI_TABLE : private CFG_INI_TABLE_MEMORY,
                      public std::pmr::unordered_map<std::string, CFG_INI_RECORD*, STL_CASE_INSENSITIVE_HASH_COMPARE,
                                                     STL_CASE_INSENSITIVE_EQUAL>
{
public:
    CFG_INI_TABLE() : unordered_map(&entry_memory) {}

    // A new value-initialised record, which lives as long as the table.
    CFG_INI_RECORD* make_record()
    {
        if (last_block_used == last_block_size) [[unlikely]]
            add_record_block();
        return &record_blocks.back()[last_block_used++];
    }

    // Takes over a record that the caller made with new.
    void adopt(CFG_INI_RECORD* record)
    {
        adopted_records.emplace_back(record);
    }

private:
    void add_record_block()
    {
        constexpr std::size_t smallest = 32;
        constexpr std::size_t largest = 2048;
        const std::size_t size = std::clamp(2 * last_block_size, smallest, largest);
        record_blocks.push_back(std::make_unique<CFG_INI_RECORD[]>(size));
        last_block_size = size;
        last_block_used = 0;
    }
};

#ifdef __GLIBCXX__
static_assert(std::__cache_default<std::string, STL_CASE_INSENSITIVE_HASH_COMPARE>::value,
              "the table must keep the hash codes");
#endif

// The table, null while there is no store. Changed only under the lock; tested without it to decide whether the
// settings files must be read first, hence atomic. A store that was there at the test may be gone once the lock is
// taken.
extern constinit std::atomic<CFG_INI_TABLE*> cfg_ini_file;

// The store's recursive lock, null until first needed, never destroyed. It guards the table, every record, the callback
// registry and the flag below.
extern constinit std::atomic<THR_MUTEX*> cfg_ini_mutex;

// Variables may have changed since the debug-message settings were last read. Guarded by the lock.
extern constinit bool cfg_ini_dirty;

// The lock's handle, made now if need be; racing first callers get the same one.
THR_MUTEX* store_mutex();

// Holds the store's lock for a scope.
class STORE_LOCK
{
public:
    STORE_LOCK() : mutex(store_mutex())
    {
        thr_mutex_lock(mutex);
    }
    ~STORE_LOCK()
    {
        thr_mutex_unlock(mutex);
    }
    STORE_LOCK(const STORE_LOCK&) = delete;
    STORE_LOCK& operator=(const STORE_LOCK&) = delete;

private:
    THR_MUTEX* const mutex;
};

// --- The caller holds the lock and there is a store ---

// The record of that name, or null, as the table has it. Counts nothing, creates nothing.
CFG_INI_RECORD* find_record_in_table(const SOUGHT_NAME& name);

// The same, looking among the names found last before it asks the table.
[[gnu::always_inline]] inline CFG_INI_RECORD* find_record(const SOUGHT_NAME& name)
{
    CFG_INI_RECORD* const recent = name.recent();
    return recent != nullptr ? recent : find_record_in_table(name);
}
CFG_INI_RECORD* cfg_ini_get_record(const std::string& name);

// Gives `record` to the table. A name already present keeps its record, and `record` stays the caller's.
void cfg_ini_insert_record(const std::string& name, CFG_INI_RECORD* record);

// The record of that name, or a new empty one; counts nothing.
CFG_INI_RECORD& find_or_insert_record_in_table(std::string_view name);

// The same, looking among the names found last before it asks the table.
inline CFG_INI_RECORD& find_or_insert_record(const SOUGHT_NAME& name)
{
    CFG_INI_RECORD* const recent = name.recent();
    return *(recent != nullptr ? recent : name.remember(&find_or_insert_record_in_table(name.text)));
}

// The record of that name, one access counted; or a new empty record, with no access counted. Not counting the lookup
// that creates the record is intended: by this difference of one the usage reports tell a variable that a source set
// from one that was only asked for.
[[gnu::always_inline]] inline CFG_INI_RECORD& find_counted_or_insert_record(const SOUGHT_NAME& name)
{
    if (CFG_INI_RECORD* const record = find_record(name); record != nullptr) [[likely]]
    {
        ++record->access_count;
        return *record;
    }
    return *name.remember(&find_or_insert_record_in_table(name.text));
}
CFG_INI_RECORD* cfg_ini_get_record_or_insert_empty(const std::string& name);

// --- The caller holds the lock ---

// Makes room for that many further names, so that reading them in need not grow the table again and again.
void reserve_records(std::size_t further);

// Frees every record and the table, if there is one. Tells nobody.
void discard_store();

// --- These take the lock; without a store they answer false at once, and read nothing ---

// Marks the record of that name as validly read; whether there is one.
bool mark_had_valid_read(const SOUGHT_NAME& name);
bool cfg_mark_record_had_valid_read(const std::string& name);

#endif
