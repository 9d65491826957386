#include <limits>

#include "benchmarks/rows.h"
#include "benchmarks/store_workloads.h"
#include "benchmarks/stores.h"
#include "cfg_ini/cfg_cached_value.h"
#include "cfg_ini/cfg_ini.h"

namespace
{
// There from the start, and under a name of its own: every row that stores runs in a process that has a callback, and
// none of them tells it anything.
const CFG_CACHED_VALUE<bool> cached("cached_switch_of_the_benchmark", false);

// Every name is missed once; then the store is filled anew.
void creating_miss(benchmark::State& state)
{
    constexpr std::size_t names_in_a_round = 10'000;
    static const std::vector<std::string> names = generate_unknown_names(names_in_a_round);
    drop<OURS>();
    while (state.KeepRunningBatch(names_in_a_round))
    {
        state.PauseTiming();
        drop<OURS>();
        hold<OURS>(file_for_lookups());
        state.ResumeTiming();
        for (const std::string& name : names)
            benchmark::DoNotOptimize(cfg_is_on(name, false));
    }
    drop<OURS>();
}

void ranked_report(benchmark::State& state, int listed)
{
    hold<OURS>(file_for_lookups());
    for (int round = 0; round < 3; ++round)
    {
        for (const std::string& name : names_to_look_up(VALUE_KIND::INTEGER))
            benchmark::DoNotOptimize(cfg_get_int_value(name, round));
    }
    cfg_set_int_value("cfg_max_to_report", listed);
    std::vector<std::pair<std::string, std::string>> report;
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(file_for_lookups().variables)))
    {
        report.clear();
        cfg_get_most_accessed(&report);
    }
    drop<OURS>();
}

void catalogue_lookup(benchmark::State& state)
{
    hold<OURS>(file_for_lookups());
    for (auto _ : state)
        benchmark::DoNotOptimize(cfg_is_on(CFG_INI_VAR_MSG_SQLITE));
}

// Of a catalogued name that no line gives a value.
void catalogue_default(benchmark::State& state)
{
    hold<OURS>(file_for_lookups());
    const std::string name = "msg_sqlite";
    for (auto _ : state)
        benchmark::DoNotOptimize(cfg_is_on(name));
}

// Numbers of one to ten digits, and of both signs.
void set_int(benchmark::State& state)
{
    hold<OURS>(file_for_lookups());
    const std::string name = "a_number_of_the_benchmark";
    int value = 1;
    for (auto _ : state)
    {
        cfg_set_int_value(name, value);
        value = value > std::numeric_limits<int>::max() / 7 ? -value / 3 : value < 0 ? 1 : value * 7 + 3;
    }
}

void cached_switch(benchmark::State& state)
{
    hold<OURS>(file_for_lookups());
    for (auto _ : state)
        benchmark::DoNotOptimize(cached.get());
}

void mode_question(benchmark::State& state)
{
    hold<OURS>(file_for_lookups());
    for (auto _ : state)
        benchmark::DoNotOptimize(cfg_is_vexe_mode());
}

void debug_settings(benchmark::State& state)
{
    hold<OURS>(file_for_lookups());
    bool global;
    bool per_subsystem;
    int level;
    for (auto _ : state)
    {
        cfg_check_debug_ini_values(&global, &per_subsystem, &level);
        benchmark::DoNotOptimize(level);
    }
}
}

void add_rows_of_this_library(bool long_files)
{
    add_store_rows<OURS>(ours, long_files);
    add_row_of_all_names<OURS>(ours);
    add_two_thread_rows<OURS>(ours);
    add_row(work_creating_miss, ours, creating_miss);
    add_row(work_report_ten, ours, ranked_report, 10);
    add_row(work_report_all, ours, ranked_report, -1);
    add_row(work_catalogue, ours, catalogue_lookup);
    add_row(work_catalogue_default, ours, catalogue_default);
    add_row(work_set_int, ours, set_int);
    add_row(work_cached_switch, ours, cached_switch);
    add_row(work_mode, ours, mode_question);
    add_row(work_debug_settings, ours, debug_settings);
}
