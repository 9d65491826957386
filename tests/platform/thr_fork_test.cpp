// The mutex around fork. A child that hangs is ended by an alarm, which fails its test; so is a test that hangs.
#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <latch>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "platform/thr/thr.h"
#include "tests/platform/thread_conditions.h"
#include "tests/support/isolated_test.h"
#include "tests/support/threads.h"

namespace
{
// Fork may take 100 milliseconds; a machine with other work on it gets some more.
constexpr std::chrono::milliseconds longest_fork{300};

void use(THR_MUTEX* mutex)
{
    thr_mutex_lock(mutex);
    thr_mutex_lock(mutex);
    thr_mutex_unlock(mutex);
    thr_mutex_unlock(mutex);
}

// For a mutex that is free: another thread locks it. Were it held, an alarm would end the process. Not in a child that
// cannot start threads.
void use_on_another_thread(THR_MUTEX* mutex)
{
    std::thread(use, mutex).join();
}

// For a mutex that is held: whether another thread that locks it has to sleep first. It goes on waiting. The answer may
// be yes for a free mutex too: an emulator lets threads sleep in locks of its own. Not in a child that cannot start
// threads.
bool others_must_wait(THR_MUTEX* mutex)
{
    struct OTHER
    {
        std::atomic<pid_t> id = 0;
        std::atomic<bool> entered = false;
    };
    const auto other = std::make_shared<OTHER>();
    std::thread(
        [other, mutex]
        {
            other->id = gettid();
            thr_mutex_lock(mutex);
            other->entered = true;
            thr_mutex_unlock(mutex);
        })
        .detach();
    while (other->id == 0 || (!other->entered && !sleeps(other->id)))
        std::this_thread::yield();
    return !other->entered;
}

// Another thread that holds mutexes until told to release them.
class HOLDER
{
public:
    explicit HOLDER(std::vector<THR_MUTEX*> held) : mutexes(std::move(held))
    {
        thread = std::thread(
            [this]
            {
                for (THR_MUTEX* const mutex : mutexes)
                {
                    thr_mutex_lock(mutex);
                    thr_mutex_lock(mutex);
                }
                holding.count_down();
                enough.wait();
                for (THR_MUTEX* const mutex : mutexes)
                {
                    thr_mutex_unlock(mutex);
                    thr_mutex_unlock(mutex);
                }
            });
        holding.wait();
    }
    ~HOLDER()
    {
        release();
        thread.join();
    }
    HOLDER(const HOLDER&) = delete;
    HOLDER& operator=(const HOLDER&) = delete;

    void release()
    {
        if (!told)
            enough.count_down();
        told = true;
    }

private:
    const std::vector<THR_MUTEX*> mutexes;
    std::latch holding{1};
    std::latch enough{1};
    std::thread thread;
    bool told = false;
};

constinit std::atomic<int> losses = 0;
void count_loss()
{
    ++losses;
}

class THR_FORK_TEST : public testing::Test
{
protected:
    THR_FORK_TEST()
    {
        alarm(seconds_until_hung);
        losses = 0;
    }
    ~THR_FORK_TEST() override
    {
        alarm(0);
    }
    THR_FORK_TEST(const THR_FORK_TEST&) = delete;
    THR_FORK_TEST& operator=(const THR_FORK_TEST&) = delete;

