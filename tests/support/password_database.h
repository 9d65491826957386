// A password database of the test's own. An executable that links password_database.cpp has the C library's getpwuid_r
// replaced, for itself and for the libraries that it is linked to.
#ifndef TESTS_SUPPORT_PASSWORD_DATABASE_H
#define TESTS_SUPPORT_PASSWORD_DATABASE_H

#include <optional>
#include <string>

// Answers in place of the real database until destruction; one at a time, one thread.
class SCOPED_PASSWORD_DATABASE
{
public:
    // Without a home directory, there is no entry for the user.
    explicit SCOPED_PASSWORD_DATABASE(std::optional<std::string> home_directory);
    ~SCOPED_PASSWORD_DATABASE();
    SCOPED_PASSWORD_DATABASE(const SCOPED_PASSWORD_DATABASE&) = delete;
    SCOPED_PASSWORD_DATABASE& operator=(const SCOPED_PASSWORD_DATABASE&) = delete;

    // The next calls fail with this error.
    void fail(int error, int times);

    // How many calls were made since construction.
    int calls() const;

    // For the replaced function.
    int look_up(struct passwd* entry, char* texts, std::size_t size, struct passwd** found);

private:
    const std::optional<std::string> home;
    int error_to_come = 0;
    int failures_to_come = 0;
    int calls_made = 0;
};

#endif
