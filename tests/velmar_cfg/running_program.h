// A program that runs beside the test, in a directory, with an environment and from an executable of its own.
#ifndef TESTS_VELMAR_CFG_RUNNING_PROGRAM_H
#define TESTS_VELMAR_CFG_RUNNING_PROGRAM_H

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "tests/support/temporary_directory.h"

// An executable of that path that waits to be ended: a copy of /bin/sleep.
inline std::string make_waiting_executable(const std::string& path)
{
    unlink(path.c_str()); // one that runs cannot be written
    write_file(path, read_file("/bin/sleep"));
    EXPECT_EQ(chmod(path.c_str(), 0755), 0);
    return path;
}

inline std::string made_directory(const std::string& path)
{
    EXPECT_EQ(mkdir(path.c_str(), 0777), 0) << path;
    return path;
}

// Runs from construction, once the executable has taken over, until `end` or destruction.
class RUNNING_PROGRAM
{
public:
    // `prepare` runs in the new process before the executable; it returns whether that may be started.
    RUNNING_PROGRAM(
        const std::string& executable, const std::string& directory, std::vector<std::string> environment,
        const std::function<bool()>& prepare = [] { return true; })
    {
        std::vector<char*> variables;
        for (std::string& variable : environment)
            variables.push_back(variable.data());
        variables.push_back(nullptr);
        std::string name = executable;
        std::string seconds = "1000";
        char* const arguments[] = {name.data(), seconds.data(), nullptr};
        int closed_by_exec[2];
        EXPECT_EQ(pipe2(closed_by_exec, O_CLOEXEC), 0);
        process = fork();
        if (process == 0)
        {
            if (chdir(directory.c_str()) == 0 && prepare())
                execve(executable.c_str(), arguments, variables.data());
            const char failure = '!';
            const ssize_t told = write(closed_by_exec[1], &failure, 1);
            _exit(told == 1 ? 126 : 127);
        }
        close(closed_by_exec[1]);
        char failure = ' ';
        EXPECT_EQ(read(closed_by_exec[0], &failure, 1), 0) << executable << " was not started";
        close(closed_by_exec[0]);
    }

    ~RUNNING_PROGRAM()
    {
        end();
    }

    RUNNING_PROGRAM(const RUNNING_PROGRAM&) = delete;
    RUNNING_PROGRAM& operator=(const RUNNING_PROGRAM&) = delete;

    pid_t number() const
    {
        return process;
    }

    // "pid:4711".
    std::string state() const
    {
        return "pid:" + std::to_string(process);
    }

    // Ends it; its number stays its own until then.
    void end()
    {
        if (process <= 0)
            return;
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
        process = -1;
    }

private:
    pid_t process = -1;
};

#endif
