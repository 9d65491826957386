// The workloads of several stores, written once: the same loop is timed around each store's own calls.
//
// A STORE is a struct of static functions: load(path) into an empty store, clear(), and any of read_bool, read_int,
// read_text, read_double (each takes a std::string or characters), set(name, value), report(). A store gets the rows
// for the functions that it has. To read a file again, reread(path) is called, or clear and load if a store does not
// have it.
#ifndef BENCHMARKS_STORE_WORKLOADS_H
#define BENCHMARKS_STORE_WORKLOADS_H

#include <benchmark/benchmark.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "benchmarks/rows.h"
#include "benchmarks/settings_files_on_disk.h"

inline const char* characters(const char* name)
{
    return name;
}

inline const char* characters(const std::string& name)
{
    return name.c_str();
}

// --- The file that a store holds at the moment: the rows of a store run in any order ---

template <typename STORE>
const SETTINGS_FILE*& held()
{
    static const SETTINGS_FILE* file = nullptr;
    return file;
}

template <typename STORE>
void drop()
{
    if (held<STORE>() != nullptr)
        STORE::clear();
    held<STORE>() = nullptr;
}

template <typename STORE>
void hold(const SETTINGS_FILE& file)
{
    if (held<STORE>() == &file)
        return;
    drop<STORE>();
    STORE::load(file.path);
    if (STORE::read_int(std::string(hot_name)) != 1)
        throw std::runtime_error("a store cannot read " + file.path);
    held<STORE>() = &file;
}

// --- The types that a lookup answers ---

struct AS_BOOL
{
    static constexpr const char* title = "bool";
    static constexpr VALUE_KIND kind = VALUE_KIND::BOOLEAN_WORD;
    template <typename STORE>
    static auto read(const auto& name) -> decltype(STORE::read_bool(name))
    {
        return STORE::read_bool(name);
    }
};

struct AS_INT
{
    static constexpr const char* title = "int";
    static constexpr VALUE_KIND kind = VALUE_KIND::INTEGER;
    template <typename STORE>
    static auto read(const auto& name) -> decltype(STORE::read_int(name))
    {
        return STORE::read_int(name);
    }
};

struct AS_TEXT
{
    static constexpr const char* title = "text";
    static constexpr VALUE_KIND kind = VALUE_KIND::TEXT;
    template <typename STORE>
    static auto read(const auto& name) -> decltype(STORE::read_text(name))
    {
        return STORE::read_text(name);
    }
};

struct AS_DOUBLE
{
    static constexpr const char* title = "double";
    static constexpr VALUE_KIND kind = VALUE_KIND::REAL;
    template <typename STORE>
    static auto read(const auto& name) -> decltype(STORE::read_double(name))
    {
        return STORE::read_double(name);
    }
};

// --- Workloads; the time of one iteration is that of one lookup, assignment or line ---

template <typename STORE, typename AS, typename NAME>
void hot_lookup(benchmark::State& state)
{
    if (state.thread_index() == 0)
        hold<STORE>(file_for_lookups());
    const NAME name = hot_name;
    for (auto _ : state)
    {
        auto value = AS::template read<STORE>(name);
        benchmark::DoNotOptimize(value);
    }
}

// With two threads, each looks up names of its own.
template <typename STORE, typename AS, typename NAME>
void shuffled_lookup(benchmark::State& state)
{
    if (state.thread_index() == 0)
        hold<STORE>(file_for_lookups());
    const std::vector<std::string>& all = names_to_look_up(AS::kind);
    const std::size_t share = all.size() / static_cast<std::size_t>(state.threads());
    const auto first = all.begin() + static_cast<std::ptrdiff_t>(share) * state.thread_index();
    std::vector<NAME> names;
    std::transform(first, first + static_cast<std::ptrdiff_t>(share), std::back_inserter(names),
                   [](const std::string& name) { return NAME(name.c_str()); });
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(share)))
    {
        for (const NAME& name : names)
        {
            auto value = AS::template read<STORE>(name);
            benchmark::DoNotOptimize(value);
        }
    }
}

// Looks up more names than a small cache of names holds.
template <typename STORE>
void lookup_of_all(benchmark::State& state)
{
    hold<STORE>(file_for_lookups());
    const std::vector<std::string>& names = all_names_to_look_up();
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(names.size())))
    {
        for (const std::string& name : names)
        {
            auto value = AS_BOOL::read<STORE>(name);
            benchmark::DoNotOptimize(value);
        }
    }
}

