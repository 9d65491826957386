// Replacing a file: what belongs to it stays, every failure leaves it whole and is told as it is, and no save of
// another program is lost.
#include "tools/velmar-cfg/base/staged_file.h"

#include <cstring>
#include <fstream>
#include <sys/xattr.h>

#include "tests/velmar_cfg/failing_calls.h"
#include "tests/velmar_cfg/replaced_file_test.h"

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;

class STAGED_FILE_TEST : public REPLACED_FILE_TEST
{
protected:
    static std::string in_words(REPLACEMENT replacement)
    {
        switch (replacement)
        {
        case REPLACEMENT::DONE:
            return "replaced";
        case REPLACEMENT::OPEN_FOR_WRITING:
            return "open";
        case REPLACEMENT::CHANGED_MEANWHILE:
            break;
        }
        return "not replaced";
    }

    // Replaces the file by "new\n": "replaced", "open", "not replaced" or the complaint.
    static std::string replace()
    {
        std::string result;
        const std::string complaint = complaint_of(
            [&]
            {
                const FILE_PLACE place(file);
                const std::optional<SEEN_FILE> seen = SEEN_FILE::look_at(place);
                ASSERT_TRUE(seen);
                STAGED_FILE staged(place, *seen, "new\n");
                result = in_words(staged.replace_target());
            });
        return complaint.empty() ? result : complaint;
    }

    // The same, when this happens between the look and the replacement.
    static std::string replace_after(const std::function<void()>& action)
    {
        const FILE_PLACE place(file);
        const std::optional<SEEN_FILE> seen = SEEN_FILE::look_at(place);
        STAGED_FILE staged(place, seen.value(), "new\n");
        action();
        return in_words(staged.replace_target());
    }

    // The path of the new file, while it is made.
    static std::string staged()
    {
        for (const std::string& name : names_in("user"))
        {
            if (name != "file")
                return "user/" + name;
        }
        return "none";
    }

    static std::function<int()> happens(const std::function<void()>& action)
    {
        return [action]
        {
            action();
            return 0;
        };
    }
};

TEST_F(STAGED_FILE_TEST, replaces_and_leaves_nothing_else)
{
    EXPECT_EQ(replace(), "replaced");
    EXPECT_EQ(read_file(file), "new\n");
    EXPECT_THAT(names_in("user"), ElementsAre("file"));
}

// Somebody who guessed the name of the new file would have another file written to.
TEST_F(STAGED_FILE_TEST, follows_no_link_and_opens_no_file_in_the_place_of_the_new_one)
{
    const std::string guessed = "user/file.velmar-cfg-000000000000.tmp";
    write_file("user/victim", "precious\n");
    const ZERO_RANDOM_BYTES zeros;
    for (const char* const aim : {"victim", "nowhere"})
    {
        std::filesystem::create_symlink(aim, guessed);
        EXPECT_THAT(replace(), HasSubstr("File exists"));
        std::filesystem::remove(guessed);
    }
    std::filesystem::create_hard_link("user/victim", guessed);
    EXPECT_THAT(replace(), HasSubstr("File exists"));
    EXPECT_EQ(read_file("user/victim"), "precious\n");
    EXPECT_EQ(read_file(file), "old\n");
    EXPECT_FALSE(std::filesystem::exists("user/nowhere"));
    std::filesystem::remove(guessed);
    EXPECT_EQ(replace(), "replaced");
}

TEST_F(STAGED_FILE_TEST, makes_a_file_by_the_mask)
{
    for (const auto& [mask, mode] : {std::pair<mode_t, mode_t>{027, 0640}, {0, 0666}})
    {
        std::filesystem::remove(file);
        const mode_t before = umask(mask);
        EXPECT_EQ(replace(), "replaced");
        umask(before);
        struct stat found;
        ASSERT_EQ(stat(file, &found), 0);
        EXPECT_EQ(found.st_mode & 07777U, mode);
        EXPECT_EQ(read_file(file), "new\n");
    }
}

TEST_F(STAGED_FILE_TEST, is_written_whole_before_it_replaces)
{
    std::string at_that_moment;
    std::string beside;
    const CALL_WATCH watch(SYSTEM_CALL::RENAMEAT2, {{1, happens(
                                                            [&]
                                                            {
                                                                at_that_moment = read_file(file);
                                                                for (const std::string& name : names_in("user"))
                                                                {
                                                                    if (name != "file")
                                                                        beside = read_file("user/" + name);
                                                                }
                                                            })}});
    const CALL_WATCH synchronised(SYSTEM_CALL::FSYNC, 0);
    EXPECT_EQ(replace(), "replaced");
    EXPECT_EQ(at_that_moment, "old\n");
    EXPECT_EQ(beside, "new\n");
    EXPECT_EQ(synchronised.calls_seen(), 2); // the file and its directory
}

