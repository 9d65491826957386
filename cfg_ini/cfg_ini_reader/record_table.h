// The internal variable store itself: the records, and the table that finds them.
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

#include "cfg_ini/cfg_ini_reader/name_cache.h"
#include "cfg_ini/cfg_ini_reader/name_matching.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"

// One internal variable. Fills a cache line: a lookup in a large store costs the lines that it touches. Owned by
// the table until the table is destroyed.
struct alignas(64) CFG_INI_RECORD
{
    std::string value ZON_GUARDED;
    std::uint64_t access_count ZON_GUARDED; // counted lookups; the lookup that creates the record is not one of them
    bool bool_valid ZON_GUARDED;
    bool int_valid ZON_GUARDED;
    bool uint_valid ZON_GUARDED;
    bool had_valid_read ZON_GUARDED; // some caller got a usable value since the text was last stored
    bool bool_value ZON_GUARDED;     // each cached value is meaningful only while its flag above holds
    bool external ZON_GUARDED;       // came from the main settings file or from VELMAR_INI_VARS; never cleared
    int int_value ZON_GUARDED;
    unsigned int uint_value ZON_GUARDED;

    // The cached value of T = bool, int or unsigned int, whatever it holds; `valid` says whether it is meaningful.
    template <typename T>
    T get_cached_value(bool& valid) const ZON_LOCK_HELD;
};

template <>
inline bool CFG_INI_RECORD::get_cached_value<bool>(bool& valid) const ZON_LOCK_HELD
{
    valid = bool_valid;
    return bool_value;
}

template <>
inline int CFG_INI_RECORD::get_cached_value<int>(bool& valid) const ZON_LOCK_HELD
{
    valid = int_valid;
    return int_value;
}

template <>
inline unsigned int CFG_INI_RECORD::get_cached_value<unsigned int>(bool& valid) const ZON_LOCK_HELD
{
    valid = uint_valid;
    return uint_value;
}

namespace zon_cfg
{
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
}

// The table, null while there is no store. Changed only under the lock; tested without it to decide whether the
// settings files must be loaded first, hence atomic. A store that was there at the test may be gone once the lock is
// taken.
extern constinit std::atomic<zon_cfg::CFG_INI_TABLE*> cfg_ini_file;

// Variables may have changed since the debug-message settings were last read.
extern constinit bool cfg_ini_dirty ZON_GUARDED;

namespace zon_cfg
{
// Whether there is a store; it may be gone by the time the caller takes the lock.
inline bool store_exists()
{
    return cfg_ini_file.load(std::memory_order_acquire) != nullptr;
}

// The table, or null.
inline CFG_INI_TABLE* store_table() ZON_LOCK_HELD
{
    return cfg_ini_file.load(std::memory_order_relaxed);
}

// --- There is a store ---

// The record of that name, or null, as the table has it. Counts nothing, creates nothing.
CFG_INI_RECORD* find_record_in_table(const SOUGHT_NAME& name) ZON_LOCK_HELD;

// The same, looking in the name cache before it asks the table.
[[gnu::always_inline]] inline CFG_INI_RECORD* find_record(const SOUGHT_NAME& name) ZON_LOCK_HELD
{
    CFG_INI_RECORD* const cached = name.cached();
    return cached != nullptr ? cached : find_record_in_table(name);
}

// The record of that name, or a new empty one; counts nothing.
CFG_INI_RECORD& find_or_insert_record_in_table(std::string_view name) ZON_LOCK_HELD;

// The same, looking in the name cache before it asks the table.
inline CFG_INI_RECORD& find_or_insert_record(const SOUGHT_NAME& name) ZON_LOCK_HELD
{
    CFG_INI_RECORD* const cached = name.cached();
    return *(cached != nullptr ? cached : name.cache(&find_or_insert_record_in_table(name.text)));
}

// The record of that name, one access counted; or a new empty record, with no access counted. Not counting the lookup
// that creates the record is intended: by this difference of one the usage reports tell a variable that a source set
// from one that was only asked for.
[[gnu::always_inline]] inline CFG_INI_RECORD& find_counted_or_insert_record(const SOUGHT_NAME& name) ZON_LOCK_HELD
{
    if (CFG_INI_RECORD* const record = find_record(name); record != nullptr) [[likely]]
    {
        ++record->access_count;
        return *record;
    }
    return *name.cache(&find_or_insert_record_in_table(name.text));
}

// Makes room for that many further names, so that loading them need not grow the table again and again.
void reserve_records(std::size_t further) ZON_LOCK_HELD;

// --- With a store or without ---

// Frees every record and the table, if there is one. Notifies nobody.
void discard_store() ZON_LOCK_HELD;

// Marks the record of that name as validly read; whether there is one. Takes the lock. Without a store it answers false
// at once and loads nothing.
bool mark_had_valid_read(std::string_view name);
}

#endif
