// A file that other programs write to: when it is read, and what is seen of a change.
#include "tools/velmar-cfg/base/settled_file.h"

#include <cstring>
#include <sys/mman.h>
#include <sys/xattr.h>

#include "tests/support/failing_files.h"
#include "tests/velmar_cfg/failing_calls.h"
#include "tests/velmar_cfg/replaced_file_test.h"

namespace
{
using testing::HasSubstr;

class SETTLED_FILE : public REPLACED_FILE_TEST
{
protected:
    // What is read, or the complaint.
    static std::string settled(int milliseconds = 0)
    {
        try
        {
            const FILE_PLACE place(file);
            const SEEN_FILE seen = read_settled_file(place, in_milliseconds(milliseconds));
            return seen.exists() ? seen.bytes() : "no file";
        }
        catch (const TOOL_ERROR& error)
        {
            return std::to_string(static_cast<int>(error.exit_code)) + " " + error.what();
        }
    }

    std::string being_written() const
    {
        return "4 " + full_path() +
               ": another program is writing this file; nothing was changed, run the command again when that program "
               "has ended";
    }

    // The states that a file has at its looks, each until the next; the last one stays. The first call looks for a
    // link.
    static std::map<int, std::function<int()>> states(const std::vector<std::string>& contents)
    {
        std::map<int, std::function<int()>> actions;
        for (std::size_t i = 0; i < contents.size(); ++i)
            actions[static_cast<int>(i) + 2] = [content = contents[i]]
            {
                if (content == "none")
                    unlink(file);
                else
                    write_file(file, content);
                return 0;
            };
        return actions;
    }
};

TEST_F(SETTLED_FILE, an_old_file_is_read_at_once)
{
    const CALL_WATCH looks(SYSTEM_CALL::FSTATAT, 0);
    EXPECT_EQ(settled(), "old\n");
    EXPECT_EQ(looks.calls_seen(), 3); // once for a link, twice before it is opened
}

TEST_F(SETTLED_FILE, a_missing_file_is_none_at_once)
{
    std::filesystem::remove(file);
    const CALL_WATCH looks(SYSTEM_CALL::FSTATAT, 0);
    EXPECT_EQ(settled(), "no file");
    EXPECT_EQ(looks.calls_seen(), 3);
}

TEST_F(SETTLED_FILE, an_empty_file_is_read_like_others)
{
    write_file(file, "");
    make_old(file);
    EXPECT_EQ(settled(), "");
}

TEST_F(SETTLED_FILE, a_file_that_was_just_written_is_waited_for)
{
    const auto before = std::chrono::steady_clock::now();
    write_file(file, "new\n");
    EXPECT_EQ(settled(), "new\n"); // although there was no time to wait: the quiet time is granted
    // Times of files tick in steps, so that one may lie some milliseconds back from the beginning.
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(35));
}

TEST_F(SETTLED_FILE, a_file_from_the_future_is_watched_for_a_while)
{
    // 317 years, too: more than a number of nanoseconds holds.
    for (const time_t seconds : {time_t{3'600}, time_t{10'000'000'000}})
    {
        const struct timespec future[2] = {{0, UTIME_NOW}, {time(nullptr) + seconds, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, file, future, 0), 0);
        const auto before = std::chrono::steady_clock::now();
        EXPECT_EQ(settled(), "old\n");
        EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(50)) << seconds;
    }
}

// A write at each of the first looks.
std::map<int, std::function<int()>> writes_at_looks(const char* file)
{
    std::map<int, std::function<int()>> writes;
    for (int look = 1; look < 1000; ++look)
        writes[look] = [look, file]
        {
            write_file(file, "write " + std::to_string(look));
            return 0;
        };
    return writes;
}

TEST_F(SETTLED_FILE, one_that_is_always_written_is_given_up)
{
    const CALL_WATCH looks(SYSTEM_CALL::FSTATAT, writes_at_looks(file));
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(settled(150), being_written());
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(150));
}

