// A host's part that is written in C, and knows the library by its path and by the plain names of its entry points.
#ifndef TESTS_SHARED_LIBRARY_LATE_BOUND_CALLER_H
#define TESTS_SHARED_LIBRARY_LATE_BOUND_CALLER_H

#ifdef __cplusplus
extern "C"
{
#endif

    // What the entry points answered; -1 in place of what could not be asked.
    struct LATE_BOUND_ANSWERS
    {
        int on;
        int off_by_default;
        int number;
        int number_by_default;
        int text_status;
        int short_buffer_status;
        char text[16];
    };

    // Loads the library, asks for "switch", "number", "text" and "unknown", and unloads the library again. 0, or the
    // number of the step that failed.
    int ask_from_c(const char* library_path, struct LATE_BOUND_ANSWERS* answers);

#ifdef __cplusplus
}
#endif

#endif
