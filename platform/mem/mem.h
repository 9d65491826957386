// Memory service: module registration, debug messages and text formatting.
//
// What the library expects. Registration happens during static initialisation and must not allocate, throw, or rely on
// other dynamic initialisers. A debug message may be emitted from any thread; while settings files are read the store
// silences the reading thread's messages. Emitting must not throw; it may come with the store's lock held (a callback
// may read a variable), so it must not wait for a thread that uses the store.
#ifndef PLATFORM_MEM_MEM_H
#define PLATFORM_MEM_MEM_H

#include <cstdarg>
#include <string>

// Registers a module for its lifetime. `module_tag` must outlive the object.
class MEM_INITIALIZER
{
public:
    // Runs before other dynamic initialisers may have run.
    explicit MEM_INITIALIZER(const char* module_tag) noexcept;
    ~MEM_INITIALIZER();

    MEM_INITIALIZER(const MEM_INITIALIZER&) = delete;
    MEM_INITIALIZER& operator=(const MEM_INITIALIZER&) = delete;

    // Whether some living object registers a module of this tag.
    static bool is_registered(const char* module_tag) noexcept;

private:
    const char* module_tag;
    MEM_INITIALIZER* next;
};

// Silences the debug messages of the calling thread from construction to destruction; may be nested.
class MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT
{
public:
    MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT() noexcept;
    ~MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT();

    MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT(const MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT&) = delete;
    MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT& operator=(const MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT&) = delete;
};

// Emits one debug message of a module; `format` and `args` are those of vprintf. The default writes a line to standard
// error when the environment variable ZON_MSG_DEBUG is set to anything but the empty text and "0", and nothing
// otherwise.
void mem_msg_local_vdebug(const char* module_tag, const char* format, va_list args)
    __attribute__((format(printf, 2, 0)));

namespace MEM_DETAIL
{
// The text that printf would write; throws std::bad_alloc.
std::string stl_raw_sprintf(const char* format, ...) __attribute__((format(printf, 1, 2)));
}

#endif
