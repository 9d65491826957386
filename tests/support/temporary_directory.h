// A directory of the test's own.
#ifndef TESTS_SUPPORT_TEMPORARY_DIRECTORY_H
#define TESTS_SUPPORT_TEMPORARY_DIRECTORY_H

#include <string>

// Created in TMPDIR, or in /tmp if that is not set. Removed with all that is in it.
class TEMPORARY_DIRECTORY
{
public:
    TEMPORARY_DIRECTORY();
    ~TEMPORARY_DIRECTORY();
    TEMPORARY_DIRECTORY(const TEMPORARY_DIRECTORY&) = delete;
    TEMPORARY_DIRECTORY& operator=(const TEMPORARY_DIRECTORY&) = delete;

    // Without a final "/".
    const std::string& path() const
    {
        return directory;
    }

    // The full path of something in the directory.
    std::string path(const std::string& relative) const
    {
        return directory + "/" + relative;
    }

private:
    std::string directory;
};

// Writes a file, its directories made as needed. A failure fails the test.
void write_file(const std::string& path, const std::string& bytes);

// The bytes of a file. A failure fails the test.
std::string read_file(const std::string& path);

#endif
