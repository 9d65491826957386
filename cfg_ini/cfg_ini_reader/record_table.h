// The internal variable store itself: the records, and the table that finds them.
//
// The table is a hash map from names to records. No entry and no record is removed on its own, so their memory comes in
// blocks that live as long as the table: entries from a monotonic resource, records from arrays that double in size. So
// records never move, and a pointer to one is valid until the store is emptied. Arrays of buckets are freed when the
// table grows, so their memory is separate. All of it is the global heap's. The default resource of std::pmr is not
// used: it belongs to the host, which may change it, empty it or make it refuse at any time.
//
// A lookup or an assignment hashes its name at most once, whether it finds the record or makes it. The table keeps the
// hash with the name.
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
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "cfg_ini/cfg_ini_reader/applied_sources.h"
#include "cfg_ini/cfg_ini_reader/name_cache.h"
#include "cfg_ini/cfg_ini_reader/name_matching.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"

// One internal variable. Fills a cache line, since a lookup in a large store costs the cache lines that it touches.
// Belongs to the table until the table is destroyed.
struct alignas(64) CFG_INI_RECORD
{
    std::string value ZON_GUARDED;
    std::uint64_t access_count ZON_GUARDED; // counted lookups; the lookup that creates the record is not one of them
    bool bool_valid ZON_GUARDED;
    bool int_valid ZON_GUARDED;
    bool uint_valid ZON_GUARDED;
    bool had_valid_read ZON_GUARDED; // some caller got a usable value since the text was last stored
    bool bool_value ZON_GUARDED;     // each cached value is meaningful only while its flag above holds
    bool external ZON_GUARDED;       // set by the main file, VELMAR_INI_VARS or an external text; never cleared
    int int_value ZON_GUARDED;
    unsigned int uint_value ZON_GUARDED;

    // The cached value of type T, which is bool, int or unsigned int. It is meaningful only if `valid` becomes true.
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
// The table's allocator. Entries come from a resource that frees nothing before it is destroyed itself, and arrays of
// buckets from the heap.
template <typename T>
class ENTRY_ALLOCATOR
{
public:
    using value_type = T;

    explicit ENTRY_ALLOCATOR(std::pmr::memory_resource* entry_memory) : memory(entry_memory) {}
    template <typename U>
    ENTRY_ALLOCATOR(const ENTRY_ALLOCATOR<U>& other) : memory(other.memory) // NOLINT: converts, as allocators do
    {
    }

    T* allocate(std::size_t number)
    {
        if constexpr (is_bucket)
            return std::allocator<T>().allocate(number);
        else
            return static_cast<T*>(memory->allocate(number * sizeof(T), alignof(T)));
    }
    void deallocate(T* from, std::size_t number)
    {
        if constexpr (is_bucket)
            std::allocator<T>().deallocate(from, number);
    }

    template <typename U>
    bool operator==(const ENTRY_ALLOCATOR<U>& other) const
    {
        return memory == other.memory;
    }

private:
    template <typename U>
    friend class ENTRY_ALLOCATOR;

    static constexpr bool is_bucket = std::is_pointer_v<T>;

    std::pmr::memory_resource* memory;
};

using RECORDS_BY_NAME =
    std::unordered_map<RECORD_NAME, CFG_INI_RECORD*, STL_CASE_INSENSITIVE_HASH_COMPARE, STL_CASE_INSENSITIVE_EQUAL,
                       ENTRY_ALLOCATOR<std::pair<const RECORD_NAME, CFG_INI_RECORD*>>>;

struct CFG_INI_TABLE_MEMORY
{
    std::pmr::monotonic_buffer_resource entry_memory{std::pmr::new_delete_resource()};
    std::vector<std::unique_ptr<CFG_INI_RECORD[]>> record_blocks;
    std::size_t last_block_size = 0;
    std::size_t last_block_used = 0;
    std::vector<std::unique_ptr<CFG_INI_RECORD>> adopted_records;
};

// The table, with the memory of its entries and records.
class CFG_INI_TABLE : private CFG_INI_TABLE_MEMORY, public RECORDS_BY_NAME
{
public:
    CFG_INI_TABLE() : RECORDS_BY_NAME(allocator_type(&entry_memory)) {}

    // The record of that name, or null.
    CFG_INI_RECORD* find_record(const HASHED_NAME& name) const
    {
        const auto entry = find(name);
        return entry == end() ? nullptr : entry->second;
    }

