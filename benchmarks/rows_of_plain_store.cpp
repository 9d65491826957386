#include "benchmarks/rows.h"
#include "benchmarks/store_workloads.h"
#include "benchmarks/stores.h"

namespace
{
void creating_miss(benchmark::State& state)
{
    constexpr std::size_t names_in_a_round = 10'000;
    static const std::vector<std::string> names = generate_unknown_names(names_in_a_round);
    while (state.KeepRunningBatch(names_in_a_round))
    {
        state.PauseTiming();
        drop<PLAIN>();
        hold<PLAIN>(file_for_lookups());
        state.ResumeTiming();
        for (const std::string& name : names)
            benchmark::DoNotOptimize(plain_is_on(name, false));
    }
    drop<PLAIN>();
}

void ranked_report(benchmark::State& state, std::size_t listed)
{
    hold<PLAIN>(file_for_lookups());
    for (int round = 0; round < 3; ++round)
    {
        for (const std::string& name : names_to_look_up(VALUE_KIND::INTEGER))
            benchmark::DoNotOptimize(plain_get_int_value(name, round));
    }
    std::vector<std::pair<std::string, std::string>> report;
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(file_for_lookups().variables)))
    {
        report.clear();
        plain_get_most_accessed(report, listed);
    }
    drop<PLAIN>();
}
}

void add_rows_of_plain_store(bool long_files)
{
    add_store_rows<PLAIN>(plain, long_files);
    add_row_of_all_names<PLAIN>(plain);
    add_two_thread_rows<PLAIN>(plain);
    add_row(work_creating_miss, plain, creating_miss);
    add_row(work_report_ten, plain, ranked_report, std::size_t{10});
    add_row(work_report_all, plain, ranked_report, SIZE_MAX);
}
