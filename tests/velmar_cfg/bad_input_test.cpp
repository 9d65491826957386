// Files that cannot be read as what they should be: one line that names the file and what to do, the exit code 3, and
// all that the other files answer.
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::HasSubstr;

// A command that reads the settings, and what it prints when nothing but the appended file can be read.
struct READER
{
    std::vector<std::string> command;
    const char* shown;
};

void PrintTo(const READER& reader, std::ostream* stream)
{
    *stream << testing::PrintToString(reader.command);
}

class BAD_SETTINGS : public TOOL_TEST, public testing::WithParamInterface<READER>
{
protected:
    BAD_SETTINGS()
    {
        write_file("good/velmar.ini", "a=1\n");
        write_file("appended.ini", "other = 2\nno assignment\n");
        variables["APPENDED_VELMAR_INI"] = "appended.ini";
    }

    void expect_told(const std::string& problem, bool rights = true) const
    {
        std::vector<std::string> arguments = GetParam().command;
        arguments.insert(arguments.end(), {"--project", "project"});
        const TOOL_RUN got = rights ? run(arguments) : run_without_rights(arguments);
        EXPECT_EQ(got.exit_code, 3);
        EXPECT_EQ(got.err, "velmar-cfg: " + problem + "\n");
        EXPECT_THAT(got.out, HasSubstr(GetParam().shown));
    }
};

TEST_P(BAD_SETTINGS, a_directory_in_the_place_of_a_file)
{
    write_file("project/velmar.ini/file", "");
    expect_told("project/velmar.ini: is a directory, not a file; check the path");
}

TEST_P(BAD_SETTINGS, a_pipe_that_nobody_writes_to)
{
    write_file("project/readme", "");
    ASSERT_EQ(mkfifo("project/velmar.ini", 0600), 0);
    expect_told("project/velmar.ini: is no regular file, so it cannot be read twice; copy what it holds into a file");
}

TEST_P(BAD_SETTINGS, a_file_without_permission)
{
    write_file("project/velmar.ini", "a=1\n");
    ASSERT_EQ(chmod("project/velmar.ini", 0), 0);
    expect_told("project/velmar.ini: Permission denied; make the file readable for this user", false);
}

// Not the end of the file: the kernel fails every read of address 0.
TEST_P(BAD_SETTINGS, a_file_whose_reading_fails)
{
    write_file("project/readme", "");
    ASSERT_EQ(symlink("/proc/self/mem", "project/velmar.ini"), 0);
    expect_told("project/velmar.ini: Input/output error, after 0 bytes; check the device, or name a copy of the file");
}

TEST_P(BAD_SETTINGS, a_link_that_leads_nowhere)
{
    write_file("project/readme", "");
    ASSERT_EQ(symlink("nowhere", "project/velmar.ini"), 0);
    expect_told("project/velmar.ini: is a broken symbolic link; remove it or create what it names");
}

TEST_P(BAD_SETTINGS, a_directory_that_cannot_be_searched)
{
    write_file("project/readme", "");
    write_file("barred/file", "");
    ASSERT_EQ(chmod("barred", 0600), 0);
    variables["VELMAR_INI"] = "barred";
    expect_told("barred/velmar.ini: Permission denied; let this user search the directories that it is in", false);
    std::filesystem::permissions("barred", std::filesystem::perms::owner_all);
}

INSTANTIATE_TEST_SUITE_P(commands, BAD_SETTINGS,
                         testing::Values(READER{{"get", "other"}, "2\n"}, READER{{"list"}, "other=2\n"},
                                         READER{{"explain", "other"}, "other = 2\n"},
                                         READER{{"lint"}, "appended.ini:2:1: "},
                                         READER{{"snapshot"}, "\"name\": \"other\""},
                                         READER{{"diff", "good"}, "  a, by main settings file\n"}));

class BAD_INPUT : public TOOL_TEST
{
};

