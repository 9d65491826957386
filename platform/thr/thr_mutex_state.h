// The data of a default mutex, and the identity that stands for a thread in it. thr_mutex.cpp explains the algorithm.
#ifndef PLATFORM_THR_THR_MUTEX_STATE_H
#define PLATFORM_THR_THR_MUTEX_STATE_H

#include <atomic>
#include <cstdint>

#include "platform/thr/thr.h"

struct timespec;

namespace zon_thr
{
// A mutex is one word: free_word, or the identity of the owner. `sleepers` is added to it while other threads sleep.
using WORD = std::uint64_t;
constexpr WORD free_word = 0;
constexpr WORD sleepers = 1;

// The identity of the calling thread: even, and never used twice in a process; 0 until the thread first locks. It has
// no destructor, so the destructors of other objects of an ending thread can still lock. It takes eight bytes of the
// space that the C library reserves for libraries that are loaded late, so reading it needs no call.
[[gnu::tls_model("initial-exec"), gnu::visibility("hidden")]] extern constinit thread_local WORD identity;
}

struct THR_MUTEX
{
    std::atomic<zon_thr::WORD> word = zon_thr::free_word;

    // --- Guarded by the mutex itself ---
    unsigned int count = 0;        // further holds of the owner
    bool is_held_for_fork = false; // one of the owner's holds is that of its fork handlers

    // --- The fork handlers' ---
    std::atomic<void (*)()> lost = nullptr; // the function for thr_mutex_call_if_lost
    THR_MUTEX* next_older = nullptr;        // in the list of all mutexes; written before the mutex is added to it

    // Whether the calling thread holds the mutex.
    bool is_own() const
    {
        return (word.load(std::memory_order_relaxed) & ~zon_thr::sleepers) == zon_thr::identity; // (4)
    }

    void lock()
    {
        const zon_thr::WORD self = zon_thr::identity;
        zon_thr::WORD seen = zon_thr::free_word;
        if (self == 0 || !word.compare_exchange_strong(seen, self, std::memory_order_acquire,
                                                       std::memory_order_relaxed)) [[unlikely]] // (1)
            lock_slowly(); // compiles to a jump if the caller of lock() does nothing after it
    }

    void unlock()
    {
        if (count > 0) [[unlikely]]
            --count;
        else
            set_free();
    }

    // Locks in all cases: the thread may have no identity yet, may be the owner, and may have to wait. It waits until
    // the deadline on CLOCK_MONOTONIC, or without a limit if there is none. Returns whether it locked.
    [[gnu::visibility("hidden")]] bool lock_slowly(const timespec* deadline = nullptr);

    // Releases the mutex completely, whoever holds it.
    void set_free()
    {
        if ((word.exchange(zon_thr::free_word, std::memory_order_release) & zon_thr::sleepers) != 0) [[unlikely]] // (3)
            wake_one();
    }

private:
    [[gnu::visibility("hidden")]] bool wait(const timespec* deadline);
    [[gnu::visibility("hidden")]] void sleep_while(zon_thr::WORD seen, const timespec* deadline);
    [[gnu::visibility("hidden")]] void wake_one();
    [[gnu::visibility("hidden")]] char* lower_half();
};

#endif
