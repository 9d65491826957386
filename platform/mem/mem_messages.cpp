#include "platform/mem/mem.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{
constinit thread_local int silenced_scopes = 0;

bool messages_wanted()
{
    const char* const setting = std::getenv("ZON_MSG_DEBUG");
    return setting != nullptr && *setting != '\0' && std::strcmp(setting, "0") != 0;
}
}

MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT::MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT() noexcept
{
    ++silenced_scopes;
}

MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT::~MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT()
{
    --silenced_scopes;
}

void mem_msg_local_vdebug(const char* module_tag, const char* format, va_list args)
{
    if (silenced_scopes > 0 || !messages_wanted())
        return;

    // One write per message, so that messages of different threads do not mix within a line. A longer text is cut.
    std::array<char, 4096> text;
    if (std::vsnprintf(text.data(), text.size(), format, args) < 0)
        return;
    std::fprintf(stderr, "Debug: %s: %s\n", module_tag, text.data());
}