// The shortest of several attempts: the machine may be busy.
TEST_F(SETTLED_FILE, without_time_it_is_given_up_once_it_could_have_settled)
{
    auto shortest = std::chrono::steady_clock::duration::max();
    for (int attempt = 0; attempt < 20 && shortest >= std::chrono::milliseconds(90); ++attempt)
    {
        const CALL_WATCH looks(SYSTEM_CALL::FSTATAT, writes_at_looks(file));
        const auto before = std::chrono::steady_clock::now();
        EXPECT_EQ(settled(0), being_written());
        shortest = std::min(shortest, std::chrono::steady_clock::now() - before);
    }
    EXPECT_LT(shortest, std::chrono::milliseconds(90));
    EXPECT_GE(shortest, std::chrono::milliseconds(50));
}

struct COURSE
{
    const char* title;
    std::vector<std::string> states;
    std::string read; // empty: given up
};

void PrintTo(const COURSE& row, std::ostream* stream)
{
    *stream << row.title;
}

class SETTLED_COURSE : public SETTLED_FILE, public testing::WithParamInterface<COURSE>
{
};

TEST_P(SETTLED_COURSE, ends_as)
{
    const CALL_WATCH looks(SYSTEM_CALL::FSTATAT, states(GetParam().states));
    EXPECT_EQ(settled(GetParam().read.empty() ? 200 : 10'000),
              GetParam().read.empty() ? being_written() : GetParam().read);
}

INSTANTIATE_TEST_SUITE_P(
    table, SETTLED_COURSE,
    testing::Values(COURSE{"written step by step", {"a", "ab", "abc"}, "abc"},
                    COURSE{"empty where it was not, and filled again", {"old", "", "", "", "new"}, "new"},
                    COURSE{"empty where it was not, and so it stays", {"old", ""}, ""},
                    COURSE{"gone where it was not, and back again", {"old", "none", "none", "new"}, "new"},
                    COURSE{"gone where it was not, and so it stays", {"old", "none"}, ""},
                    COURSE{"made empty at the first look", {"", "new"}, "new"}));

TEST_F(SETTLED_FILE, a_change_between_look_and_read_starts_anew)
{
    const FILE_FAULT fault(FILE_CALL::READ, 1, [] { write_file(file, "new, and longer\n"); });
    EXPECT_EQ(settled(10'000), "new, and longer\n");
    EXPECT_TRUE(fault.was_reached());
}

TEST_F(SETTLED_FILE, a_read_error_is_told)
{
    for (long nth = 1; nth <= 2; ++nth)
    {
        const FILE_FAULT fault(FILE_CALL::READ, nth);
        EXPECT_THAT(settled(10'000), testing::StartsWith("3 " + full_path() + ": Input/output error, after " +
                                                         (nth == 1 ? "0" : "4") + " bytes"));
        EXPECT_TRUE(fault.was_reached());
    }
    const CALL_WATCH looks(SYSTEM_CALL::FSTATAT, EIO);
    EXPECT_EQ(settled(10'000), "3 " + full_path() + ": Input/output error; check the path");
    const CALL_WATCH opens(SYSTEM_CALL::OPENAT, {{3, [] { return EIO; }}});
    EXPECT_EQ(settled(10'000), "3 " + full_path() + ": Input/output error; check the path");
}

TEST_F(SETTLED_FILE, a_read_error_of_the_comparison_is_told)
{
    const FILE_PLACE place(file);
    const SEEN_FILE seen = read_settled_file(place, in_milliseconds(10'000));
    const FILE_FAULT fault(FILE_CALL::READ, 1);
    EXPECT_THAT([&] { seen.is_still_at(place); },
                testing::ThrowsMessage<TOOL_ERROR>(full_path() + ": Input/output error; check the device"));
    EXPECT_TRUE(fault.was_reached());
}

TEST_F(SETTLED_FILE, what_is_no_file_is_told)
{
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    EXPECT_EQ(settled(10'000), "3 " + full_path() + ": is a directory, not a file; check the path");
    std::filesystem::remove(file);
    ASSERT_EQ(mkfifo(file, 0600), 0);
    EXPECT_THAT(settled(10'000), HasSubstr("is no regular file"));
}

// --- What is seen of a change ---

struct CHANGE
{
    const char* title;
    std::function<void()> make;
};

void PrintTo(const CHANGE& row, std::ostream* stream)
{
    *stream << row.title;
}

class SEEN_CHANGE : public REPLACED_FILE_TEST, public testing::WithParamInterface<CHANGE>
{
};

void with_times_of(const std::string& path, const std::function<void()>& action)
{
    struct stat before;
    ASSERT_EQ(stat(path.c_str(), &before), 0);
    action();
    const struct timespec times[2] = {before.st_atim, before.st_mtim};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

TEST_P(SEEN_CHANGE, is_seen)
{
    const FILE_PLACE place("user/file");
    const std::optional<SEEN_FILE> seen = SEEN_FILE::look_at(place);
    ASSERT_TRUE(seen && seen->is_still_at(place) && seen->is_unwritten());
    GetParam().make();
    EXPECT_FALSE(seen->is_still_at(place));
}

INSTANTIATE_TEST_SUITE_P(
    table, SEEN_CHANGE,
    testing::Values(CHANGE{"other bytes", [] { write_file("user/file", "OLD\n"); }},
                    CHANGE{"the same bytes at another time", [] { write_file("user/file", "old\n"); }},
                    CHANGE{"other bytes, with the old time set",
                           [] { with_times_of("user/file", [] { write_file("user/file", "OLD\n"); }); }},
                    CHANGE{"another size, with the old time set",
                           [] { with_times_of("user/file", [] { write_file("user/file", "old\nnew\n"); }); }},
                    CHANGE{"another file of the same bytes and times",
                           []
                           {
                               with_times_of("user/file",
                                             []
                                             {
                                                 write_file("user/new", "old\n");
                                                 std::filesystem::rename("user/new", "user/file");
                                             });
                           }},
                    CHANGE{"gone", [] { std::filesystem::remove("user/file"); }},
                    CHANGE{"a link to itself",
                           []
                           {
                               std::filesystem::rename("user/file", "user/moved");
                               std::filesystem::create_symlink("moved", "user/file");
                           }},
                    CHANGE{"another mode", [] { chmod("user/file", 0600); }},
                    CHANGE{"another name", [] { std::filesystem::create_hard_link("user/file", "user/other"); }},
                    CHANGE{"an attribute", []
                           {
                               // The mode, where a file system has no attributes.
                               if (setxattr("user/file", "user.note", "mine", 4, 0) != 0)
                                   chmod("user/file", 0660);
                           }}));

TEST_F(SETTLED_FILE, a_file_that_appears_is_seen)
{
    std::filesystem::remove(file);
    const FILE_PLACE place(file);
    const std::optional<SEEN_FILE> seen = SEEN_FILE::look_at(place);
    ASSERT_TRUE(seen && !seen->exists() && seen->is_still_at(place));
    write_file(file, "");
    EXPECT_FALSE(seen->is_still_at(place));
}

// A program that has the file mapped changes it, and its times stay as they are.
TEST_F(SETTLED_FILE, bytes_count_where_all_times_are_equal)
{
    const int opened = open(file, O_RDWR | O_CLOEXEC);
    void* const mapped = mmap(nullptr, 4, PROT_READ | PROT_WRITE, MAP_SHARED, opened, 0);
    ASSERT_NE(mapped, MAP_FAILED);
    close(opened);
    std::memcpy(mapped, "one\n", 4); // the first write sets the times
    const FILE_PLACE place(file);
    const std::optional<SEEN_FILE> seen = SEEN_FILE::look_at(place);
    ASSERT_TRUE(seen);
    EXPECT_TRUE(seen->is_still_at(place));
    std::memcpy(mapped, "two\n", 4);
    EXPECT_TRUE(seen->is_unwritten()); // by its times
    EXPECT_FALSE(seen->is_still_at(place));
    munmap(mapped, 4);
}
}
