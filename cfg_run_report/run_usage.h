// What the usage reports say about the run so far, put together.
#ifndef CFG_RUN_REPORT_RUN_USAGE_H
#define CFG_RUN_REPORT_RUN_USAGE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct VARIABLE_USAGE
{
    std::string name;
    std::uint64_t count;
    std::optional<std::string> value; // empty if the reports leave it out
    bool external;
    bool used;
};

// Every variable, in the order of the ranked report, the run's own accesses only. See cfg_run_report.h for what it does
// to the store.
std::vector<VARIABLE_USAGE> usage_of_all_variables();

#endif
