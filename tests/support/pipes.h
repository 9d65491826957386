// What goes through pipes.
#ifndef TESTS_SUPPORT_PIPES_H
#define TESTS_SUPPORT_PIPES_H

#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

// All that can be read until the end, as one text. Closes the descriptor.
inline std::string read_to_end(int descriptor)
{
    std::string text;
    char buffer[4096];
    for (ssize_t got = 0; (got = read(descriptor, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(got));
    close(descriptor);
    return text;
}

// Runs work(descriptor) in a child process. The descriptor is the writing end of a pipe that does not block. Returns
// what is written to it.
inline std::string written_without_blocking(const std::function<void(int)>& work)
{
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_NONBLOCK | O_CLOEXEC), 0);
    const pid_t writer = fork();
    EXPECT_GE(writer, 0);
    if (writer == 0)
    {
        close(ends[0]);
        work(ends[1]);
        _exit(0);
    }
    close(ends[1]);
    EXPECT_EQ(fcntl(ends[0], F_SETFL, 0), 0); // the reader may wait
    std::string text = read_to_end(ends[0]);
    EXPECT_EQ(waitpid(writer, nullptr, 0), writer);
    return text;
}

#endif
