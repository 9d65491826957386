#include "benchmarks/results.h"

#include <algorithm>

#include "benchmarks/rows.h"

namespace
{
// One thread alone: the time that it computed, so that other programs do not count. Several: the time that passed for
// each of them; the benchmark library divides it by the calls of all.
double nanoseconds_of(const benchmark::BenchmarkReporter::Run& run)
{
    const double seconds =
        run.threads > 1 ? run.real_accumulated_time * static_cast<double>(run.threads) : run.cpu_accumulated_time;
    return seconds / static_cast<double>(run.iterations) * 1e9;
}
}

double MEASUREMENT::median() const
{
    std::vector<double> sorted = nanoseconds;
    std::sort(sorted.begin(), sorted.end());
    const std::size_t middle = sorted.size() / 2;
    return sorted.size() % 2 == 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

double MEASUREMENT::least() const
{
    return *std::min_element(nanoseconds.begin(), nanoseconds.end());
}

const MEASUREMENT* WORK::of(const std::string& who) const
{
    const auto found = std::find_if(measurements.begin(), measurements.end(),
                                    [&who](const MEASUREMENT& candidate) { return candidate.who == who; });
    return found == measurements.end() ? nullptr : &*found;
}

const MEASUREMENT* WORK::fastest_peer() const
{
    const MEASUREMENT* fastest = nullptr;
    for (const MEASUREMENT& candidate : measurements)
    {
        if (candidate.who != ours && candidate.who != plain && candidate.who != platform &&
            (fastest == nullptr || candidate.median() < fastest->median()))
            fastest = &candidate;
    }
    return fastest;
}

std::vector<ROW>& added_rows()
{
    static std::vector<ROW> rows;
    return rows;
}

bool RESULTS::ReportContext(const Context&)
{
    return true;
}

void RESULTS::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs)
    {
        if (run.error_occurred)
            errors.push_back(run.run_name.function_name + ": " + run.error_message);
        else if (run.run_type == Run::RT_Iteration)
            times[run.run_name.function_name].push_back(nanoseconds_of(run));
    }
}

void RESULTS::Finalize()
{
    works.clear();
    for (const ROW& row : added_rows())
    {
        const auto measured = times.find(row_name(row));
        if (measured == times.end()) // filtered out
            continue;
        auto entry = std::find_if(works.begin(), works.end(),
                                  [&](const WORK& candidate) { return candidate.title == row.work; });
        if (entry == works.end())
            entry = works.insert(works.end(), WORK{row.work, {}});
        entry->measurements.push_back({row.who, measured->second});
    }
}

const WORK* RESULTS::work(const std::string& title) const
{
    const auto found =
        std::find_if(works.begin(), works.end(), [&title](const WORK& candidate) { return candidate.title == title; });
    return found == works.end() ? nullptr : &*found;
}

const MEASUREMENT* RESULTS::measurement(const std::string& title, const std::string& who) const
{
    const WORK* const found = work(title);
    return found == nullptr ? nullptr : found->of(who);
}