// --- What belongs to the file ---

// An access control list in the kernel's form: version 2, then tag, permissions and number of each entry.
std::string access_control_list(const std::vector<std::array<std::uint32_t, 3>>& entries)
{
    std::string bytes("\2\0\0\0", 4);
    for (const auto& [tag, permissions, number] : entries)
    {
        for (const std::uint32_t half : {tag, permissions})
        {
            bytes += static_cast<char>(half & 0xffU);
            bytes += static_cast<char>(half >> 8);
        }
        for (unsigned int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>((number >> shift) & 0xffU);
    }
    return bytes;
}

constexpr std::uint32_t nobody = 0xffffffff;
constexpr const char* list_of_file = "system.posix_acl_access";
constexpr const char* list_of_new_files = "system.posix_acl_default";

std::string attribute(const char* path, const char* name)
{
    char value[1000];
    const ssize_t size = getxattr(path, name, value, sizeof value);
    return size < 0 ? "none" : std::string(value, static_cast<std::size_t>(size));
}

bool set_attribute(const char* path, const char* name, const std::string& value)
{
    return setxattr(path, name, value.data(), value.size(), 0) == 0;
}

TEST_F(STAGED_FILE_TEST, keeps_mode_owner_and_group)
{
    struct ROW
    {
        mode_t mode;
        uid_t owner;
        gid_t group;
    };
    for (const ROW& row : {ROW{0600, 0, 0}, ROW{0666, 0, 0}, ROW{0200, 0, 0}, ROW{0640, 64711, 64712},
                           ROW{0644, 64711, 0}, ROW{0644, 0, 64712}, ROW{04755, 64711, 64712}, ROW{02775, 0, 64712}})
    {
        const bool other = row.owner != 0 || row.group != 0;
        if (geteuid() != 0 && (other || (row.mode & 0400U) == 0))
            continue; // only root gives files away, and reads those that their owner may not
        std::filesystem::remove(file);
        write_file(file, "old\n");
        if (geteuid() == 0)
        {
            ASSERT_EQ(chown(file, row.owner, row.group), 0);
        }
        ASSERT_EQ(chmod(file, row.mode), 0);
        ASSERT_EQ(replace(), "replaced");
        struct stat found;
        ASSERT_EQ(stat(file, &found), 0);
        EXPECT_EQ(found.st_mode & 07777U, row.mode);
        EXPECT_EQ(found.st_uid, geteuid() == 0 ? row.owner : geteuid());
        EXPECT_EQ(found.st_gid, geteuid() == 0 ? row.group : getegid());
    }
}

TEST_F(STAGED_FILE_TEST, keeps_attributes_and_takes_none_from_the_directory)
{
    const std::string list =
        access_control_list({{1, 6, nobody}, {2, 6, 1000}, {4, 4, nobody}, {16, 6, nobody}, {32, 0, nobody}});
    const std::string of_directory =
        access_control_list({{1, 7, nobody}, {2, 7, 1001}, {4, 7, nobody}, {16, 7, nobody}, {32, 7, nobody}});
    if (!set_attribute("user", list_of_new_files, of_directory) || !set_attribute(file, "user.note", "mine") ||
        !set_attribute(file, "user.empty", ""))
        GTEST_SKIP() << "no such attributes here";

    ASSERT_EQ(replace(), "replaced");
    EXPECT_EQ(attribute(file, list_of_file), "none");
    EXPECT_EQ(attribute(file, "user.note"), "mine");
    EXPECT_EQ(attribute(file, "user.empty"), "");
    struct stat found;
    ASSERT_EQ(stat(file, &found), 0);
    EXPECT_EQ(found.st_mode & 07777U, 0644U);

    ASSERT_TRUE(set_attribute(file, list_of_file, list));
    ASSERT_EQ(replace(), "replaced");
    EXPECT_EQ(attribute(file, list_of_file), list);
    ASSERT_EQ(stat(file, &found), 0);
    EXPECT_EQ(found.st_mode & 07777U, 0660U); // its group bits are the list's mask

    // A new file is the directory's.
    std::filesystem::remove(file);
    ASSERT_EQ(replace(), "replaced");
    EXPECT_NE(attribute(file, list_of_file), "none");
}

TEST_F(STAGED_FILE_TEST, replaces_nothing_where_attributes_cannot_be_kept)
{
    if (!set_attribute(file, "user.note", "mine"))
        GTEST_SKIP() << "no attributes here";
    const CALL_WATCH watch(SYSTEM_CALL::FSETXATTR, ENOSPC);
    EXPECT_EQ(replace(), "4 " + full_path() +
                             ": its attribute user.note cannot be kept: No space left on device; nothing was changed");
    EXPECT_EQ(read_file(file), "old\n");
    EXPECT_THAT(names_in("user"), ElementsAre("file"));
}

// Some file systems take an attribute, and do not have it afterwards.
TEST_F(STAGED_FILE_TEST, replaces_nothing_where_attributes_do_not_stay)
{
    if (!set_attribute(file, "user.a", "1") || !set_attribute(file, "user.b", "2"))
        GTEST_SKIP() << "no attributes here";
    const CALL_WATCH watch(SYSTEM_CALL::FSETXATTR, {{2, happens([] { removexattr(staged().c_str(), "user.a"); })}});
    EXPECT_EQ(replace(), "4 " + full_path() +
                             ": its access control list and attributes cannot be kept on this file system; nothing "
                             "was changed");
    EXPECT_EQ(read_file(file), "old\n");
}

// Others must not read at any moment what they may not read in the end.
TEST_F(STAGED_FILE_TEST, is_the_owner_s_alone_until_it_has_the_file_s_mode)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give files away";
    ASSERT_EQ(chmod(file, 0600), 0);
    ASSERT_EQ(chown(file, other_user, other_user), 0);
    struct stat found = {};
    const CALL_WATCH watch(SYSTEM_CALL::FCHOWN,
                           {{1, happens([&found] { ASSERT_EQ(stat(staged().c_str(), &found), 0); })}});
    const mode_t mask = umask(0);
    EXPECT_EQ(replace(), "replaced");
    umask(mask);
    EXPECT_EQ(found.st_size, 4);
    EXPECT_EQ(found.st_mode & 07777U, 0600U);
}

