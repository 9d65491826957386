#include "platform/mem/mem.h"

#include <cstring>
#include <mutex>

#include "platform/held_during_fork.h"

namespace
{
// The living objects, linked through themselves: registering happens at load and must not allocate.
constinit std::mutex registry_mutex;
const HELD_DURING_FORK<registry_mutex> registry_mutex_during_fork;
constinit MEM_INITIALIZER* first_registered = nullptr;
}

MEM_INITIALIZER::MEM_INITIALIZER(const char* tag) noexcept : module_tag(tag), next(nullptr)
{
    const std::lock_guard lock(registry_mutex);
    next = first_registered;
    first_registered = this;
}

MEM_INITIALIZER::~MEM_INITIALIZER()
{
    const std::lock_guard lock(registry_mutex);
    for (MEM_INITIALIZER** link = &first_registered; *link != nullptr; link = &(*link)->next)
    {
        if (*link == this)
        {
            *link = next;
            return;
        }
    }
}

bool MEM_INITIALIZER::is_registered(const char* tag) noexcept
{
    const std::lock_guard lock(registry_mutex);
    for (const MEM_INITIALIZER* object = first_registered; object != nullptr; object = object->next)
    {
        if (std::strcmp(object->module_tag, tag) == 0)
            return true;
    }
    return false;
}
