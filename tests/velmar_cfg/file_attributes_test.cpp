// What one file takes over from another, and how it is told what cannot be taken over.
#include "tools/velmar-cfg/base/file_attributes.h"

#include <sys/xattr.h>

#include "tests/support/failing_files.h"
#include "tests/velmar_cfg/failing_calls.h"
#include "tests/velmar_cfg/replaced_file_test.h"

namespace
{
class FILE_ATTRIBUTES : public REPLACED_FILE_TEST
{
protected:
    FILE_ATTRIBUTES()
    {
        write_file("new", "");
        from = open(file, O_RDONLY | O_CLOEXEC);
        to = open("new", O_RDWR | O_CLOEXEC);
    }

    ~FILE_ATTRIBUTES() override
    {
        close(from);
        close(to);
    }

    // The new file without attributes, then what becomes of it.
    std::string take_over() const
    {
        for (const char* const name : {"user.note", "user.other", "user.more"})
            fremovexattr(to, name);
        return take_over_attributes(from, to);
    }

    static bool set(int file, const char* name, const std::string& value)
    {
        return fsetxattr(file, name, value.data(), value.size(), 0) == 0;
    }

    static std::string get(int file, const char* name)
    {
        char value[1000];
        const ssize_t size = fgetxattr(file, name, value, sizeof value);
        return size < 0 ? "none" : std::string(value, static_cast<std::size_t>(size));
    }

