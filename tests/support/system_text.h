// What the system says of an error, in the language of the locale that a test runs in.
#ifndef TESTS_SUPPORT_SYSTEM_TEXT_H
#define TESTS_SUPPORT_SYSTEM_TEXT_H

#include <string>
#include <system_error>

inline std::string system_text(std::errc error)
{
    return std::make_error_code(error).message();
}

#endif
