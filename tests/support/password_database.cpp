#include "tests/support/password_database.h"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <pwd.h>

namespace
{
constinit SCOPED_PASSWORD_DATABASE* current = nullptr;
}

SCOPED_PASSWORD_DATABASE::SCOPED_PASSWORD_DATABASE(std::optional<std::string> home_directory)
    : home(std::move(home_directory))
{
    current = this;
}

SCOPED_PASSWORD_DATABASE::~SCOPED_PASSWORD_DATABASE()
{
    current = nullptr;
}

void SCOPED_PASSWORD_DATABASE::fail(int error, int times)
{
    error_to_come = error;
    failures_to_come = times;
}

int SCOPED_PASSWORD_DATABASE::calls() const
{
    return calls_made;
}

int SCOPED_PASSWORD_DATABASE::look_up(struct passwd* entry, char* texts, std::size_t size, struct passwd** found)
{
    ++calls_made;
    *found = nullptr;
    if (failures_to_come > 0)
    {
        --failures_to_come;
        return error_to_come;
    }
    if (!home)
        return 0;
    if (home->size() + 1 > size)
        return ERANGE;
    std::memcpy(texts, home->c_str(), home->size() + 1);
    *entry = {};
    entry->pw_dir = texts;
    *found = entry;
    return 0;
}

// Its symbol must be seen by the libraries.
extern "C" __attribute__((visibility("default"))) int getpwuid_r(uid_t user, struct passwd* entry, char* texts,
                                                                 size_t size, struct passwd** found)
{
    if (current != nullptr)
        return current->look_up(entry, texts, size, found);
    static const auto next = reinterpret_cast<decltype(&getpwuid_r)>(dlsym(RTLD_NEXT, "getpwuid_r"));
    return next(user, entry, texts, size, found);
}
