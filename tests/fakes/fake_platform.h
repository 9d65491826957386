// The platform services, decorated: each call is counted or recorded, can be made to fail, and otherwise goes to the
// real default service. All of it may be used from any thread.
//
// The fakes take a lock of their own where they record. That orders threads which nothing else orders, so tests that
// look for data races link the plain services instead.
#ifndef TESTS_FAKES_FAKE_PLATFORM_H
#define TESTS_FAKES_FAKE_PLATFORM_H

#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace fake
{
// Everything as at the start: no records, no hooks, no overrides; but for the depth of held locks, which is a fact.
void reset();

// What an armed hook runs: on the calling thread, with no lock of the fakes held, once, before the real service is
// called. An exception that leaves it leaves the service. Arming again replaces the hook.
using HOOK = std::function<void()>;

inline void out_of_memory()
{
    throw std::bad_alloc();
}

namespace thr
{
long creations();
long locks();
long unlocks();

// How many locks the calling thread holds.
int depth();

// Run `hook` before the nth call from now (1 is the next one).
void before_creation(int nth, HOOK hook);
void before_lock(int nth, HOOK hook);
void before_unlock(int nth, HOOK hook);
}

namespace err
{
struct REPORT
{
    std::string condition;
    std::string module;
    std::string source_file;
    int line;

    bool operator==(const REPORT&) const = default;
};

// Thrown by the reporter once throw_from_now_on() was called.
struct REPORTED : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

std::vector<REPORT> reports();
void throw_from_now_on();
}

namespace mem
{
struct MESSAGE
{
    std::string module_tag;
    std::string text;
    bool silenced; // emitted within a scope that silences the thread's messages

    bool operator==(const MESSAGE&) const = default;
};

// Silenced messages are recorded too, but do not reach the real service.
std::vector<MESSAGE> messages();

// How many silencing scopes the calling thread is in.
int silencing_scopes();

void before_message(int nth, HOOK hook);
}

namespace fio
{
// The paths that exists() was asked for, in order.
std::vector<std::string> asked();

// The paths that status() was asked for, in order.
std::vector<std::string> status_asked();

// From now on this very path exists, or does not; status() fails for one that does not.
void force_exists(const std::string& path, bool answer);

void before_exists(int nth, HOOK hook);
void before_status(int nth, HOOK hook);
void before_current_directory(int nth, HOOK hook);

// The nth exists() from now answers false.
void deny_exists(int nth);

// The answer of get_current_directory() from now on.
void set_current_directory(const std::string& directory);
}

namespace gen
{
// Overrides of the well-known directories; taken as they stand.
void set_module_path(const std::string& path);
void set_velmar_path(const std::string& path);
void set_user_profile_directory(const std::string& path);

// How often the directories were asked for.
long module_path_calls();
long velmar_path_calls();
long user_profile_directory_calls();

void before_user_profile_directory(int nth, HOOK hook);
void before_set_user_library_paths(int nth, HOOK hook);
void before_set_user_ip_search_paths(int nth, HOOK hook);

// What the two setters were called with, in order.
std::vector<std::string> user_library_paths();
std::vector<std::string> user_ip_search_paths();
}

namespace ver
{
// `name` must be a constant.
void set_product_filename(const char* name);
void set_version(const std::string& version);
void set_all_versions(const std::vector<std::string>& versions);

long product_filename_calls();
long version_calls();
long all_versions_calls();

void before_version(int nth, HOOK hook);
void before_all_versions(int nth, HOOK hook);
}
}

#endif
