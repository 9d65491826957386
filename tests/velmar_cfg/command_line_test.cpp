// What holds for every command: usage errors, help, the global options, and where the bytes go.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class COMMAND_LINE : public TOOL_TEST
{
};

TEST_F(COMMAND_LINE, an_unknown_command_is_a_usage_error_with_a_suggestion)
{
    EXPECT_EQ(
        run({"lst"}),
        (TOOL_RUN{2, "", "velmar-cfg: there is no command 'lst', did you mean 'list'?; see velmar-cfg --help\n"}));
    EXPECT_EQ(run({"frobnicate", "x"}),
              (TOOL_RUN{2, "", "velmar-cfg: there is no command 'frobnicate'; see velmar-cfg --help\n"}));
}

TEST_F(COMMAND_LINE, no_command_is_a_usage_error)
{
    EXPECT_EQ(run({}), (TOOL_RUN{2, "", "velmar-cfg: A subcommand is required; see velmar-cfg --help\n"}));
}

TEST_F(COMMAND_LINE, a_missing_argument_names_the_help_of_the_command)
{
    EXPECT_EQ(run({"get"}), (TOOL_RUN{2, "", "velmar-cfg: NAME is required; see velmar-cfg get --help\n"}));
}

TEST_F(COMMAND_LINE, unknown_options_and_surplus_arguments_are_usage_errors)
{
    EXPECT_EQ(run({"list", "--frobnicate"}).exit_code, 2);
    EXPECT_EQ(run({"get", "a", "b"}).exit_code, 2);
    EXPECT_EQ(run({"list", "--color", "sometimes"}).exit_code, 2);
}

TEST_F(COMMAND_LINE, json_and_zero_bytes_exclude_each_other)
{
    EXPECT_EQ(run({"list", "--json", "-z"}), (TOOL_RUN{2, "", "velmar-cfg: --json and -z exclude each other\n"}));
}

TEST_F(COMMAND_LINE, a_directory_that_is_missing_or_no_directory_is_named)
{
    write_file("file", "");
    EXPECT_EQ(run({"--project", "nowhere", "list"}),
              (TOOL_RUN{3, "", "velmar-cfg: nowhere: no such directory; give --project an existing one\n"}));
    EXPECT_EQ(run({"--root", "file", "list"}),
              (TOOL_RUN{3, "", "velmar-cfg: file: no such directory; give --root an existing one\n"}));
    EXPECT_EQ(run({"--project", "", "list"}).exit_code, 3);
}

TEST_F(COMMAND_LINE, help_goes_to_standard_output)
{
    const TOOL_RUN help = run({"--help"});
    EXPECT_EQ(help.exit_code, 0);
    EXPECT_EQ(help.err, "");
    for (const char* const part : {"--project", "--regtest", "--root", "--json", "--color", "Example:", "Exit codes:"})
        EXPECT_THAT(help.out, HasSubstr(part));
}

TEST_F(COMMAND_LINE, version_names_the_release)
{
    const TOOL_RUN version = run({"--version"});
    EXPECT_EQ(version.exit_code, 0);
    EXPECT_THAT(version.out, StartsWith("velmar-cfg "));
    EXPECT_THAT(version.out, EndsWith(", release 23.4\n"));
}

TEST_F(COMMAND_LINE, global_options_may_stand_before_and_behind_the_command)
{
    write_file("project/velmar.ini", "a=1\n");
    EXPECT_EQ(run({"--project", "project", "get", "a"}), (TOOL_RUN{0, "1\n", ""}));
    EXPECT_EQ(run({"get", "a", "--project", "project"}), (TOOL_RUN{0, "1\n", ""}));
}

TEST_F(COMMAND_LINE, root_moves_the_installation)
{
    write_file("tree/bin/velmar.ini", "where=installation\n");
    EXPECT_EQ(run({"get", "where"}).exit_code, 1);
    EXPECT_EQ(run({"--root", "tree", "get", "where"}), (TOOL_RUN{0, "installation\n", ""}));
    EXPECT_EQ(run({"--root", "tree/", "get", "where"}), (TOOL_RUN{0, "installation\n", ""}));
}

TEST_F(COMMAND_LINE, a_full_device_is_no_success)
{
    int status = 0;
    const pid_t child = start({"--help"}, "/dev/full");
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 4);
    EXPECT_EQ(read_file(temporary.path("standard_error")),
              "velmar-cfg: standard output: No space left on device; send it somewhere that can take it\n");
}

// Each command that can write more than a pipe holds.
class READER_THAT_HAS_GONE : public TOOL_TEST, public testing::WithParamInterface<std::vector<std::string>>
{
};

TEST_P(READER_THAT_HAS_GONE, is_no_error)
{
    // So that the tool still writes when the reader has gone.
    std::string lines;
    for (int i = 0; i < 20000; ++i)
        lines += "variable_" + std::to_string(i) + "=1\n";
    write_file("velmar.ini", lines);
    write_file("empty/velmar.ini", "");

    const std::string fifo = temporary.path("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const pid_t child = start(GetParam(), fifo);
    const int reader = open(fifo.c_str(), O_RDONLY);
    ASSERT_GE(reader, 0);
    char first = 0;
    EXPECT_EQ(read(reader, &first, 1), 1);
    close(reader);

    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), GetParam().front() == "diff" ? 1 : 0);
    EXPECT_EQ(read_file(temporary.path("standard_error")), "");
}

INSTANTIATE_TEST_SUITE_P(commands, READER_THAT_HAS_GONE,
                         testing::Values(std::vector<std::string>{"list"}, std::vector<std::string>{"list", "--json"},
                                         std::vector<std::string>{"snapshot"},
                                         std::vector<std::string>{"diff", "empty", "."}));
}
