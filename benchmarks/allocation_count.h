// Counts what this program, the libraries in it included, allocates through operator new.
#ifndef BENCHMARKS_ALLOCATION_COUNT_H
#define BENCHMARKS_ALLOCATION_COUNT_H

#include <cstdint>

// By the calling thread so far.
std::uint64_t allocations_so_far();

#endif
