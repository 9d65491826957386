// Files read whole, and what keeps them from it.
#include "tools/velmar-cfg/base/input_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/failing_files.h"
#include "tests/support/isolated_test.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/output.h"

namespace
{
using testing::HasSubstr;
using testing::StartsWith;

class INPUT_FILE_TEST : public ISOLATED_TEST
{
};

// How a read of the file as text ends: "" or what was thrown.
std::string complaint_about(const INPUT_FILE& file)
{
    try
    {
        file.require_text();
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
    write_file("binary", std::string("a\nb\0", 4));
    struct ROW
    {
        const char* path;
        const char* complaint;
    };
    const ROW rows[] = {
        {"missing", "missing: No such file or directory; check the path"},
        {"directory", "directory: is a directory, not a file; remove it or name another path"},
        {"pipe", "pipe: is no regular file, so it cannot be read twice; copy what it holds into a file"},
        {"/dev/null", "/dev/null: is no regular file, so it cannot be read twice; copy what it holds into a file"},
        {"binary", "binary: binary file: line 2 holds a zero byte; remove it or name another file"},
        {"/proc/self/mem", "/proc/self/mem: Input/output error, after 0 bytes; check the device, or name a copy of the "
                           "file"},
    };
    for (const ROW& row : rows)
        EXPECT_EQ(complaint_about(read_whole_file(row.path)), row.complaint);
    EXPECT_EQ(input_problem("directory"), "is a directory, not a file; remove it or name another path");
    EXPECT_EQ(input_problem("missing"), "No such file or directory; check the path");
    EXPECT_EQ(input_problem("binary"), "");
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

// --- The other way ---

TEST(OUTPUT_TEST, is_written_whole_where_the_descriptor_does_not_block)
{
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_NONBLOCK | O_CLOEXEC), 0);
    const std::string text(1'000'000, 'x');
    const pid_t writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0)
    {
        close(ends[0]);
        OUTPUT out(ends[1]);
        out << text;
        out.finish();
        _exit(0);
    }
    close(ends[1]);
    ASSERT_EQ(fcntl(ends[0], F_SETFL, 0), 0); // the reader may wait
    std::string got;
    char buffer[4096];
    for (ssize_t count = 0; (count = read(ends[0], buffer, sizeof buffer)) > 0;)
        got.append(buffer, static_cast<std::size_t>(count));
    close(ends[0]);
    EXPECT_TRUE(got == text) << got.size();
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
