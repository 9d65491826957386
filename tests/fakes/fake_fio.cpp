#include <map>
#include <mutex>
#include <optional>

#include "platform/fio/fio.h"
#include "tests/fakes/call_hook.h"
#include "tests/fakes/fake_services.h"
#include "tests/fakes/real_platform.h"

namespace
{
struct STATE
{
    fake::CALL_HOOK exists;
    fake::CALL_HOOK status;
    fake::CALL_HOOK current_directory;
    std::mutex mutex;
    std::vector<std::string> asked;
    std::vector<std::string> status_asked;
    std::map<std::string, bool> forced;
    int calls_to_denial = 0;
    std::optional<std::string> directory;
};

STATE& state()
{
    static STATE& instance = *new STATE;
    return instance;
}

// The answer that the test prescribed for the path. The caller holds the lock.
std::optional<bool> forced_answer(const std::string& path)
{
    const auto entry = state().forced.find(path);
    return entry == state().forced.end() ? std::nullopt : std::optional<bool>(entry->second);
}

std::optional<bool> recorded(const char* path)
{
    state().exists.called();
    const std::lock_guard lock(state().mutex);
    state().asked.emplace_back(path);
    if (state().calls_to_denial > 0 && --state().calls_to_denial == 0)
        return false;
    return forced_answer(path);
}
}

bool FIO_FILE_SYSTEM::exists(const FIO_PATH& path)
{
    const std::optional<bool> answer = recorded(path);
    return answer ? *answer : REAL_FIO_FILE_SYSTEM::exists(path);
}

bool FIO_FILE_SYSTEM::exists(const char* path)
{
    const std::optional<bool> answer = recorded(path);
    return answer ? *answer : REAL_FIO_FILE_SYSTEM::exists(path);
}

bool FIO_FILE_SYSTEM::status(const char* path, struct stat* result)
{
    state().status.called();
    {
        const std::lock_guard lock(state().mutex);
        state().status_asked.emplace_back(path);
        if (forced_answer(path) == false)
            return false;
    }
    return REAL_FIO_FILE_SYSTEM::status(path, result);
}

std::string FIO_FILE_SYSTEM::get_current_directory()
{
    state().current_directory.called();
    {
        const std::lock_guard lock(state().mutex);
        if (state().directory)
            return *state().directory;
    }
    return REAL_FIO_FILE_SYSTEM::get_current_directory();
}

std::vector<std::string> fake::fio::asked()
{
    const std::lock_guard lock(state().mutex);
    return state().asked;
}

std::vector<std::string> fake::fio::status_asked()
{
    const std::lock_guard lock(state().mutex);
    return state().status_asked;
}

void fake::fio::force_exists(const std::string& path, bool answer)
{
    const std::lock_guard lock(state().mutex);
    state().forced[path] = answer;
}

void fake::fio::before_exists(int nth, HOOK hook)
{
    state().exists.arm(nth, std::move(hook));
}

void fake::fio::before_status(int nth, HOOK hook)
{
    state().status.arm(nth, std::move(hook));
}

void fake::fio::before_current_directory(int nth, HOOK hook)
{
    state().current_directory.arm(nth, std::move(hook));
}

void fake::fio::deny_exists(int nth)
{
    const std::lock_guard lock(state().mutex);
    state().calls_to_denial = nth;
}

void fake::fio::set_current_directory(const std::string& directory)
{
    const std::lock_guard lock(state().mutex);
    state().directory = directory;
}

void fake::fio::reset()
{
    state().exists.disarm();
    state().status.disarm();
    state().current_directory.disarm();
    const std::lock_guard lock(state().mutex);
    state().asked.clear();
    state().status_asked.clear();
    state().forced.clear();
    state().calls_to_denial = 0;
    state().directory.reset();
}
