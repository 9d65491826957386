// What becomes of a process one of whose callbacks threw: its lock is held for good by the thread that stored. Over the
// plain platform services; each case is a process of its own.
#include <csignal>
#include <cstdlib>
#include <functional>
#include <latch>
#include <thread>
#include <unistd.h>

#include "cfg_ini/cfg_ini.h"
#include "tests/support/isolated_test.h"

namespace
{
struct HOST_FAILURE
{
};

class THROWER : public CFG_INI_CALLBACK
{
public:
    using CFG_INI_CALLBACK::CFG_INI_CALLBACK;
    void refresh() override
    {
        throw HOST_FAILURE();
    }
};

void throw_out_of_a_notification()
{
    static const THROWER* const thrower = new THROWER("x"); // as long as the process
    EXPECT_NE(thrower, nullptr);
    EXPECT_THROW(cfg_set_value("x", "1"), HOST_FAILURE);
}

void fail_to_register()
{
    EXPECT_THROW(const CFG_INI_CALLBACK callback(nullptr), std::logic_error);
}

// What leaves the lock held.
class THROWING_CALLBACKS_TEST : public ISOLATED_TEST, public testing::WithParamInterface<void (*)()>
{
protected:
    THROWING_CALLBACKS_TEST()
    {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
    }

    // The signal ends a process that hangs.
    static void limit_to_seconds(unsigned int seconds)
    {
        ::alarm(seconds);
    }

    static constexpr unsigned int far_too_long = 60;
    static constexpr unsigned int long_enough_to_see_a_hang = 1;

    // The calling thread throws, and another one then runs the action; this one waits for that to end the process.
    static void throw_and_let_another_thread(const std::function<void()>& action, unsigned int seconds)
    {
        GetParam()();
        limit_to_seconds(seconds);
        std::thread(action).join();
    }

    // Another thread throws and lives on; the calling one then runs the action.
    static void let_another_thread_throw(const std::function<void()>& action, unsigned int seconds)
    {
        std::latch thrown(1);
        std::latch never(1);
        std::thread other(
            [&]
            {
                GetParam()();
                thrown.count_down();
                never.wait();
            });
        thrown.wait();
        limit_to_seconds(seconds);
        action();
        std::_Exit(99);
    }
};

TEST_P(THROWING_CALLBACKS_TEST, the_thread_that_threw_can_go_on)
{
    EXPECT_IN_FRESH_PROCESS(limit_to_seconds(far_too_long); GetParam()(); cfg_set_value("y", "1");
                            EXPECT_EQ(cfg_get_value("y"), "1"); cfg_read_ini_file(""));
}

TEST_P(THROWING_CALLBACKS_TEST, the_thread_that_threw_can_exit)
{
    EXPECT_EXIT((limit_to_seconds(far_too_long), GetParam()(), std::exit(7)), testing::ExitedWithCode(7), "");
}

TEST_P(THROWING_CALLBACKS_TEST, a_thread_other_than_the_first_that_threw_can_exit)
{
    EXPECT_EXIT((limit_to_seconds(far_too_long), std::thread(
                                                     []
                                                     {
                                                         GetParam()();
                                                         std::exit(7);
                                                     })
                                                     .join()),
                testing::ExitedWithCode(7), "");
}

TEST_P(THROWING_CALLBACKS_TEST, every_thread_can_end_the_process_without_the_library)
{
    struct
    {
        const char* name;
        void (*end)();
        std::function<bool(int)> ended;
    } const table[] = {
        {"_exit", [] { ::_exit(7); }, testing::ExitedWithCode(7)},
        {"quick_exit", [] { std::quick_exit(7); }, testing::ExitedWithCode(7)},
        {"abort", [] { std::abort(); }, testing::KilledBySignal(SIGABRT)},
    };
    for (const auto& row : table)
    {
        SCOPED_TRACE(row.name);
        EXPECT_EXIT(throw_and_let_another_thread(row.end, far_too_long), row.ended, "");
        EXPECT_EXIT(let_another_thread_throw(row.end, far_too_long), row.ended, "");
    }
}

TEST_P(THROWING_CALLBACKS_TEST, any_other_thread_waits_in_exit)
{
    const auto leave = [] { std::exit(7); };
    EXPECT_EXIT(throw_and_let_another_thread(leave, long_enough_to_see_a_hang), testing::KilledBySignal(SIGALRM), "");
    EXPECT_EXIT(let_another_thread_throw(leave, long_enough_to_see_a_hang), testing::KilledBySignal(SIGALRM), "");
}

TEST_P(THROWING_CALLBACKS_TEST, any_other_thread_waits_at_its_next_use)
{
    const auto use = [] { cfg_get_value("y"); };
    EXPECT_EXIT(let_another_thread_throw(use, long_enough_to_see_a_hang), testing::KilledBySignal(SIGALRM), "");
}

INSTANTIATE_TEST_SUITE_P(, THROWING_CALLBACKS_TEST, testing::Values(throw_out_of_a_notification, fail_to_register),
                         [](const testing::TestParamInfo<void (*)()>& row)
                         { return row.index == 0 ? "out_of_a_notification" : "out_of_a_registration"; });
}
