// What no store of this design can do without, each measured alone.
#include <algorithm>
#include <cstring>
#include <fstream>
#include <memory>
#include <mutex>
#include <string_view>

#include "benchmarks/plain_store.h"
#include "benchmarks/rows.h"
#include "benchmarks/store_workloads.h"
#include "benchmarks/stores.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
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

struct FILE_TEXT
{
    std::unique_ptr<char[]> characters;
    std::size_t size;
};

// Opened, read by one call and closed.
FILE_TEXT text_of(const SETTINGS_FILE& file, benchmark::State& state)
{
    std::FILE* const stream = std::fopen(file.path.c_str(), "re");
    std::setvbuf(stream, nullptr, _IONBF, 0);
    std::fseek(stream, 0, SEEK_END);
    const auto size = static_cast<std::size_t>(std::ftell(stream));
    std::rewind(stream);
    auto text = std::make_unique_for_overwrite<char[]>(size);
    if (std::fread(text.get(), 1, size, stream) != size)
        state.SkipWithError("the file cannot be read");
    std::fclose(stream);
    return {std::move(text), size};
}

// The newlines found one by one.
void read_at_once(benchmark::State& state, std::size_t lines)
{
    const SETTINGS_FILE& file = file_of_lines(lines);
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(lines)))
    {
        const auto [text, size] = text_of(file, state);
        std::size_t newlines = 0;
        const char* const end = text.get() + size;
        for (const void* at = text.get();
             (at = std::memchr(at, '\n', static_cast<std::size_t>(end - static_cast<const char*>(at)))) != nullptr;
             at = static_cast<const char*>(at) + 1)
            ++newlines;
        benchmark::DoNotOptimize(newlines);
    }
}

std::string_view without_blanks(std::string_view text)
{
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

// The library's own table filled with what stands around the first "=" of each line: no comment, no quote, no
// conversion, no callback, no lock.
void fill_table(zon_cfg::CFG_INI_TABLE& table, std::string_view text) ZON_UNCHECKED // nobody else knows the table
{
    table.reserve_records(text.size() / 20);
    while (!text.empty())
    {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (const std::size_t divider = line.find('='); divider != std::string_view::npos)
            table.find_or_insert_record(zon_cfg::HASHED_NAME(without_blanks(line.substr(0, divider))))->value =
                without_blanks(line.substr(divider + 1));
    }
}

void bare_loop(benchmark::State& state, std::size_t lines)
{
    const SETTINGS_FILE& file = file_of_lines(lines);
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(lines)))
    {
        auto table = std::make_unique<zon_cfg::CFG_INI_TABLE>();
        {
            const auto [text, size] = text_of(file, state);
            fill_table(*table, {text.get(), size});
        }
        benchmark::DoNotOptimize(table->size());
        state.PauseTiming(); // as the other loads
        table.reset();
        state.ResumeTiming();
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
        auto* const bare = add_row(bare_loop_work(lines), plain, bare_loop, lines);
        if (lines == longest_file)
            bare->Repetitions(repetitions_of_longest_file);
        add_row(one_read_work(lines), standard_library, read_at_once, lines);
        add_row(getline_work(lines), standard_library, read_by_getline, lines);
    }
}