    // The record of that name, or a new value-initialised one. If memory runs out, nothing changes.
    CFG_INI_RECORD* find_or_insert_record(const HASHED_NAME& name)
    {
        if (last_block_used == last_block_size) [[unlikely]]
            add_record_block(); // first, so that there is never an entry without a record
        const auto [entry, is_new] = try_emplace(RECORD_NAME(name), nullptr);
        if (is_new)
            entry->second = &record_blocks.back()[last_block_used++];
        return entry->second;
    }

    // Gives `record`, which was made with new, to the table. If the name is already present, it keeps its record, and
    // `record` still belongs to the caller.
    void insert_record(const HASHED_NAME& name, CFG_INI_RECORD* record)
    {
        if (try_emplace(RECORD_NAME(name), record).second)
            adopted_records.emplace_back(record);
    }

    // Makes room for `in_all` names in total. Never shrinks the table.
    void reserve_records(std::size_t in_all)
    {
        if (in_all > bucket_count())
            reserve(in_all);
    }

    // The sources that the records were loaded from. The list lives as long as the table.
    APPLIED_SOURCES sources;

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
}

// The table; null while there is no store. It changes only under the lock. It is atomic because lookups test it without
// the lock, to decide whether they must load the settings first. A store that existed at the test may be gone once the
// lock is taken.
extern constinit std::atomic<zon_cfg::CFG_INI_TABLE*> cfg_ini_file;

// Whether variables may have changed since the debug-message settings were last read.
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

// --- Functions that require a store ---

// The record of that name, or a new empty one. Counts nothing and bypasses the name cache.
CFG_INI_RECORD& find_or_insert_record_in_table(std::string_view name) ZON_LOCK_HELD;

// The slow parts of the three functions below, for a name that is not in the first way of its set. They take the parts
// of the name as separate arguments: compilers would keep an argument of a class type in memory, and so on the fast
// path too.
CFG_INI_RECORD* find_record_elsewhere(const char* characters, std::size_t length,
                                      const CACHED_NAME& second_way) ZON_LOCK_HELD;
CFG_INI_RECORD& find_or_insert_record_elsewhere(const char* characters, std::size_t length,
                                                const CACHED_NAME& second_way) ZON_LOCK_HELD;
CFG_INI_RECORD& find_counted_or_insert_record_elsewhere(const char* characters, std::size_t length,
                                                        const CACHED_NAME& second_way) ZON_LOCK_HELD;

// The record of that name, or null. Counts nothing, creates nothing.
[[gnu::always_inline]] inline CFG_INI_RECORD* find_record(const SOUGHT_NAME& name) ZON_LOCK_HELD
{
    if (name.ways[0].is_of(name.text)) [[likely]]
        return name.ways[0].record;
    return find_record_elsewhere(name.text.data(), name.text.size(), name.ways[1]);
}

// The record of that name, or a new empty one. Counts nothing.
[[gnu::always_inline]] inline CFG_INI_RECORD& find_or_insert_record(const SOUGHT_NAME& name) ZON_LOCK_HELD
{
    if (name.ways[0].is_of(name.text)) [[likely]]
        return *name.ways[0].record;
    return find_or_insert_record_elsewhere(name.text.data(), name.text.size(), name.ways[1]);
}

// The record of that name, with one more access counted; or a new empty record, with no access counted. It is intended
// that the lookup that creates a record is not counted. By this difference of one, the usage reports distinguish a
// variable that a source set from one that was only asked for.
[[gnu::always_inline]] inline CFG_INI_RECORD& find_counted_or_insert_record(const SOUGHT_NAME& name) ZON_LOCK_HELD
{
    if (!name.ways[0].is_of(name.text)) [[unlikely]]
        return find_counted_or_insert_record_elsewhere(name.text.data(), name.text.size(), name.ways[1]);
    ++name.ways[0].record->access_count;
    return *name.ways[0].record;
}

// Makes room in the table for so many names in total. The caller passes the number of names in a file, so that the load
// need not grow the table again and again. Applying the same file again adds no room.
void reserve_records(std::size_t names_of_file) ZON_LOCK_HELD;

// --- Functions that require no store ---

// Frees every record and the table, if there is one. Notifies nobody.
void discard_store() ZON_LOCK_HELD;

// Marks the record of that name as validly read. Returns whether there is such a record. Takes the lock. Without a
// store, returns false at once and loads nothing.
bool mark_had_valid_read(std::string_view name);

// A record that was found under the lock, for use under a later hold of the lock.
struct FOUND_RECORD
{
    CFG_INI_RECORD* record;
    std::uint32_t epoch; // of the name cache; the record is valid while this is the current one
};

// The same for a name whose record was found before. Searches for the name only if the store may have been emptied.
bool mark_had_valid_read(std::string_view name, const FOUND_RECORD& found);
}

#endif