TEST_F(STAGED_FILE_TEST, replaces_nothing_where_the_owner_cannot_be_kept)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can be another user";
    std::filesystem::permissions(temporary.path(), std::filesystem::perms::all);
    std::filesystem::permissions("user", std::filesystem::perms::all);
    std::filesystem::permissions(file, std::filesystem::perms::all);
    EXPECT_EQ(as_other_user([] { return replace(); }),
              "4 " + full_path() + ": its owner 'root' cannot be kept: Operation not permitted; nothing was changed");
    ASSERT_EQ(chown(file, other_user, 0), 0);
    EXPECT_EQ(as_other_user([] { return replace(); }),
              "4 " + full_path() + ": its group number 0 cannot be kept: Operation not permitted; nothing was changed");
    EXPECT_EQ(read_file(file), "old\n");
    EXPECT_THAT(names_in("user"), ElementsAre("file"));
    ASSERT_EQ(chown(file, other_user, other_user), 0);
    EXPECT_EQ(as_other_user([] { return replace(); }), "replaced");
}

// --- Failures ---

TEST_F(STAGED_FILE_TEST, a_failure_before_the_replacement_changes_nothing)
{
    const std::string nothing_changed = "4 " + full_path() + ": Input/output error; nothing was changed";
    for (const SYSTEM_CALL call : {SYSTEM_CALL::FSYNC, SYSTEM_CALL::RENAMEAT2})
    {
        const CALL_WATCH watch(call, {{1, [] { return EIO; }}});
        EXPECT_EQ(replace(), nothing_changed);
        EXPECT_EQ(read_file(file), "old\n");
        EXPECT_THAT(names_in("user"), ElementsAre("file"));
    }
    std::filesystem::remove(file);
    const CALL_WATCH watch(SYSTEM_CALL::RENAMEAT2, EIO);
    EXPECT_EQ(replace(), nothing_changed);
    EXPECT_TRUE(names_in("user").empty());
}

