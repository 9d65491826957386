// A file "user/file" that is replaced in tests, and what other processes do to it.
#ifndef TESTS_VELMAR_CFG_REPLACED_FILE_TEST_H
#define TESTS_VELMAR_CFG_REPLACED_FILE_TEST_H

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "tests/support/isolated_test.h"
#include "tests/support/pipes.h"
#include "tools/velmar-cfg/base/errors.h"

// Gives the file a time of its last write that lies an hour back: it is not being written.
inline void make_old(const std::string& path)
{
    const struct timespec now_and_then[2] = {{0, UTIME_NOW}, {time(nullptr) - 3600, 0}};
    EXPECT_EQ(utimensat(AT_FDCWD, path.c_str(), now_and_then, 0), 0);
}

// "CODE TEXT" of the error that the call ends with, or "".
inline std::string complaint_of(const std::function<void()>& call)
{
    try
    {
        call();
        return "";
    }
    catch (const TOOL_ERROR& error)
    {
        return std::to_string(static_cast<int>(error.exit_code)) + " " + error.what();
    }
}

// What stands in a directory.
inline std::vector<std::string> names_in(const std::string& directory)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        names.push_back(entry.path().filename());
    return names;
}

// The number of a user and a group that no machine is likely to know by name, and that containers have as well.
constexpr uid_t other_user = 64711;

// Runs `work` in a child process as that user, and returns its text. Only root can do that.
inline std::string as_other_user(const std::function<std::string()>& work)
{
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t child = fork();
    if (child == 0)
    {
        std::string text = "no such user";
        if (setgid(other_user) == 0 && setuid(other_user) == 0)
            text = work();
        _exit(write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0 : 1);
    }
    close(ends[1]);
    std::string text = read_to_end(ends[0]);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    return text;
}

class REPLACED_FILE_TEST : public ISOLATED_TEST
{
protected:
    REPLACED_FILE_TEST()
    {
        write_file(file, "old\n");
        make_old(file);
    }

    std::string full_path() const
    {
        return std::filesystem::canonical("user").string() + "/file";
    }

    static std::chrono::steady_clock::time_point in_milliseconds(int count)
    {
        return std::chrono::steady_clock::now() + std::chrono::milliseconds(count);
    }

    static constexpr const char* file = "user/file";
};

#endif
