// Programs as processes of their own: started, or run to their end with all that they wrote.
#ifndef TESTS_SUPPORT_RUN_PROGRAM_H
#define TESTS_SUPPORT_RUN_PROGRAM_H

#include <cstddef>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

struct PROGRAM_RESULT
{
    int status = -1; // the exit code; 128 + the signal's number for one that a signal ended
    std::string out;
    std::string err;
};

// Runs `arguments` (the program first, by path) in this process's current directory, with an empty standard input. The
// environment is this process's, with `environment` set on top. A program that cannot be started has the status 127.
PROGRAM_RESULT run_program(const std::vector<std::string>& arguments,
                           const std::vector<std::pair<std::string, std::string>>& environment = {});

// How a program is started.
struct PROGRAM_START
{
    std::string path;
    std::vector<std::string> arguments;   // the first one is the name by which it is called
    std::vector<std::string> environment; // all of it, as NAME=VALUE
    std::string input = "/dev/null";      // the paths of what it reads and writes
    std::string output;
    std::string errors;
    bool with_rights = true;     // if false, permissions count even for root
    bool traced = false;         // stopped before its first instruction, and traced by the caller
    std::size_t most_memory = 0; // its limit of address space, in bytes; 0 for no limit
    std::size_t most_stack = 0;  // the limit of its stack, in bytes; 0 for no limit
};

// Starts a program; the caller waits for it. One that cannot be started ends with the status 127.
pid_t start_program(const PROGRAM_START& start);

// Whether the system lets a program be traced; an emulator may not.
bool can_trace_programs();

// Waits for the end of a child. Returns its status as above.
int status_of_program(pid_t child);

#endif
