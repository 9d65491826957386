#include <cstdio>
#include <mutex>

#include "platform/mem/mem.h"
#include "tests/fakes/call_hook.h"
#include "tests/fakes/fake_services.h"
#include "tests/fakes/real_platform.h"

namespace
{
constinit thread_local int scopes = 0;

struct STATE
{
    fake::CALL_HOOK message;
    std::mutex mutex;
    std::vector<fake::mem::MESSAGE> messages;
};

STATE& state()
{
    static STATE& instance = *new STATE;
    return instance;
}

__attribute__((format(printf, 1, 0))) std::string formatted(const char* format, va_list args)
{
    va_list measuring;
    va_copy(measuring, args);
    const int length = std::vsnprintf(nullptr, 0, format, measuring);
    va_end(measuring);
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, args);
    return text;
}
}

MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT::MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT() noexcept
{
    ++scopes;
}

MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT::~MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT()
{
    --scopes;
}

void mem_msg_local_vdebug(const char* module_tag, const char* format, va_list args)
{
    state().message.called();
    {
        va_list recording;
        va_copy(recording, args);
        const std::lock_guard lock(state().mutex);
        state().messages.push_back({module_tag, formatted(format, recording), scopes > 0});
        va_end(recording);
    }
    if (scopes == 0)
        real_mem_msg_local_vdebug(module_tag, format, args);
}

std::vector<fake::mem::MESSAGE> fake::mem::messages()
{
    const std::lock_guard lock(state().mutex);
    return state().messages;
}

int fake::mem::silencing_scopes()
{
    return scopes;
}

void fake::mem::before_message(int nth, HOOK hook)
{
    state().message.arm(nth, std::move(hook));
}

void fake::mem::reset()
{
    state().message.disarm();
    const std::lock_guard lock(state().mutex);
    state().messages.clear();
}
