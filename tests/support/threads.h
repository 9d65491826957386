// Actions run on several threads at a time.
#ifndef TESTS_SUPPORT_THREADS_H
#define TESTS_SUPPORT_THREADS_H

#include <atomic>
#include <cstddef>
#include <functional>
#include <latch>
#include <thread>
#include <vector>

// Runs action(0) to action(count - 1), each on a thread of its own, all let go at once.
inline void run_together(int count, const std::function<void(int)>& action)
{
    std::latch start(count);
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
    {
        threads.emplace_back(
            [&, i]
            {
                start.arrive_and_wait();
                action(i);
            });
    }
    for (std::thread& thread : threads)
        thread.join();
}

// Runs `action` over and over on each of some threads while `meanwhile` runs on this one.
inline void run_while(const std::vector<std::function<void()>>& actions, const std::function<void()>& meanwhile)
{
    std::atomic<bool> done = false;
    std::vector<std::thread> threads;
    std::latch started(static_cast<std::ptrdiff_t>(actions.size()));
    for (const auto& action : actions)
    {
        threads.emplace_back(
            [&]
            {
                action();
                started.count_down();
                while (!done.load(std::memory_order_relaxed))
                    action();
            });
    }
    started.wait();
    meanwhile();
    done.store(true, std::memory_order_relaxed);
    for (std::thread& thread : threads)
        thread.join();
}

#endif
