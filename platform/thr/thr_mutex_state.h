// What a default mutex consists of, and the identity of a thread that it keeps. thr_mutex.cpp explains how they work.
#ifndef PLATFORM_THR_THR_MUTEX_STATE_H
#define PLATFORM_THR_THR_MUTEX_STATE_H

#include <atomic>
#include <cstdint>

#include "platform/thr/thr.h"

struct timespec;

namespace zon_thr
{
using WORD = std::uint64_t;
constexpr WORD free_word = 0;
constexpr WORD sleepers = 1;

// Even and never given twice in a process; 0 until the thread first locks. It has no destructor, so that destructors of
// other objects of an ending thread can still lock. It takes eight bytes of what the C library reserves for libraries
// that are loaded late, and is read without a call.
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
    THR_MUTEX* next_older = nullptr;        // of all mutexes; written before the mutex can be found there

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
            lock_slowly(); // a jump, where a caller of lock() has nothing else to do
    }

    void unlock()
    {
        if (count > 0) [[unlikely]]
            --count;
        else
            set_free();
    }

    // Locks for a thread that may have no identity yet, may be the owner, and may have to wait: until the deadline, by
    // CLOCK_MONOTONIC, if there is one. Whether it locked.
    [[gnu::visibility("hidden")]] bool lock_slowly(const timespec* deadline = nullptr);

    // Whoever holds the mutex.
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
