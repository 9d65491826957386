// velmar-cfg as a process, on real files and in an environment of the test's own.
#ifndef TESTS_VELMAR_CFG_TOOL_TEST_H
#define TESTS_VELMAR_CFG_TOOL_TEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <sys/types.h>
#include <vector>

#include "tests/support/isolated_test.h"

// How a run of the tool ended and what it wrote.
struct TOOL_RUN
{
    int exit_code; // 128 + the signal's number when a signal ended it
    std::string out;
    std::string err;

    nlohmann::json json() const
    {
        return nlohmann::json::parse(out);
    }
};

void PrintTo(const TOOL_RUN& run, std::ostream* stream);

bool operator==(const TOOL_RUN& a, const TOOL_RUN& b);

// The current directory is "cwd" in the temporary directory, HOME is "home" beside it and does not exist yet.
class TOOL_TEST : public ISOLATED_TEST
{
protected:
    TOOL_TEST();

    // Runs velmar-cfg with these arguments and nothing but `variables` in its environment.
    TOOL_RUN run(const std::vector<std::string>& arguments) const;

    // The same with permissions that count, as they do not for root.
    TOOL_RUN run_without_rights(const std::vector<std::string>& arguments) const;

    // Starts the tool with standard output going to `output`; the caller waits for the process.
    pid_t start(const std::vector<std::string>& arguments, const std::string& output) const;

    // The same, stopped before its first instruction and traced by the caller.
    pid_t start_traced(const std::vector<std::string>& arguments) const;

    std::map<std::string, std::string> variables;
    std::string standard_input = "/dev/null"; // the path of what the tool reads there
    std::size_t most_memory = 0;              // what it may take, in bytes of addresses; 0 for no limit
    std::size_t most_stack = 0;               // what its stack may grow to, in bytes; 0 for no limit

private:
    TOOL_RUN run_with(bool rights, const std::vector<std::string>& arguments) const;
    pid_t start_with(bool rights, const std::vector<std::string>& arguments, const std::string& output,
                     bool traced = false) const;
};

#endif
