#include "tests/velmar_cfg/failing_calls.h"

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utility>

#include "tests/support/original_function.h"

namespace
{
constinit thread_local std::array<CALL_WATCH*, 13> watches = {};
constinit thread_local bool random_bytes_are_zero = false;

bool fails(SYSTEM_CALL call)
{
    CALL_WATCH* const watch = watches[static_cast<std::size_t>(call)];
    const int error = watch != nullptr ? watch->strikes() : 0;
    if (error != 0)
        errno = error;
    return error != 0;
}
}

CALL_WATCH::CALL_WATCH(SYSTEM_CALL call, std::map<int, std::function<int()>> actions_by_call)
    : kind(call), actions(std::move(actions_by_call))
{
    watches[static_cast<std::size_t>(kind)] = this;
}

CALL_WATCH::CALL_WATCH(SYSTEM_CALL call, int error) : kind(call), every(error)
{
    watches[static_cast<std::size_t>(kind)] = this;
}

CALL_WATCH::~CALL_WATCH()
{
    watches[static_cast<std::size_t>(kind)] = nullptr;
}

int CALL_WATCH::strikes()
{
    const auto action = actions.find(++seen);
    return action == actions.end() ? every : action->second();
}

ZERO_RANDOM_BYTES::ZERO_RANDOM_BYTES()
{
    random_bytes_are_zero = true;
}

ZERO_RANDOM_BYTES::~ZERO_RANDOM_BYTES()
{
    random_bytes_are_zero = false;
}

#pragma GCC visibility push(default)
extern "C"
{
    int flock(int file, int operation) noexcept
    {
        return fails(SYSTEM_CALL::FLOCK) ? -1 : original<int(int, int)>("flock")(file, operation);
    }

    int renameat2(int from_directory, const char* from, int to_directory, const char* to, unsigned int flags) noexcept
    {
        return fails(SYSTEM_CALL::RENAMEAT2) ? -1
                                             : original<int(int, const char*, int, const char*, unsigned int)>(
                                                   "renameat2")(from_directory, from, to_directory, to, flags);
    }

    int renameat(int from_directory, const char* from, int to_directory, const char* to) noexcept
    {
        return fails(SYSTEM_CALL::RENAMEAT) ? -1
                                            : original<int(int, const char*, int, const char*)>("renameat")(
                                                  from_directory, from, to_directory, to);
    }

    int fsync(int file)
    {
        return fails(SYSTEM_CALL::FSYNC) ? -1 : original<int(int)>("fsync")(file);
    }

    int fchown(int file, uid_t owner, gid_t group) noexcept
    {
        return fails(SYSTEM_CALL::FCHOWN) ? -1 : original<int(int, uid_t, gid_t)>("fchown")(file, owner, group);
    }

    int fsetxattr(int file, const char* name, const void* value, size_t size, int flags) noexcept
    {
        return fails(SYSTEM_CALL::FSETXATTR) ? -1
                                             : original<int(int, const char*, const void*, size_t, int)>("fsetxattr")(
                                                   file, name, value, size, flags);
    }

    int fchmod(int file, mode_t mode) noexcept
    {
        return fails(SYSTEM_CALL::FCHMOD) ? -1 : original<int(int, mode_t)>("fchmod")(file, mode);
    }

    int fremovexattr(int file, const char* name) noexcept
    {
        return fails(SYSTEM_CALL::FREMOVEXATTR) ? -1 : original<int(int, const char*)>("fremovexattr")(file, name);
    }

    ssize_t fgetxattr(int file, const char* name, void* value, size_t size) noexcept
    {
        return fails(SYSTEM_CALL::FGETXATTR)
                   ? -1
                   : original<ssize_t(int, const char*, void*, size_t)>("fgetxattr")(file, name, value, size);
    }

    ssize_t flistxattr(int file, char* names, size_t size) noexcept
    {
        return fails(SYSTEM_CALL::FLISTXATTR) ? -1
                                              : original<ssize_t(int, char*, size_t)>("flistxattr")(file, names, size);
    }

    int fcntl(int file, int command, ...)
    {
        std::va_list arguments;
        va_start(arguments, command);
        void* const argument = va_arg(arguments, void*); // an int or a pointer, passed on as it came
        va_end(arguments);
        if (command == F_SETLEASE && fails(SYSTEM_CALL::SETLEASE))
            return -1;
        return original<int(int, int, ...)>("fcntl")(file, command, argument);
    }

    int fstatat(int directory, const char* path, struct stat* result, int flags) noexcept
    {
        return fails(SYSTEM_CALL::FSTATAT)
                   ? -1
                   : original<int(int, const char*, struct stat*, int)>("fstatat")(directory, path, result, flags);
    }

    ssize_t getrandom(void* buffer, size_t size, unsigned int flags)
    {
        if (!random_bytes_are_zero)
            return original<ssize_t(void*, size_t, unsigned int)>("getrandom")(buffer, size, flags);
        std::memset(buffer, 0, size);
        return static_cast<ssize_t>(size);
    }

    int openat(int directory, const char* path, int flags, ...)
    {
        mode_t mode = 0;
        if ((flags & O_CREAT) != 0)
        {
            std::va_list arguments;
            va_start(arguments, flags);
            mode = va_arg(arguments, mode_t);
            va_end(arguments);
        }
        return fails(SYSTEM_CALL::OPENAT)
                   ? -1
                   : original<int(int, const char*, int, ...)>("openat")(directory, path, flags, mode);
    }
}
#pragma GCC visibility pop