    int from = -1;
    int to = -1;
};

constexpr const char* attributes_not_read = "its attributes cannot be kept: Input/output error";
constexpr const char* attributes_not_kept = "its access control list and attributes cannot be kept on this file system";

TEST_F(FILE_ATTRIBUTES, that_cannot_be_read_are_not_taken_for_none)
{
    // With attributes of both, of one and of none.
    for (const int owners : {0, 1, 2})
    {
        if (owners > 0 && !set(from, "user.note", "mine"))
            GTEST_SKIP() << "no attributes here";
        for (const SYSTEM_CALL call : {SYSTEM_CALL::FLISTXATTR, SYSTEM_CALL::FGETXATTR})
        {
            int failures = 0;
            for (int nth = 1;; ++nth)
            {
                SCOPED_TRACE(std::to_string(owners) + " " + std::to_string(nth));
                fremovexattr(to, "user.note");
                ASSERT_TRUE(owners < 2 || set(to, "user.other", "own"));
                const CALL_WATCH watch(call, {{nth, [] { return EIO; }}});
                const std::string problem = take_over_attributes(from, to);
                if (watch.calls_seen() < nth)
                    break;
                // Both files' are read before, and compared behind.
                EXPECT_TRUE(problem == attributes_not_read || problem == attributes_not_kept) << problem;
                if (call == SYSTEM_CALL::FLISTXATTR && nth <= 2)
                {
                    EXPECT_EQ(problem, attributes_not_read);
                }
                ++failures;
                ASSERT_LT(nth, 100);
            }
            EXPECT_TRUE(failures >= 4 || (call == SYSTEM_CALL::FGETXATTR && owners == 0)) << failures;
        }
    }
}

TEST_F(FILE_ATTRIBUTES, are_none_on_a_file_system_that_knows_none)
{
    const CALL_WATCH watch(SYSTEM_CALL::FLISTXATTR, ENOTSUP);
    EXPECT_EQ(take_over(), "");
}

// Another program changes them between the call that asks for their size and the one that reads them.
TEST_F(FILE_ATTRIBUTES, that_grow_or_shrink_while_they_are_read_are_read_again)
{
    for (const auto& [before, meanwhile] :
         {std::pair{"short", "much longer than that"}, {"long enough", "x"}, {"x", ""}, {"", "grown"}})
    {
        if (!set(from, "user.note", before))
            GTEST_SKIP() << "no attributes here";
        const CALL_WATCH watch(SYSTEM_CALL::FGETXATTR, {{2, [this, value = std::string(meanwhile)]
                                                         { return set(from, "user.note", value) ? 0 : EIO; }}});
        EXPECT_EQ(take_over(), "") << meanwhile;
        EXPECT_EQ(get(to, "user.note"), meanwhile);
    }
    // The names themselves.
    const CALL_WATCH watch(SYSTEM_CALL::FLISTXATTR,
                           {{2, [this] { return set(from, "user.more", "added") ? 0 : EIO; }}});
    EXPECT_EQ(take_over(), "");
    EXPECT_EQ(get(to, "user.more"), "added");
    fremovexattr(from, "user.more");
    EXPECT_EQ(take_over(), "");
    EXPECT_EQ(get(to, "user.more"), "none");
}

TEST_F(FILE_ATTRIBUTES, that_the_other_has_not_are_removed)
{
    if (!set(from, "user.note", "mine") || !set(to, "user.more", "surplus"))
        GTEST_SKIP() << "no attributes here";
    {
        const CALL_WATCH watch(SYSTEM_CALL::FREMOVEXATTR, EPERM);
        EXPECT_EQ(take_over_attributes(from, to),
                  "that it has no attribute user.more cannot be kept: Operation not permitted");
    }
    EXPECT_EQ(take_over_attributes(from, to), "");
    EXPECT_EQ(get(to, "user.more"), "none");
    EXPECT_EQ(get(to, "user.note"), "mine");
    EXPECT_EQ(get(from, "user.note"), "mine");
}

// The system gives them by rules of its own.
TEST_F(FILE_ATTRIBUTES, of_security_are_left_to_the_system)
{
    if (!set(from, "security.note", "mine") || !set(to, "security.other", "own"))
        GTEST_SKIP() << "only root can set them, and not everywhere";
    EXPECT_EQ(take_over(), "");
    EXPECT_EQ(get(to, "security.note"), "none");
    EXPECT_EQ(get(to, "security.other"), "own");
}

// A file system may refuse to set what it gave itself.
TEST_F(FILE_ATTRIBUTES, that_are_the_same_are_not_set)
{
    if (!set(from, "user.note", "mine") || !set(to, "user.note", "mine"))
        GTEST_SKIP() << "no attributes here";
    const CALL_WATCH sets(SYSTEM_CALL::FSETXATTR, EPERM);
    const CALL_WATCH removals(SYSTEM_CALL::FREMOVEXATTR, EPERM);
    EXPECT_EQ(take_over_attributes(from, to), "");
    EXPECT_EQ(sets.calls_seen() + removals.calls_seen(), 0);
}

TEST_F(FILE_ATTRIBUTES, that_are_not_there_afterwards_are_told)
{
    if (!set(from, "user.note", "mine"))
        GTEST_SKIP() << "no attributes here";
    for (const auto& change : std::vector<std::function<void()>>{[this] { set(to, "user.note", "theirs"); },
                                                                 [this] { set(to, "user.more", "theirs"); },
                                                                 [this] { fremovexattr(to, "user.note"); }})
    {
        const FILE_FAULT last_look(FILE_CALL::SIZE, 3, change);
        EXPECT_EQ(take_over(), attributes_not_kept);
        EXPECT_TRUE(last_look.was_reached());
    }
}

TEST_F(FILE_ATTRIBUTES, owner_and_mode_that_cannot_be_looked_at_are_told)
{
    const char* const problems[] = {"its owner cannot be kept: Input/output error",
                                    "its owner cannot be kept: Input/output error",
                                    "its owner and mode cannot be kept on this file system"};
    long nth = 0;
    for (const char* const problem : problems)
    {
        const FILE_FAULT fault(FILE_CALL::SIZE, ++nth);
        EXPECT_EQ(take_over(), problem) << nth;
        EXPECT_TRUE(fault.was_reached());
    }
    const FILE_FAULT none(FILE_CALL::SIZE, nth + 1);
    EXPECT_EQ(take_over(), "");
    EXPECT_FALSE(none.was_reached());
}

TEST_F(FILE_ATTRIBUTES, mode_is_set_or_the_failure_told)
{
    ASSERT_EQ(chmod(file, 0640), 0);
    {
        const CALL_WATCH watch(SYSTEM_CALL::FCHMOD, EPERM);
        EXPECT_EQ(take_over(), "its mode cannot be kept: Operation not permitted");
    }
    // A file system that keeps less than it takes.
    for (const mode_t kept : {0600U, 0644U, 04640U})
    {
        const FILE_FAULT last_look(FILE_CALL::SIZE, 3, [kept] { chmod("new", kept); });
        EXPECT_EQ(take_over(), "its owner and mode cannot be kept on this file system") << kept;
    }
    EXPECT_EQ(take_over(), "");
    struct stat found;
    ASSERT_EQ(stat("new", &found), 0);
    EXPECT_EQ(found.st_mode & 07777U, 0640U);
}

TEST_F(FILE_ATTRIBUTES, owner_and_group_are_set_or_the_failure_told)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give files away";
    const auto look = []
    {
        struct stat found = {};
        stat("new", &found);
        return std::pair(found.st_uid, found.st_gid);
    };
    ASSERT_EQ(chown(file, other_user, other_user), 0);
    {
        const CALL_WATCH watch(SYSTEM_CALL::FCHOWN, {{1, [] { return EPERM; }}});
        EXPECT_EQ(take_over(), "its owner number 64711 cannot be kept: Operation not permitted");
    }
    {
        const CALL_WATCH watch(SYSTEM_CALL::FCHOWN, {{2, [] { return EPERM; }}});
        EXPECT_EQ(take_over(), "its group number 64711 cannot be kept: Operation not permitted");
    }
    EXPECT_EQ(take_over(), "");
    EXPECT_EQ(look(), std::pair(other_user, other_user));
    // What is as it should be is left alone: not everybody may set it.
    const CALL_WATCH watch(SYSTEM_CALL::FCHOWN, EPERM);
    EXPECT_EQ(take_over(), "");
    EXPECT_EQ(watch.calls_seen(), 0);
    // A file system that keeps less than it takes.
    for (const auto& [user, group] : {std::pair<uid_t, gid_t>{0, other_user}, {other_user, 0}})
    {
        const FILE_FAULT last_look(FILE_CALL::SIZE, 3,
                                   [owner = user, owning_group = group]
                                   { EXPECT_EQ(chown("new", owner, owning_group), 0); });
        EXPECT_EQ(take_over(), "its owner and mode cannot be kept on this file system") << user;
        EXPECT_EQ(chown("new", other_user, other_user), 0);
    }
}
}
