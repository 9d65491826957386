#include <absl/flags/flag.h>
#include <absl/flags/parse.h>
#include <absl/flags/reflection.h>

#include "benchmarks/peers/peers.h"
#include "benchmarks/store_workloads.h"

// A flag has one type: four names of the length of the hot one.
ABSL_FLAG(bool, router_max_fanout_gbol, true, "");
ABSL_FLAG(int, router_max_fanout_gint, 1, "");
ABSL_FLAG(std::string, router_max_fanout_gtxt, "1", "");
ABSL_FLAG(double, router_max_fanout_gdbl, 1.0, "");

namespace
{
constexpr const char* by_name = "Abseil by name";
constexpr const char* get_flag_name = "Abseil GetFlag";

template <typename T, typename NAME>
void lookup(benchmark::State& state, const char* flag)
{
    const NAME name = flag;
    for (auto _ : state)
    {
        const absl::CommandLineFlag* const found = absl::FindCommandLineFlag(name);
        auto value = found->TryGet<T>();
        benchmark::DoNotOptimize(value);
    }
}

template <typename T>
void add_rows(const std::string& type, const char* flag)
{
    add_row(hot_work(type, "string"), by_name, lookup<T, std::string>, flag);
    add_row(hot_work(type, "literal"), by_name, lookup<T, const char*>, flag);
}

void get_flag(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(absl::GetFlag(FLAGS_router_max_fanout_gbol));
}

void set_by_name(benchmark::State& state)
{
    const std::string name = "router_max_fanout_gint";
    const std::string values[] = {"0", "1"};
    std::size_t turn = 0;
    for (auto _ : state)
    {
        std::string error;
        absl::FindCommandLineFlag(name)->ParseFrom(values[++turn % 2], &error);
    }
}
}

void add_rows_of_abseil_flags()
{
    // Parsing makes the flags' registry final, which frees lookups of its lock.
    std::string program = "cfg_ini_benchmark";
    char* arguments[] = {program.data(), nullptr};
    absl::ParseCommandLine(1, arguments);

    add_rows<bool>("bool", "router_max_fanout_gbol");
    add_rows<int>("int", "router_max_fanout_gint");
    add_rows<std::string>("text", "router_max_fanout_gtxt");
    add_rows<double>("double", "router_max_fanout_gdbl");
    add_row(work_two_threads_same_name, by_name, lookup<bool, std::string>, "router_max_fanout_gbol")
        ->Threads(2)
        ->UseRealTime();
    add_row(work_set_existing, by_name, set_by_name);
    add_row(work_cached_switch, get_flag_name, get_flag);
}
