#include "tests/velmar_cfg/tool_test.h"

#include <cstdlib>
#include <ostream>
#include <sys/wait.h>

#include "tests/support/run_program.h"

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
    const int status = status_of_program(start_with(rights, arguments, output));
    return {status, read_file(output), read_file(temporary.path("standard_error"))};
}

pid_t TOOL_TEST::start_with(bool rights, const std::vector<std::string>& arguments, const std::string& output,
                            bool traced) const
{
    PROGRAM_START start;
    start.path = VELMAR_CFG;
    start.arguments = {"velmar-cfg"};
    start.arguments.insert(start.arguments.end(), arguments.begin(), arguments.end());
    for (const auto& [name, value] : variables)
        start.environment.emplace_back(name).append("=").append(value);
    start.input = standard_input;
    start.output = output;
    start.errors = temporary.path("standard_error");
    start.with_rights = rights;
    start.traced = traced;
    start.most_memory = most_memory;
    start.most_stack = most_stack;
    return start_program(start);
}
