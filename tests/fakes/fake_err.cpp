#include <mutex>

#include "platform/err/err.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/fake_services.h"
#include "tests/fakes/real_platform.h"

namespace
{
struct STATE
{
    std::mutex mutex;
    std::vector<fake::err::REPORT> reports;
    bool throws = false;
};

STATE& state()
{
    static STATE& instance = *new STATE;
    return instance;
}
}

void err_report_internal_error(const char* condition, const char* module, const char* source_file, int line)
{
    {
        const std::lock_guard lock(state().mutex);
        state().reports.push_back({condition, module, source_file, line});
        if (state().throws)
            throw fake::err::REPORTED(condition);
    }
    real_err_report_internal_error(condition, module, source_file, line);
}

std::vector<fake::err::REPORT> fake::err::reports()
{
    const std::lock_guard lock(state().mutex);
    return state().reports;
}

void fake::err::throw_from_now_on()
{
    const std::lock_guard lock(state().mutex);
    state().throws = true;
}

void fake::err::reset()
{
    const std::lock_guard lock(state().mutex);
    state().reports.clear();
    state().throws = false;
}
