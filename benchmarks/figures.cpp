#include "benchmarks/figures.h"

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>

#include "benchmarks/allocation_count.h"
#include "benchmarks/rows.h"
#include "benchmarks/settings_files_on_disk.h"
#include "benchmarks/store_workloads.h"
#include "benchmarks/stores.h"

namespace
{
// --- Allocations ---

template <typename READ>
double allocations_of(READ read)
{
    constexpr int calls = 100;
    read(); // what only a first call allocates does not count
    const std::uint64_t before = allocations_so_far();
    for (int i = 0; i < calls; ++i)
        read();
    return static_cast<double>(allocations_so_far() - before) / calls;
}

template <typename STORE>
void add_allocations(std::vector<FIGURE>& figures, const std::string& who)
{
    hold<STORE>(file_for_lookups());
    const std::string name = hot_name;
    const auto add = [&](const std::string& title, auto read) {
        figures.push_back({"allocations on a hit, " + title, who, allocations_of(read), "allocations"});
    };
    add("bool, string name", [&] { benchmark::DoNotOptimize(STORE::read_bool(name)); });
    add("bool, literal name", [] { benchmark::DoNotOptimize(STORE::read_bool(hot_name)); });
    add("int, string name", [&] { benchmark::DoNotOptimize(STORE::read_int(name)); });
    add("int, literal name", [] { benchmark::DoNotOptimize(STORE::read_int(hot_name)); });
    if constexpr (requires { STORE::read_uint(name); })
    {
        add("unsigned, string name", [&] { benchmark::DoNotOptimize(STORE::read_uint(name)); });
        add("unsigned, literal name", [] { benchmark::DoNotOptimize(STORE::read_uint(hot_name)); });
    }
    drop<STORE>();
}

// --- Resident bytes ---

double resident_bytes()
{
    std::ifstream statistics("/proc/self/statm");
    double total_pages = 0;
    double resident_pages = 0;
    statistics >> total_pages >> resident_pages;
    return resident_pages * static_cast<double>(sysconf(_SC_PAGESIZE));
}

// In a child, so that one store's memory is not the next one's.
template <typename STORE>
double resident_bytes_per_variable(const SETTINGS_FILE& file)
{
    int ends[2];
    if (pipe(ends) != 0)
        return -1;
    const pid_t child = fork();
    if (child == 0)
    {
        malloc_trim(0); // memory that the parent has given back is not there for the taking
        const double before = resident_bytes();
        STORE::load(file.path);
        const double bytes = (resident_bytes() - before) / static_cast<double>(file.variables);
        const bool written = write(ends[1], &bytes, sizeof bytes) == static_cast<ssize_t>(sizeof bytes);
        _exit(written ? 0 : 1);
    }
    close(ends[1]);
    double bytes = -1;
    if (child < 0 || read(ends[0], &bytes, sizeof bytes) != static_cast<ssize_t>(sizeof bytes))
        bytes = -1;
    close(ends[0]);
    if (child > 0)
        waitpid(child, nullptr, 0);
    return bytes;
}

template <typename STORE>
void add_resident_bytes(std::vector<FIGURE>& figures, const std::string& who, const SETTINGS_FILE& file)
{
    figures.push_back({"resident bytes per variable, " + std::to_string(file.lines) + " lines", who,
                       resident_bytes_per_variable<STORE>(file), "bytes"});
}
}

// --- Processes that have not used the library yet ---

namespace
{
// What benchmarks/fresh_process.cpp prints; negative where it fails.
double number_of_fresh_process(const std::string& task)
{
    std::FILE* const output = popen((std::string(ZON_FRESH_PROCESS) + ' ' + task).c_str(), "re");
    double number = -1;
    if (output == nullptr || std::fscanf(output, "%lf", &number) != 1)
        number = -1;
    return output != nullptr && pclose(output) == 0 ? number : -1;
}

double median_of_fresh_processes(const std::string& task)
{
    constexpr int processes = 21;
    std::vector<double> numbers;
    for (int i = 0; i < processes; ++i)
        numbers.push_back(number_of_fresh_process(task));
    std::sort(numbers.begin(), numbers.end());
    return numbers[processes / 2];
}
}

void measure_allocations(std::vector<FIGURE>& figures)
{
    add_allocations<OURS>(figures, ours);
    add_allocations<PLAIN>(figures, plain);
}

void measure_resident_bytes(std::vector<FIGURE>& figures, std::size_t lines)
{
    const SETTINGS_FILE& file = file_of_lines(lines);
    add_resident_bytes<OURS>(figures, ours, file);
    add_resident_bytes<PLAIN>(figures, plain, file);
}

void measure_fresh_processes(std::vector<FIGURE>& figures)
{
    const std::string& file = file_of_lines(200).path;
    figures.push_back({figure_own_pages, ours, median_of_fresh_processes("own_pages " + file) / 1024, "KiB"});
    figures.push_back({figure_first_lookup, ours, median_of_fresh_processes("first_lookup") / 1e3, "us"});
    figures.push_back({figure_fork, ours, number_of_fresh_process("fork_median") / 1e3, "us"});
    figures.push_back({figure_longest_fork, ours, number_of_fresh_process("fork_longest") / 1e6, "ms"});
}
