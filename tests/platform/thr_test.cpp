#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include "platform/thr/thr.h"

namespace
{
// Made once: there is no way to destroy one.
THR_MUTEX* shared_mutex()
{
    static THR_MUTEX* const mutex = thr_mutex_create();
    return mutex;
}

constexpr int threads = 4;
constexpr int raises_per_thread = 500;
constexpr int all_raises = threads * raises_per_thread;

// Raises a plain counter on several threads. Comes out below all_raises when two of the raises overlapped.
template <typename RAISE>
int raised_by_threads(RAISE raise)
{
    int counter = 0;
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i)
    {
        running.emplace_back(
            [&]
            {
                for (int j = 0; j < raises_per_thread; ++j)
                    raise(counter);
            });
    }
    for (std::thread& thread : running)
        thread.join();
    return counter;
}

void raise_in_two_steps(int& counter)
{
    const int before = counter;
    std::this_thread::yield();
    counter = before + 1;
}

TEST(THR_MUTEX_TEST, is_made_anew_each_time)
{
    static THR_MUTEX* const other = thr_mutex_create();
    ASSERT_NE(other, nullptr);
    EXPECT_NE(other, shared_mutex());
}

TEST(THR_MUTEX_TEST, lets_one_thread_in_at_a_time)
{
    const int raised = raised_by_threads(
        [](int& counter)
        {
            thr_mutex_lock(shared_mutex());
            raise_in_two_steps(counter);
            thr_mutex_unlock(shared_mutex());
        });
    EXPECT_EQ(raised, all_raises);
}

TEST(THR_MUTEX_TEST, can_be_locked_again_by_its_owner)
{
    thr_mutex_lock(shared_mutex());
    thr_mutex_lock(shared_mutex());
    thr_mutex_lock(shared_mutex());
    thr_mutex_unlock(shared_mutex());
    thr_mutex_unlock(shared_mutex());
    thr_mutex_unlock(shared_mutex());

    // Free again: another thread gets it.
    std::thread(
        []
        {
            thr_mutex_lock(shared_mutex());
            thr_mutex_unlock(shared_mutex());
        })
        .join();
}

TEST(THR_MUTEX_TEST, stays_held_until_the_last_unlock)
{
    const int raised = raised_by_threads(
        [](int& counter)
        {
            thr_mutex_lock(shared_mutex());
            thr_mutex_lock(shared_mutex());
            thr_mutex_unlock(shared_mutex());
            raise_in_two_steps(counter);
            thr_mutex_unlock(shared_mutex());
        });
    EXPECT_EQ(raised, all_raises);
}
}
