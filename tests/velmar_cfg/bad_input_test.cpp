// Files that cannot be read as what they should be: one line that names the file and what to do, and nothing else.
#include <sys/stat.h>

#include "tests/velmar_cfg/tool_test.h"

namespace
{
// Each command that reads the settings fails alike.
class BAD_SETTINGS : public TOOL_TEST, public testing::WithParamInterface<std::vector<std::string>>
{
protected:
    TOOL_RUN run_on_project() const
    {
        std::vector<std::string> arguments = GetParam();
        arguments.insert(arguments.end(), {"--project", "project"});
        return run(arguments);
    }
};

TEST_P(BAD_SETTINGS, a_directory_in_the_place_of_a_file)
{
    write_file("project/velmar.ini/file", "");
    EXPECT_EQ(run_on_project(),
              (TOOL_RUN{3, "",
                        "velmar-cfg: project/velmar.ini: is a directory, not a file; remove it or name another "
                        "path\n"}));
}

TEST_P(BAD_SETTINGS, a_binary_file)
{
    write_file("project/velmar.ini", std::string("a=1\nb=\0\n", 8));
    EXPECT_EQ(run_on_project(), (TOOL_RUN{3, "",
                                          "velmar-cfg: project/velmar.ini: binary file: line 2 holds a zero "
                                          "byte; remove it or name another file\n"}));
}

TEST_P(BAD_SETTINGS, a_pipe_that_nobody_writes_to)
{
    write_file("project/velmar.ini", "a=1\n");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    variables["APPENDED_VELMAR_INI"] = "pipe";
    EXPECT_EQ(run_on_project(), (TOOL_RUN{3, "",
                                          "velmar-cfg: pipe: is no regular file, so it cannot be read twice; "
                                          "copy what it holds into a file\n"}));
}

TEST_P(BAD_SETTINGS, a_file_without_permission)
{
    write_file("project/velmar.ini", "a=1\n");
    ASSERT_EQ(chmod("project/velmar.ini", 0), 0);
    std::vector<std::string> arguments = GetParam();
    arguments.insert(arguments.end(), {"--project", "project"});
    EXPECT_EQ(run_without_rights(arguments),
              (TOOL_RUN{3, "",
                        "velmar-cfg: project/velmar.ini: Permission denied; make the file readable for this "
                        "user\n"}));
}

// Not the end of the file: the kernel fails every read of address 0.
TEST_P(BAD_SETTINGS, a_file_whose_reading_fails)
{
    write_file("project/velmar.ini", "a=1\n");
    variables["APPENDED_VELMAR_INI"] = "/proc/self/mem";
    EXPECT_EQ(run_on_project(),
              (TOOL_RUN{3, "",
                        "velmar-cfg: /proc/self/mem: Input/output error, after 0 bytes; check the device, or name a "
                        "copy of the file\n"}));
}

INSTANTIATE_TEST_SUITE_P(commands, BAD_SETTINGS,
                         testing::Values(std::vector<std::string>{"get", "a"}, std::vector<std::string>{"list"},
                                         std::vector<std::string>{"explain", "a"}, std::vector<std::string>{"lint"},
                                         std::vector<std::string>{"snapshot"}, std::vector<std::string>{"diff", "."}));
}
