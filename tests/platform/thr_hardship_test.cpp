// The mutex where the system or the host makes it hard: each test in a process of its own, which an alarm ends if the
// mutex hangs.
#include <algorithm>
#include <array>
#include <atomic>
#include <barrier>
#include <chrono>
#include <cstddef>
#include <latch>
#include <pthread.h>
#include <random>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "platform/thr/thr.h"
#include "tests/platform/thread_conditions.h"
#include "tests/support/isolated_test.h"

namespace
{
void pause_processor()
{
#if defined(__x86_64__)
    __builtin_ia32_pause();
#endif
}

// Two threads lock once a round, and nobody unlocks again before both have: a wake-up that is lost is not made good by
// the next. The first holds the mutex for about as long as the second spins before it sleeps, a little longer each
// round; and it writes to memory that no cache holds just before it unlocks, so that the processor has its writes wait,
// the unlocking one among them, while it reads on.
void meet_at_the_moment_of_falling_asleep()
{
    alarm(seconds_until_hung);
    THR_MUTEX* const mutex = thr_mutex_create();
    have_refused(SYS_membarrier);

    constexpr int rounds = 100'000; // or as many as there is time for
    const auto enough = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    constexpr int most_pauses = 400; // the mutex spins 200 times before it sleeps
    constexpr int no_more_rounds = -2;
    std::vector<unsigned char> cold_memory(std::size_t{64} << 20U);
    std::minstd_rand random(1);
    std::barrier both(2);
    std::atomic<int> round_held = -1;

    std::thread second(
        [&]
        {
            for (int round = 0; round < rounds; ++round)
            {
                int held = -1;
                while ((held = round_held.load(std::memory_order_acquire)) != round && held != no_more_rounds)
                    std::this_thread::yield();
                if (held == no_more_rounds)
                    return;
                thr_mutex_lock(mutex);
                thr_mutex_unlock(mutex);
                both.arrive_and_wait();
            }
        });
    for (int round = 0; round < rounds && std::chrono::steady_clock::now() < enough; ++round)
    {
        thr_mutex_lock(mutex);
        round_held.store(round, std::memory_order_release);
        for (int i = 0; i < round % most_pauses; ++i)
            pause_processor();
        for (int i = 0; i < 40; ++i)
            cold_memory[random() % cold_memory.size()] = 1;
        thr_mutex_unlock(mutex);
        both.arrive_and_wait();
    }
    round_held.store(no_more_rounds, std::memory_order_release);
    second.join();
}

TEST(THR_HARDSHIP_TEST, no_wake_up_is_lost_where_the_kernel_refuses_barriers)
{
    EXPECT_IN_FRESH_PROCESS(meet_at_the_moment_of_falling_asleep());
}

// Nobody locks but those that sleep, so that each must be woken by the one before.
void sleep_all_and_be_woken()
{
    alarm(seconds_until_hung);
    THR_MUTEX* const mutex = thr_mutex_create();
    thr_mutex_lock(mutex);
    std::array<std::atomic<pid_t>, 5> sleepers{};
    std::vector<std::thread> threads;
    for (std::atomic<pid_t>& self : sleepers)
    {
        threads.emplace_back(
            [&]
            {
                self = gettid();
                thr_mutex_lock(mutex);
                thr_mutex_unlock(mutex);
            });
    }
    for (const std::atomic<pid_t>& thread : sleepers)
    {
        while (thread == 0 || !sleeps(thread))
            std::this_thread::yield();
    }
    thr_mutex_unlock(mutex);
    for (std::thread& thread : threads)
        thread.join();
}

TEST(THR_HARDSHIP_TEST, every_sleeper_is_woken)
{
    EXPECT_IN_FRESH_PROCESS(sleep_all_and_be_woken());
}

// A thread ends with the mutex held; threads follow until one is known by the same pthread_t, and tries to lock.
void lock_as_a_namesake()
{
    alarm(seconds_until_hung);
    THR_MUTEX* const mutex = thr_mutex_create();
    pthread_t ended{};
    std::thread(
        [&]
        {
            ended = pthread_self();
            thr_mutex_lock(mutex);
        })
        .join();

    std::atomic<pid_t> namesake = 0;
    std::atomic<bool> entered = false;
    for (int tries = 0; tries < 10'000 && namesake == 0; ++tries)
    {
        std::latch decided(1);
        std::thread later(
            [&]
            {
                const bool same = pthread_equal(pthread_self(), ended) != 0;
                if (same)
                    namesake = gettid();
                decided.count_down();
                if (!same)
                    return;
                thr_mutex_lock(mutex);
                entered = true;
                thr_mutex_unlock(mutex);
            });
        decided.wait();
        if (namesake == 0)
            later.join();
        else
            later.detach();
    }
    ASSERT_NE(namesake, 0) << "no later thread was known by the same pthread_t";
    while (!entered && !sleeps(namesake))
        std::this_thread::yield();
    EXPECT_FALSE(entered);
    _exit(testing::Test::HasFailure() ? 1 : 0); // the namesake sleeps on this function's variables
}

TEST(THR_HARDSHIP_TEST, what_an_ended_thread_holds_stays_held_for_a_thread_of_the_same_name)
{
    EXPECT_IN_FRESH_PROCESS(lock_as_a_namesake());
}

class LOCKS_WHEN_ITS_THREAD_ENDS
{
public:
    LOCKS_WHEN_ITS_THREAD_ENDS() = default;
    ~LOCKS_WHEN_ITS_THREAD_ENDS()
    {
        thr_mutex_lock(mutex);
        thr_mutex_lock(mutex);
        ++times;
        thr_mutex_unlock(mutex);
        thr_mutex_unlock(mutex);
    }
    LOCKS_WHEN_ITS_THREAD_ENDS(const LOCKS_WHEN_ITS_THREAD_ENDS&) = delete;
    LOCKS_WHEN_ITS_THREAD_ENDS& operator=(const LOCKS_WHEN_ITS_THREAD_ENDS&) = delete;

    void be_made() const {}

    static inline THR_MUTEX* mutex = nullptr;
    static inline int times = 0;
};

TEST(THR_HARDSHIP_TEST, an_ending_thread_can_lock)
{
    static THR_MUTEX* const mutex = thr_mutex_create();
    LOCKS_WHEN_ITS_THREAD_ENDS::mutex = mutex;
    LOCKS_WHEN_ITS_THREAD_ENDS::times = 0;
    for (int i = 0; i < 3; ++i)
    {
        std::thread(
            []
            {
                static thread_local LOCKS_WHEN_ITS_THREAD_ENDS at_the_end; // older than this thread's first locking
                at_the_end.be_made();
                thr_mutex_lock(mutex);
                thr_mutex_unlock(mutex);
            })
            .join();
    }
    EXPECT_EQ(LOCKS_WHEN_ITS_THREAD_ENDS::times, 3);
}

// Exits with the microseconds that the first mutex of a process of five threads took, 255 at most.
[[noreturn]] void exit_with_the_time_of_the_first_creation()
{
    alarm(seconds_until_hung);
    std::latch running(5);
    for (int i = 0; i < 4; ++i)
    {
        std::thread(
            [&]
            {
                running.arrive_and_wait();
                pause();
            })
            .detach();
    }
    running.arrive_and_wait();
    const auto start = std::chrono::steady_clock::now();
    const bool created = thr_mutex_create() != nullptr;
    const auto took = std::chrono::steady_clock::now() - start;
    const auto microseconds = std::chrono::duration_cast<std::chrono::microseconds>(took).count();
    _exit(created ? static_cast<int>(std::min<decltype(microseconds)>(microseconds, 255)) : 255);
}

TEST(THR_HARDSHIP_TEST, the_first_mutex_of_a_process_with_threads_is_made_at_once)
{
    int least = 255;
    const auto learns_the_time = [&](int status)
    {
        least = std::min(least, WIFEXITED(status) ? WEXITSTATUS(status) : 255);
        return true;
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (int i = 0; i < 8; ++i)
        EXPECT_EXIT(exit_with_the_time_of_the_first_creation(), learns_the_time, "");
    EXPECT_LT(least, 100) << "microseconds";
}
}
