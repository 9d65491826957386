// The store around fork, over the plain platform services. A child that hangs is ended by an alarm, which fails its
// test.
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <latch>
#include <new>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

#include "cfg_ini/cfg_cached_value.h"
#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_settings_sources.h"
#include "tests/platform/thread_conditions.h"
#include "tests/support/isolated_test.h"
#include "tests/support/threads.h"

using namespace zon_cfg;

namespace
{
// Runs once, before the calling thread's next allocation.
thread_local std::function<void()>* before_allocation = nullptr;
}

// NOLINTNEXTLINE(misc-new-delete-overloads): the other forms call these
void* operator new(std::size_t size)
{
    if (before_allocation != nullptr)
        (*std::exchange(before_allocation, nullptr))();
    if (void* const memory = std::malloc(size == 0 ? 1 : size); memory != nullptr)
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}

namespace
{
// Fork may take 100 milliseconds; a machine with other work on it gets some more.
constexpr std::chrono::milliseconds longest_fork{300};

// What a child exits with whose checks all hold; any other number is the line of the first that does not.
constexpr int all_well = 0;
#define CHECK_IN_CHILD(condition)                                                                                      \
    if (!(condition))                                                                                                  \
    return __LINE__ % 255 + 1

class STORE_FORK_TEST : public ISOLATED_TEST
{
protected:
    STORE_FORK_TEST()
    {
        write_file(temporary.path("cwd/velmar.ini"), "number = 5\ntext = some value that is not short\n");
        cfg_close_ini_file();
    }

    ~STORE_FORK_TEST() override
    {
        cfg_close_ini_file();
    }

    // What every child must be able to do: look up, store, load, empty, register.
    int use_everything()
    {
        CHECK_IN_CHILD(cfg_get_int_value("number", 0) == 5);
        CHECK_IN_CHILD(cfg_get_value("text") == "some value that is not short");
        CHECK_IN_CHILD(!cfg_get_settings_sources().applied.empty());
        CHECK_IN_CHILD(!cfg_is_on("never_set", false));
        cfg_set_value("number", "6");
        CHECK_IN_CHILD(cfg_get_int_value("NUMBER", 0) == 6);
        cfg_read_ini_file(temporary.path("cwd/velmar.ini"));
        CHECK_IN_CHILD(cfg_get_int_value("number", 0) == 5);
        const CFG_INI_CALLBACK callback("number");
        cfg_close_ini_file();
        CHECK_IN_CHILD(cfg_get_int_value("number", 0) == 5);
        return all_well;
    }

    // Forks with a bound on its time.
    int status_of_quick_fork(const std::function<int()>& action)
    {
        const auto start = std::chrono::steady_clock::now();
        const pid_t child = fork();
        if (child == 0)
        {
            alarm(seconds_until_hung / 2);
            _exit(action());
        }
        EXPECT_LT(std::chrono::steady_clock::now() - start, longest_fork);
        return status_of(child);
    }
};

TEST_F(STORE_FORK_TEST, AChildBesideAThreadThatLooksUpCanDoEverything)
{
    EXPECT_EQ(5, cfg_get_int_value("number", 0));
    int name = 0;
    run_while({[] { static_cast<void>(cfg_get_value("text")); },
               [&name] { static_cast<void>(cfg_is_on("new_" + std::to_string(++name % 5000), false)); }},
              [this]
              {
                  for (int round = 0; round < 60; ++round)
                      ASSERT_EQ(all_well, status_of_quick_fork([this] { return use_everything(); })) << round;
              });
}

// exit() empties the store, for which it takes the lock.
TEST_F(STORE_FORK_TEST, AChildBesideAThreadThatLooksUpCanExit)
{
    EXPECT_EQ(5, cfg_get_int_value("number", 0));
    // A number: what the other thread has allocated itself would be a leak in the child, which lacks that thread.
    run_while({[] { static_cast<void>(cfg_get_int_value("number", 0)); }},
              []
              {
                  for (int round = 0; round < 60; ++round)
                  {
                      const pid_t child = fork();
                      if (child == 0)
                      {
                          alarm(seconds_until_hung / 2);
                          std::exit(all_well);
                      }
                      ASSERT_EQ(all_well, status_of(child)) << round;
                  }
              });
}

TEST_F(STORE_FORK_TEST, ThreadsMayForkAtOnce)
{
    EXPECT_EQ(5, cfg_get_int_value("number", 0));
    std::atomic<int> failures = 0;
    run_together(4,
                 [&](int)
                 {
                     for (int round = 0; round < 10; ++round)
                     {
                         static_cast<void>(cfg_get_value("text"));
                         failures += status_of_child([this] { return use_everything(); }) != all_well;
                     }
                 });
    EXPECT_EQ(0, failures);
}

// The child of a fork within a notification goes on in that notification, and holds the lock as its parent does.
class FORKING : public CFG_INI_CALLBACK
{
public:
    FORKING() : CFG_INI_CALLBACK("forks") {}
    void refresh() override
    {
        if (child == -1)
            child = fork();
        if (child == 0)
            number_in_child = cfg_get_int_value("number", 0);
    }

