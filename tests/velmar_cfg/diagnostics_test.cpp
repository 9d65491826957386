// What the tool says beside its data.
#include "tools/velmar-cfg/commands/diagnostics.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
TEST(DIAGNOSTICS, are_written_whole_where_standard_error_does_not_block)
{
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_NONBLOCK | O_CLOEXEC), 0);
    const std::string text(300'000, 'x');
    const pid_t writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0)
    {
        close(ends[0]);
        dup2(ends[1], STDERR_FILENO);
        complain(text);
        complain("and more");
        _exit(0);
    }
    close(ends[1]);
    ASSERT_EQ(fcntl(ends[0], F_SETFL, 0), 0); // the reader may wait
    std::string got;
    char buffer[4096];
    for (ssize_t count = 0; (count = read(ends[0], buffer, sizeof buffer)) > 0;)
        got.append(buffer, static_cast<std::size_t>(count));
    close(ends[0]);
    waitpid(writer, nullptr, 0);
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
