#include "cfg_ini/cfg_ini_reader/record_table.h"

#include <memory>
#include <mutex>

#include "cfg_ini/cfg_ini.h"

constinit std::atomic<CFG_INI_TABLE*> cfg_ini_file = nullptr;
constinit std::atomic<THR_MUTEX*> cfg_ini_mutex = nullptr;
constinit bool cfg_ini_dirty = true;

namespace
{
constexpr char folded(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

template <typename NAME>
CFG_INI_RECORD* find_record(const NAME& name)
{
    const CFG_INI_TABLE& table = *cfg_ini_file.load(std::memory_order_relaxed);
    const auto entry = table.find(name);
    return entry == table.end() ? nullptr : entry->second;
}

template <typename NAME>
bool mark_had_valid_read(const NAME& name)
{
    if (cfg_ini_file.load(std::memory_order_acquire) == nullptr)
        return false;
    const STORE_LOCK lock;
    CFG_INI_RECORD* const record =
        cfg_ini_file.load(std::memory_order_relaxed) == nullptr ? nullptr : cfg_ini_get_record(name);
    if (record != nullptr)
        record->had_valid_read = true;
    return record != nullptr;
}
}

const char* not_null(const char* name)
{
    if (name == nullptr) [[unlikely]]
    {
        // cppcheck-suppress nullPointerRedundantCheck
        static_cast<void>(std::string(name)); // NOLINT(clang-analyzer-cplusplus.StringChecker): throws, as wanted
    }
    return name;
}

std::size_t STL_CASE_INSENSITIVE_HASH_COMPARE::operator()(const char* name) const
{
    std::uint64_t hash = 0;
    for (; *name != '\0'; ++name)
    {
        // A byte of 0x80 and above counts as a negative number.
        hash = hash * 17 + static_cast<std::uint64_t>(static_cast<signed char>(folded(*name)));
    }
    return hash;
}

std::size_t STL_CASE_INSENSITIVE_HASH_COMPARE::operator()(const std::string& name) const
{
    return (*this)(name.c_str());
}

bool STL_CASE_INSENSITIVE_EQUAL::operator()(const char* a, const char* b) const
{
    for (; folded(*a) == folded(*b); ++a, ++b)
    {
        if (*a == '\0')
            return true;
    }
    return false;
}

bool STL_CASE_INSENSITIVE_EQUAL::operator()(const std::string& a, const std::string& b) const
{
    return (*this)(a.c_str(), b.c_str());
}

bool STL_CASE_INSENSITIVE_EQUAL::operator()(const char* a, const std::string& b) const
{
    return (*this)(a, b.c_str());
}

bool STL_CASE_INSENSITIVE_EQUAL::operator()(const std::string& a, const char* b) const
{
    return (*this)(a.c_str(), b);
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

CFG_INI_RECORD* cfg_ini_get_record(const std::string& name)
{
    return find_record(name);
}

CFG_INI_RECORD* cfg_ini_get_record(const char* name)
{
    return find_record(name);
}

void cfg_ini_insert_record(const std::string& name, CFG_INI_RECORD* record)
{
    cfg_ini_file.load(std::memory_order_relaxed)->try_emplace(name, record);
}

CFG_INI_RECORD* cfg_ini_get_record_or_insert_empty(const std::string& name)
{
    CFG_INI_TABLE& table = *cfg_ini_file.load(std::memory_order_relaxed);
    const auto [entry, is_new] = table.try_emplace(name, nullptr);
    if (!is_new)
    {
        ++entry->second->access_count;
        return entry->second;
    }
    try
    {
        // The lookup that creates the record is not counted. Intended: the usage reports tell a variable that a source
        // set and one that was only asked for by this difference of one.
        entry->second = new CFG_INI_RECORD();
    }
    catch (...)
    {
        table.erase(entry);
        throw;
    }
    return entry->second;
}

CFG_INI_RECORD* cfg_ini_get_record_or_insert_empty(const char* name)
{
    if (CFG_INI_RECORD* const record = cfg_ini_get_record(name); record != nullptr) [[likely]]
    {
        ++record->access_count;
        return record;
    }
    return cfg_ini_get_record_or_insert_empty(std::string(name));
}

CFG_INI_RECORD& record_to_store_in(const std::string& name)
{
    if (CFG_INI_RECORD* const record = cfg_ini_get_record(name); record != nullptr)
        return *record;
    auto record = std::make_unique<CFG_INI_RECORD>();
    cfg_ini_insert_record(name, record.get());
    return *record.release();
}

void discard_store()
{
    const std::unique_ptr<CFG_INI_TABLE> table(cfg_ini_file.exchange(nullptr, std::memory_order_relaxed));
    if (table == nullptr)
        return;
    for (const auto& [name, record] : *table)
        delete record;
}

bool cfg_ini_is_external(const std::string& name)
{
    if (cfg_ini_file.load(std::memory_order_acquire) == nullptr)
        return false;
    const STORE_LOCK lock;
    if (cfg_ini_file.load(std::memory_order_relaxed) == nullptr)
        return false;
    const CFG_INI_RECORD* const record = cfg_ini_get_record(name);
    return record != nullptr && record->external;
}

bool cfg_mark_record_had_valid_read(const std::string& name)
{
    return mark_had_valid_read(name);
}

bool cfg_mark_record_had_valid_read(const char* name)
{
    return mark_had_valid_read(name);
}
