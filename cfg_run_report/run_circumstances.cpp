// Asks the system about this process. /proc/self/stat gives the start of the process in clock ticks since the start of
// the system. That gives the age of the process, and the present time minus the age is the time of its start. What the
// system does not give is left out; nothing is kept.
#include "cfg_run_report/run_circumstances.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <unistd.h>

namespace
{
std::optional<std::string> unless_empty(std::string text)
{
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

std::optional<std::string> host_name()
{
    char name[HOST_NAME_MAX + 1] = {};
    return gethostname(name, sizeof name - 1) == 0 ? unless_empty(name) : std::nullopt;
}

// How long ago the process was started, in seconds: the system tells the ticks between its own start and that of the
// process, as the 22nd field of a line. The second field, a name in brackets, may hold anything.
std::optional<double> age_of_process()
{
    std::ifstream file("/proc/self/stat", std::ios::binary);
    const std::string line{std::istreambuf_iterator<char>(file), {}};
    const std::size_t bracket = line.rfind(')');
    if (bracket == std::string::npos)
        return std::nullopt;
    std::istringstream fields(line.substr(bracket + 1));
    fields.imbue(std::locale::classic());
    std::string skipped;
    for (int field = 3; field < 22; ++field)
        fields >> skipped;
    std::uint64_t ticks = 0;
    struct timespec since_boot = {};
    if (!(fields >> ticks) || clock_gettime(CLOCK_BOOTTIME, &since_boot) != 0)
        return std::nullopt;
    const double now = static_cast<double>(since_boot.tv_sec) + static_cast<double>(since_boot.tv_nsec) / 1e9;
    return now - static_cast<double>(ticks) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

std::optional<std::string> start_of_process(const struct timespec& now)
{
    const std::optional<double> age = age_of_process();
    if (!age)
        return std::nullopt;
    const double start = static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9 - *age;
    return time_as_text(static_cast<std::int64_t>(start));
}
}

RUN_CIRCUMSTANCES circumstances_of_this_run()
{
    std::error_code failed; // leaves an empty path
    struct timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    RUN_CIRCUMSTANCES run = {host_name(),
                             getpid(),
                             unless_empty(std::filesystem::current_path(failed).string()),
                             unless_empty(std::filesystem::read_symlink("/proc/self/exe", failed).string()),
                             start_of_process(now),
                             time_as_text(now.tv_sec),
                             {}};
    for (const char* const name :
         {"VELMAR_INI", "HOME", "VELMAR_INI_DISABLED", "APPENDED_VELMAR_INI", "VELMAR_INI_VARS", "VELMAR2_INI"})
    {
        const char* const value = std::getenv(name);
        run.environment.emplace_back(name, value != nullptr ? std::optional<std::string>(value) : std::nullopt);
    }
    return run;
}

std::string time_as_text(std::int64_t seconds, std::optional<std::int32_t> nanoseconds)
{
    const auto time = static_cast<std::time_t>(seconds);
    struct tm parts = {};
    char text[64] = {}; // a year may have ten digits
    if (time != seconds || gmtime_r(&time, &parts) == nullptr ||
        std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts) == 0)
        return std::to_string(seconds);
    if (nanoseconds)
    {
        char fraction[16] = {};
        std::snprintf(fraction, sizeof fraction, ".%09d", static_cast<int>(*nanoseconds));
        return std::string(text) + fraction + "Z";
    }
    return std::string(text) + "Z";
}
