// Makes a call to the C library's file functions fail, or something happen just before it. An executable that links
// failing_files.cpp has those functions replaced, for itself and for the libraries that it is linked to.
#ifndef TESTS_SUPPORT_FAILING_FILES_H
#define TESTS_SUPPORT_FAILING_FILES_H

#include <functional>
#include <vector>

enum class FILE_CALL
{
    OPEN,  // open, and fopen as the file streams use it
    READ,  // read and pread; with libc++ also fread as the file streams use it
    WRITE, // write and writev, as the file streams use them; with libc++ also fwrite, which its streams use
    SIZE,  // fstat
    CLOSE, // close, and fclose as the file streams use it; the file is closed nevertheless
};

enum class FAULT_LASTS
{
    ONCE,
    FROM_THEN_ON,
};

// Waits for the nth call of that kind by the calling thread, until destruction. One object at a time.
class FILE_FAULT
{
public:
    // The call fails, as after an input or output error.
    FILE_FAULT(FILE_CALL awaited, long nth, FAULT_LASTS how_long = FAULT_LASTS::ONCE);

    // That call and those after it fail with these errors, one each; 0 stands for one that does not fail.
    FILE_FAULT(FILE_CALL awaited, long nth, std::vector<int> errors);

    // `action` runs before the call, which then does what it always does.
    FILE_FAULT(FILE_CALL awaited, long nth, std::function<void()> action);

    ~FILE_FAULT();
    FILE_FAULT(const FILE_FAULT&) = delete;
    FILE_FAULT& operator=(const FILE_FAULT&) = delete;

    bool was_reached() const
    {
        return calls_to_go <= 0;
    }

    // How many calls there were, including the awaited one. Meaningful only once that was reached.
    long calls_seen() const
    {
        return 1 - calls_to_go;
    }

    // For the replaced functions: counts a call. Returns the error with which it must fail, or 0.
    int strikes(FILE_CALL call);

private:
    const FILE_CALL kind;
    long calls_to_go;
    const FAULT_LASTS lasts = FAULT_LASTS::ONCE;
    std::vector<int> errors;
    std::function<void()> before;
};

#endif