// What the search would have found is not a concern of a project that has its own.
TEST_F(BAD_INPUT, places_behind_the_one_that_is_found_are_not_looked_at)
{
    write_file("project/velmar.ini", "a=1\n");
    ASSERT_EQ(symlink("nowhere", "velmar.ini"), 0);
    EXPECT_EQ(run({"get", "a", "--project", "project"}), (TOOL_RUN{0, "1\n", ""}));
    EXPECT_EQ(run({"get", "a"}).exit_code, 3);
    variables["VELMAR_INI_DISABLED"] = "1";
    EXPECT_EQ(run({"get", "a"}).exit_code, 1);
}

TEST_F(BAD_INPUT, an_appended_file_behind_a_dangling_link_is_told)
{
    write_file("velmar.ini", "a=1\n");
    ASSERT_EQ(symlink("nowhere", "link"), 0);
    variables["APPENDED_VELMAR_INI"] = "link/appended.ini";
    EXPECT_EQ(run({"get", "a"}), (TOOL_RUN{3, "1\n",
                                           "velmar-cfg: link/appended.ini: is reached through link, a broken symbolic "
                                           "link; remove it or create what it names\n"}));
}

// A host finds nothing there and goes on.
TEST_F(BAD_INPUT, a_project_that_cannot_be_searched_is_told_and_the_rest_answers)
{
    write_file("velmar.ini", "b=2\n");
    write_file("barred/project/velmar.ini", "a=1\n");
    const auto told = [](const std::string& path)
    { return "velmar-cfg: " + path + ": Permission denied; let this user search the directories that it is in\n"; };
    ASSERT_EQ(chmod("barred", 0600), 0);
    EXPECT_EQ(run_without_rights({"list", "--project", "barred"}), (TOOL_RUN{3, "b=2\n", told("barred/velmar.ini")}));
    EXPECT_EQ(run_without_rights({"list", "--project", "barred/project"}),
              (TOOL_RUN{3, "b=2\n", told("barred/project/velmar.ini")}));
    EXPECT_EQ(run_without_rights({"diff", "barred", "."}), (TOOL_RUN{3, "", told("barred/velmar.ini")}));
    EXPECT_EQ(run_without_rights({"list", "--root", "barred"}), (TOOL_RUN{0, "b=2\n", ""}));
    std::filesystem::remove("velmar.ini");
    EXPECT_EQ(run_without_rights({"list", "--root", "barred"}), (TOOL_RUN{3, "", told("barred/bin/velmar.ini")}));
    std::filesystem::permissions("barred", std::filesystem::perms::owner_all);
}

TEST_F(BAD_INPUT, a_directory_behind_a_dangling_link_is_told_from_a_missing_one)
{
    ASSERT_EQ(symlink("nowhere", "link"), 0);
    ASSERT_EQ(symlink("circle", "circle"), 0);
    EXPECT_EQ(run({"--project", "link", "list"}),
              (TOOL_RUN{3, "", "velmar-cfg: link: is a broken symbolic link; remove it or create what it names\n"}));
    EXPECT_EQ(
        run({"--root", "circle", "list"}),
        (TOOL_RUN{
            3, "",
            "velmar-cfg: circle: is a symbolic link that leads back to itself; remove it or create what it names\n"}));
}

TEST_F(BAD_INPUT, each_problem_is_told_once)
{
    write_file("velmar.ini/file", "");
    write_file("regtest.ini/file", "");
    variables["APPENDED_VELMAR_INI"] = temporary.path("cwd/velmar.ini");
    const TOOL_RUN listed = run({"list", "--regtest"});
    EXPECT_EQ(listed,
              (TOOL_RUN{3, "",
                        "velmar-cfg: " + temporary.path("cwd/velmar.ini") +
                            ": is a directory, not a file; check the path\n"
                            "velmar-cfg: " +
                            temporary.path("cwd/regtest.ini") + ": is a directory, not a file; check the path\n"}));
}

