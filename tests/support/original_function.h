// For executables that replace functions of the C library by their own.
#ifndef TESTS_SUPPORT_ORIGINAL_FUNCTION_H
#define TESTS_SUPPORT_ORIGINAL_FUNCTION_H

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

// A 32-bit C library has some functions twice. With 64-bit sizes and times it is the second one, under the second name,
// that a program calls, and that is replaced.
inline const char* name_in_c_library(const char* name)
{
    constexpr const char* second_names[][2] = {{"fopen", "fopen64"},          {"open", "open64"},
                                               {"openat", "openat64"},        {"pread", "pread64"},
                                               {"fstat", "__fstat64_time64"}, {"fstatat", "__fstatat64_time64"},
                                               {"fcntl", "__fcntl_time64"}};
    for (const auto& [first, second] : second_names)
    {
        if (sizeof(void*) == 4 && std::strcmp(name, first) == 0)
            return second;
    }
    return name;
}

// The function of that name and type which was replaced.
template <typename FUNCTION>
FUNCTION* original(const char* name)
{
    void* const address = dlsym(RTLD_NEXT, name_in_c_library(name));
    if (address == nullptr)
        std::abort();
    return reinterpret_cast<FUNCTION*>(address);
}

#endif