    pid_t child = -1;
    int number_in_child = 0;
};

TEST_F(STORE_FORK_TEST, AChildForkedInANotificationOwnsTheLock)
{
    FORKING callback;
    cfg_set_value("forks", "1");
    if (callback.child == 0)
    {
        alarm(seconds_until_hung / 2);
        const auto goes_on = [&]
        {
            CHECK_IN_CHILD(callback.number_in_child == 5);
            CHECK_IN_CHILD(cfg_get_int_value("forks", 0) == 1);
            return use_everything();
        };
        _exit(goes_on());
    }
    EXPECT_EQ(all_well, status_of(callback.child));
    EXPECT_EQ(1, cfg_get_int_value("forks", 0));
}

// Both go on with the load, of a file that takes several reads; neither takes lines from the other.
TEST_F(STORE_FORK_TEST, AChildForkedDuringALoadReadsTheWholeFileAsItsParentDoes)
{
    constexpr int lines = 10'000;
    std::string text = "forks = 1\n";
    for (int i = 0; i < lines; ++i)
        text += "variable_" + std::to_string(i) + " = 1\n";
    write_file(temporary.path("long.ini"), text);
    const auto missing_lines = []
    {
        int missing = 0;
        for (int i = 0; i < lines; ++i)
            missing += cfg_is_on("variable_" + std::to_string(i), false) ? 0 : 1;
        return missing;
    };

    FORKING callback;
    cfg_read_ini_file(temporary.path("long.ini"));
    if (callback.child == 0)
        _exit(missing_lines() == 0 ? all_well : 1);
    EXPECT_EQ(all_well, status_of(callback.child));
    EXPECT_EQ(0, missing_lines());
}

class NOTIFIED : public CFG_INI_CALLBACK
{
public:
    explicit NOTIFIED(const char* variable) : CFG_INI_CALLBACK(variable) {}
    void refresh() override
    {
        ++refreshes;
    }
    void reset_to_default() override
    {
        ++resets;
    }
    std::atomic<int> refreshes = 0;
    std::atomic<int> resets = 0;
};

// A thread that holds the lock for as long as this object lives: it loads from a pipe to which nobody has written yet.
class LOADING_FROM_PIPE
{
public:
    explicit LOADING_FROM_PIPE(std::string path) : pipe(std::move(path))
    {
        EXPECT_EQ(0, mkfifo(pipe.c_str(), 0600));
        std::atomic<pid_t> id = 0;
        thread = std::thread(
            [this, &id]
            {
                id = gettid();
                cfg_read_ini_file(pipe);
            });
        while (id == 0)
            std::this_thread::yield();
        wait_until_it_sleeps(id); // in open, after it emptied the store
        while (!store_exists())
            std::this_thread::yield();
        wait_until_it_sleeps(id);
    }
    ~LOADING_FROM_PIPE()
    {
        write_file(pipe, "from_pipe = 1\n");
        thread.join();
    }
    LOADING_FROM_PIPE(const LOADING_FROM_PIPE&) = delete;
    LOADING_FROM_PIPE& operator=(const LOADING_FROM_PIPE&) = delete;

private:
    const std::string pipe;
    std::thread thread;
};

TEST_F(STORE_FORK_TEST, AChildOfAForkDuringALongLoadStartsWithoutAStore)
{
    NOTIFIED callback("number");
    cfg_set_value("only_in_the_parent", "1");
    {
        const LOADING_FROM_PIPE loading(temporary.path("pipe.ini"));
        const int refreshes_before = callback.refreshes;
        const int resets_before = callback.resets;
        EXPECT_EQ(all_well, status_of_quick_fork(
                                [&]
                                {
                                    CHECK_IN_CHILD(!store_exists());
                                    CHECK_IN_CHILD(callback.resets == resets_before);
                                    CHECK_IN_CHILD(cfg_get_int_value("number", 0) == 5);
                                    CHECK_IN_CHILD(callback.refreshes == refreshes_before + 1);
                                    CHECK_IN_CHILD(callback.resets == resets_before + 1);
                                    CHECK_IN_CHILD(!cfg_is_on("only_in_the_parent", false));
                                    CHECK_IN_CHILD(use_everything() == all_well);
                                    // And its own child in turn, which finds the lock free and the store whole.
                                    cfg_set_value("number", "7");
                                    CHECK_IN_CHILD(status_of_child([] { return cfg_get_int_value("number", 0); }) == 7);
                                    return all_well;
                                }));
    }
    EXPECT_EQ(1, cfg_get_int_value("from_pipe", 0)) << "the parent's load goes on";
}

class THROWING : public CFG_INI_CALLBACK
{
public:
    THROWING() : CFG_INI_CALLBACK("throws") {}
    void refresh() override
    {
        throw std::runtime_error("a host object failed");
    }
};

// In a process of its own: the lock stays held there.
TEST_F(STORE_FORK_TEST, AChildIsFreeOfALockThatACallbackLeftHeld)
{
    EXPECT_EQ(all_well, status_of_child(
                            [this]() -> int
                            {
                                // None of this may be seen in the child, which loads anew.
                                cfg_set_value("number", "50");
                                cfg_set_value("only_in_the_parent", "1");
                                cfg_set_value("debug_msg_level", "9");
                                const CFG_CACHED_VALUE<bool> cached("only_in_the_parent", false);
                                CHECK_IN_CHILD(cached.get());
                                CHECK_IN_CHILD(cfg_get_int_value("number", 0) == 50);
                                int level = 0;
                                cfg_check_debug_ini_values(nullptr, nullptr, &level);
                                CHECK_IN_CHILD(level == 9);
                                const THROWING callback;
                                std::thread(
                                    []
                                    {
                                        try
                                        {
                                            cfg_set_value("throws", "1");
                                        }
                                        catch (const std::runtime_error&)
                                        {
                                        }
                                    })
                                    .join();
                                const int status = status_of_quick_fork(
                                    [this, &level, &cached]
                                    {
                                        cfg_check_debug_ini_values(nullptr, nullptr, &level);
                                        CHECK_IN_CHILD(level == 2);
                                        CHECK_IN_CHILD(!cached.get());
                                        return use_everything();
                                    });
                                _exit(status); // the callback's destructor would wait for the lock
                            }));
}

// The thread that registers is stopped in the middle of it; what it was changing is not used in the child.
TEST_F(STORE_FORK_TEST, AChildOfAForkDuringARegistrationStartsWithAnEmptyRegistry)
{
    NOTIFIED registered("number");
    EXPECT_EQ(5, cfg_get_int_value("number", 0));
    const int refreshes_before = registered.refreshes;
    std::latch in_the_middle(1);
    std::latch go_on(1);
    std::function<void()> stop = [&]
    {
        in_the_middle.count_down();
        go_on.wait();
    };
    std::thread registering(
        [&]
        {
            before_allocation = &stop;
            const CFG_INI_CALLBACK callback("a name that is too long for a string without memory of its own");
        });
    in_the_middle.wait();
    EXPECT_EQ(all_well, status_of_quick_fork(
                            [&]
                            {
                                CHECK_IN_CHILD(use_everything() == all_well);
                                CHECK_IN_CHILD(registered.refreshes == refreshes_before);
                                NOTIFIED later("number");
                                cfg_set_value("number", "8");
                                CHECK_IN_CHILD(later.refreshes == 1);
                                return all_well;
                            }));
    go_on.count_down();
    registering.join();
    cfg_set_value("number", "9");
    EXPECT_EQ(refreshes_before + 1, registered.refreshes);
}
}
