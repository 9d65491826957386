// The base of every test that touches files, the environment or the platform services.
#ifndef TESTS_SUPPORT_ISOLATED_TEST_H
#define TESTS_SUPPORT_ISOLATED_TEST_H

#include <gtest/gtest.h>
#include <memory>

#include "tests/support/scoped_process_state.h"
#include "tests/support/temporary_directory.h"

// Gives each test a world without any settings: an empty temporary directory whose "cwd" is the current directory, and
// none of the environment variables that the library knows. TMPDIR names the temporary directory, so that what a child
// process leaves behind goes with it.
class ISOLATED_TEST : public testing::Test
{
protected:
    ISOLATED_TEST();

    TEMPORARY_DIRECTORY temporary;
    SCOPED_ENVIRONMENT environment;

private:
    std::unique_ptr<SCOPED_CURRENT_DIRECTORY> current_directory;
};

// Runs a statement in a child process that starts this test afresh, so that nothing has used the library yet. The test
// fails if an expectation in the statement fails, if the child leaks memory, or if it ends before the end of the
// statement.
#define EXPECT_IN_FRESH_PROCESS(...)                                                                                   \
    do                                                                                                                 \
    {                                                                                                                  \
        GTEST_FLAG_SET(death_test_style, "threadsafe");                                                                \
        EXPECT_EXIT(                                                                                                   \
            {                                                                                                          \
                __VA_ARGS__;                                                                                           \
                std::exit(testing::Test::HasFailure() ? 1 : 0);                                                        \
            },                                                                                                         \
            testing::ExitedWithCode(0), "");                                                                           \
    } while (false)

#endif
