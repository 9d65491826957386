#include "benchmarks/allocation_count.h"

#include <cstdlib>
#include <new>

namespace
{
constinit thread_local std::uint64_t allocations = 0;
}

std::uint64_t allocations_so_far()
{
    return allocations;
}

// The array and the nothrow forms come here too.
void* operator new(std::size_t size)
{
    ++allocations;
    if (void* const memory = std::malloc(size); memory != nullptr)
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