    THR_MUTEX* const mutex = thr_mutex_create();
};

TEST_F(THR_FORK_TEST, a_child_can_lock_beside_a_thread_that_locks_all_the_time)
{
    std::atomic<long> rounds = 0;
    run_while({[&]
               {
                   use(mutex);
                   ++rounds;
               }},
              [&]
              {
                  for (int i = 0; i < 200; ++i)
                  {
                      ASSERT_EQ(status_of_child([&] { return use(mutex), 7; }), 7) << i;
                      const long before = rounds;
                      while (rounds == before)
                          std::this_thread::yield(); // the parent's thread goes on
                  }
              });
}

TEST_F(THR_FORK_TEST, a_child_holds_what_the_forking_thread_held_as_often)
{
    for (const int holds : {1, 3})
    {
        SCOPED_TRACE(holds);
        for (int i = 0; i < holds; ++i)
            thr_mutex_lock(mutex);
        EXPECT_EQ(status_of_child(
                      [&]
                      {
                          use(mutex);
                          for (int i = 1; i < holds; ++i)
                              thr_mutex_unlock(mutex);
                          if (!children_can_start_threads)
                              return 7;
                          // Of two threads that try, one before and one after the last unlocking, the first must wait.
                          const bool too_early = status_of_child([&] { return others_must_wait(mutex) ? 2 : 1; }) != 2;
                          thr_mutex_unlock(mutex);
                          use_on_another_thread(mutex);
                          return too_early ? 8 : 7;
                      }),
                  7);
        for (int i = 0; i < holds; ++i)
            thr_mutex_unlock(mutex);
        use_on_another_thread(mutex);
    }
}

// On a busy machine the holder may come to release the mutex too late, but not each time.
TEST_F(THR_FORK_TEST, fork_waits_for_a_thread_that_holds_the_mutex)
{
    thr_mutex_call_if_lost(mutex, count_loss);
    bool was_waited_for = false;
    for (int tries = 0; tries < 30 && !was_waited_for; ++tries)
    {
        HOLDER holder({mutex});
        const pid_t forking = gettid();
        std::thread releasing(
            [&]
            {
                wait_until_it_sleeps(forking);
                holder.release();
            });
        const int losses_in_child = status_of_child([&] { return use(mutex), losses.load(); });
        releasing.join();
        EXPECT_LE(losses_in_child, 1);
        was_waited_for = losses_in_child == 0;
    }
    EXPECT_TRUE(was_waited_for);
}

TEST_F(THR_FORK_TEST, a_mutex_held_for_too_long_is_free_in_the_child_and_lost)
{
    thr_mutex_call_if_lost(mutex, count_loss);
    HOLDER holder({mutex});
    for (int i = 0; i < 2; ++i)
    {
        const auto start = std::chrono::steady_clock::now();
        const pid_t child = fork();
        if (child == 0)
        {
            alarm(seconds_until_hung / 2);
            const int lost_before_fork_returned = losses;
            use(mutex);
            if (children_can_start_threads)
                use_on_another_thread(mutex);
            leave(lost_before_fork_returned == 1 && losses == 1 ? 7 : 8);
        }
        EXPECT_LT(std::chrono::steady_clock::now() - start, longest_fork);
        EXPECT_EQ(status_of(child), 7);
        EXPECT_EQ(losses, 0) << "told in the parent";
    }
    holder.release();
    use(mutex); // the parent's is the holder's until then
}

TEST_F(THR_FORK_TEST, a_child_forks_in_its_turn_after_a_loss)
{
    thr_mutex_call_if_lost(mutex, count_loss);
    HOLDER holder({mutex});
    EXPECT_EQ(status_of_child(
                  [&]
                  {
                      const auto start = std::chrono::steady_clock::now();
                      const int status = status_of_child([&] { return use(mutex), losses == 1 ? 7 : 8; });
                      return std::chrono::steady_clock::now() - start < longest_fork ? status : 9;
                  }),
              7);
}

TEST_F(THR_FORK_TEST, a_loss_is_told_to_the_last_function_registered_if_any)
{
    HOLDER holder({mutex});
    thr_mutex_call_if_lost(mutex, [] { _exit(1); });
    thr_mutex_call_if_lost(mutex, count_loss);
    EXPECT_EQ(status_of_child([] { return losses.load(); }), 1);
    thr_mutex_call_if_lost(mutex, nullptr);
    EXPECT_EQ(status_of_child([] { return losses.load(); }), 0);
}

TEST_F(THR_FORK_TEST, a_mutex_of_another_service_is_left_alone)
{
    std::array<unsigned char, 256> foreign{};
    thr_mutex_call_if_lost(reinterpret_cast<THR_MUTEX*>(foreign.data()), count_loss);
    EXPECT_EQ(foreign, decltype(foreign){});
}

TEST_F(THR_FORK_TEST, several_mutexes_are_waited_for_together_and_lost_each_for_itself)
{
    std::vector<THR_MUTEX*> held_by_another;
    for (int i = 0; i < 6; ++i)
    {
        held_by_another.push_back(thr_mutex_create());
        thr_mutex_call_if_lost(held_by_another.back(), count_loss);
    }
    thr_mutex_call_if_lost(mutex, count_loss);
    THR_MUTEX* const free_one = thr_mutex_create();
    thr_mutex_call_if_lost(free_one, count_loss);

    HOLDER holder(held_by_another);
    thr_mutex_lock(mutex);
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0)
    {
        alarm(seconds_until_hung / 2);
        for (THR_MUTEX* const each : held_by_another)
            use(each);
        use(free_one);
        use(mutex);
        thr_mutex_unlock(mutex);
        leave(losses);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, longest_fork);
    EXPECT_EQ(status_of(child), 6);
    thr_mutex_unlock(mutex);
    use_on_another_thread(mutex);
    use_on_another_thread(free_one);
}