TEST_F(STAGED_FILE_TEST, a_directory_in_which_no_file_may_be_made_is_told_from_other_failures)
{
    const std::string no_right = "; the directory must be writable to change the file safely";
    const std::string other = "; nothing was changed";
    for (const auto& [error, advice] : {std::pair(EACCES, no_right), std::pair(EPERM, no_right),
                                        std::pair(EROFS, no_right), std::pair(ENOSPC, other), std::pair(EMFILE, other)})
    {
        const FILE_PLACE place(file); // which opens directories
        const CALL_WATCH watch(SYSTEM_CALL::OPENAT, error);
        EXPECT_THAT([&] { NEW_FILE(place, 0600, place.path()); },
                    testing::ThrowsMessage<TOOL_ERROR>(full_path() + ": " + std::strerror(error) + advice));
    }
    EXPECT_THAT(names_in("user"), ElementsAre("file"));
}

TEST_F(STAGED_FILE_TEST, a_failure_behind_the_replacement_says_that_it_was_changed)
{
    const CALL_WATCH watch(SYSTEM_CALL::FSYNC, {{2, [] { return EIO; }}});
    EXPECT_EQ(replace(), "4 " + full_path() + ": was changed, but a power cut may undo that: Input/output error");
    EXPECT_EQ(read_file(file), "new\n");
    EXPECT_THAT(names_in("user"), ElementsAre("file"));
}

TEST_F(STAGED_FILE_TEST, a_file_system_that_has_nothing_to_synchronise_is_no_failure)
{
    const CALL_WATCH watch(SYSTEM_CALL::FSYNC, {{2, [] { return EINVAL; }}});
    EXPECT_EQ(replace(), "replaced");
}

TEST_F(STAGED_FILE_TEST, a_directory_that_cannot_be_listed_is_no_failure)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can be another user";
    std::filesystem::permissions(temporary.path(), std::filesystem::perms::all);
    ASSERT_EQ(chown(file, other_user, other_user), 0);
    ASSERT_EQ(chmod("user", 0333), 0);
    EXPECT_EQ(as_other_user(
                  []
                  {
                      remove_abandoned_files(FILE_PLACE(file));
                      return replace();
                  }),
              "replaced");
}

TEST_F(STAGED_FILE_TEST, names_that_cannot_be_exchanged_are_replaced)
{
    for (const int error : {EINVAL, ENOSYS, EOPNOTSUPP})
    {
        write_file(file, "old\n");
        const CALL_WATCH watch(SYSTEM_CALL::RENAMEAT2, error);
        EXPECT_EQ(replace(), "replaced");
        EXPECT_EQ(read_file(file), "new\n");
        EXPECT_THAT(names_in("user"), ElementsAre("file"));

        const CALL_WATCH rename(SYSTEM_CALL::RENAMEAT, {{1, [] { return EIO; }}});
        write_file(file, "old\n");
        EXPECT_EQ(replace(), "4 " + full_path() + ": Input/output error; nothing was changed");
        EXPECT_EQ(read_file(file), "old\n");
        EXPECT_THAT(names_in("user"), ElementsAre("file"));
    }
}

// Over a network, the answer to a rename may get lost, and the repetition fails.
TEST_F(STAGED_FILE_TEST, a_rename_that_says_it_failed_and_did_not_is_believed_less_than_the_file)
{
    const CALL_WATCH exchange(SYSTEM_CALL::RENAMEAT2, EINVAL);
    const CALL_WATCH rename(SYSTEM_CALL::RENAMEAT, {{1, []
                                                     {
                                                         for (const std::string& name : names_in("user"))
                                                         {
                                                             if (name != "file")
                                                                 std::filesystem::rename("user/" + name, file);
                                                         }
                                                         return ENOENT;
                                                     }}});
    EXPECT_EQ(replace(), "replaced");
    EXPECT_EQ(read_file(file), "new\n");
}

// --- Other programs ---

TEST_F(STAGED_FILE_TEST, a_save_before_the_replacement_counts)
{
    EXPECT_EQ(replace_after([] { write_file(file, "saved\n"); }), "not replaced");
    EXPECT_EQ(read_file(file), "saved\n");
    EXPECT_EQ(replace_after([] { std::filesystem::remove(file); }), "not replaced");
    EXPECT_THAT(names_in("user"), ElementsAre());
    EXPECT_EQ(replace_after([] { write_file(file, "saved\n"); }), "not replaced");
    EXPECT_EQ(read_file(file), "saved\n");
    EXPECT_THAT(names_in("user"), ElementsAre("file"));
}

TEST_F(STAGED_FILE_TEST, a_file_that_is_open_for_writing_is_left_alone)
{
    const int writer = open(file, O_WRONLY | O_CLOEXEC);
    EXPECT_EQ(replace(), "open");
    EXPECT_EQ(read_file(file), "old\n");
    close(writer);
    EXPECT_EQ(replace(), "replaced");
}

