// What can come between the opening of a file that is written whole and its taking the place: failing calls, other
// processes, and a writer that is given up. Links and rights, case by case.
#include "cfg_run_report/whole_file.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "tests/support/failing_files.h"
#include "tests/support/isolated_test.h"
#include "tests/support/system_text.h"
#include "tests/velmar_cfg/failing_calls.h"

namespace
{
namespace fs = std::filesystem;

class WHOLE_FILE_FAILURES : public ISOLATED_TEST
{
protected:
    WHOLE_FILE_FAILURES()
    {
        write_file("user/file", "old");
    }

    // The names in the directory, separated by blanks.
    static std::string names()
    {
        std::string all;
        for (const auto& entry : fs::directory_iterator("user"))
            all += (all.empty() ? "" : " ") + entry.path().filename().string();
        return all;
    }

    static mode_t mode_of(const std::string& path)
    {
        struct stat found = {};
        EXPECT_EQ(stat(path.c_str(), &found), 0);
        return found.st_mode & 07777;
    }

    // Expects that the writing fails like this and leaves the old file, and nothing beside it.
    static void expect_failure(const std::string& problem)
    {
        EXPECT_EQ(write_whole_file("user/file", "new"), problem);
        EXPECT_EQ(read_file("user/file"), "old");
        EXPECT_EQ(names(), "file");
    }
};

TEST_F(WHOLE_FILE_FAILURES, of_each_call_leave_the_old_file)
{
    for (const FILE_CALL call : {FILE_CALL::OPEN, FILE_CALL::WRITE, FILE_CALL::CLOSE})
    {
        SCOPED_TRACE(static_cast<int>(call));
        const FILE_FAULT fault(call, 1);
        expect_failure(system_text(std::errc::io_error));
        EXPECT_TRUE(fault.was_reached());
    }
    for (const SYSTEM_CALL call : {SYSTEM_CALL::FSYNC, SYSTEM_CALL::FCHMOD})
    {
        SCOPED_TRACE(static_cast<int>(call));
        const CALL_WATCH watch(call, {{1, [] { return EIO; }}});
        expect_failure(system_text(std::errc::io_error));
        EXPECT_EQ(watch.calls_seen(), 1);
    }
}

// The new file is in place: a power cut may take it away, and that is no failure.
TEST_F(WHOLE_FILE_FAILURES, to_synchronise_the_directory_is_none)
{
    const CALL_WATCH watch(SYSTEM_CALL::FSYNC, {{2, [] { return EIO; }}});
    EXPECT_EQ(write_whole_file("user/file", "new"), "");
    EXPECT_EQ(watch.calls_seen(), 2); // the file, then its directory
    EXPECT_EQ(read_file("user/file"), "new");
}

TEST_F(WHOLE_FILE_FAILURES, are_no_signals_that_break_a_write_off)
{
    const FILE_FAULT fault(FILE_CALL::WRITE, 1, std::vector<int>{EINTR, EINTR});
    EXPECT_EQ(write_whole_file("user/file", "new"), "");
    EXPECT_EQ(read_file("user/file"), "new");
    EXPECT_EQ(fault.calls_seen(), 3);
}

TEST_F(WHOLE_FILE_FAILURES, to_take_the_place_of_what_came_there_meanwhile)
{
    WHOLE_FILE_WRITER writer("user/file");
    writer.write("new");
    fs::remove("user/file");
    fs::create_directory("user/file");
    try
    {
        writer.put_in_place();
        FAIL() << "a directory was replaced";
    }
    catch (const std::system_error& error)
    {
        EXPECT_EQ(error.code().value(), EISDIR);
    }
    EXPECT_TRUE(fs::is_directory("user/file"));
}

TEST_F(WHOLE_FILE_FAILURES, of_the_place_are_told)
{
    fs::create_symlink("circle", "user/circle");
    fs::create_symlink("nowhere/file", "user/astray");
    write_file("user/plain", "");
    for (const auto& [path, problem] :
         {std::pair<const char*, std::string>{"user/circle", system_text(std::errc::too_many_symbolic_link_levels)},
          {"user/astray", system_text(std::errc::no_such_file_or_directory)},
          {"user/plain/file", system_text(std::errc::not_a_directory)},
          {"user/", system_text(std::errc::is_a_directory)}})
        EXPECT_EQ(write_whole_file(path, "new"), problem) << path;
    EXPECT_EQ(read_file("user/file"), "old");
}

TEST_F(WHOLE_FILE_FAILURES, a_hundred_names_that_are_taken_are_one)
{
    const auto name = [](int number)
    { return "user/file." + std::to_string(getpid()) + "." + std::to_string(number) + ".tmp"; };
    for (int i = 0; i < 99; ++i)
        write_file(name(i), "half");
    EXPECT_EQ(write_whole_file("user/file", "new"), "");
    EXPECT_FALSE(fs::exists(name(99)));
    write_file(name(99), "half");
    EXPECT_EQ(write_whole_file("user/file", "newer"), system_text(std::errc::file_exists));
    EXPECT_EQ(read_file("user/file"), "new");
    EXPECT_EQ(read_file(name(99)), "half");
}

// --- A writer ---

TEST_F(WHOLE_FILE_FAILURES, nothing_is_left_of_a_writer_that_is_given_up)
{
    {
        WHOLE_FILE_WRITER writer("user/file");
        writer.write("half");
        EXPECT_EQ(names().size(), std::string("file file.").size() + std::to_string(getpid()).size() + 6);
    }
    EXPECT_EQ(names(), "file");
    EXPECT_EQ(read_file("user/file"), "old");
    {
        const WHOLE_FILE_WRITER writer("user/other");
    }
    EXPECT_EQ(names(), "file");
}

TEST_F(WHOLE_FILE_FAILURES, pieces_are_joined_and_seen_only_when_all_are_there)
{
    WHOLE_FILE_WRITER writer("user/file");
    for (const char* const piece : {"a", "", "bc", "\n"})
        writer.write(piece);
    EXPECT_EQ(read_file("user/file"), "old");
    writer.put_in_place();
    EXPECT_EQ(read_file("user/file"), "abc\n");
    EXPECT_EQ(names(), "file");
}

TEST_F(WHOLE_FILE_FAILURES, a_writer_stays_where_it_was_opened)
{
    WHOLE_FILE_WRITER writer("user/new");
    writer.write("new");
    const fs::path before = fs::current_path();
    fs::current_path("/");
    writer.put_in_place();
    fs::current_path(before);
    EXPECT_EQ(read_file("user/new"), "new");
}

// --- Links ---

TEST_F(WHOLE_FILE_FAILURES, links_are_followed_from_where_they_stand)
{
    fs::create_directories("user/deep/er");
    fs::create_symlink("../../file", "user/deep/er/up");
    fs::create_symlink("deep/er/up", "user/chain");
    fs::create_symlink("deep", "user/shallow");
    fs::create_symlink("made", "user/dangling");
    for (const auto& [path, target] : {std::pair{"user/deep/er/up", "user/file"},
                                       {"user/chain", "user/file"},
                                       {"user/shallow/er/up", "user/file"},
                                       {"user/shallow/own", "user/deep/own"},
                                       {"user/dangling", "user/made"}})
    {
        EXPECT_EQ(write_whole_file(path, path), "") << path;
        EXPECT_EQ(read_file(target), path);
        EXPECT_FALSE(fs::is_symlink(target)) << path;
    }
    for (const char* const link : {"user/deep/er/up", "user/chain", "user/dangling"})
        EXPECT_TRUE(fs::is_symlink(link)) << link;
}

TEST_F(WHOLE_FILE_FAILURES, as_many_links_are_followed_as_the_kernel_follows)
{
    const auto link = [](int number) { return "user/link" + std::to_string(number); };
    fs::create_symlink("target", link(1));
    for (int i = 2; i <= 41; ++i)
        fs::create_symlink("link" + std::to_string(i - 1), link(i));
    EXPECT_EQ(write_whole_file(link(40), "new"), "");
    EXPECT_EQ(read_file("user/target"), "new");
    EXPECT_EQ(write_whole_file(link(41), "newer"), system_text(std::errc::too_many_symbolic_link_levels));
    EXPECT_EQ(read_file("user/target"), "new");
}

// --- Rights ---

TEST_F(WHOLE_FILE_FAILURES, the_readers_are_those_that_were_asked_for)
{
    struct ROW
    {
        std::optional<mode_t> existing;
        FILE_READERS readers;
        mode_t mask;
        mode_t expected;
    };
    for (const auto& [existing, readers, mask, expected] :
         {ROW{std::nullopt, FILE_READERS::AS_USUAL, 022, 0644}, ROW{std::nullopt, FILE_READERS::AS_USUAL, 0, 0666},
          ROW{std::nullopt, FILE_READERS::OWNER, 0, 0600}, ROW{std::nullopt, FILE_READERS::OWNER, 0200, 0400},
          ROW{0664, FILE_READERS::AS_USUAL, 077, 0664}, ROW{0664, FILE_READERS::OWNER, 0, 0600},
          ROW{0700, FILE_READERS::OWNER, 077, 0700}, ROW{0755, FILE_READERS::AS_USUAL, 077, 0755},
          ROW{06755, FILE_READERS::AS_USUAL, 0, 06755}, ROW{06755, FILE_READERS::OWNER, 0, 0700}})
    {
        fs::remove("user/file");
        if (existing)
        {
            write_file("user/file", "old");
            ASSERT_EQ(chmod("user/file", *existing), 0);
        }
        const mode_t before = umask(mask);
        WHOLE_FILE_WRITER writer("user/file", readers);
        umask(before);
        // From the beginning: nobody else may open the file while it is written either.
        fs::path made;
        for (const auto& entry : fs::directory_iterator("user"))
            made = entry.path().filename() == "file" ? made : entry.path();
        EXPECT_EQ(mode_of(made), expected);
        writer.write("new");
        writer.put_in_place();
        // Where an ordinary user writes to a file, the system takes its set-user-ID and set-group-ID bits away.
        EXPECT_EQ(mode_of("user/file"), geteuid() == 0 ? expected : expected & 0777);
    }
}

TEST_F(WHOLE_FILE_FAILURES, the_owner_is_kept_if_possible)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give files away";
    constexpr uid_t other = 64711;
    const auto owner = []
    {
        struct stat found = {};
        stat("user/file", &found);
        return std::pair(found.st_uid, found.st_gid);
    };
    for (const auto& [user, group] : {std::pair<uid_t, gid_t>{other, other}, {0, other}, {other, 0}})
    {
        ASSERT_EQ(chown("user/file", user, group), 0);
        ASSERT_EQ(chmod("user/file", 06755), 0);
        EXPECT_EQ(write_whole_file("user/file", "new"), "");
        EXPECT_EQ(owner(), std::pair(user, group));
        EXPECT_EQ(mode_of("user/file"), 06755U); // a change of the owner takes bits away
    }
    const CALL_WATCH watch(SYSTEM_CALL::FCHOWN, EPERM);
    EXPECT_EQ(write_whole_file("user/file", "newer"), "");
    EXPECT_EQ(read_file("user/file"), "newer");
    EXPECT_EQ(owner(), (std::pair<uid_t, gid_t>(0, 0)));
    EXPECT_EQ(watch.calls_seen(), 1);
    // One's own is not given away.
    EXPECT_EQ(write_whole_file("user/file", "newest"), "");
    EXPECT_EQ(watch.calls_seen(), 1);
}

// --- Devices and pipes ---

TEST_F(WHOLE_FILE_FAILURES, a_pipe_is_written_to_as_it_is)
{
    ASSERT_EQ(mkfifo("user/pipe", 0600), 0);
    const int reader = open("user/pipe", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_EQ(write_whole_file("user/pipe", "bytes"), "");
    char bytes[10];
    EXPECT_EQ(read(reader, bytes, sizeof bytes), 5);
    close(reader);
    EXPECT_TRUE(fs::is_fifo("user/pipe"));
    EXPECT_EQ(names().size(), std::string("file pipe").size());
}

TEST_F(WHOLE_FILE_FAILURES, of_a_device_are_told_and_nothing_is_removed)
{
    for (const FILE_CALL call : {FILE_CALL::OPEN, FILE_CALL::WRITE, FILE_CALL::CLOSE})
    {
        const FILE_FAULT fault(call, 1);
        EXPECT_EQ(write_whole_file("/dev/null", "new"), system_text(std::errc::io_error)) << static_cast<int>(call);
    }
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}
}
