#include "tests/support/run_program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/scoped_process_state.h"
#include "tests/support/temporary_directory.h"

namespace
{
int exit_status_of(pid_t child)
{
    int status = 0;
    if (waitpid(child, &status, 0) != child)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
}

PROGRAM_RESULT run_program(const std::vector<std::string>& arguments,
                           const std::vector<std::pair<std::string, std::string>>& environment)
{
    SCOPED_ENVIRONMENT on_top;
    for (const auto& [name, value] : environment)
        on_top.set(name, value);

    std::vector<std::string> copies = arguments;
    std::vector<char*> argv;
    for (std::string& argument : copies)
        argv.push_back(argument.data());
    argv.push_back(nullptr);

    // Files, not pipes: a program may write any amount to either.
    const TEMPORARY_DIRECTORY outputs;
    const std::string out = outputs.path("out");
    const std::string err = outputs.path("err");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), O_WRONLY | O_CREAT, 0600);
    pid_t child = 0;
    const int error = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);

    PROGRAM_RESULT result;
    EXPECT_EQ(0, error) << "cannot start " << argv[0];
    if (error == 0)
        result = {exit_status_of(child), read_file(out), read_file(err)};
    return result;
}
