#include "tests/support/run_program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/scoped_process_state.h"
#include "tests/support/temporary_directory.h"

namespace
{
std::vector<char*> pointers(std::vector<std::string>& texts)
{
    std::vector<char*> result;
    result.reserve(texts.size() + 1);
    for (std::string& text : texts)
        result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

// Makes permissions count for the program that is executed next, as they do for users. Root's own files stay its own,
// so that the program and its libraries are found wherever they were built.
bool give_up_rights()
{
    return geteuid() != 0 || (prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0) == 0 &&
                              prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0) == 0);
}

bool limit_memory(const PROGRAM_START& start)
{
    const rlimit addresses{start.most_memory, start.most_memory};
    const rlimit stack{start.most_stack, start.most_stack};
    return (start.most_memory == 0 || setrlimit(RLIMIT_AS, &addresses) == 0) &&
           (start.most_stack == 0 || setrlimit(RLIMIT_STACK, &stack) == 0);
}

// Only calls that are safe between fork and exec.
[[noreturn]] void become_program(const PROGRAM_START& start, char** arguments, char** environment)
{
    constexpr int cannot_start = 127;
    const int out = open(start.output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    const int err = open(start.errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    const int in = open(start.input.c_str(), O_RDONLY);
    const bool ready = out >= 0 && err >= 0 && in >= 0 && dup2(in, STDIN_FILENO) >= 0 &&
                       dup2(out, STDOUT_FILENO) >= 0 && dup2(err, STDERR_FILENO) >= 0 && limit_memory(start) &&
                       (start.with_rights || give_up_rights()) &&
                       (!start.traced || ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0);
    if (ready)
        execve(start.path.c_str(), arguments, environment);
    _exit(cannot_start);
}
}

pid_t start_program(const PROGRAM_START& start)
{
    std::vector<std::string> arguments = start.arguments;
    std::vector<std::string> environment = start.environment;
    const std::vector<char*> argument_pointers = pointers(arguments);
    const std::vector<char*> environment_pointers = pointers(environment);
    const pid_t child = fork();
    if (child == 0)
        become_program(start, const_cast<char**>(argument_pointers.data()),
                       const_cast<char**>(environment_pointers.data()));
    EXPECT_GT(child, 0) << "cannot start " << start.path;
    return child;
}

bool can_trace_programs()
{
    const pid_t child = fork();
    if (child == 0)
        _exit(ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0 ? 0 : 1);
    return child > 0 && status_of_program(child) == 0;
}

int status_of_program(pid_t child)
{
    int status = 0;
    if (waitpid(child, &status, 0) != child)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

PROGRAM_RESULT run_program(const std::vector<std::string>& arguments,
                           const std::vector<std::pair<std::string, std::string>>& environment)
{
    SCOPED_ENVIRONMENT on_top;
    for (const auto& [name, value] : environment)
        on_top.set(name, value);

    // Files, not pipes: a program may write any amount to either.
    const TEMPORARY_DIRECTORY outputs;
    PROGRAM_START start;
    start.path = arguments.front();
    start.arguments = arguments;
    for (char** assignment = environ; *assignment != nullptr; ++assignment)
        start.environment.emplace_back(*assignment);
    start.output = outputs.path("out");
    start.errors = outputs.path("err");
    const int status = status_of_program(start_program(start));
    return {status, read_file(start.output), read_file(start.errors)};
}
