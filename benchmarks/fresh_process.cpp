// What can be measured only in a process that has not used the library yet. Each task is a process of its own, started
// by cfg_ini_benchmark; it prints one number.
//
//   own_pages FILE      bytes of anonymous memory that loading FILE and asking for each of its variables adds
//   first_lookup        nanoseconds of the first lookup in a process with four threads more
//   fork_median         nanoseconds from fork() to the end of a child that ends at once, beside a thread that looks up
//   fork_longest        the same, the longest of all
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "cfg_ini/cfg_ini.h"

namespace
{
using CLOCK = std::chrono::steady_clock;

double nanoseconds_since(CLOCK::time_point start)
{
    return std::chrono::duration<double, std::nano>(CLOCK::now() - start).count();
}

double anonymous_bytes()
{
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word)
    {
        if (word == "RssAnon:")
        {
            double kibibytes = 0;
            status >> kibibytes;
            return kibibytes * 1024;
        }
    }
    throw std::runtime_error("/proc/self/status has no RssAnon");
}

std::vector<std::string> names_of(const std::string& path)
{
    std::vector<std::string> names;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
    {
        if (const std::size_t end = line.find(" = "); end != std::string::npos)
            names.push_back(line.substr(0, end));
    }
    return names;
}

double own_pages(const std::string& path)
{
    const std::vector<std::string> names = names_of(path);
    anonymous_bytes(); // what the asking itself takes
    const double before = anonymous_bytes();
    cfg_read_ini_file(path);
    for (const std::string& name : names)
        cfg_is_on(name, false);
    return anonymous_bytes() - before;
}

// Threads that run `work` until the end of the scope.
class BUSY_THREADS
{
public:
    template <typename WORK>
    BUSY_THREADS(int number, WORK work)
    {
        for (int i = 0; i < number; ++i)
            threads.emplace_back(
                [this, work]
                {
                    ++running;
                    while (!ended)
                        work();
                });
        while (running < number)
            std::this_thread::yield();
    }
    ~BUSY_THREADS()
    {
        ended = true;
        for (std::thread& thread : threads)
            thread.join();
    }
    BUSY_THREADS(const BUSY_THREADS&) = delete;
    BUSY_THREADS& operator=(const BUSY_THREADS&) = delete;

private:
    std::atomic<int> running = 0;
    std::atomic<bool> ended = false;
    std::vector<std::thread> threads;
};

double first_lookup()
{
    const BUSY_THREADS asleep(4, [] { std::this_thread::sleep_for(std::chrono::milliseconds(1)); });
    const CLOCK::time_point start = CLOCK::now();
    cfg_is_on("a_variable_of_the_host", false);
    return nanoseconds_since(start);
}

// In the order of their length.
std::vector<double> forks()
{
    constexpr int number = 200;
    const std::string name = "a_variable_of_the_host";
    cfg_set_value(name, "on");
    const BUSY_THREADS looking_up(1, [&name] { cfg_is_on(name, false); });
    std::vector<double> times;
    for (int i = 0; i < number; ++i)
    {
        const CLOCK::time_point start = CLOCK::now();
        const pid_t child = fork();
        if (child == 0)
            _exit(0);
        if (child < 0 || waitpid(child, nullptr, 0) != child)
            throw std::runtime_error("no child");
        times.push_back(nanoseconds_since(start));
    }
    std::sort(times.begin(), times.end());
    return times;
}

double number_of(const std::vector<std::string_view>& arguments)
{
    const std::string_view task = arguments.empty() ? "" : arguments[0];
    if (task == "own_pages" && arguments.size() == 2)
        return own_pages(std::string(arguments[1]));
    if (task == "first_lookup")
        return first_lookup();
    if (task == "fork_median")
    {
        const std::vector<double> times = forks();
        return times[times.size() / 2];
    }
    if (task == "fork_longest")
        return forks().back();
    throw std::runtime_error("no such task");
}
}

int main(int argc, char** argv)
{
    try
    {
        std::cout << number_of({argv + 1, argv + argc}) << std::endl;
        return 0;
    }
    catch (const std::exception& error)
    {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
