// What a run measured: the reporter that collects it, and the figures that are not times.
#ifndef BENCHMARKS_RESULTS_H
#define BENCHMARKS_RESULTS_H

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

struct MEASUREMENT
{
    std::string who;
    std::vector<double> nanoseconds; // one a repetition

    double median() const;
    double least() const;
};

// All measurements of the same work.
struct WORK
{
    std::string title;
    std::vector<MEASUREMENT> measurements;

    const MEASUREMENT* of(const std::string& who) const; // null when there is none

    // The fastest that is neither this library nor its plain version; null if there is none.
    const MEASUREMENT* fastest_peer() const;
};

// A figure that is not a time, such as a number of bytes.
struct FIGURE
{
    std::string title;
    std::string who;
    double value;
    std::string unit;
};

class RESULTS : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override; // makes `works` of what was reported

    // Null when no row of that work ran.
    const WORK* work(const std::string& title) const;
    const MEASUREMENT* measurement(const std::string& title, const std::string& who) const;

    std::vector<WORK> works; // in the order in which their rows were added, whatever the order of the runs
    std::vector<FIGURE> figures;
    std::vector<std::string> errors; // rows that could not run

private:
    std::map<std::string, std::vector<double>> times; // by the name of the row
};

#endif