// Looks up, again and again, a name to which no line gives a value.
template <typename STORE>
void repeated_miss(benchmark::State& state)
{
    hold<STORE>(file_for_lookups());
    const std::string name = "router_max_fanout_none";
    for (auto _ : state)
    {
        auto value = AS_BOOL::read<STORE>(name);
        benchmark::DoNotOptimize(value);
    }
}

template <typename STORE>
void set_existing(benchmark::State& state)
{
    hold<STORE>(file_for_lookups());
    const std::string name = hot_name;
    const std::string values[] = {"0", "1"};
    std::size_t turn = 0;
    for (auto _ : state)
        STORE::set(name, values[++turn % 2]);
}

template <typename STORE>
void load_file(benchmark::State& state, std::size_t lines)
{
    const SETTINGS_FILE& file = file_of_lines(lines);
    drop<STORE>();
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(lines)))
    {
        STORE::load(file.path);
        state.PauseTiming();
        STORE::clear();
        state.ResumeTiming();
    }
}

template <typename STORE>
void reread_file(benchmark::State& state, std::size_t lines)
{
    const SETTINGS_FILE& file = file_of_lines(lines);
    hold<STORE>(file);
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(lines)))
    {
        if constexpr (requires { STORE::reread(file.path); })
            STORE::reread(file.path);
        else
        {
            STORE::clear();
            STORE::load(file.path);
        }
    }
    drop<STORE>();
}

// --- Rows ---

template <typename STORE, typename AS>
void add_lookup_rows(const std::string& who)
{
    if constexpr (requires { AS::template read<STORE>(std::string()); })
    {
        const std::string type = AS::title;
        add_row(hot_work(type, "string"), who, hot_lookup<STORE, AS, std::string>);
        add_row(hot_work(type, "literal"), who, hot_lookup<STORE, AS, const char*>);
        add_row(shuffled_work(type, "string"), who, shuffled_lookup<STORE, AS, std::string>);
        add_row(shuffled_work(type, "literal"), who, shuffled_lookup<STORE, AS, const char*>);
    }
}

// Only for stores whose lookups do the same for any text: others would spend their time on texts that are no booleans.
template <typename STORE>
void add_row_of_all_names(const std::string& who)
{
    add_row(work_all_shuffled, who, lookup_of_all<STORE>);
}

// Only for stores that two threads may read at the same time.
template <typename STORE>
void add_two_thread_rows(const std::string& who)
{
    add_row(work_two_threads_same_name, who, hot_lookup<STORE, AS_BOOL, std::string>)->Threads(2)->UseRealTime();
    add_row(work_two_threads_other_names, who, shuffled_lookup<STORE, AS_BOOL, std::string>)->Threads(2)->UseRealTime();
}

// The longest file is read again only by stores that have reread(), since it takes seconds.
template <typename STORE>
void add_file_rows(const std::string& who, bool long_files)
{
    for (const std::size_t lines : file_lengths(long_files))
    {
        const bool is_longest = lines == longest_file;
        auto* const load = add_row(load_work(lines), who, load_file<STORE>, lines);
        if (is_longest)
            load->Repetitions(repetitions_of_longest_file);
        if (is_longest && !requires { STORE::reread(std::string()); })
            continue;
        auto* const reread = add_row(reread_work(lines), who, reread_file<STORE>, lines);
        if (is_longest)
            reread->Repetitions(repetitions_of_longest_file);
    }
}

template <typename STORE>
void add_store_rows(const std::string& who, bool long_files)
{
    add_lookup_rows<STORE, AS_BOOL>(who);
    add_lookup_rows<STORE, AS_INT>(who);
    add_lookup_rows<STORE, AS_TEXT>(who);
    add_lookup_rows<STORE, AS_DOUBLE>(who);
    if constexpr (requires { STORE::read_bool(std::string()); })
        add_row(work_repeated_miss, who, repeated_miss<STORE>);
    if constexpr (requires { STORE::set(std::string(), std::string()); })
        add_row(work_set_existing, who, set_existing<STORE>);
    add_file_rows<STORE>(who, long_files);
}

#endif
