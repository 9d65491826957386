#include "tests/support/counted_writes.h"

#include <atomic>
#include <dlfcn.h>
#include <sys/uio.h>
#include <unistd.h>

namespace
{
std::atomic<long> calls;

// The function that this executable's one stands before.
template <typename FUNCTION>
FUNCTION* next(const char* name)
{
    return reinterpret_cast<FUNCTION*>(dlsym(RTLD_NEXT, name));
}
}

long write_calls()
{
    return calls;
}

// Visible to the C++ library, whose streams write by the first function of this name.
extern "C" __attribute__((visibility("default"))) ssize_t write(int descriptor, const void* bytes, size_t count)
{
    static const auto next_write = next<decltype(write)>("write");
    ++calls;
    return next_write(descriptor, bytes, count);
}

extern "C" __attribute__((visibility("default"))) ssize_t writev(int descriptor, const iovec* pieces, int count)
{
    static const auto next_writev = next<decltype(writev)>("writev");
    ++calls;
    return next_writev(descriptor, pieces, count);
}
