// Counts what this program allocates through operator new, including the libraries in it.
#ifndef BENCHMARKS_ALLOCATION_COUNT_H
#define BENCHMARKS_ALLOCATION_COUNT_H

#include <cstdint>

// The number of allocations of the calling thread so far.
std::uint64_t allocations_so_far();

#endif
