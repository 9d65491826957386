// Files read whole, and what keeps them from it.
#include "tools/velmar-cfg/base/input_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/failing_files.h"
#include "tests/support/isolated_test.h"
#include "tests/support/pipes.h"
#include "tests/support/scoped_process_state.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/output.h"

namespace
{
using testing::HasSubstr;
using testing::StartsWith;

class INPUT_FILE_TEST : public ISOLATED_TEST
{
};

// How a read of the whole file ends: "" or what was thrown.
std::string complaint_about(const INPUT_FILE& file)
{
    try
    {
        file.require_whole();
        return "";
    }
    catch (const TOOL_ERROR& error)
    {
        EXPECT_EQ(error.exit_code, EXIT_CODE::BAD_INPUT);
        return error.what();
    }
}

TEST_F(INPUT_FILE_TEST, is_read_to_its_last_byte)
{
    for (const std::size_t size : {0U, 1U, 4095U, 4096U, 4097U, 1'000'000U})
    {
        std::string bytes(size, 'x');
        if (size > 0)
            bytes.back() = '\n';
        write_file("file", bytes);
        const INPUT_FILE file = read_whole_file("file");
        EXPECT_EQ(file.problem, "");
        EXPECT_TRUE(file.bytes == bytes) << size;
    }
    // A file that says it has no bytes, and has some.
    EXPECT_THAT(read_whole_file("/proc/self/status").bytes, StartsWith("Name:"));
}

TEST_F(INPUT_FILE_TEST, tells_what_is_wrong)
{
    write_file("directory/file", "");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    ASSERT_EQ(symlink("nowhere", "link"), 0);
    ASSERT_EQ(symlink("circle", "circle"), 0);
    struct ROW
    {
        const char* path;
        const char* complaint;
    };
    const ROW rows[] = {
        {"missing", "missing: No such file or directory; check the path"},
        {"link", "link: is a broken symbolic link; remove it or create what it names"},
        {"circle", "circle: is a symbolic link that leads back to itself; remove it or create what it names"},
        {"directory", "directory: is a directory, not a file; check the path"},
        {"pipe", "pipe: is no regular file, so it cannot be read twice; copy what it holds into a file"},
        {"/dev/null", ""},
        {"/dev/zero", "/dev/zero: is no regular file, so it cannot be read twice; copy what it holds into a file"},
        {"/proc/self/mem", "/proc/self/mem: Input/output error, after 0 bytes; check the device, or name a copy of the "
                           "file"},
    };
    for (const ROW& row : rows)
        EXPECT_EQ(complaint_about(read_whole_file(row.path)), row.complaint);
    EXPECT_EQ(input_problem("directory"), "is a directory, not a file; check the path");
    EXPECT_EQ(input_problem("missing"), "No such file or directory; check the path");
    EXPECT_TRUE(read_whole_file("missing").gone);
    EXPECT_FALSE(read_whole_file("directory").gone);
}

// A read error is not the end of the file.
TEST_F(INPUT_FILE_TEST, tells_of_a_read_error_behind_the_first_bytes)
{
    write_file("file", "a=1\nb=2\n");
    for (long nth = 1; nth <= 2; ++nth)
    {
        const FILE_FAULT fault(FILE_CALL::READ, nth);
        const INPUT_FILE file = read_whole_file("file");
        ASSERT_TRUE(fault.was_reached());
        EXPECT_THAT(file.problem, HasSubstr(nth == 1 ? "after 0 bytes" : "after 8 bytes"));
        EXPECT_THROW(file.require_whole(), TOOL_ERROR);
    }
}

TEST_F(INPUT_FILE_TEST, is_read_once_for_a_command)
{
    write_file("file", "before");
    INPUT_FILES files;
    const std::shared_ptr<const INPUT_FILE> first = files.read("file");
    write_file("file", "after");
    EXPECT_EQ(files.read("file"), first);
    EXPECT_EQ(first->bytes, "before");
    EXPECT_EQ(INPUT_FILES().read("file")->bytes, "after");
}

TEST_F(INPUT_FILE_TEST, tells_its_problems_once_and_in_order)
{
    INPUT_FILES files;
    files.read("b");
    files.read("a");
    files.read("b");
    ASSERT_EQ(symlink("nowhere", "link"), 0);
    files.note_absence("link");
    files.note_absence("link");
    files.note_absence("really missing");
    files.forget("a");
    files.forget("never read");
    EXPECT_THAT(files.problems(),
                testing::ElementsAre("b: No such file or directory; check the path",
                                     "link: is a broken symbolic link; remove it or create what it names"));
    write_file("a", "bytes");
    EXPECT_EQ(files.read("a")->bytes, "bytes");
}

TEST_F(INPUT_FILE_TEST, knows_why_nothing_is_there)
{
    write_file("directory/file", "");
    ASSERT_EQ(symlink("nowhere", "dangling"), 0);
    ASSERT_EQ(symlink("dangling", "link to dangling"), 0);
    ASSERT_EQ(symlink("circle", "circle"), 0);
    ASSERT_EQ(symlink("directory", "link"), 0);
    struct ROW
    {
        std::string path;
        ABSENCE kind;
        const char* problem = "";
    };
    const ROW rows[] = {
        {"directory/file", ABSENCE::NONE},
        {"link/file", ABSENCE::NONE},
        {"", ABSENCE::MISSING},
        {"missing", ABSENCE::MISSING},
        {"/missing", ABSENCE::MISSING},
        {"missing/too", ABSENCE::MISSING},
        {"directory//missing", ABSENCE::MISSING},
        {"directory/file/missing", ABSENCE::MISSING},
        {"link/missing", ABSENCE::MISSING},
        {"dangling", ABSENCE::DANGLING, "is a broken symbolic link; remove it or create what it names"},
        {"link to dangling", ABSENCE::DANGLING, "is a broken symbolic link; remove it or create what it names"},
        {"dangling//a/b", ABSENCE::DANGLING,
         "is reached through dangling, a broken symbolic link; remove it or create what it names"},
        {"circle", ABSENCE::DANGLING,
         "is a symbolic link that leads back to itself; remove it or create what it names"},
        {"circle/a", ABSENCE::DANGLING,
         "is reached through circle, a symbolic link that leads back to itself; remove it or create what it names"},
        {std::string(5000, 'x'), ABSENCE::BARRED, "File name too long"},
    };
    for (const ROW& row : rows)
    {
        EXPECT_EQ(absence_of(row.path).kind, row.kind) << row.path;
        EXPECT_EQ(absence_of(row.path).problem, row.problem) << row.path;
    }
}

// --- Files that the user named ---

TEST_F(INPUT_FILE_TEST, named_may_be_a_pipe)
{
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    const std::string text(300'000, 'x');
    const pid_t writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0)
    {
        const int pipe = open("pipe", O_WRONLY); // waits for the reader
        OUTPUT out(pipe);
        out << text;
        out.finish();
        _exit(0);
    }
    const INPUT_FILE file = read_named_file("pipe");
    EXPECT_EQ(file.problem, "");
    EXPECT_TRUE(file.bytes == text);
    waitpid(writer, nullptr, 0);
}

TEST_F(INPUT_FILE_TEST, named_is_no_directory_and_not_missing)
{
    write_file("directory/file", "bytes");
    EXPECT_EQ(read_named_file("directory").problem, "is a directory, not a file; check the path");
    EXPECT_EQ(read_named_file("missing").problem, "No such file or directory; check the path");
    EXPECT_EQ(read_named_file("/dev/null").bytes, "");
    EXPECT_EQ(read_named_file("directory/file").bytes, "bytes");
}

// --- The other way ---

TEST(OUTPUT_TEST, is_written_whole_where_the_descriptor_does_not_block)
{
    const std::string text(1'000'000, 'x');
    const std::string got = written_without_blocking(
        [&text](int pipe)
        {
            OUTPUT out(pipe);
            out << text;
            out.finish();
        });
    EXPECT_TRUE(got == text) << got.size();
}

TEST(OUTPUT_TEST, is_as_wide_as_the_terminal)
{
    SCOPED_ENVIRONMENT environment;
    environment.unset("COLUMNS");
    const int controller = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(controller, 0);
    ASSERT_EQ(grantpt(controller), 0);
    ASSERT_EQ(unlockpt(controller), 0);
    const int terminal = open(ptsname(controller), O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    const OUTPUT out(terminal);
    EXPECT_EQ(out.width(), 80U); // it does not know
    const winsize size{50, 123, 0, 0};
    ASSERT_EQ(ioctl(terminal, TIOCSWINSZ, &size), 0);
    EXPECT_EQ(out.width(), 123U);
    for (const auto& [columns, width] : {std::pair("60", 60U), std::pair("0", 123U), std::pair("wide", 123U)})
    {
        environment.set("COLUMNS", columns);
        EXPECT_EQ(out.width(), width) << columns;
    }
    close(terminal);
    close(controller);
}

TEST_F(INPUT_FILE_TEST, standard_input_may_not_block)
{
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_NONBLOCK | O_CLOEXEC), 0);
    const pid_t reader = fork();
    ASSERT_GE(reader, 0);
    if (reader == 0)
    {
        close(ends[1]);
        dup2(ends[0], STDIN_FILENO);
        const INPUT_FILE file = read_named_file("-");
        bool once = false;
        try
        {
            read_named_file("-");
        }
        catch (const TOOL_ERROR& error)
        {
            once = error.exit_code == EXIT_CODE::USAGE;
        }
        _exit(file.bytes == std::string(200'000, 'x') && file.problem.empty() && once ? 0 : 1);
    }
    close(ends[0]);
    OUTPUT out(ends[1]);
    for (int i = 0; i < 200; ++i) // so that the reader now and then finds nothing
    {
        out << std::string(1'000, 'x');
        out.finish();
    }
    close(ends[1]);
    int status = 0;
    waitpid(reader, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST(OUTPUT_TEST, complains_of_a_full_device)
{
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(full, 0);
    OUTPUT out(full);
    out << "x";
    EXPECT_THROW(out.finish(), TOOL_ERROR);
    close(full);
}
}
