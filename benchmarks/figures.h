// The figures of a run that are not times.
#ifndef BENCHMARKS_FIGURES_H
#define BENCHMARKS_FIGURES_H

#include <vector>

#include "benchmarks/results.h"

// Allocations of one lookup that finds its variable, per type and form of the name.
void measure_allocations(std::vector<FIGURE>& figures);

// Resident bytes per variable of a store that holds a file of so many lines. Measures each store in a forked process of
// its own, so it must be called before there is a second thread.
void measure_resident_bytes(std::vector<FIGURE>& figures, std::size_t lines);

// The figures that need a process of their own: the pages that 200 variables take, the first lookup, and a fork.
void measure_fresh_processes(std::vector<FIGURE>& figures);

#endif
