#include "tests/support/failing_memory.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <new>

#include "tests/support/every_fault.h"

namespace
{
constinit thread_local long allocations = 0;
constinit thread_local long allocations_to_failure = 0;
constinit thread_local bool failed = false;

void* allocate(std::size_t size)
{
    ++allocations;
    if (allocations_to_failure > 0 && --allocations_to_failure == 0)
    {
        failed = true;
        throw std::bad_alloc();
    }
    if (void* const memory = std::malloc(size > 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}
}

void* operator new(std::size_t size)
{
    return allocate(size);
}

void* operator new[](std::size_t size)
{
    return allocate(size);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}

ALLOCATION_COUNT::ALLOCATION_COUNT() : start(allocations) {}

long ALLOCATION_COUNT::since_start() const
{
    return allocations - start;
}

FAILING_ALLOCATION::FAILING_ALLOCATION(long nth)
{
    failed = false;
    allocations_to_failure = nth;
}

FAILING_ALLOCATION::~FAILING_ALLOCATION()
{
    allocations_to_failure = 0;
}

bool FAILING_ALLOCATION::has_failed() const // NOLINT: asked of the object that lies in wait
{
    return failed;
}

void fail_at_every_allocation(const std::function<void()>& prepare, const std::function<void()>& action,
                              const std::function<void(bool failed)>& check)
{
    const auto attempt = [&](long nth)
    {
        prepare();
        bool threw = false;
        bool reached = false;
        {
            const FAILING_ALLOCATION failing(nth);
            try
            {
                action();
            }
            catch (const std::bad_alloc&)
            {
                threw = true;
            }
            reached = failing.has_failed();
        }
        EXPECT_EQ(threw, reached) << "a failure passes through";
        check(reached);
        return reached;
    };
    EXPECT_GT(for_every_fault(attempt), 0) << "nothing was allocated";
}
