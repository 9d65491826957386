// The default mutex: an owner, a count, and a word that waiters sleep on after a short spin.
//
// Locking and unlocking run for every lookup, and the store holds the mutex for some nanoseconds only. Sleeping at
// once, as a general mutex does, makes two busy threads wake each other for every lookup; a short spin outlasts the
// holder. Unlocking needs no locked instruction: it writes the word, then looks for waiters, and nothing keeps the
// processor from doing the look first. A thread that is about to sleep therefore makes itself known and then has every
// running thread of the process pass a full barrier (membarrier): an unlocker either sees the waiter, or its write is
// seen by the waiter. Where the kernel has no such call, unlocking pays for the barrier itself.
#include "platform/thr/thr.h"

#include <atomic>
#include <climits>
#include <linux/futex.h>
#include <linux/membarrier.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{
constexpr int spins_before_sleep = 200;

enum WORD : int
{
    FREE = 0,
    TAKEN = 1
};

bool register_for_barriers()
{
    return syscall(SYS_membarrier, MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED, 0, 0) == 0;
}

void pause_processor()
{
#if defined(__x86_64__)
    __builtin_ia32_pause();
#endif
}
}

struct THR_MUTEX
{
    std::atomic<int> word = FREE;
    std::atomic<int> waiters = 0;
    // Written by the owner only; another thread can never read its own identity here.
    std::atomic<pthread_t> owner = pthread_t{};
    unsigned int count = 0; // further holds of the owner
    const bool barriers_on_demand = register_for_barriers();

    bool take_if_free()
    {
        int expected = FREE;
        return word.load(std::memory_order_relaxed) == FREE &&
               word.compare_exchange_strong(expected, TAKEN, std::memory_order_acquire, std::memory_order_relaxed);
    }

    // Whether to wake somebody; asked after the word was set free. See the head of this file.
    bool someone_waits()
    {
        if (!barriers_on_demand) [[unlikely]]
            return waiters.fetch_add(0, std::memory_order_acq_rel) > 0; // comes before or after a waiter's own addition
        std::atomic_signal_fence(std::memory_order_seq_cst);            // the order of the program is all it takes
        return waiters.load(std::memory_order_relaxed) > 0;
    }

    [[gnu::visibility("hidden")]] void wait();
    [[gnu::visibility("hidden")]] void wake();
};

// Returns with the word taken.
[[gnu::noinline]] void THR_MUTEX::wait()
{
    for (int spin = 0; spin < spins_before_sleep; ++spin)
    {
        pause_processor();
        if (take_if_free())
            return;
    }
    waiters.fetch_add(1, std::memory_order_seq_cst);
    if (barriers_on_demand)
        syscall(SYS_membarrier, MEMBARRIER_CMD_PRIVATE_EXPEDITED, 0, 0);
    while (!take_if_free())
        syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, TAKEN, nullptr, nullptr, 0);
    waiters.fetch_sub(1, std::memory_order_relaxed);
}

[[gnu::noinline]] void THR_MUTEX::wake()
{
    syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

THR_MUTEX* thr_mutex_create()
{
    return new THR_MUTEX;
}

void thr_mutex_lock(THR_MUTEX* mutex)
{
    const pthread_t self = pthread_self();
    if (mutex->take_if_free()) [[likely]]
    {
        mutex->owner.store(self, std::memory_order_relaxed);
        return;
    }
    if (mutex->owner.load(std::memory_order_relaxed) == self)
    {
        ++mutex->count;
        return;
    }
    mutex->wait();
    mutex->owner.store(self, std::memory_order_relaxed);
}

void thr_mutex_unlock(THR_MUTEX* mutex)
{
    if (mutex->count > 0)
    {
        --mutex->count;
        return;
    }
    mutex->owner.store(pthread_t{}, std::memory_order_relaxed);
    mutex->word.store(FREE, std::memory_order_release);
    if (mutex->someone_waits()) [[unlikely]]
        mutex->wake();
}
