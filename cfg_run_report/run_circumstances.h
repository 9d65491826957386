// Who and where this process is, and when.
#ifndef CFG_RUN_REPORT_RUN_CIRCUMSTANCES_H
#define CFG_RUN_REPORT_RUN_CIRCUMSTANCES_H

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

struct RUN_CIRCUMSTANCES
{
    std::optional<std::string> host;
    pid_t process;
    std::optional<std::string> directory;
    std::optional<std::string> executable;
    std::optional<std::string> started;
    std::string ended;

    // The variables that decide what is read, in the order in which they take part; nothing for one that is not set.
    std::vector<std::pair<const char*, std::optional<std::string>>> environment;
};

// As they are now. What is not known is left out.
RUN_CIRCUMSTANCES circumstances_of_this_run();

// "2026-11-22T08:25:00Z", UTC; with nanoseconds as "2026-11-22T08:25:00.000000001Z". Seconds count from 1970-01-01.
std::string time_as_text(std::int64_t seconds, std::optional<std::int32_t> nanoseconds = {});

#endif
