// The goals of performance, and whether a run met them.
#ifndef BENCHMARKS_GOALS_H
#define BENCHMARKS_GOALS_H

#include <optional>
#include <string>
#include <vector>

#include "benchmarks/results.h"

struct VERDICT
{
    std::string goal;               // such as "hot lookup, bool, string name, in locks"
    double limit;                   // the most that meets it
    std::string unit;               // "x" for ratios, "ns"
    std::optional<double> measured; // nothing when a row that it takes did not run

    bool met() const
    {
        return measured && *measured <= limit;
    }
};

std::vector<VERDICT> verdicts(const RESULTS& results);

#endif
