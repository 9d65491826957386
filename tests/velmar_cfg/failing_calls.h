// Makes calls that replace, lock and mark files fail, or something happen just before one. For executables that link
// failing_calls.cpp, which has these functions of the C library replaced.
#ifndef TESTS_VELMAR_CFG_FAILING_CALLS_H
#define TESTS_VELMAR_CFG_FAILING_CALLS_H

#include <functional>
#include <map>

enum class SYSTEM_CALL
{
    FLOCK,
    RENAMEAT2,
    RENAMEAT,
    FSYNC,
    FCHOWN,
    FCHMOD,
    FSETXATTR,
    FREMOVEXATTR,
    FGETXATTR,
    FLISTXATTR,
    SETLEASE, // fcntl that asks for a lease
    FSTATAT,
    OPENAT,
};

// Counts the calls of that kind of the calling thread while it lives. One at a time for each kind.
class CALL_WATCH
{
public:
    // What happens before the nth call, counted from 1: its result is the error that the call fails with instead of
    // being made, or 0. Calls that are not named are made as they are.
    CALL_WATCH(SYSTEM_CALL call, std::map<int, std::function<int()>> actions_by_call);

    // Every call fails with this error.
    CALL_WATCH(SYSTEM_CALL call, int error);

    ~CALL_WATCH();
    CALL_WATCH(const CALL_WATCH&) = delete;
    CALL_WATCH& operator=(const CALL_WATCH&) = delete;

    int calls_seen() const
    {
        return seen;
    }

    // For the replaced functions.
    int strikes();

private:
    const SYSTEM_CALL kind;
    std::map<int, std::function<int()>> actions;
    const int every = 0;
    int seen = 0;
};

// While it lives, the calling thread gets zeros as random bytes.
class ZERO_RANDOM_BYTES
{
public:
    ZERO_RANDOM_BYTES();
    ~ZERO_RANDOM_BYTES();
    ZERO_RANDOM_BYTES(const ZERO_RANDOM_BYTES&) = delete;
    ZERO_RANDOM_BYTES& operator=(const ZERO_RANDOM_BYTES&) = delete;
};

#endif
