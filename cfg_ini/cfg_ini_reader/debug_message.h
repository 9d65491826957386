// Debug messages of the internal variable store.
#ifndef CFG_INI_CFG_INI_READER_DEBUG_MESSAGE_H
#define CFG_INI_CFG_INI_READER_DEBUG_MESSAGE_H

#include <cstdarg>

#include "platform/mem/mem.h"

namespace zon_cfg
{
// Passes the message to the memory service under the module tag; `format` is that of printf.
__attribute__((format(printf, 1, 2))) inline void ini_debug_message(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    mem_msg_local_vdebug("CFG_INI", format, args);
    va_end(args);
}
}

#endif
