// The results, for people and for programs.
#ifndef BENCHMARKS_TABLE_H
#define BENCHMARKS_TABLE_H

#include <ostream>

#include "benchmarks/results.h"

// A table of medians and ratios, the other figures, and a verdict per goal.
void print_table(std::ostream& out, const RESULTS& results);

// The same as one JSON object.
void print_json(std::ostream& out, const RESULTS& results);

#endif
