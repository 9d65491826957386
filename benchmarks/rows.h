// The rows of the benchmark: a piece of work, and who does it. Rows of the same work are compared with each other.
#ifndef BENCHMARKS_ROWS_H
#define BENCHMARKS_ROWS_H

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

// --- Work ---

// `type` is bool, int, text or double; `form` is how the name is given: string (a std::string) or literal (characters).
inline std::string hot_work(const std::string& type, const std::string& form)
{
    return "hot lookup, " + type + ", " + form + " name";
}

inline std::string shuffled_work(const std::string& type, const std::string& form)
{
    return "1 000 shuffled of 10 000, " + type + ", " + form + " name";
}

inline std::string load_work(std::size_t lines)
{
    return "load " + std::to_string(lines) + " lines, a line";
}

inline std::string reread_work(std::size_t lines)
{
    return "reread " + std::to_string(lines) + " lines, a line";
}

inline constexpr const char* work_two_threads_same_name = "2 threads, bool, same name";
inline constexpr const char* work_two_threads_other_names = "2 threads, bool, other names";
inline constexpr const char* work_repeated_miss = "miss on an empty record";
inline constexpr const char* work_creating_miss = "miss that creates a record";
inline constexpr const char* work_set_existing = "set an existing variable";
inline constexpr const char* work_set_int = "set an int to changing values";
inline constexpr const char* work_report_ten = "ranked report, 10 of 10 000, a variable";
inline constexpr const char* work_report_all = "ranked report, all 10 000, a variable";
inline constexpr const char* work_catalogue = "catalogue lookup, bool";
inline constexpr const char* work_catalogue_default = "one argument, the catalogue's default";
inline constexpr const char* work_mode = "mode question after the first";
inline constexpr const char* work_debug_settings = "debug settings, nothing changed";
inline constexpr const char* work_cached_switch = "cached switch";
inline constexpr const char* work_preference_present = "preference by number, this release";
inline constexpr const char* work_preference_long = "preference by number, this release, a path";
inline constexpr const char* work_preference_default = "preference by number, default";
inline constexpr const char* work_preference_no_section = "preference by number, default, no section";
inline constexpr const char* work_preference_unknown = "preference by number, unknown";
inline constexpr const char* work_preference_present_by_name = "preference by name, this release";
inline constexpr const char* work_preference_default_by_name = "preference by name, default";
inline constexpr const char* work_preference_unknown_by_name = "preference by name, unknown";
inline constexpr const char* work_assignment = "preference assignment by number";
inline constexpr const char* work_assignment_by_name = "preference assignment by name";
inline constexpr const char* work_preference_save = "save the preferences, a key";
inline constexpr const char* work_preference_load = "load the preferences, a key";
inline constexpr const char* work_all_shuffled = "10 000 shuffled of 10 000, bool, string name";
inline constexpr const char* work_call = "lower bound: call of a library's function";
inline constexpr const char* work_lock = "lower bound: recursive lock and unlock";
inline constexpr const char* work_hash = "lower bound: hash of the hot name";
inline constexpr const char* work_hot_find = "lower bound: unordered_map find, hot name";
inline constexpr const char* work_shuffled_find = "lower bound: unordered_map find, 1 000 of 10 000";

inline std::string one_read_work(std::size_t lines)
{
    return "lower bound: read " + std::to_string(lines) + " lines at once, a line";
}

inline std::string getline_work(std::size_t lines)
{
    return "lower bound: getline of " + std::to_string(lines) + " lines, a line";
}

inline std::string bare_loop_work(std::size_t lines)
{
    return "lower bound: bare loop over " + std::to_string(lines) + " lines, a line";
}

// --- Figures that are not times of rows ---

inline constexpr const char* figure_own_pages = "own pages of 200 variables asked for";
inline constexpr const char* figure_first_lookup = "first lookup without files, 5 threads";
inline constexpr const char* figure_fork = "fork and end of the child, beside a lookup";
inline constexpr const char* figure_longest_fork = "the longest of 200 such forks";

// --- Who ---

inline constexpr const char* ours = "ours";
inline constexpr const char* plain = "plain";
inline constexpr const char* standard_library = "standard library";
inline constexpr const char* platform = "platform";

// --- Files ---

inline constexpr std::size_t longest_file = 1'000'000;
inline constexpr int repetitions_of_longest_file = 5;

inline std::vector<std::size_t> file_lengths(bool long_files)
{
    return long_files ? std::vector<std::size_t>{100, 10'000, longest_file} : std::vector<std::size_t>{100, 10'000};
}

// --- Registration ---

struct ROW
{
    std::string work;
    std::string who;
};

// In the order in which they were added.
std::vector<ROW>& added_rows();

// How a row is named towards the benchmark library.
inline std::string row_name(const ROW& row)
{
    return row.work + "/" + row.who;
}

template <typename FUNCTION, typename... ARGUMENTS>
benchmark::internal::Benchmark* add_row(const std::string& work, const std::string& who, FUNCTION* function,
                                        ARGUMENTS... arguments)
{
    added_rows().push_back({work, who});
    return benchmark::RegisterBenchmark(row_name(added_rows().back()).c_str(), function, arguments...);
}

// Each adds the rows of one kind. If `long_files`, these include the rows of the longest file.
void add_rows_of_this_library(bool long_files);
void add_rows_of_preferences();
void add_rows_of_plain_store(bool long_files);
void add_rows_of_peers(bool long_files);
void add_rows_of_floors(bool long_files);

#endif
