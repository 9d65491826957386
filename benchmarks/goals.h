// The goals of performance, and whether a run met them.
#ifndef BENCHMARKS_GOALS_H
#define BENCHMARKS_GOALS_H

#include <optional>
#include <string>
#include <vector>

#include "benchmarks/results.h"

struct VERDICT
{
    std::string goal;               // such as "set an existing variable / lock"
    double limit;                   // the highest value that meets it
    std::string unit;               // "x" for ratios, "ns"; that of the figure
    std::optional<double> measured; // from medians; empty if a row that it needs did not run
    std::optional<double> least;    // from the shortest times, which other programs disturb less

    bool other_form_met = false; // the goal has two forms, either one is enough, and the other one is met

    bool met() const
    {
        return measured && *measured <= limit;
    }
};

std::vector<VERDICT> verdicts(const RESULTS& results);

#endif
