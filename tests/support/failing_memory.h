// Counts the allocations of the calling thread and can make one fail. An executable that links failing_memory.cpp has
// its operator new replaced.
#ifndef TESTS_SUPPORT_FAILING_MEMORY_H
#define TESTS_SUPPORT_FAILING_MEMORY_H

// Counts from construction to destruction.
class ALLOCATION_COUNT
{
public:
    ALLOCATION_COUNT();
    long since_start() const;

private:
    long start;
};

// The nth allocation of the calling thread after construction throws std::bad_alloc, once; until destruction.
class FAILING_ALLOCATION
{
public:
    explicit FAILING_ALLOCATION(long nth);
    ~FAILING_ALLOCATION();
    FAILING_ALLOCATION(const FAILING_ALLOCATION&) = delete;
    FAILING_ALLOCATION& operator=(const FAILING_ALLOCATION&) = delete;

    // Whether it was reached.
    bool has_failed() const;
};

#endif
