#include "tests/support/counted_writes.h"

#include <atomic>
#include <cstdio>
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

#ifdef _LIBCPP_VERSION
// libc++'s streams write through the C library's, whose own calls of write nothing can replace, and flush these each
// time that they are flushed themselves. They also write nothing at all then, which does not count.
extern "C" __attribute__((visibility("default"))) size_t fwrite(const void* bytes, size_t size, size_t count,
                                                                FILE* file)
{
    static const auto next_fwrite = next<decltype(fwrite)>("fwrite");
    calls += count > 0 ? 1 : 0;
    return next_fwrite(bytes, size, count, file);
}
#else
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
#endif