// Whether a program waits to open a file that this process has a lease on.
bool somebody_waits()
{
    std::ifstream locks("/proc/locks");
    const std::string own = " " + std::to_string(getpid()) + " ";
    for (std::string line; std::getline(locks, line);)
    {
        if (line.find("LEASE") != std::string::npos && line.find("BREAKING") != std::string::npos &&
            line.find(own) != std::string::npos)
            return true;
    }
    return false;
}

// The program opens the file between the last look and the exchange, as for a save, and gets it when all is over.
TEST_F(STAGED_FILE_TEST, a_save_that_begins_with_the_replacement_counts)
{
    pid_t program = -1;
    const CALL_WATCH watch(SYSTEM_CALL::RENAMEAT2, {{1, happens(
                                                            [&program]
                                                            {
                                                                program = fork();
                                                                if (program == 0)
                                                                {
                                                                    write_file(file, "saved\n");
                                                                    _exit(0);
                                                                }
                                                                while (!somebody_waits())
                                                                    usleep(1000);
                                                            })}});
    EXPECT_EQ(replace(), "not replaced");
    EXPECT_EQ(watch.calls_seen(), 2); // there and back
    int status = 0;
    ASSERT_EQ(waitpid(program, &status, 0), program);
    EXPECT_EQ(read_file(file), "saved\n");
    EXPECT_THAT(names_in("user"), ElementsAre("file"));
}

TEST_F(STAGED_FILE_TEST, a_save_that_comes_with_the_replacement_counts_without_leases)
{
    for (const int error : {EINVAL, EACCES, ENOLCK})
    {
        const CALL_WATCH lease(SYSTEM_CALL::SETLEASE, error);
        const CALL_WATCH watch(SYSTEM_CALL::RENAMEAT2, {{1, happens([] { write_file(file, "saved\n"); })}});
        EXPECT_EQ(replace(), "not replaced");
        EXPECT_EQ(read_file(file), "saved\n");
        EXPECT_THAT(names_in("user"), ElementsAre("file"));
    }
    const CALL_WATCH lease(SYSTEM_CALL::SETLEASE, EINVAL);
    EXPECT_EQ(replace(), "replaced");
}

// Another program may save as this one does: a file of its own takes the target's place, which no lease holds up.
TEST_F(STAGED_FILE_TEST, a_file_that_takes_the_place_in_the_moment_of_the_replacement_counts)
{
    for (const int error : {0, EINVAL})
    {
        const CALL_WATCH lease(SYSTEM_CALL::SETLEASE, error);
        const CALL_WATCH watch(SYSTEM_CALL::RENAMEAT2, {{1, happens(
                                                                []
                                                                {
                                                                    write_file("user/saved", "saved\n");
                                                                    std::filesystem::rename("user/saved", file);
                                                                })}});
        EXPECT_EQ(replace(), "not replaced");
        EXPECT_EQ(read_file(file), "saved\n");
        EXPECT_THAT(names_in("user"), ElementsAre("file"));
    }
}

// Some programs take the old file away before they save the new one.
TEST_F(STAGED_FILE_TEST, a_file_that_goes_in_the_moment_of_the_replacement_is_waited_for)
{
    const CALL_WATCH watch(SYSTEM_CALL::RENAMEAT2, {{1, happens([] { std::filesystem::remove(file); })}});
    EXPECT_EQ(replace(), "not replaced");
    EXPECT_TRUE(names_in("user").empty());
}

TEST_F(STAGED_FILE_TEST, an_exchange_that_cannot_be_undone_says_where_the_save_is)
{
    const CALL_WATCH lease(SYSTEM_CALL::SETLEASE, EINVAL);
    const CALL_WATCH watch(SYSTEM_CALL::RENAMEAT2,
                           {{1, happens([] { write_file(file, "saved\n"); })}, {2, [] { return EIO; }}});
    const std::string complaint = replace();
    EXPECT_THAT(complaint, HasSubstr("was replaced while another program saved it"));
    EXPECT_EQ(read_file(file), "new\n");
    std::string other;
    for (const std::string& name : names_in("user"))
    {
        if (name != "file")
            other = name;
    }
    EXPECT_THAT(complaint, HasSubstr(other));
    EXPECT_EQ(read_file("user/" + other), "saved\n");
}
}
