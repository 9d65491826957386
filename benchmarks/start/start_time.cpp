// Prints how long each of the programs that are its arguments takes from start to end, in milliseconds: the minimum and
// the median. The programs take turns, so that other work on the machine disturbs them alike.
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{
constexpr int starts = 500;

double milliseconds_of(char* program)
{
    const auto begin = std::chrono::steady_clock::now();
    char* const arguments[] = {program, nullptr};
    pid_t child = 0;
    int status = 0;
    if (posix_spawn(&child, program, nullptr, nullptr, arguments, environ) != 0 ||
        waitpid(child, &status, 0) != child || status != 0)
    {
        std::fprintf(stderr, "%s does not run\n", program);
        std::exit(1);
    }
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}
}

int main(int count, char** arguments)
{
    const std::vector<char*> programs(arguments + 1, arguments + count);
    std::vector<std::vector<double>> times(programs.size());
    for (int i = 0; i < starts; ++i)
        for (std::size_t program = 0; program < programs.size(); ++program)
            times[program].push_back(milliseconds_of(programs[program]));

    for (std::size_t program = 0; program < programs.size(); ++program)
    {
        std::sort(times[program].begin(), times[program].end());
        const std::string path = programs[program];
        std::printf("%-26s minimum %.3f ms, median %.3f ms\n", path.substr(path.rfind('/') + 1).c_str(),
                    times[program].front(), times[program][starts / 2]);
    }
}
