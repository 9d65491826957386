#include "tests/velmar_cfg/tool_test.h"

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/capability.h>
#include <ostream>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

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

// Only calls that are safe between fork and exec.
[[noreturn]] void become_tool(bool with_rights, bool traced, const char* input, const char* output, const char* errors,
                              char** arguments, char** environment)
{
    const int out = open(output, O_WRONLY | O_CREAT | O_TRUNC, 0666);
    const int err = open(errors, O_WRONLY | O_CREAT | O_TRUNC, 0666);
    const int in = open(input, O_RDONLY);
    const bool ready = out >= 0 && err >= 0 && in >= 0 && dup2(in, STDIN_FILENO) >= 0 &&
                       dup2(out, STDOUT_FILENO) >= 0 && dup2(err, STDERR_FILENO) >= 0 &&
                       (with_rights || give_up_rights()) &&
                       (!traced || ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0);
    if (ready)
        execve(VELMAR_CFG, arguments, environment);
    _exit(127);
}
}

void PrintTo(const TOOL_RUN& run, std::ostream* stream)
{
    *stream << "exit code " << run.exit_code << "\n--- standard output\n"
            << run.out << "--- standard error\n"
            << run.err << "---";
}

bool operator==(const TOOL_RUN& a, const TOOL_RUN& b)
{
    return a.exit_code == b.exit_code && a.out == b.out && a.err == b.err;
}

TOOL_TEST::TOOL_TEST()
{
    variables["HOME"] = temporary.path("home");
    // What the sanitizers were told for the test holds for the tool too.
    for (const char* const name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS", "LSAN_OPTIONS"})
    {
        if (const char* const value = std::getenv(name); value != nullptr)
            variables[name] = value;
    }
}

TOOL_RUN TOOL_TEST::run(const std::vector<std::string>& arguments) const
{
    return run_with(true, arguments);
}

TOOL_RUN TOOL_TEST::run_without_rights(const std::vector<std::string>& arguments) const
{
    return run_with(false, arguments);
}

pid_t TOOL_TEST::start(const std::vector<std::string>& arguments, const std::string& output) const
{
    return start_with(true, arguments, output);
}

pid_t TOOL_TEST::start_traced(const std::vector<std::string>& arguments) const
{
    const pid_t child = start_with(true, arguments, temporary.path("standard_output"), true);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSTOPPED(status));
    return child;
}

TOOL_RUN TOOL_TEST::run_with(bool rights, const std::vector<std::string>& arguments) const
{
    const std::string output = temporary.path("standard_output");
    const pid_t child = start_with(rights, arguments, output);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), read_file(output),
            read_file(temporary.path("standard_error"))};
}

pid_t TOOL_TEST::start_with(bool rights, const std::vector<std::string>& arguments, const std::string& output,
                            bool traced) const
{
    std::vector<std::string> words = {"velmar-cfg"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> assignments;
    for (const auto& [name, value] : variables)
    {
        std::string assignment = name;
        assignment += "=" + value;
        assignments.push_back(assignment);
    }

    const std::vector<char*> argument_pointers = pointers(words);
    const std::vector<char*> environment_pointers = pointers(assignments);
    const std::string errors = temporary.path("standard_error");
    const pid_t child = fork();
    if (child == 0)
    {
        if (const rlimit limit{most_memory, most_memory}; most_memory > 0 && setrlimit(RLIMIT_AS, &limit) != 0)
            _exit(127);
        become_tool(rights, traced, standard_input.c_str(), output.c_str(), errors.c_str(),
                    const_cast<char**>(argument_pointers.data()), const_cast<char**>(environment_pointers.data()));
    }
    return child;
}
