// Files and directories that a user names: what is read of them a part at a time, and what keeps them from being used.
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/failing_files.h"
#include "tests/support/isolated_test.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/input_file.h"

namespace
{
using testing::HasSubstr;
using testing::StartsWith;

// What `action` throws; empty for nothing.
template <typename ACTION>
std::string complaint_of(ACTION action)
{
    try
    {
        action();
        return "";
    }
    catch (const TOOL_ERROR& error)
    {
        EXPECT_EQ(error.exit_code, EXIT_CODE::BAD_INPUT);
        return error.what();
    }
}

class NAMED_FILES : public ISOLATED_TEST
{
};

TEST_F(NAMED_FILES, are_read_a_part_at_a_time)
{
    write_file("file", "0123456789");
    NAMED_FILE file("file");
    char buffer[16];
    std::string all;
    std::size_t parts = 0;
    for (std::size_t size = 0; (size = file.read(buffer, 4)) > 0; ++parts)
    {
        ASSERT_LE(size, 4U);
        all.append(buffer, size);
    }
    EXPECT_EQ(all, "0123456789");
    EXPECT_GE(parts, 3U);
    EXPECT_EQ(file.read(buffer, sizeof buffer), 0U);
}

TEST_F(NAMED_FILES, that_fail_say_after_how_many_bytes)
{
    write_file("file", "0123456789");
    NAMED_FILE file("file");
    char buffer[16];
    ASSERT_EQ(file.read(buffer, 4), 4U);
    const FILE_FAULT fault(FILE_CALL::READ, 1);
    EXPECT_THAT(complaint_of([&] { file.read(buffer, 4); }), StartsWith("file: Input/output error, after 4 bytes"));
}

TEST_F(NAMED_FILES, that_cannot_be_opened_are_named)
{
    std::filesystem::create_directory("directory");
    EXPECT_EQ(complaint_of([] { NAMED_FILE("missing"); }), "missing: No such file or directory; check the path");
    EXPECT_EQ(complaint_of([] { NAMED_FILE("directory"); }), "directory: is a directory, not a file; check the path");
    EXPECT_EQ(complaint_of([] { read_input_file("missing"); }), "missing: No such file or directory; check the path");
    EXPECT_EQ(title_of_named_file("-"), "standard input");
    EXPECT_EQ(title_of_named_file("./-"), "./-");
    EXPECT_EQ(title_of_named_file(""), "");
}

TEST_F(NAMED_FILES, leave_no_descriptor_open)
{
    write_file("file", "bytes");
    const auto open_descriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                             std::filesystem::directory_iterator());
    };
    const auto before = open_descriptors();
    for (int i = 0; i < 3; ++i)
    {
        const NAMED_FILE file("file");
        read_named_file("file");
        read_whole_file("file");
        EXPECT_THROW(NAMED_FILE("missing"), TOOL_ERROR);
    }
    EXPECT_EQ(open_descriptors(), before);
}

TEST(WHOLE_LINES, are_all_bytes_unless_there_is_a_problem)
{
    struct ROW
    {
        const char* bytes;
        const char* before_a_problem;
    };
    for (const ROW& row :
         {ROW{"", ""}, {"a", ""}, {"a\n", "a\n"}, {"a\nb", "a\n"}, {"\n\n", "\n\n"}, {"a\n\nb\nc", "a\n\nb\n"}})
    {
        EXPECT_EQ((INPUT_FILE{"f", row.bytes, ""}.whole_lines()), row.bytes);
        const INPUT_FILE cut{"f", row.bytes, "Input/output error"};
        EXPECT_EQ(cut.whole_lines(), row.before_a_problem) << row.bytes;
    }
}

// --- Directories ---

class INPUT_DIRECTORIES : public ISOLATED_TEST
{
};

TEST_F(INPUT_DIRECTORIES, exist_and_are_none_else)
{
    write_file("project/velmar.ini", "");
    ASSERT_EQ(symlink("project", "link"), 0);
    ASSERT_EQ(symlink("nowhere", "dangling"), 0);
    ASSERT_EQ(symlink("circle", "circle"), 0);
    struct ROW
    {
        std::string path;
        const char* complaint; // behind the path
    };
    const ROW rows[] = {
        {"project", ""},
        {"project/", ""},
        {"link", ""},
        {".", ""},
        {"/", ""},
        {"project/velmar.ini", ": is a file; give --project a directory, such as project"},
        {"./project/velmar.ini", ": is a file; give --project a directory, such as ./project"},
        {"/dev/null", ": is a file; give --project a directory, such as /dev"},
        {"nowhere", ": no such directory; give --project an existing one"},
        {"dangling", ": is a broken symbolic link; remove it or create what it names"},
        {"", ": no such directory; give --project an existing one"},
        {"project/velmar.ini/x", ": no such directory; give --project an existing one"},
        {"circle", ": is a symbolic link that leads back to itself; remove it or create what it names"},
        {std::string(300, 'x'), ""}, // of what cannot be searched, the files are told that cannot be seen
    };
    for (const ROW& row : rows)
        EXPECT_EQ(complaint_of([&row] { check_input_directory(row.path, "give --project "); }),
                  *row.complaint == '\0' ? "" : row.path + row.complaint)
            << row.path;
    std::filesystem::current_path("project");
    EXPECT_EQ(complaint_of([] { check_input_directory("velmar.ini", "name "); }),
              "velmar.ini: is a file; name a directory, such as .");
}

// --- The files of one command ---

TEST_F(INPUT_DIRECTORIES, have_files_whose_problems_are_told_by_the_names_of_the_user)
{
    INPUT_FILES files;
    files.read_named("missing");
    files.read("missing");
    files.read_named("missing");
    EXPECT_THAT(files.problems(), testing::ElementsAre("missing: No such file or directory; check the path"));
    files.add_problem("one");
    files.add_problem("one");
    files.add_problem("two");
    EXPECT_EQ(files.problems().size(), 3U);
    files.forget("missing");
    EXPECT_THAT(files.problems(), testing::ElementsAre("one", "two"));
    files.note_absence("nothing");
    EXPECT_EQ(files.problems().size(), 2U);
    ASSERT_EQ(symlink("nowhere", "dangling"), 0);
    files.note_absence("dangling");
    EXPECT_THAT(files.problems().back(), HasSubstr("dangling: is a broken symbolic link"));
}
}
