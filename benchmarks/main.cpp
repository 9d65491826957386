// The benchmark: measures the library, its plain version, peers and lower bounds in one interleaved run and prints one
// table.
//
//   cfg_ini_benchmark [--short] [--json=FILE] [options of Google Benchmark, such as --benchmark_filter=REGEX]
//
// --short leaves the long files out and repeats little: it shows that every row runs, its times say nothing.
// Exits 1 when a row could not run; a missed goal is only reported.
#include <benchmark/benchmark.h>

#include <condition_variable>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <mutex>
#include <string_view>
#include <thread>

#include "benchmarks/figures.h"
#include "benchmarks/results.h"
#include "benchmarks/rows.h"
#include "benchmarks/table.h"

namespace
{
// A second thread, asleep throughout: standard libraries leave locked instructions out while there is only one.
class PARKED_THREAD
{
public:
    PARKED_THREAD() : thread([this] { sleep_until_released(); }) {}
    ~PARKED_THREAD()
    {
        {
            const std::lock_guard lock(mutex);
            released = true;
        }
        condition.notify_one();
        thread.join();
    }
    PARKED_THREAD(const PARKED_THREAD&) = delete;
    PARKED_THREAD& operator=(const PARKED_THREAD&) = delete;

private:
    void sleep_until_released()
    {
        std::unique_lock lock(mutex);
        condition.wait(lock, [this] { return released; });
    }

    std::mutex mutex;
    std::condition_variable condition;
    bool released = false;
    std::thread thread;
};

struct OPTIONS
{
    bool is_short = false;
    std::string json_file;
    std::vector<char*> for_google_benchmark;
};

OPTIONS options_of(int argc, char** argv)
{
    constexpr std::string_view json = "--json=";
    OPTIONS options;
    for (int i = 1; i < argc; ++i)
    {
        const std::string_view argument = argv[i];
        if (argument == "--short")
            options.is_short = true;
        else if (argument.substr(0, json.size()) == json)
            options.json_file = argument.substr(json.size());
        else
            options.for_google_benchmark.push_back(argv[i]);
    }
    return options;
}

bool initialise_google_benchmark(const OPTIONS& options, char* program)
{
    std::string interleaved = "--benchmark_enable_random_interleaving=true";
    std::string repetitions = options.is_short ? "--benchmark_repetitions=2" : "--benchmark_repetitions=31";
    std::string least_time = options.is_short ? "--benchmark_min_time=0.0001" : "--benchmark_min_time=0.01";
    std::vector<char*> arguments = {program, interleaved.data(), repetitions.data(), least_time.data()};
    arguments.insert(arguments.end(), options.for_google_benchmark.begin(), options.for_google_benchmark.end());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    return !benchmark::ReportUnrecognizedArguments(count, arguments.data());
}

// Only what this program makes is read.
void leave_environment()
{
    setenv("VELMAR_INI_DISABLED", "1", 1);
    unsetenv("APPENDED_VELMAR_INI");
    unsetenv("VELMAR_INI_VARS");
}
}

int main(int argc, char** argv)
{
    const OPTIONS options = options_of(argc, argv);
    if (!initialise_google_benchmark(options, argv[0]))
        return 1;
    leave_environment();

    RESULTS results;
    measure_resident_bytes(results.figures, options.is_short ? 1'000 : 200'000);
    measure_fresh_processes(results.figures);
    const PARKED_THREAD second_thread;
    measure_allocations(results.figures);
    const bool long_files = !options.is_short;
    add_rows_of_this_library(long_files);
    add_rows_of_preferences();
    add_rows_of_plain_store(long_files);
    add_rows_of_peers(long_files);
    add_rows_of_floors(long_files);
    benchmark::RunSpecifiedBenchmarks(&results);

    print_table(std::cout, results);
    if (options.is_short)
        std::cout << "\nA short run: every row works, the times say nothing.\n";
    if (!options.json_file.empty())
    {
        std::ofstream file(options.json_file);
        print_json(file, results);
        if (!file.flush())
            results.errors.push_back("cannot write " + options.json_file);
    }
    for (const std::string& error : results.errors)
        std::cerr << "error: " << error << '\n';
    return results.errors.empty() ? 0 : 1;
}
