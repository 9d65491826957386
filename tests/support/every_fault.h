// One fault after another, until a try gets through.
#ifndef TESTS_SUPPORT_EVERY_FAULT_H
#define TESTS_SUPPORT_EVERY_FAULT_H

#include <gtest/gtest.h>
#include <string>

// Calls attempt(1), attempt(2) and so on, until one returns that its fault was not reached. Returns how many were
// reached.
template <typename ATTEMPT>
long for_every_fault(ATTEMPT attempt)
{
    constexpr long too_many = 1000;
    for (long nth = 1; nth <= too_many; ++nth)
    {
        SCOPED_TRACE("fault " + std::to_string(nth));
        if (!attempt(nth))
            return nth - 1;
    }
    ADD_FAILURE() << "there is no end of faults";
    return too_many;
}

#endif