TEST_F(THR_FORK_TEST, several_threads_fork_at_once)
{
    run_together(4,
                 [&](int)
                 {
                     for (int i = 0; i < 25; ++i)
                     {
                         if (i % 2 == 0)
                             thr_mutex_lock(mutex);
                         const int status = status_of_child([&] { return use(mutex), 7; });
                         if (i % 2 == 0)
                             thr_mutex_unlock(mutex);
                         ASSERT_EQ(status, 7) << i;
                         use(mutex);
                     }
                 });
}

TEST_F(THR_FORK_TEST, mutexes_are_made_during_forks)
{
    std::atomic<int> to_be_made = 0; // each stays for ever, so that they must not become too many
    run_while({[&]
               {
                   if (to_be_made > 0)
                   {
                       use(thr_mutex_create());
                       --to_be_made;
                   }
               }},
              [&]
              {
                  for (int i = 0; i < 100; ++i)
                  {
                      to_be_made = 10;
                      ASSERT_EQ(
                          status_of_child([&] { return use(children_can_allocate ? thr_mutex_create() : mutex), 7; }),
                          7)
                          << i;
                      while (to_be_made > 0)
                          std::this_thread::yield();
                  }
              });
}

TEST_F(THR_FORK_TEST, threads_that_sleep_are_woken_in_the_parent_and_not_waited_for_in_the_child)
{
    thr_mutex_lock(mutex);
    std::array<std::atomic<pid_t>, 3> sleepers{};
    std::vector<std::thread> threads;
    for (std::atomic<pid_t>& self : sleepers)
    {
        threads.emplace_back(
            [&]
            {
                self = gettid();
                use(mutex);
            });
    }
    for (const std::atomic<pid_t>& thread : sleepers)
    {
        while (thread == 0)
            std::this_thread::yield();
        wait_until_it_sleeps(thread);
    }
    EXPECT_EQ(status_of_child(
                  [&]
                  {
                      thr_mutex_unlock(mutex);
                      return use(mutex), 7;
                  }),
              7);
    thr_mutex_unlock(mutex);
    for (std::thread& thread : threads)
        thread.join();
}

// Threads that sleep because the forking thread has taken the mutex for the fork's time alone.
TEST_F(THR_FORK_TEST, threads_that_come_during_the_fork_are_let_in_after_it)
{
    HOLDER holder({mutex});
    THR_MUTEX* const newer = thr_mutex_create(); // taken before the one that is waited for
    const pid_t forking = gettid();
    std::thread coming(
        [&]
        {
            wait_until_it_sleeps(forking);
            use(newer);
        });
    EXPECT_EQ(status_of_child([&] { return use(newer), use(mutex), 7; }), 7);
    coming.join();
}

TEST_F(THR_FORK_TEST, a_thread_of_the_child_is_not_taken_for_one_of_the_parent)
{
    if (!children_can_start_threads)
        GTEST_SKIP() << "the thread sanitizer ends a child that starts a thread";
    HOLDER holder({mutex});
    thr_mutex_lock(thr_mutex_create()); // left held: the child's main thread is its owner
    THR_MUTEX* const own = thr_mutex_create();
    thr_mutex_lock(own);
    EXPECT_EQ(status_of_child(
                  [&]
                  {
                      thr_mutex_lock(mutex);
                      return others_must_wait(mutex) && others_must_wait(own) ? 7 : 8;
                  }),
              7);
    thr_mutex_unlock(own);
}

void fail_to_fork()
{
    alarm(seconds_until_hung);
    THR_MUTEX* const mutex = thr_mutex_create();
    std::latch tried(1);
    std::thread other(
        [&]
        {
            tried.wait();
            use(mutex);
        });
    have_refused(SYS_clone);
    EXPECT_EQ(fork(), -1);
    tried.count_down();
    other.join();
    _exit(testing::Test::HasFailure() ? 1 : 0); // a leak checker could not start its thread any more
}

TEST_F(THR_FORK_TEST, a_fork_that_fails_leaves_nothing_held)
{
    EXPECT_IN_FRESH_PROCESS(fail_to_fork());
}

// --- Beside the fork handlers of others, registered before the service was loaded ---

// They run after the service's own handler before a fork, and before its own in the child.
using HANDLER = void (*)();
constinit HANDLER early_handler_before_fork = nullptr;
constinit HANDLER early_handler_in_child = nullptr;

