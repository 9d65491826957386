#include <mutex>
#include <optional>

#include "platform/gen/gen.h"
#include "tests/fakes/call_hook.h"
#include "tests/fakes/fake_services.h"
#include "tests/fakes/real_platform.h"

namespace
{
struct DIRECTORY
{
    std::optional<std::string> forced;
    long calls = 0;
};

struct STATE
{
    fake::CALL_HOOK profile_directory_hook;
    fake::CALL_HOOK library_paths_hook;
    fake::CALL_HOOK ip_search_paths_hook;
    std::mutex mutex;
    DIRECTORY module_path;
    DIRECTORY velmar_path;
    DIRECTORY profile_directory;
    std::vector<std::string> library_paths;
    std::vector<std::string> ip_search_paths;
};

STATE& state()
{
    static STATE& instance = *new STATE;
    return instance;
}

std::string answer_of(DIRECTORY& directory, std::string (*real)())
{
    const std::lock_guard lock(state().mutex);
    ++directory.calls;
    return directory.forced ? *directory.forced : real();
}

void force(DIRECTORY& directory, const std::string& path)
{
    const std::lock_guard lock(state().mutex);
    directory.forced = path;
}

long calls_of(const DIRECTORY& directory)
{
    const std::lock_guard lock(state().mutex);
    return directory.calls;
}

// Records only what the real service took, also where an allocation fails.
void hand_on_and_record(const std::string& paths, void (*real)(const std::string& paths),
                        std::vector<std::string>& recorded)
{
    std::string copy = paths;
    const std::lock_guard lock(state().mutex);
    recorded.reserve(recorded.size() + 1);
    real(paths);
    recorded.push_back(std::move(copy));
}
}

std::string gen_get_module_path()
{
    return answer_of(state().module_path, real_gen_get_module_path);
}

std::string gen_get_velmar_path()
{
    return answer_of(state().velmar_path, real_gen_get_velmar_path);
}

std::string gen_get_user_profile_directory()
{
    state().profile_directory_hook.called();
    return answer_of(state().profile_directory, real_gen_get_user_profile_directory);
}

void gen_set_user_library_paths(const std::string& paths)
{
    state().library_paths_hook.called();
    hand_on_and_record(paths, real_gen_set_user_library_paths, state().library_paths);
}

void gen_set_user_ip_search_paths(const std::string& paths)
{
    state().ip_search_paths_hook.called();
    hand_on_and_record(paths, real_gen_set_user_ip_search_paths, state().ip_search_paths);
}

std::string gen_get_user_library_paths()
{
    return real_gen_get_user_library_paths();
}

std::string gen_get_user_ip_search_paths()
{
    return real_gen_get_user_ip_search_paths();
}

void fake::gen::set_module_path(const std::string& path)
{
    force(state().module_path, path);
}

void fake::gen::set_velmar_path(const std::string& path)
{
    force(state().velmar_path, path);
}

void fake::gen::set_user_profile_directory(const std::string& path)
{
    force(state().profile_directory, path);
}

long fake::gen::module_path_calls()
{
    return calls_of(state().module_path);
}

long fake::gen::velmar_path_calls()
{
    return calls_of(state().velmar_path);
}

long fake::gen::user_profile_directory_calls()
{
    return calls_of(state().profile_directory);
}

void fake::gen::before_user_profile_directory(int nth, HOOK hook)
{
    state().profile_directory_hook.arm(nth, std::move(hook));
}

void fake::gen::before_set_user_library_paths(int nth, HOOK hook)
{
    state().library_paths_hook.arm(nth, std::move(hook));
}

void fake::gen::before_set_user_ip_search_paths(int nth, HOOK hook)
{
    state().ip_search_paths_hook.arm(nth, std::move(hook));
}

std::vector<std::string> fake::gen::user_library_paths()
{
    const std::lock_guard lock(state().mutex);
    return state().library_paths;
}

std::vector<std::string> fake::gen::user_ip_search_paths()
{
    const std::lock_guard lock(state().mutex);
    return state().ip_search_paths;
}

void fake::gen::reset()
{
    state().profile_directory_hook.disarm();
    state().library_paths_hook.disarm();
    state().ip_search_paths_hook.disarm();
    real_gen_set_user_library_paths("");
    real_gen_set_user_ip_search_paths("");
    const std::lock_guard lock(state().mutex);
    state().module_path = {};
    state().velmar_path = {};
    state().profile_directory = {};
    state().library_paths.clear();
    state().ip_search_paths.clear();
}
