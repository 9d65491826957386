// Changes to the process that a test takes back: environment variables, the current directory, the locale.
#ifndef TESTS_SUPPORT_SCOPED_PROCESS_STATE_H
#define TESTS_SUPPORT_SCOPED_PROCESS_STATE_H

#include <map>
#include <optional>
#include <string>

// Remembers each variable that it changes, and restores them all at its end.
class SCOPED_ENVIRONMENT
{
public:
    SCOPED_ENVIRONMENT() = default;
    ~SCOPED_ENVIRONMENT();
    SCOPED_ENVIRONMENT(const SCOPED_ENVIRONMENT&) = delete;
    SCOPED_ENVIRONMENT& operator=(const SCOPED_ENVIRONMENT&) = delete;

    void set(const std::string& name, const std::string& value);
    void unset(const std::string& name);

private:
    void remember(const std::string& name);

    std::map<std::string, std::optional<std::string>> before;
};

class SCOPED_CURRENT_DIRECTORY
{
public:
    explicit SCOPED_CURRENT_DIRECTORY(const std::string& directory);
    ~SCOPED_CURRENT_DIRECTORY();
    SCOPED_CURRENT_DIRECTORY(const SCOPED_CURRENT_DIRECTORY&) = delete;
    SCOPED_CURRENT_DIRECTORY& operator=(const SCOPED_CURRENT_DIRECTORY&) = delete;

private:
    std::string before;
};

class SCOPED_LOCALE
{
public:
    // Throws if there is no such locale. Searches `directory`, if one is given, instead of the machine's own locales.
    explicit SCOPED_LOCALE(const char* name, const char* directory = nullptr);
    ~SCOPED_LOCALE();
    SCOPED_LOCALE(const SCOPED_LOCALE&) = delete;
    SCOPED_LOCALE& operator=(const SCOPED_LOCALE&) = delete;

private:
    std::string before;
};

// A locale whose decimal point is a comma and whose letters include accented ones. Taken from the build tree, so that
// the machine need not have it.
class SCOPED_COMMA_LOCALE : public SCOPED_LOCALE
{
public:
    SCOPED_COMMA_LOCALE();
};

// A locale of single bytes in which the byte 0xA0 is white space, as in no locale that machines have. Taken from the
// build tree as well.
class SCOPED_WHITE_A0_LOCALE : public SCOPED_LOCALE
{
public:
    SCOPED_WHITE_A0_LOCALE();
};

// The locale in which numbers are written as in the tests.
class SCOPED_POINT_LOCALE : public SCOPED_LOCALE
{
public:
    SCOPED_POINT_LOCALE() : SCOPED_LOCALE("C") {}
};

#endif
