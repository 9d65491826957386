// What the tool says beside its data.
#include "tools/velmar-cfg/commands/diagnostics.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/pipes.h"

namespace
{
TEST(DIAGNOSTICS, are_written_whole_where_standard_error_does_not_block)
{
    const std::string text(300'000, 'x');
    const std::string got = written_without_blocking(
        [&text](int pipe)
        {
            dup2(pipe, STDERR_FILENO);
            complain(text);
            complain("and more");
        });
    EXPECT_TRUE(got == "velmar-cfg: " + text + "\nvelmar-cfg: and more\n") << got.size();
}

TEST(DIAGNOSTICS, that_nobody_takes_are_no_failure)
{
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0)
    {
        close(STDERR_FILENO);
        complain("nobody");
        complain(std::string(300'000, 'x'));
        _exit(complain_of({}) && !complain_of({"nobody", "hears"}) ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}
}
