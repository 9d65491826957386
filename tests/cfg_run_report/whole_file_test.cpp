#include "cfg_run_report/whole_file.h"

#include <filesystem>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/isolated_test.h"
#include "tests/support/system_text.h"

namespace
{
class WHOLE_FILE_TEST : public ISOLATED_TEST
{
protected:
    std::size_t files_in_directory() const
    {
        const std::filesystem::directory_iterator entries(temporary.path("cwd"));
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }

    mode_t mode_of(const std::string& path) const
    {
        struct stat found = {};
        EXPECT_EQ(0, stat(path.c_str(), &found));
        return found.st_mode & 07777;
    }

    const std::string file = temporary.path("cwd/file");
};

using WHOLE_FILE = WHOLE_FILE_TEST;

TEST_F(WHOLE_FILE, IsMadeWithTheModeThatTheUmaskLeaves)
{
    const mode_t before = umask(027);
    EXPECT_EQ("", write_whole_file(file, std::string("bytes\0\n", 7)));
    umask(before);
    EXPECT_EQ(std::string("bytes\0\n", 7), read_file(file));
    EXPECT_EQ(0640U, mode_of(file));
    EXPECT_EQ(1U, files_in_directory());
}

TEST_F(WHOLE_FILE, ReplacesAnExistingFileAndKeepsItsMode)
{
    write_file(file, "a longer content than the new one");
    ASSERT_EQ(0, chmod(file.c_str(), 0604));
    EXPECT_EQ("", write_whole_file(file, "new"));
    EXPECT_EQ("new", read_file(file));
    EXPECT_EQ(0604U, mode_of(file));
    EXPECT_EQ(1U, files_in_directory());
}

TEST_F(WHOLE_FILE, MayBeEmpty)
{
    write_file(file, "old");
    EXPECT_EQ("", write_whole_file(file, ""));
    EXPECT_EQ("", read_file(file));
}

TEST_F(WHOLE_FILE, ByANameWithoutDirectoryIsWrittenHere)
{
    EXPECT_EQ("", write_whole_file("file", "new"));
    EXPECT_EQ("new", read_file(file));
}

TEST_F(WHOLE_FILE, ThroughALinkReplacesWhatTheLinkLeadsTo)
{
    const std::string elsewhere = temporary.path("elsewhere/target");
    write_file(elsewhere, "old");
    std::filesystem::create_symlink(elsewhere, file);
    EXPECT_EQ("", write_whole_file(file, "new"));
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ("new", read_file(elsewhere));
}

TEST_F(WHOLE_FILE, WhatAKilledProcessLeftBehindIsNotInTheWay)
{
    const std::string left_behind = file + "." + std::to_string(getpid()) + ".0.tmp";
    write_file(left_behind, "half");
    EXPECT_EQ("", write_whole_file(file, "new"));
    EXPECT_EQ("new", read_file(file));
    EXPECT_EQ("half", read_file(left_behind));
}

TEST_F(WHOLE_FILE, ADeviceIsWrittenToAsItIs)
{
    EXPECT_EQ("", write_whole_file("/dev/null", "new"));
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(WHOLE_FILE, AFullDeviceIsAFailure)
{
    EXPECT_EQ(system_text(std::errc::no_space_on_device), write_whole_file("/dev/full", "new"));
}

TEST_F(WHOLE_FILE, ADirectoryIsAFailure)
{
    EXPECT_EQ(system_text(std::errc::is_a_directory), write_whole_file(temporary.path("cwd"), "new"));
    EXPECT_EQ(0U, files_in_directory());
}

TEST_F(WHOLE_FILE, InADirectoryThatIsNotThereIsAFailure)
{
    EXPECT_EQ(system_text(std::errc::no_such_file_or_directory),
              write_whole_file(temporary.path("nowhere/file"), "new"));
}

// A limit stands for the full disk: the writing breaks off in the middle.
void limit_file_size(rlim_t bytes)
{
    signal(SIGXFSZ, SIG_IGN);
    struct rlimit limit = {};
    limit.rlim_cur = bytes;
    limit.rlim_max = bytes;
    ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &limit));
}

TEST_F(WHOLE_FILE, AFailureInTheMiddleLeavesTheOldFileAndNothingElse)
{
    write_file(file, "old");
    EXPECT_IN_FRESH_PROCESS({
        limit_file_size(4096);
        EXPECT_EQ(system_text(std::errc::file_too_large), write_whole_file(file, std::string(100000, 'x')));
        EXPECT_EQ("old", read_file(file));
        EXPECT_EQ(1U, files_in_directory());
    });
}

// To the superuser nothing is write-protected: for this scope the process acts as somebody else.
class AS_NOBODY
{
public:
    AS_NOBODY() : before(geteuid())
    {
        constexpr uid_t nobody = 65534;
        EXPECT_TRUE(before != 0 || seteuid(nobody) == 0);
    }

    ~AS_NOBODY()
    {
        EXPECT_EQ(0, seteuid(before));
    }

    AS_NOBODY(const AS_NOBODY&) = delete;
    AS_NOBODY& operator=(const AS_NOBODY&) = delete;

private:
    const uid_t before;
};

TEST_F(WHOLE_FILE, AWriteProtectedFileIsLeftAlone)
{
    write_file(file, "old");
    ASSERT_EQ(0, chmod(file.c_str(), 0444));
    ASSERT_EQ(0, chmod(temporary.path().c_str(), 0777));
    ASSERT_EQ(0, chmod(temporary.path("cwd").c_str(), 0777));
    {
        const AS_NOBODY as_nobody;
        EXPECT_EQ(system_text(std::errc::permission_denied), write_whole_file(file, "new"));
    }
    EXPECT_EQ("old", read_file(file));
    EXPECT_EQ(1U, files_in_directory());
}

TEST_F(WHOLE_FILE, InAWriteProtectedDirectoryIsAFailure)
{
    write_file(file, "old");
    ASSERT_EQ(0, chmod(file.c_str(), 0666));
    ASSERT_EQ(0, chmod(temporary.path().c_str(), 0555));
    ASSERT_EQ(0, chmod(temporary.path("cwd").c_str(), 0555));
    {
        const AS_NOBODY as_nobody;
        EXPECT_EQ(system_text(std::errc::permission_denied), write_whole_file(file, "new"));
    }
    ASSERT_EQ(0, chmod(temporary.path().c_str(), 0777));
    ASSERT_EQ(0, chmod(temporary.path("cwd").c_str(), 0777));
    EXPECT_EQ("old", read_file(file));
    EXPECT_EQ(1U, files_in_directory());
}
}
