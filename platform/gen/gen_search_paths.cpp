// The search paths that were handed over last. A text that was once handed over is never changed, only replaced: the
// mutex guards the two pointers to the texts and is held to copy or swap one, never to allocate or free.
#include "platform/gen/gen.h"

#include <memory>
#include <mutex>

#include "platform/held_during_fork.h"

namespace
{
using TEXT = std::shared_ptr<const std::string>;

// Never destroyed: preferences may be used before and after this file's static objects live.
union KEPT_TEXT
{
    constexpr KEPT_TEXT() : text() {}
    ~KEPT_TEXT() {} // NOLINT(modernize-use-equals-default): that of a union with such a member would be deleted
    KEPT_TEXT(const KEPT_TEXT&) = delete;
    KEPT_TEXT& operator=(const KEPT_TEXT&) = delete;

    TEXT text;
};

constinit std::mutex texts_mutex;
const HELD_DURING_FORK<texts_mutex> texts_mutex_during_fork;
constinit KEPT_TEXT user_libraries;
constinit KEPT_TEXT user_ip;

void replace(KEPT_TEXT& kept, const std::string& paths)
{
    TEXT other = std::make_shared<const std::string>(paths);
    const std::lock_guard lock(texts_mutex);
    kept.text.swap(other); // the old text is freed after the unlocking
}

std::string copy_of(const KEPT_TEXT& kept)
{
    TEXT text;
    {
        const std::lock_guard lock(texts_mutex);
        text = kept.text;
    }
    return text == nullptr ? std::string() : *text;
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