TEST_F(BAD_INPUT, the_null_device_is_an_empty_file)
{
    ASSERT_EQ(symlink("/dev/null", "velmar.ini"), 0);
    EXPECT_EQ(run({"list"}), (TOOL_RUN{0, "", ""}));
}

// As a host, which reads lines of any bytes.
TEST_F(BAD_INPUT, zero_bytes_are_bytes_of_names_and_values)
{
    using namespace std::string_literals;
    write_file("velmar.ini", "a=5\0x\nb\0ehind = 2\n\0\0\0\n"s);
    EXPECT_EQ(run({"get", "a"}), (TOOL_RUN{0, "5\0x\n"s, ""}));
    EXPECT_EQ(run({"get", "a", "--type", "int"}), (TOOL_RUN{0, "5\n", ""})); // a conversion ends there
    EXPECT_EQ(run({"get", "b"}), (TOOL_RUN{0, "2\n", ""}));                  // and so does a name
    EXPECT_EQ(run({"list"}), (TOOL_RUN{0, "a=5\\x00x\nb\\x00ehind=2\n", ""}));
    EXPECT_THAT(run({"explain", "b"}).out, HasSubstr("b = 2\n"));
    EXPECT_EQ(run({"snapshot"}).json()["variables"][0]["value"], "5\0x"s);
    EXPECT_NE(run({"lint"}).exit_code, 3);
}

class BAD_PREFERENCES : public TOOL_TEST, public testing::WithParamInterface<std::vector<std::string>>
{
};

TEST_P(BAD_PREFERENCES, are_told_and_the_defaults_answer)
{
    write_file("user/velmar2.ini/file", "");
    variables["VELMAR2_INI"] = "user";
    const TOOL_RUN got = run(GetParam());
    EXPECT_EQ(got.exit_code, 3);
    EXPECT_EQ(got.err, "velmar-cfg: user/velmar2.ini: is a directory, not a file; check the path\n");
    EXPECT_THAT(got.out, HasSubstr("Verilog"));
}

INSTANTIATE_TEST_SUITE_P(commands, BAD_PREFERENCES,
                         testing::Values(std::vector<std::string>{"prefs", "list", "--all"},
                                         std::vector<std::string>{"prefs", "get", "HDL_PREFERENCE"},
                                         std::vector<std::string>{"prefs", "describe", "HDL_PREFERENCE"},
                                         std::vector<std::string>{"snapshot"}));

TEST_F(BAD_INPUT, preferences_behind_zero_bytes_are_read_as_hosts_read_them)
{
    using namespace std::string_literals;
    write_file(temporary.path("home/velmar2.ini"), "[General 23.4_pro]\nHDL_PREFERENCE = VHDL\0x\n"s);
    EXPECT_EQ(run({"prefs", "get", "HDL_PREFERENCE"}), (TOOL_RUN{0, "VHDL\n", ""}));
}

TEST_F(BAD_INPUT, a_preference_file_behind_a_dangling_link_is_told)
{
    write_file("user/readme", "");
    ASSERT_EQ(symlink("nowhere", "user/velmar2.ini"), 0);
    variables["VELMAR2_INI"] = "user";
    EXPECT_EQ(
        run({"prefs", "get", "HDL_PREFERENCE"}),
        (TOOL_RUN{3, "Verilog\n",
                  "velmar-cfg: user/velmar2.ini: is a broken symbolic link; remove it or create what it names\n"}));
}

// A snapshot holds no hash of what is not all of the file.
TEST_F(BAD_INPUT, a_snapshot_says_of_an_unreadable_file_only_where_it_is)
{
    write_file("project/readme", "");
    ASSERT_EQ(symlink("/proc/self/mem", "project/velmar.ini"), 0);
    const TOOL_RUN taken = run({"snapshot", "--project", "project"});
    EXPECT_EQ(taken.exit_code, 3);
    EXPECT_EQ(taken.json()["files"][0],
              R"({"role": "main", "path": "project/velmar.ini", "size": null, "sha256": null})"_json);
}
}
