// The search paths that were set last. A text is never changed, only replaced, and its last user frees it. The mutex
// guards which text is the present one and how many users each has. It is not held to allocate, copy or free.
#include "platform/gen/gen.h"

#include <mutex>
#include <utility>

#include "platform/held_during_fork.h"

namespace
{
struct TEXT
{
    const std::string text;
    int users = 1; // readers, and one more while it is the present text
};

constinit std::mutex texts_mutex;
const HELD_DURING_FORK<texts_mutex> texts_mutex_during_fork;

// Never freed at the process's end: preferences may be used before and after this file's static objects live.
constinit TEXT* user_libraries = nullptr;
constinit TEXT* user_ip = nullptr;

void stop_using(TEXT* text)
{
    bool was_last = false;
    if (text != nullptr)
    {
        const std::lock_guard lock(texts_mutex);
        was_last = --text->users == 0;
    }
    if (was_last)
        delete text;
}

void replace(TEXT*& present, const std::string& paths)
{
    TEXT* other = new TEXT{paths};
    {
        const std::lock_guard lock(texts_mutex);
        std::swap(present, other);
    }
    stop_using(other);
}

// Ends the use of a text, even if copying it throws.
struct USE
{
    TEXT* const text;
    ~USE()
    {
        stop_using(text);
    }
};

TEXT* used(TEXT* const& present)
{
    const std::lock_guard lock(texts_mutex);
    if (present != nullptr)
        ++present->users;
    return present;
}

std::string copy_of(TEXT* const& present)
{
    const USE use{used(present)};
    return use.text == nullptr ? std::string() : use.text->text;
}
}

void gen_set_user_library_paths(const std::string& paths)
{
    replace(user_libraries, paths);
}

void gen_set_user_ip_search_paths(const std::string& paths)
{
    replace(user_ip, paths);
}

std::string gen_get_user_library_paths()
{
    return copy_of(user_libraries);
}

std::string gen_get_user_ip_search_paths()
{
    return copy_of(user_ip);
}
