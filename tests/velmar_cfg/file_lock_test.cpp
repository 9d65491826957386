// The lock among runs, and what stands in its way.
#include "tools/velmar-cfg/base/file_lock.h"

#include <cstring>
#include <sys/file.h>

#include "tests/velmar_cfg/failing_calls.h"
#include "tests/velmar_cfg/replaced_file_test.h"

namespace
{
class FILE_LOCK_TEST : public REPLACED_FILE_TEST
{
protected:
    // How an attempt ends that waits so long.
    static std::string attempt(int milliseconds = 0)
    {
        return complaint_of(
            [=]
            {
                const FILE_PLACE place(file);
                const FILE_LOCK lock(place, in_milliseconds(milliseconds));
            });
    }

    static constexpr const char* mark = "A lock of velmar-cfg, which removes it.\n";
};

TEST_F(FILE_LOCK_TEST, keeps_others_out_and_leaves_nothing)
{
    {
        const FILE_PLACE place(file);
        const FILE_LOCK lock(place, in_milliseconds(0));
        EXPECT_EQ(read_file("user/file.lock"), mark);
        EXPECT_THAT(names_in("user"), testing::UnorderedElementsAre("file", "file.lock"));
        EXPECT_EQ(attempt(), "4 " + full_path() +
                                 ".lock: another velmar-cfg holds this lock; run the command again when it has ended");
        EXPECT_THAT(names_in("user"), testing::UnorderedElementsAre("file", "file.lock"));
    }
    EXPECT_THAT(names_in("user"), testing::ElementsAre("file"));
    EXPECT_EQ(attempt(), "");
}

TEST_F(FILE_LOCK_TEST, is_waited_for)
{
    const int held = open("user/file.lock", O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    // Let go when the second attempt comes.
    const CALL_WATCH watch(SYSTEM_CALL::FLOCK, {{2, [held] { return close(held); }}});
    EXPECT_EQ(attempt(10'000), "");
    EXPECT_GE(watch.calls_seen(), 2);
}

// Another user's, which cannot be opened, and goes before it is looked at.
TEST_F(FILE_LOCK_TEST, one_that_is_barred_and_goes_counts_for_nothing)
{
    const FILE_PLACE place(file);
    const CALL_WATCH watch(SYSTEM_CALL::OPENAT, {{1, [] { return EACCES; }}, {2, [] { return EACCES; }}});
    const FILE_LOCK lock(place, in_milliseconds(10'000));
    EXPECT_GE(watch.calls_seen(), 3);
    EXPECT_EQ(read_file("user/file.lock"), mark);
}

TEST_F(FILE_LOCK_TEST, one_that_is_removed_in_between_counts_for_nothing)
{
    write_file("user/file.lock", mark);
    const CALL_WATCH watch(SYSTEM_CALL::FLOCK, {{1, [] { return unlink("user/file.lock"); }}});
    EXPECT_EQ(attempt(10'000), "");
    EXPECT_EQ(watch.calls_seen(), 2);
}

// The file that was opened has no name any more; the one that has the name may be locked by somebody else.
TEST_F(FILE_LOCK_TEST, one_that_is_replaced_in_between_counts_for_nothing)
{
    write_file("user/file.lock", mark);
    const CALL_WATCH watch(SYSTEM_CALL::FLOCK, {{1, []
                                                 {
                                                     write_file("user/theirs", "theirs");
                                                     return rename("user/theirs", "user/file.lock");
                                                 }}});
    EXPECT_EQ(attempt(10'000), "");
    EXPECT_EQ(watch.calls_seen(), 2);
    EXPECT_EQ(read_file("user/file.lock"), "theirs");
}

TEST_F(FILE_LOCK_TEST, another_run_may_be_faster)
{
    const CALL_WATCH watch(SYSTEM_CALL::RENAMEAT2, {{1, []
                                                     {
                                                         write_file("user/file.lock", "theirs");
                                                         return 0;
                                                     }}});
    EXPECT_EQ(attempt(10'000), "");
    EXPECT_EQ(read_file("user/file.lock"), "theirs");
    EXPECT_THAT(names_in("user"), testing::UnorderedElementsAre("file", "file.lock"));
}

TEST_F(FILE_LOCK_TEST, needs_no_rename_that_leaves_others_alone)
{
    for (const int error : {EINVAL, ENOSYS, EOPNOTSUPP})
    {
        const CALL_WATCH watch(SYSTEM_CALL::RENAMEAT2, error);
        const FILE_PLACE place(file);
        const FILE_LOCK lock(place, in_milliseconds(0));
        EXPECT_EQ(watch.calls_seen(), 1);
        EXPECT_THAT(names_in("user"), testing::UnorderedElementsAre("file", "file.lock"));
        EXPECT_THAT(attempt(), testing::HasSubstr("holds this lock"));
    }
}

TEST_F(FILE_LOCK_TEST, a_file_system_without_locks_is_told_from_a_lock_that_is_held)
{
    for (const int error : {ENOLCK, EOPNOTSUPP, ENOSYS})
    {
        const CALL_WATCH watch(SYSTEM_CALL::FLOCK, error);
        for (const bool exists : {false, true})
        {
            if (exists)
                write_file("user/file.lock", "");
            EXPECT_EQ(attempt(60'000),
                      "4 " + full_path() + ".lock: " + std::strerror(error) +
                          "; this file system cannot lock files, so the file cannot be changed safely");
        }
        std::filesystem::remove("user/file.lock");
        EXPECT_THAT(names_in("user"), testing::ElementsAre("file"));
    }
    const CALL_WATCH watch(SYSTEM_CALL::FLOCK, EWOULDBLOCK);
    write_file("user/file.lock", "");
    EXPECT_THAT(attempt(), testing::HasSubstr("another velmar-cfg holds this lock"));
}

TEST_F(FILE_LOCK_TEST, follows_and_opens_nothing_but_a_file)
{
    write_file("target", "");
    std::filesystem::create_symlink("../target", "user/file.lock");
    EXPECT_EQ(attempt(60'000), "4 " + full_path() + ".lock: is a link, where velmar-cfg keeps its lock; remove it");
    EXPECT_EQ(read_file("target"), "");
    std::filesystem::remove("user/file.lock");

    std::filesystem::create_symlink("missing", "user/file.lock");
    EXPECT_EQ(attempt(60'000), "4 " + full_path() + ".lock: is a link, where velmar-cfg keeps its lock; remove it");
    EXPECT_FALSE(std::filesystem::exists("user/missing"));
    std::filesystem::remove("user/file.lock");

    ASSERT_EQ(mkfifo("user/file.lock", 0600), 0);
    EXPECT_EQ(attempt(60'000), "4 " + full_path() + ".lock: is no file, where velmar-cfg keeps its lock; remove it");
    std::filesystem::remove("user/file.lock");

    std::filesystem::create_directory("user/file.lock");
    EXPECT_EQ(attempt(60'000), "4 " + full_path() + ".lock: is no file, where velmar-cfg keeps its lock; remove it");
    std::filesystem::remove("user/file.lock");

    ASSERT_EQ(mknod("user/file.lock", S_IFSOCK | 0600, 0), 0);
    EXPECT_EQ(attempt(60'000), "4 " + full_path() + ".lock: is no file, where velmar-cfg keeps its lock; remove it");
}

// --- Other users ---

class FILE_LOCK_OF_OTHERS : public FILE_LOCK_TEST
{
protected:
    void SetUp() override
    {
        if (geteuid() != 0)
            GTEST_SKIP() << "only root can be another user";
        std::filesystem::permissions(temporary.path(), std::filesystem::perms::all);
        std::filesystem::permissions("user", std::filesystem::perms::all);
    }

    static std::string attempt_of_other(int milliseconds = 0)
    {
        return as_other_user([=] { return attempt(milliseconds); });
    }
};

TEST_F(FILE_LOCK_OF_OTHERS, is_named_as_theirs)
{
    const std::string expected =
        "4 " + full_path() +
        ".lock: a velmar-cfg of the user 'root' holds this lock; run the command again when it "
        "has ended";
    const mode_t mask = umask(077);
    const FILE_PLACE place(file);
    const FILE_LOCK lock(place, in_milliseconds(0));
    umask(mask);
    EXPECT_EQ(attempt_of_other(), expected);
    // Of one that may not be opened, nobody can tell who holds it: velmar-cfg's own locks are for all to see.
    ASSERT_EQ(chmod("user/file.lock", 0600), 0);
    EXPECT_EQ(attempt_of_other(30),
              "4 " + full_path() +
                  ".lock: belongs to the user 'root' and cannot be opened, so it is unknown whether a "
                  "velmar-cfg of that user holds it; nothing was changed, run the command again when the file has "
                  "gone");
}

TEST_F(FILE_LOCK_OF_OTHERS, is_waited_for)
{
    write_file("user/file.lock", mark);
    const int held = open("user/file.lock", O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    // The lock belongs to what was opened, which a child process shares.
    const std::string ended = as_other_user(
        [held]
        {
            const CALL_WATCH watch(SYSTEM_CALL::FLOCK, {{2, [held] { return flock(held, LOCK_UN); }}});
            const std::string complaint = attempt(10'000);
            return complaint + (watch.calls_seen() > 2 ? "waited" : "did not wait");
        });
    close(held);
    EXPECT_EQ(ended, "waited");
    EXPECT_FALSE(std::filesystem::exists("user/file.lock"));
}

TEST_F(FILE_LOCK_OF_OTHERS, what_a_killed_run_left_is_replaced_by_one_s_own)
{
    write_file("user/file.lock", mark);
    const std::string owner = as_other_user(
        []
        {
            const FILE_PLACE place(file);
            const FILE_LOCK lock(place, in_milliseconds(0));
            struct stat found;
            stat("user/file.lock", &found);
            return std::to_string(found.st_uid);
        });
    EXPECT_EQ(owner, "64711");
    EXPECT_FALSE(std::filesystem::exists("user/file.lock"));
}

TEST_F(FILE_LOCK_OF_OTHERS, what_a_killed_run_left_serves_where_it_cannot_be_removed)
{
    write_file("user/file.lock", mark);
    ASSERT_EQ(chmod("user", 01777), 0);
    EXPECT_EQ(attempt_of_other(), "");
    EXPECT_EQ(read_file("user/file.lock"), mark);
    const FILE_PLACE place(file);
    const FILE_LOCK lock(place, in_milliseconds(0));
    EXPECT_THAT(attempt_of_other(), testing::HasSubstr("a velmar-cfg of the user 'root' holds this lock"));
}
}