void register_early_handlers(int /*argc*/, char** /*argv*/, char** /*environment*/)
{
    const auto before_fork = []
    {
        if (early_handler_before_fork != nullptr)
            early_handler_before_fork();
    };
    const auto in_child = []
    {
        if (early_handler_in_child != nullptr)
            early_handler_in_child();
    };
    if (pthread_atfork(before_fork, nullptr, in_child) != 0)
        _exit(1);
}

// Called before anything of the shared libraries is.
[[gnu::section(".preinit_array"), gnu::used]] void (*const before_all_libraries)(int, char**,
                                                                                 char**) = register_early_handlers;

THR_MUTEX* mutex_of_handlers = nullptr;
int losses_seen_by_the_child_handler = -1;

// Before the service's own handler in the child.
void use_and_see_losses()
{
    alarm(seconds_until_hung / 2);
    use(mutex_of_handlers);
    losses_seen_by_the_child_handler = losses;
}

void lose_beside_an_earlier_handler()
{
    alarm(seconds_until_hung);
    early_handler_in_child = use_and_see_losses;
    mutex_of_handlers = thr_mutex_create();
    thr_mutex_call_if_lost(mutex_of_handlers, count_loss);
    HOLDER holder({mutex_of_handlers});
    EXPECT_EQ(status_of_child(
                  []
                  {
                      use(mutex_of_handlers);
                      return losses_seen_by_the_child_handler == 1 && losses == 1 ? 7 : 8;
                  }),
              7);
}

TEST(THR_FORK_HANDLERS_TEST, a_handler_of_others_can_lock_in_the_child_what_was_lost)
{
    EXPECT_IN_FRESH_PROCESS(lose_beside_an_earlier_handler());
}

bool nested = false;
int status_of_nested_child = -1;

bool is_held_for_the_outer_fork()
{
    return !children_can_start_threads || others_must_wait(mutex_of_handlers);
}

// After the service's own handler before the fork.
void fork_within()
{
    if (nested)
        return;
    nested = true;
    status_of_nested_child =
        status_of_child([] { return use(mutex_of_handlers), losses == 0 && is_held_for_the_outer_fork() ? 7 : 8; });
    EXPECT_TRUE(is_held_for_the_outer_fork());
}

void fork_within_a_fork(bool held)
{
    alarm(seconds_until_hung);
    early_handler_before_fork = fork_within;
    mutex_of_handlers = thr_mutex_create();
    thr_mutex_call_if_lost(mutex_of_handlers, count_loss);
    if (held)
        thr_mutex_lock(mutex_of_handlers);
    EXPECT_EQ(status_of_child([] { return use(mutex_of_handlers), losses == 0 ? 7 : 8; }), 7);
    EXPECT_EQ(status_of_nested_child, 7);
    if (held)
        thr_mutex_unlock(mutex_of_handlers);
    use_on_another_thread(mutex_of_handlers);
}

TEST(THR_FORK_HANDLERS_TEST, a_handler_of_others_can_fork)
{
    EXPECT_IN_FRESH_PROCESS(fork_within_a_fork(false));
    EXPECT_IN_FRESH_PROCESS(fork_within_a_fork(true));
}

// --- In the middle of a fork: what the handlers of others do between the service's own two ---

std::function<void()> in_the_middle = [] {};

void be_in_the_middle()
{
    in_the_middle();
}

void set_up_for_the_middle(const std::function<void()>& action)
{
    alarm(seconds_until_hung);
    early_handler_before_fork = be_in_the_middle;
    mutex_of_handlers = thr_mutex_create();
    in_the_middle = action;
}

void create_in_the_middle()
{
    std::thread creating;
    std::atomic<bool> created = false;
    bool created_in_the_middle = true;
    set_up_for_the_middle(
        [&]
        {
            std::atomic<pid_t> id = 0;
            creating = std::thread(
                [&]
                {
                    id = gettid();
                    use(thr_mutex_create());
                    created = true;
                });
            while (id == 0 || (!created && !sleeps(id)))
                std::this_thread::yield();
            created_in_the_middle = created;
        });
    EXPECT_EQ(status_of_child([] { return use(thr_mutex_create()), 7; }), 7);
    EXPECT_FALSE(created_in_the_middle);
    creating.join();
}

TEST(THR_FORK_HANDLERS_TEST, no_other_thread_makes_a_mutex_during_a_fork)
{
    EXPECT_IN_FRESH_PROCESS(create_in_the_middle());
}

