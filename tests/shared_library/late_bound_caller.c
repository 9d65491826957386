#include "tests/shared_library/late_bound_caller.h"

#include <dlfcn.h>
#include <stdbool.h>
#include <stddef.h>
#include <string.h>

typedef bool IS_ON(const char* name, bool default_value);
typedef void GET_INT_VALUE(const char* name, int* value, int default_value);
typedef int GET_VALUE_FOR_ZANTH(void* ignored, const char* const* name, char* buffer, unsigned int buffer_size);

// ISO C has no conversion from a data pointer to a function pointer; their bytes are the same.
static bool find(void* library, const char* name, void* function, size_t size)
{
    void* const address = dlsym(library, name);
    memcpy(function, &address, size);
    return address != NULL;
}

int ask_from_c(const char* library_path, struct LATE_BOUND_ANSWERS* answers)
{
    IS_ON* is_on;
    GET_INT_VALUE* get_int_value;
    GET_VALUE_FOR_ZANTH* get_value_for_zanth;
    const char* const text_name = "text";

    void* const library = dlopen(library_path, RTLD_NOW | RTLD_LOCAL);
    if (library == NULL)
        return 1;
    if (!find(library, "cfg_dyn_is_on", &is_on, sizeof is_on) ||
        !find(library, "cfg_dyn_get_int_value", &get_int_value, sizeof get_int_value) ||
        !find(library, "cfg_ini_get_value_for_zanth", &get_value_for_zanth, sizeof get_value_for_zanth))
        return 2;

    answers->on = is_on("switch", false) ? 1 : 0;
    answers->off_by_default = is_on("unknown", false) ? 1 : 0;
    get_int_value("number", &answers->number, -1);
    get_int_value("unknown", &answers->number_by_default, -1);
    answers->short_buffer_status = get_value_for_zanth(NULL, &text_name, answers->text, 1);
    answers->text_status = get_value_for_zanth(NULL, &text_name, answers->text, sizeof answers->text - 1);
    return dlclose(library) == 0 ? 0 : 3;
}
