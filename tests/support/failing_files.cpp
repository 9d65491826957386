#include "tests/support/failing_files.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>

#include "tests/support/original_function.h"

namespace
{
constinit thread_local FILE_FAULT* armed = nullptr;

bool is_to_fail(FILE_CALL call)
{
    const int error = armed != nullptr ? armed->strikes(call) : 0;
    if (error != 0)
        errno = error;
    return error != 0;
}
}

FILE_FAULT::FILE_FAULT(FILE_CALL awaited, long nth, FAULT_LASTS how_long)
    : kind(awaited), calls_to_go(nth), lasts(how_long), errors{EIO}
{
    armed = this;
}

FILE_FAULT::FILE_FAULT(FILE_CALL awaited, long nth, std::vector<int> errors_of_calls)
    : kind(awaited), calls_to_go(nth), errors(std::move(errors_of_calls))
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

int FILE_FAULT::strikes(FILE_CALL call)
{
    if (call != kind || --calls_to_go > 0)
        return 0;
    if (before)
    {
        std::exchange(before, nullptr)(); // what it calls is not counted: nothing is awaited any more
        return 0;
    }
    if (lasts == FAULT_LASTS::FROM_THEN_ON)
        return errors.front();
    const auto nth_error = static_cast<std::size_t>(-calls_to_go);
    return nth_error < errors.size() ? errors[nth_error] : 0;
}

// --- In place of the C library's functions; their symbols must be seen by the libraries ---

#pragma GCC visibility push(default)
extern "C"
{
    std::FILE* fopen(const char* path, const char* mode)
    {
        return is_to_fail(FILE_CALL::OPEN) ? nullptr : original<decltype(fopen)>("fopen")(path, mode);
    }

#ifndef __USE_FILE_OFFSET64 // with which fopen has this name
    // What the file streams use.
    std::FILE* fopen64(const char* path, const char* mode)
    {
        return is_to_fail(FILE_CALL::OPEN) ? nullptr : original<decltype(fopen64)>("fopen64")(path, mode);
    }
#endif

    int open(const char* path, int flags, ...)
    {
        mode_t mode = 0;
        if ((flags & O_CREAT) != 0)
        {
            std::va_list arguments;
            va_start(arguments, flags);
            mode = va_arg(arguments, mode_t);
            va_end(arguments);
        }
        return is_to_fail(FILE_CALL::OPEN) ? -1 : original<decltype(open)>("open")(path, flags, mode);
    }

    ssize_t read(int file_descriptor, void* to, std::size_t size)
    {
        return is_to_fail(FILE_CALL::READ) ? -1 : original<decltype(read)>("read")(file_descriptor, to, size);
    }

    ssize_t pread(int file_descriptor, void* to, std::size_t size, off_t from)
    {
        return is_to_fail(FILE_CALL::READ) ? -1 : original<decltype(pread)>("pread")(file_descriptor, to, size, from);
    }

    ssize_t write(int file_descriptor, const void* from, std::size_t size)
    {
        return is_to_fail(FILE_CALL::WRITE) ? -1 : original<decltype(write)>("write")(file_descriptor, from, size);
    }

    ssize_t writev(int file_descriptor, const struct iovec* from, int count)
    {
        return is_to_fail(FILE_CALL::WRITE) ? -1 : original<decltype(writev)>("writev")(file_descriptor, from, count);
    }

    int fstat(int file_descriptor, struct stat* status) noexcept
    {
        return is_to_fail(FILE_CALL::SIZE) ? -1 : original<decltype(fstat)>("fstat")(file_descriptor, status);
    }

    int close(int file_descriptor)
    {
        const bool fails = is_to_fail(FILE_CALL::CLOSE);
        const int result = original<decltype(close)>("close")(file_descriptor);
        return fails ? -1 : result;
    }

    int fclose(std::FILE* file)
    {
        const bool fails = is_to_fail(FILE_CALL::CLOSE);
        const int result = original<decltype(fclose)>("fclose")(file);
        return fails ? EOF : result;
    }

#ifdef _LIBCPP_VERSION
    // libc++'s file streams read and write through these. What the C library then calls itself, nothing can replace. At
    // each flush the streams also write nothing at all, which does not count.
    std::size_t fread(void* to, std::size_t size, std::size_t count, std::FILE* file)
    {
        return is_to_fail(FILE_CALL::READ) ? 0 : original<decltype(fread)>("fread")(to, size, count, file);
    }

    std::size_t fwrite(const void* from, std::size_t size, std::size_t count, std::FILE* file)
    {
        const bool fails = count > 0 && is_to_fail(FILE_CALL::WRITE);
        return fails ? 0 : original<decltype(fwrite)>("fwrite")(from, size, count, file);
    }
#endif
}
#pragma GCC visibility pop
