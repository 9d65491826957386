// A program run to its end, with all that it wrote.
#ifndef TESTS_SUPPORT_RUN_PROGRAM_H
#define TESTS_SUPPORT_RUN_PROGRAM_H

#include <string>
#include <utility>
#include <vector>

struct PROGRAM_RESULT
{
    int status = -1; // the exit code; 128 + the signal's number for one that a signal ended
    std::string out;
    std::string err;
};

// Runs `arguments` (the program first, by path) in this process's current directory, its standard input at its end from
// the start. The environment is this process's, with `environment` set on top. A program that cannot be started fails
// the test and leaves the status -1.
PROGRAM_RESULT run_program(const std::vector<std::string>& arguments,
                           const std::vector<std::pair<std::string, std::string>>& environment = {});

#endif