void lock_in_the_middle()
{
    THR_MUTEX* locked = nullptr;
    set_up_for_the_middle(
        [&]
        {
            locked = thr_mutex_create();
            thr_mutex_lock(locked);
        });
    EXPECT_EQ(status_of_child(
                  [&]
                  {
                      use(locked);
                      return !children_can_start_threads || others_must_wait(locked) ? 7 : 8;
                  }),
              7);
    EXPECT_TRUE(others_must_wait(locked));
}

TEST(THR_FORK_HANDLERS_TEST, what_a_handler_locks_stays_locked)
{
    EXPECT_IN_FRESH_PROCESS(lock_in_the_middle());
}

// Another thread's fork holds every mutex, and that for adding to the mutexes.
void fork_beside_a_fork_that_hangs()
{
    const pid_t self = gettid();
    std::latch other_is_forking(1);
    std::latch enough(1);
    set_up_for_the_middle(
        [&]
        {
            if (gettid() == self)
                return;
            other_is_forking.count_down();
            enough.wait();
        });
    thr_mutex_call_if_lost(mutex_of_handlers, count_loss);
    std::thread other([]
                      { EXPECT_EQ(status_of_child([] { return use(mutex_of_handlers), losses == 0 ? 7 : 8; }), 7); });
    other_is_forking.wait();
    EXPECT_EQ(status_of_child(
                  []
                  {
                      use(thr_mutex_create());
                      use(mutex_of_handlers);
                      return losses == 1 ? 7 : 8;
                  }),
              7);
    enough.count_down();
    other.join();
    use_on_another_thread(mutex_of_handlers);
}

TEST(THR_FORK_HANDLERS_TEST, a_fork_of_another_thread_may_hang)
{
    EXPECT_IN_FRESH_PROCESS(fork_beside_a_fork_that_hangs());
}

// --- Beside the fork handlers of a host, registered once the service is loaded ---

std::mutex hosts_own;

void lock_the_hosts_own()
{
    hosts_own.lock();
}

void unlock_the_hosts_own()
{
    hosts_own.unlock();
}

// Another thread holds the host's own mutex, which the host's handler waits for, and locks before it releases that.
void fork_beside_a_thread_that_locks_under_the_hosts_own_mutex()
{
    alarm(seconds_until_hung);
    ASSERT_EQ(pthread_atfork(lock_the_hosts_own, unlock_the_hosts_own, unlock_the_hosts_own), 0);
    THR_MUTEX* const mutex = thr_mutex_create();
    thr_mutex_call_if_lost(mutex, count_loss);
    const pid_t forking = gettid();
    std::latch holding(1);
    std::thread other(
        [&]
        {
            const std::lock_guard lock(hosts_own);
            holding.count_down();
            wait_until_it_sleeps(forking);
            use(mutex);
        });
    holding.wait();
    EXPECT_EQ(status_of_child([&] { return use(mutex), losses == 0 ? 7 : 8; }), 7);
    other.join();
}

TEST(THR_FORK_HANDLERS_TEST, a_thread_may_lock_under_a_mutex_that_the_hosts_handler_waits_for)
{
    EXPECT_IN_FRESH_PROCESS(fork_beside_a_thread_that_locks_under_the_hosts_own_mutex());
}

// --- Handlers registered more than once ---

void make_the_first_mutexes_at_once()
{
    alarm(seconds_until_hung);
    std::array<THR_MUTEX*, 4> mutexes{};
    run_together(4, [&](int i) { mutexes.at(static_cast<std::size_t>(i)) = thr_mutex_create(); });
    for (THR_MUTEX* const mutex : mutexes)
        thr_mutex_call_if_lost(mutex, count_loss);
    thr_mutex_lock(mutexes[1]);
    {
        HOLDER holder({mutexes[0]});
        EXPECT_EQ(status_of_child(
                      [&]
                      {
                          for (THR_MUTEX* const mutex : mutexes)
                              use(mutex);
                          return losses == 1 ? 7 : 8;
                      }),
                  7);
    }
    thr_mutex_unlock(mutexes[1]);
    for (THR_MUTEX* const mutex : mutexes)
        use_on_another_thread(mutex);
}

TEST(THR_FORK_HANDLERS_TEST, the_first_mutexes_may_be_made_by_several_threads)
{
    for (int i = 0; i < 10; ++i)
        EXPECT_IN_FRESH_PROCESS(make_the_first_mutexes_at_once());
}
}
