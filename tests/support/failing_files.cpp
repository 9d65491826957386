#include "tests/support/failing_files.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>

namespace
{
constinit thread_local FILE_FAULT* armed = nullptr;

bool is_to_fail(FILE_CALL call)
{
    if (armed == nullptr || !armed->strikes(call))
        return false;
    errno = EIO;
    return true;
}

// The function that was replaced.
template <typename FUNCTION>
FUNCTION* original(const char* name)
{
    void* const address = dlsym(RTLD_NEXT, name);
    if (address == nullptr)
        std::abort();
    return reinterpret_cast<FUNCTION*>(address);
}

using READ_FILE = std::size_t(void* to, std::size_t size, std::size_t count, std::FILE* file);

std::size_t read_or_fail(READ_FILE* read, void* to, std::size_t size, std::size_t count, std::FILE* file)
{
    if (!is_to_fail(FILE_CALL::READ))
        return read(to, size, count, file);
    // The error is to be the stream's own, which it remembers: for this one call there is a directory in its place.
    const int file_descriptor = fileno(file);
    const int kept = dup(file_descriptor);
    const int directory = open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    dup2(directory, file_descriptor);
    const std::size_t nothing = read(to, size, count, file);
    dup2(kept, file_descriptor);
    close(directory);
    close(kept);
    return nothing;
}
}

FILE_FAULT::FILE_FAULT(FILE_CALL awaited, long nth, FAULT_LASTS how_long)
    : kind(awaited), calls_to_go(nth), lasts(how_long)
{
    armed = this;
}

FILE_FAULT::FILE_FAULT(FILE_CALL awaited, long nth, std::function<void()> action)
    : kind(awaited), calls_to_go(nth), before(std::move(action))
{
    armed = this;
}

FILE_FAULT::~FILE_FAULT()
{
    armed = nullptr;
}

bool FILE_FAULT::strikes(FILE_CALL call)
{
    if (call != kind)
        return false;
    if (calls_to_go <= 0)
        return lasts == FAULT_LASTS::FROM_THEN_ON;
    if (--calls_to_go > 0)
        return false;
    if (!before)
        return true;
    before(); // what it calls is not counted: nothing is awaited any more
    return false;
}

// --- In place of the C library's functions; their symbols must be seen by the libraries ---

#pragma GCC visibility push(default)
extern "C"
{
    std::FILE* fopen(const char* path, const char* mode)
    {
        return is_to_fail(FILE_CALL::OPEN) ? nullptr : original<decltype(fopen)>("fopen")(path, mode);
    }

    // What the file streams use.
    std::FILE* fopen64(const char* path, const char* mode)
    {
        return is_to_fail(FILE_CALL::OPEN) ? nullptr : original<decltype(fopen64)>("fopen64")(path, mode);
    }

    std::size_t fread(void* to, std::size_t size, std::size_t count, std::FILE* file)
    {
        return read_or_fail(original<READ_FILE>("fread"), to, size, count, file);
    }

    ssize_t read(int file_descriptor, void* to, std::size_t size)
    {
        return is_to_fail(FILE_CALL::READ) ? -1 : original<decltype(read)>("read")(file_descriptor, to, size);
    }

    ssize_t write(int file_descriptor, const void* from, std::size_t size)
    {
        return is_to_fail(FILE_CALL::WRITE) ? -1 : original<decltype(write)>("write")(file_descriptor, from, size);
    }

    ssize_t writev(int file_descriptor, const struct iovec* from, int count)
    {
        return is_to_fail(FILE_CALL::WRITE) ? -1 : original<decltype(writev)>("writev")(file_descriptor, from, count);
    }

    int fseek(std::FILE* file, long offset, int origin)
    {
        return is_to_fail(FILE_CALL::SEEK) ? -1 : original<decltype(fseek)>("fseek")(file, offset, origin);
    }

    long ftell(std::FILE* file)
    {
        return is_to_fail(FILE_CALL::TELL) ? -1 : original<decltype(ftell)>("ftell")(file);
    }

    int fclose(std::FILE* file)
    {
        const bool fails = is_to_fail(FILE_CALL::CLOSE);
        const int result = original<decltype(fclose)>("fclose")(file);
        return fails ? EOF : result;
    }
}
#pragma GCC visibility pop
