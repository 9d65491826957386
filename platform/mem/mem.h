// Memory service: module registration, debug messages and text formatting.
//
// What the library expects.
// - Modules register during static initialisation. Registration must not allocate, throw, or rely on other dynamic
//   initialisers.
// - Any thread may emit a debug message. The store silences the messages of a thread that replaces the store: while it
//   reads the main settings file and the sources of the environment.
// - Emitting must not throw. It may happen with the store's lock held, since a callback may read a variable. So it must
//   not wait for a thread that uses the store.
//
// Example, a module of a host that uses the service:
//
//     static const MEM_INITIALIZER registered("ROUTER");
//     print(MEM_DETAIL::stl_raw_sprintf("%d of %d nets", 3, 12));   // "3 of 12 nets"
//
//     const MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT silence;
//     cfg_get_double_value("thermal_limit", 85.0);                  // no message, even if the text is no number
//
// Example of an implementation, which writes the messages to the system's log:
//
//     void mem_msg_local_vdebug(const char* module_tag, const char* format, va_list args)
//     {
//         char text[1024];
//         if (std::vsnprintf(text, sizeof text, format, args) >= 0)
//             syslog(LOG_DEBUG, "%s: %s", module_tag, text);
//     }
#ifndef PLATFORM_MEM_MEM_H
#define PLATFORM_MEM_MEM_H

#include <cstdarg>
#include <string>

// Registers a module as long as the object lives. `module_tag` must outlive the object; only the pointer is kept.
class MEM_INITIALIZER
{
public:
    // Other dynamic initialisers may not have run yet when this runs.
    explicit MEM_INITIALIZER(const char* module_tag) noexcept;
    ~MEM_INITIALIZER();

    MEM_INITIALIZER(const MEM_INITIALIZER&) = delete;
    MEM_INITIALIZER& operator=(const MEM_INITIALIZER&) = delete;

    // Whether a living object registers a module with this tag. Any thread may call.
    static bool is_registered(const char* module_tag) noexcept;

private:
    const char* module_tag;
    MEM_INITIALIZER* next;
};

// Silences the debug messages of the calling thread from construction to destruction. Scopes may be nested. The thread
// that constructs an object must destroy it.
class MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT
{
public:
    MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT() noexcept;
    ~MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT();

    MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT(const MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT&) = delete;
    MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT& operator=(const MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT&) = delete;
};

// Emits one debug message of a module, unless the thread's messages are silenced. `format` and `args` are those of
// vprintf. The default writes nothing unless the environment variable ZON_MSG_DEBUG is set, and is neither empty nor
// "0". Then it writes one line to standard error. It cuts the text at 4095 bytes.
void mem_msg_local_vdebug(const char* module_tag, const char* format, va_list args)
    __attribute__((format(printf, 2, 0)));

namespace MEM_DETAIL
{
// The text that printf would write. Throws std::bad_alloc.
std::string stl_raw_sprintf(const char* format, ...) __attribute__((format(printf, 1, 2)));
}

#endif
