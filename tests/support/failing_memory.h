// Counts the allocations of the calling thread and can make one fail. An executable that links failing_memory.cpp has
// its operator new replaced.
#ifndef TESTS_SUPPORT_FAILING_MEMORY_H
#define TESTS_SUPPORT_FAILING_MEMORY_H

#include <functional>

// Counts from construction to destruction.
class ALLOCATION_COUNT
{
public:
    ALLOCATION_COUNT();
    long since_start() const;

private:
    long start;
};

// What the calling thread has allocated and not freed; only differences mean something.
long live_allocations();
long live_bytes(); // as the heap rounds them

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

// The nth allocation of the calling thread after construction calls `action` first, once; until destruction.
class ACTION_AT_ALLOCATION
{
public:
    ACTION_AT_ALLOCATION(long nth, std::function<void()> action);
    ~ACTION_AT_ALLOCATION();
    ACTION_AT_ALLOCATION(const ACTION_AT_ALLOCATION&) = delete;
    ACTION_AT_ALLOCATION& operator=(const ACTION_AT_ALLOCATION&) = delete;

private:
    const std::function<void()> action;
};

// What an action does when an allocation fails.
enum class WITHOUT_MEMORY
{
    THROWS,            // always throws std::bad_alloc
    THROWS_OR_GOES_ON, // or goes on, if it can do without the allocation
};

// Runs `action` again and again: first its first allocation fails, then its second, and so on, until none does.
// `prepare` runs before each try. `check` runs after each, and gets whether an allocation failed.
void fail_at_every_allocation(const std::function<void()>& prepare, const std::function<void()>& action,
                              const std::function<void(bool failed)>& check,
                              WITHOUT_MEMORY expected = WITHOUT_MEMORY::THROWS);

#endif
