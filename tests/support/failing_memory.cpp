#include "tests/support/failing_memory.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <malloc.h>
#include <new>
#include <utility>

#include "tests/support/every_fault.h"

namespace
{
constinit thread_local long allocations = 0;
constinit thread_local long deallocations = 0;
constinit thread_local long bytes = 0;
constinit thread_local long allocations_to_failure = 0;
constinit thread_local bool failed = false;
constinit thread_local long allocations_to_action = 0;
constinit thread_local const std::function<void()>* action_at_allocation = nullptr;

void* allocate(std::size_t size, std::size_t alignment)
{
    ++allocations;
    if (allocations_to_action > 0 && --allocations_to_action == 0)
        (*action_at_allocation)();
    if (allocations_to_failure > 0 && --allocations_to_failure == 0)
    {
        failed = true;
        throw std::bad_alloc();
    }
    // A multiple of the alignment, as std::aligned_alloc asks for, and never none.
    const std::size_t rounded = (size / alignment + 1) * alignment;
    void* const memory = std::aligned_alloc(alignment, rounded);
    if (memory == nullptr)
        throw std::bad_alloc();
    bytes += static_cast<long>(malloc_usable_size(memory));
    return memory;
}

void release(void* memory)
{
    if (memory != nullptr)
    {
        ++deallocations;
        bytes -= static_cast<long>(malloc_usable_size(memory));
    }
    std::free(memory);
}
}

void* operator new(std::size_t size)
{
    return allocate(size, __STDCPP_DEFAULT_NEW_ALIGNMENT__);
}

void* operator new[](std::size_t size)
{
    return allocate(size, __STDCPP_DEFAULT_NEW_ALIGNMENT__);
}

// What the polymorphic memory resources and arrays of records use.
void* operator new(std::size_t size, std::align_val_t alignment)
{
    return allocate(size, static_cast<std::size_t>(alignment));
}

void* operator new[](std::size_t size, std::align_val_t alignment)
{
    return allocate(size, static_cast<std::size_t>(alignment));
}

void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept
{
    release(memory);
}

void operator delete[](void* memory, std::align_val_t /*alignment*/) noexcept
{
    release(memory);
}

void operator delete[](void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept
{
    release(memory);
}

void operator delete(void* memory) noexcept
{
    release(memory);
}

void operator delete[](void* memory) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    release(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept
{
    release(memory);
}

ALLOCATION_COUNT::ALLOCATION_COUNT() : start(allocations) {}

long ALLOCATION_COUNT::since_start() const
{
    return allocations - start;
}

long live_allocations()
{
    return allocations - deallocations;
}

long live_bytes()
{
    return bytes;
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

ACTION_AT_ALLOCATION::ACTION_AT_ALLOCATION(long nth, std::function<void()> the_action) : action(std::move(the_action))
{
    action_at_allocation = &action;
    allocations_to_action = nth;
}

ACTION_AT_ALLOCATION::~ACTION_AT_ALLOCATION()
{
    allocations_to_action = 0;
}

void fail_at_every_allocation(const std::function<void()>& prepare, const std::function<void()>& action,
                              const std::function<void(bool failed)>& check, WITHOUT_MEMORY expected)
{
    bool went_on = false;
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
        EXPECT_TRUE(reached || !threw);
        EXPECT_TRUE(threw == reached || expected != WITHOUT_MEMORY::THROWS) << "a failure passes through";
        went_on = went_on || (reached && !threw);
        check(reached);
        return reached;
    };
    EXPECT_GT(for_every_fault(attempt), 0) << "nothing was allocated";
    EXPECT_EQ(went_on, expected == WITHOUT_MEMORY::THROWS_OR_GOES_ON);
}
