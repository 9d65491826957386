// What no store of this design can do without, each measured alone.
#include <cstring>
#include <fstream>
#include <memory>
#include <mutex>

#include "benchmarks/plain_store.h"
#include "benchmarks/rows.h"
#include "benchmarks/store_workloads.h"
#include "benchmarks/stores.h"
#include "platform/thr/thr.h"
#include "platform/ver/ver.h"

namespace
{
void standard_lock(benchmark::State& state)
{
    static std::recursive_mutex mutex;
    for (auto _ : state)
    {
        mutex.lock();
        benchmark::ClobberMemory();
        mutex.unlock();
    }
}

void platform_lock(benchmark::State& state)
{
    static THR_MUTEX* const mutex = thr_mutex_create();
    for (auto _ : state)
    {
        thr_mutex_lock(mutex);
        benchmark::ClobberMemory();
        thr_mutex_unlock(mutex);
    }
}

// Through the table of the program's calls, as any caller of a shared library.
void library_call(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(ver_get_kestrin_product_filename());
}

void hash(benchmark::State& state)
{
    const std::string name = hot_name;
    for (auto _ : state)
        benchmark::DoNotOptimize(PLAIN_HASH()(name));
}

void hot_find(benchmark::State& state)
{
    hold<PLAIN>(file_for_lookups());
    const PLAIN_TABLE& table = *plain_table();
    const std::string name = hot_name;
    for (auto _ : state)
        benchmark::DoNotOptimize(table.find(name)->second->bool_value);
}

void shuffled_find(benchmark::State& state)
{
    hold<PLAIN>(file_for_lookups());
    const PLAIN_TABLE& table = *plain_table();
    const std::vector<std::string>& names = names_to_look_up(VALUE_KIND::BOOLEAN_WORD);
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(names.size())))
    {
        for (const std::string& name : names)
            benchmark::DoNotOptimize(table.find(name)->second->bool_value);
    }
}

// Opened, read by one call and closed; the newlines found one by one.
void read_at_once(benchmark::State& state, std::size_t lines)
{
    const SETTINGS_FILE& file = file_of_lines(lines);
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(lines)))
    {
        std::FILE* const stream = std::fopen(file.path.c_str(), "re");
        std::setvbuf(stream, nullptr, _IONBF, 0);
        std::fseek(stream, 0, SEEK_END);
        const auto size = static_cast<std::size_t>(std::ftell(stream));
        std::rewind(stream);
        const auto text = std::make_unique_for_overwrite<char[]>(size);
        if (std::fread(text.get(), 1, size, stream) != size)
            state.SkipWithError("the file cannot be read");
        std::fclose(stream);

        std::size_t newlines = 0;
        const char* const end = text.get() + size;
        for (const void* at = text.get();
             (at = std::memchr(at, '\n', static_cast<std::size_t>(end - static_cast<const char*>(at)))) != nullptr;
             at = static_cast<const char*>(at) + 1)
            ++newlines;
        benchmark::DoNotOptimize(newlines);
    }
}

void read_by_getline(benchmark::State& state, std::size_t lines)
{
    const SETTINGS_FILE& file = file_of_lines(lines);
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(lines)))
    {
        std::ifstream stream(file.path);
        std::string line;
        while (std::getline(stream, line))
            benchmark::DoNotOptimize(line.data());
    }
}
}

void add_rows_of_floors(bool long_files)
{
    add_row(work_lock, standard_library, standard_lock);
    add_row(work_lock, platform, platform_lock);
    add_row(work_call, platform, library_call);
    add_row(work_hash, plain, hash);
    add_row(work_hot_find, plain, hot_find);
    add_row(work_shuffled_find, plain, shuffled_find);
    for (const std::size_t lines : file_lengths(long_files))
    {
        add_row(one_read_work(lines), standard_library, read_at_once, lines);
        add_row(getline_work(lines), standard_library, read_by_getline, lines);
    }
}
