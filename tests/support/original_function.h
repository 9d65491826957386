// For executables that replace functions of the C library by their own.
#ifndef TESTS_SUPPORT_ORIGINAL_FUNCTION_H
#define TESTS_SUPPORT_ORIGINAL_FUNCTION_H

#include <cstdlib>
#include <dlfcn.h>

// The function of that name and type which was replaced.
template <typename FUNCTION>
FUNCTION* original(const char* name)
{
    void* const address = dlsym(RTLD_NEXT, name);
    if (address == nullptr)
        std::abort();
    return reinterpret_cast<FUNCTION*>(address);
}

#endif
