#include <mutex>
#include <optional>

#include "platform/ver/ver.h"
#include "tests/fakes/call_hook.h"
#include "tests/fakes/fake_services.h"
#include "tests/fakes/real_platform.h"

namespace
{
struct STATE
{
    fake::CALL_HOOK version_hook;
    fake::CALL_HOOK all_versions_hook;
    std::mutex mutex;
    const char* product_filename = nullptr;
    std::optional<std::string> version;
    std::optional<std::vector<std::string>> all_versions;
    long product_filename_calls = 0;
    long version_calls = 0;
    long all_versions_calls = 0;
};

STATE& state()
{
    static STATE& instance = *new STATE;
    return instance;
}
}

const char* ver_get_kestrin_product_filename()
{
    const std::lock_guard lock(state().mutex);
    ++state().product_filename_calls;
    return state().product_filename != nullptr ? state().product_filename : real_ver_get_kestrin_product_filename();
}

std::string ver_get_version()
{
    state().version_hook.called();
    const std::lock_guard lock(state().mutex);
    ++state().version_calls;
    return state().version ? *state().version : real_ver_get_version();
}

std::vector<std::string> ver_get_all_versions()
{
    state().all_versions_hook.called();
    const std::lock_guard lock(state().mutex);
    ++state().all_versions_calls;
    return state().all_versions ? *state().all_versions : real_ver_get_all_versions();
}

void fake::ver::set_product_filename(const char* name)
{
    const std::lock_guard lock(state().mutex);
    state().product_filename = name;
}

void fake::ver::set_version(const std::string& version)
{
    const std::lock_guard lock(state().mutex);
    state().version = version;
}

void fake::ver::set_all_versions(const std::vector<std::string>& versions)
{
    const std::lock_guard lock(state().mutex);
    state().all_versions = versions;
}

long fake::ver::product_filename_calls()
{
    const std::lock_guard lock(state().mutex);
    return state().product_filename_calls;
}

long fake::ver::version_calls()
{
    const std::lock_guard lock(state().mutex);
    return state().version_calls;
}

long fake::ver::all_versions_calls()
{
    const std::lock_guard lock(state().mutex);
    return state().all_versions_calls;
}

void fake::ver::before_version(int nth, HOOK hook)
{
    state().version_hook.arm(nth, std::move(hook));
}

void fake::ver::before_all_versions(int nth, HOOK hook)
{
    state().all_versions_hook.arm(nth, std::move(hook));
}

void fake::ver::reset()
{
    state().version_hook.disarm();
    state().all_versions_hook.disarm();
    const std::lock_guard lock(state().mutex);
    state().product_filename = nullptr;
    state().version.reset();
    state().all_versions.reset();
    state().product_filename_calls = 0;
    state().version_calls = 0;
    state().all_versions_calls = 0;
}
