// The processor time that something takes, for tests that compare the times of two sizes.
#ifndef TESTS_SUPPORT_PROCESSOR_TIME_H
#define TESTS_SUPPORT_PROCESSOR_TIME_H

#include <algorithm>
#include <cstddef>
#include <sys/resource.h>

// The processor time of this process so far, which other processes hardly disturb.
inline double processor_seconds()
{
    struct rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const struct timeval& time)
    { return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// The processor time of the fastest of three runs.
template <typename WORK>
double least_processor_seconds(WORK work)
{
    double least = 1e9;
    for (int time = 0; time < 3; ++time)
    {
        const double start = processor_seconds();
        work();
        least = std::min(least, processor_seconds() - start);
    }
    return least;
}

// The time for the size `larger`, divided by that for `smaller`. If the ratio is not below `limit`, it is measured
// again, up to three times in all. No disturbance makes a quadratic cost look linear. A disturbance that makes a linear
// cost look quadratic does not come three times.
template <typename SECONDS_FOR>
double ratio_of_seconds(SECONDS_FOR seconds_for, std::size_t smaller, std::size_t larger, double limit)
{
    double ratio = limit;
    for (int attempt = 0; attempt < 3 && ratio >= limit; ++attempt)
    {
        const double of_smaller = seconds_for(smaller);
        ratio = seconds_for(larger) / of_smaller;
    }
    return ratio;
}

#endif
