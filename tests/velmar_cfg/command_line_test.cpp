// What holds for every command: usage errors, help, the global options, and where the bytes go.
#include <fcntl.h>
#include <filesystem>
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
        (TOOL_RUN{2, "", "velmar-cfg: there is no command 'lst' (did you mean 'list'?); see velmar-cfg --help\n"}));
    EXPECT_EQ(run({"frobnicate", "x"}),
              (TOOL_RUN{2, "", "velmar-cfg: there is no command 'frobnicate'; see velmar-cfg --help\n"}));
}

TEST_F(COMMAND_LINE, no_command_is_a_usage_error)
{
    EXPECT_EQ(run({}), (TOOL_RUN{2, "", "velmar-cfg: name a command; see velmar-cfg --help\n"}));
}

TEST_F(COMMAND_LINE, a_missing_argument_names_the_help_of_the_command)
{
    EXPECT_EQ(run({"explain"}), (TOOL_RUN{2, "", "velmar-cfg: NAME is required; see velmar-cfg explain --help\n"}));
    EXPECT_EQ(run({"get"}), (TOOL_RUN{2, "", "velmar-cfg: NAME or --stdin is required; see velmar-cfg get --help\n"}));
}

TEST_F(COMMAND_LINE, unknown_options_and_surplus_arguments_are_usage_errors)
{
    EXPECT_EQ(run({"list", "--frobnicate"}).exit_code, 2);
    EXPECT_EQ(run({"explain", "a", "b"}).exit_code, 2);
    EXPECT_EQ(run({"list", "--color", "sometimes"}).exit_code, 2);
}

// What is typed, and what is told before "; see ... --help".
struct MISTYPED
{
    std::vector<std::string> arguments;
    const char* told;
};

TEST_F(COMMAND_LINE, an_unknown_option_is_told_with_what_may_be_meant)
{
    const MISTYPED rows[] = {
        {{"list", "--show-origins"},
         "there is no option '--show-origins' (did you mean '--show-origin'?); see velmar-cfg list"},
        {{"list", "--SHOW-ORIGIN"},
         "there is no option '--SHOW-ORIGIN' (did you mean '--show-origin'?); see velmar-cfg list"},
        {{"prefs", "LIST"}, "there is no command 'prefs LIST' (did you mean 'list'?); see velmar-cfg prefs"},
        {{"list", "--colour", "never"}, "there is no option '--colour' (did you mean '--color'?); see velmar-cfg list"},
        {{"list", "--colour=never"}, "there is no option '--colour' (did you mean '--color'?); see velmar-cfg list"},
        {{"prefs", "set", "SHOW_MESSAGE_ID", "off", "--dryrun"},
         "there is no option '--dryrun' (did you mean '--dry-run'?); see velmar-cfg prefs set"},
        {{"paths", "--frobnicate"}, "there is no option '--frobnicate'; see velmar-cfg paths"},
        {{"--frobnicate", "paths"}, "there is no option '--frobnicate'; see velmar-cfg paths"},
        {{"get", "-name"},
         "there is no option '-name'; put -- before an argument that begins with \"-\"; see velmar-cfg get"},
        {{"prefs", "set", "USER_LIBRARIES", "-x"},
         "there is no option '-x'; put -- before an argument that begins with \"-\"; see velmar-cfg prefs set"},
        {{"explain", "a", "b"}, "the argument 'b' is one too many; see velmar-cfg explain"},
        {{"explain", "a", "b", "c"}, "the argument 'b' is one too many; see velmar-cfg explain"},
        {{"--", "list"},
         "\"--\" stands before the command; put it behind, before an argument that begins with \"-\"; see velmar-cfg"},
        {{"prefs", "--", "list"},
         "\"--\" stands before the command; put it behind, before an argument that begins with \"-\"; see velmar-cfg "
         "prefs"},
        {{"list", "--color", "x"}, "'--color' takes one of auto, always, never, not 'x'; see velmar-cfg list"},
        {{"explain", "a", "-"}, "the argument '-' is one too many; see velmar-cfg explain"},
        {{"help", "set", "unset"}, "there is no command 'set unset'; see velmar-cfg set"},
        {{"pref", "list"}, "there is no command 'pref' (did you mean 'prefs'?); see velmar-cfg"},
        {{"", "list"}, "there is no command ''; see velmar-cfg"},
        {{"prefs", "foo", "get", "a"}, "there is no command 'prefs foo'; see velmar-cfg prefs"},
        {{"--project", "list"}, "name a command; '--project' has taken 'list' for its value; see velmar-cfg"},
        {{"--project", "explain", "a"},
         "there is no command 'a'; '--project' has taken 'explain' for its value; see velmar-cfg"},
        {{"--"}, "name a command; see velmar-cfg"},
        {{"--secret"}, "'--secret' needs a value: PATTERN; see velmar-cfg"},
        {{"list", "--json=no"}, "'--json' takes no value; see velmar-cfg list"},
        {{"list", "--all=x"}, "'--all' takes no value; see velmar-cfg list"},
        {{"explain", "a", "--type", "int"},
         "explain takes no '--type'; it is an option of get; see velmar-cfg explain"},
        {{"paths", "--dry-run"},
         "paths takes no '--dry-run'; it is an option of lint, set, unset and others; see velmar-cfg paths"},
        {{"explain", "--", "--project", "p"},
         "'p' stands behind \"--\", so it is an argument, and there is one too many; put options before \"--\"; see "
         "velmar-cfg explain"},
        {{"set", "a=3"},
         "VALUE is required; write the name and the value as two words, without an equals sign; see velmar-cfg set"},
        {{"set", "a", "=", "3"},
         "the argument '3' is one too many; write the name and the value as two words, without an equals sign; see "
         "velmar-cfg "
         "set"},
        {{"prefs", "set", "A=B"},
         "VALUE is required; write the name and the value as two words, without an equals sign; see velmar-cfg prefs "
         "set"},
        {{"set", "a", "x=1", "y=2"}, "the argument 'y=2' is one too many; see velmar-cfg set"},
        // A word that is called as an argument is no option with a value.
        {{"set", "NAME", "--file=", "5", "6"}, "the argument '6' is one too many; see velmar-cfg set"},
        {{"explain", "NAME", "--json=true"}, "'--json' takes no value; see velmar-cfg explain"},
        {{"get", "-z=1", "a"}, "'-z' takes no value; see velmar-cfg get"},
        {{"-"}, "there is no command '-'; see velmar-cfg"},
        {{"--secret", "get", "prefs", "sett"},
         "there is no command 'prefs sett' (did you mean 'set'?); see velmar-cfg prefs"},
        {{"--dry-run"}, "name a command; '--dry-run' is an option of lint, set, unset and others; see velmar-cfg"},
        {{"list", "--color", "x not in {y}"},
         "'--color' takes one of auto, always, never, not 'x not in {y}'; see velmar-cfg list"},
        {{"explain", "a=b", "c"}, "the argument 'c' is one too many; see velmar-cfg explain"},
        {{"list", "--of", ".", "--of", "."}, "'--of' may be given only once; see velmar-cfg list"},
        {{"list", "--of"}, "'--of' needs a value: STATE; see velmar-cfg list"},
        {{"--of", "x", "list"}, "'--of' goes after the command: velmar-cfg list --of; see velmar-cfg list"},
        {{"--with", "A=B", "list"}, "'--with' goes after the command: velmar-cfg list --with; see velmar-cfg list"},
        {{"prefs", "--of=x", "list"},
         "'--of' goes after the command: velmar-cfg prefs list --of; see velmar-cfg prefs list"},
        {{"--of", "x", "set", "a", "1"}, "only commands that show one state take '--of'; see velmar-cfg set"},
        {{"--with", "A=B", "paths"},
         "paths shows only where files are, which '--with' does not change; see velmar-cfg paths"},
        {{"set", "a", "--", "-6", "--project", "m"},
         "'--project' stands behind \"--\", so it is an argument, and there is one too many; put options before "
         "\"--\"; see velmar-cfg set"},
        {{"prefs", "lst"}, "there is no command 'prefs lst' (did you mean 'list'?); see velmar-cfg prefs"},
        {{"help", "prefs", "lst"}, "there is no command 'prefs lst' (did you mean 'list'?); see velmar-cfg prefs"},
    };
    for (const MISTYPED& row : rows)
        EXPECT_EQ(run(row.arguments), (TOOL_RUN{2, "", std::string("velmar-cfg: ") + row.told + " --help\n"}))
            << testing::PrintToString(row.arguments);
}

TEST_F(COMMAND_LINE, values_may_begin_with_a_hyphen)
{
    write_file("velmar.ini", "-name = -value\n--json = 1\n");
    write_file(temporary.path("home/readme"), "");
    EXPECT_EQ(run({"get", "--", "-name"}), (TOOL_RUN{0, "-value\n", ""}));
    EXPECT_EQ(run({"get", "-z", "-name", "--"}).exit_code, 2);
    EXPECT_EQ(run({"get", "--", "-name", "--json"}), (TOOL_RUN{0, "-name=-value\n--json=1\n", ""}));
    EXPECT_EQ(run({"get", "unset", "--", "-name", "--json"}),
              (TOOL_RUN{1, "unset\n-name=-value\n--json=1\n", "velmar-cfg: 'unset' is not set\n"}));
    EXPECT_EQ(run({"get", "unset", "--default", "--all=x"}), (TOOL_RUN{0, "--all=x\n", ""}));
    EXPECT_EQ(run({"get", "unset", "--default", "-hello"}), (TOOL_RUN{0, "-hello\n", ""}));
    // Behind an option that takes a value, "--" is the value.
    EXPECT_EQ(run({"get", "unset", "--default", "--"}), (TOOL_RUN{0, "--\n", ""}));
    EXPECT_EQ(run({"get", "unset", "--default", "--", "-z"}).out, std::string("--\0", 3));
    EXPECT_EQ(run({"list", "--", "-n*"}), (TOOL_RUN{0, "-name=-value\n", ""}));
    EXPECT_EQ(run({"list", "--", "-n*", "--json"}).exit_code, 2);
    EXPECT_EQ(run({"get", "unset", "--default", "-x"}), (TOOL_RUN{0, "-x\n", ""}));
    EXPECT_EQ(run({"get", "unset", "--default", "--json"}), (TOOL_RUN{0, "--json\n", ""}));
    EXPECT_EQ(run({"get", "unset", "--default=-x"}), (TOOL_RUN{0, "-x\n", ""}));
    EXPECT_THAT(run({"prefs", "set", "USER_LIBRARIES", "--dry-run", "--", "-x"}).out,
                HasSubstr("\n+USER_LIBRARIES = -x\n"));
}

TEST_F(COMMAND_LINE, seconds_are_a_whole_number)
{
    for (const char* const wrong : {"-1", "+1", "", "1.5", "1e3", "0x1", " 1", "1 ", "abc", "4294967296"})
    {
        const TOOL_RUN got = run({"set", "a", "1", "--dry-run", std::string("--wait=") + wrong});
        EXPECT_EQ(got.exit_code, 2) << wrong;
        EXPECT_THAT(got.err, StartsWith("velmar-cfg: --wait takes a whole number from 0 to 4294967295, not '" +
                                        std::string(wrong) + "'"));
    }
    for (const char* const right : {"0", "1", "4294967295"})
        EXPECT_EQ(run({"set", "a", "1", "--dry-run", "--wait", right}).exit_code, 0) << right;
}

TEST_F(COMMAND_LINE, a_hyphen_is_standard_input_or_output)
{
    write_file("velmar.ini", "a=1\n");
    const TOOL_RUN snapshot = run({"snapshot"});
    nlohmann::json without_file = snapshot.json();
    nlohmann::json to_output = run({"snapshot", "-o", "-"}).json();
    for (nlohmann::json* const document : {&without_file, &to_output})
        document->erase("taken");
    EXPECT_EQ(to_output, without_file);
    EXPECT_NE(access("-", F_OK), 0);
    write_file("now.json", snapshot.out);
    standard_input = "now.json";
    EXPECT_EQ(run({"diff", "-"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"diff", "now.json", "-"}), (TOOL_RUN{0, "", ""}));

    // A directory of that name is another thing, too.
    std::filesystem::create_directory("-");
    EXPECT_EQ(run({"diff", "-"}), (TOOL_RUN{0, "", ""}));
    std::filesystem::remove("-");

    write_file("lines", "no assignment\n");
    standard_input = "lines";
    EXPECT_THAT(run({"lint", "-"}).out, StartsWith("standard input:1:1: "));
    EXPECT_THAT(run({"prefs", "lint", "-"}).out, StartsWith("standard input:1:1: "));

    // A file of that name is another thing.
    write_file("-", "b=2\n");
    variables["APPENDED_VELMAR_INI"] = "-";
    EXPECT_EQ(run({"get", "b"}), (TOOL_RUN{0, "2\n", ""}));
}

TEST_F(COMMAND_LINE, too_little_memory_is_told)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers take terabytes of addresses";
#endif
    constexpr std::size_t size = std::size_t{256} * 1024 * 1024;
    write_file("velmar.ini", "a=1\n");
    ASSERT_EQ(truncate("velmar.ini", size), 0); // takes no room
    most_memory = size / 2;
    EXPECT_EQ(run({"get", "a"}),
              (TOOL_RUN{3, "",
                        "velmar-cfg: not enough memory; look at fewer or smaller files, or raise the limit (ulimit "
                        "-v)\n"}));
}

TEST_F(COMMAND_LINE, small_stacks_are_large_enough)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "with sanitizers functions take more of the stack";
#endif
    most_stack = std::size_t{64} * 1024;
    write_file("velmar.ini", "a=1\nb = yes\n");
    write_file("user/velmar2.ini", "[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n");
    variables["VELMAR2_INI"] = "user";
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{"set", "a", "2"},
                                               {"unset", "a"},
                                               {"lint", "--fix", "velmar.ini"},
                                               {"prefs", "set", "HDL_PREFERENCE", "VHDL"},
                                               {"prefs", "load", "user/velmar2.ini"},
                                               {"snapshot", "-o", "now.json"},
                                               {"diff", "now.json"}})
        EXPECT_EQ(run(words).exit_code, 0) << words.front();
    EXPECT_EQ(read_file("velmar.ini"), "b = on\n");
}

TEST_F(COMMAND_LINE, json_and_zero_bytes_exclude_each_other)
{
    EXPECT_EQ(run({"list", "--json", "-z"}), (TOOL_RUN{2, "", "velmar-cfg: --json and -z exclude each other\n"}));
}

TEST_F(COMMAND_LINE, a_directory_that_is_missing_or_no_directory_is_named)
{
    write_file("file", "");
    write_file("designs/cpu/velmar.ini", "");
    EXPECT_EQ(run({"--project", "nowhere", "list"}),
              (TOOL_RUN{3, "", "velmar-cfg: nowhere: no such directory; give --project an existing one\n"}));
    EXPECT_EQ(run({"--root", "file", "list"}),
              (TOOL_RUN{3, "", "velmar-cfg: file: is a file; give --root a directory, such as .\n"}));
    EXPECT_EQ(run({"--project", "designs/cpu/velmar.ini", "list"}).err,
              "velmar-cfg: designs/cpu/velmar.ini: is a file; give --project a directory, such as designs/cpu\n");
    EXPECT_EQ(run({"--project", "file/velmar.ini", "list"}).err,
              "velmar-cfg: file/velmar.ini: no such directory; give --project an existing one\n");
    EXPECT_EQ(run({"--project", "/dev/null", "list"}).err,
              "velmar-cfg: /dev/null: is a file; give --project a directory, such as /dev\n");
}

// As of a script whose variable has no value.
TEST_F(COMMAND_LINE, an_empty_path_is_told)
{
    const std::string of_directory = " is empty; give the path of a directory\n";
    EXPECT_EQ(run({"--project", "", "list"}), (TOOL_RUN{2, "", "velmar-cfg: --project" + of_directory}));
    EXPECT_EQ(run({"list", "--root="}), (TOOL_RUN{2, "", "velmar-cfg: --root" + of_directory}));
    const auto complaint = [](const std::string& of, const std::string& command)
    { return "velmar-cfg: " + of + " is empty; give the path of a file; see velmar-cfg " + command + " --help\n"; };
    for (const auto& words : std::initializer_list<std::vector<std::string>>{
             {"lint", ""}, {"lint", "velmar.ini", ""}, {"lint", "--", ""}, {"lint", "--fix", ""}})
        EXPECT_EQ(run(words), (TOOL_RUN{2, "", complaint("FILE", "lint")}));
    EXPECT_EQ(run({"prefs", "lint", ""}), (TOOL_RUN{2, "", complaint("FILE", "prefs lint")}));
    EXPECT_EQ(run({"prefs", "load", ""}), (TOOL_RUN{2, "", complaint("FILE", "prefs load")}));
    EXPECT_EQ(run({"set", "a", "1", "--file", ""}), (TOOL_RUN{2, "", complaint("--file", "set")}));
    EXPECT_EQ(run({"diff", ".", "--used", ""}), (TOOL_RUN{2, "", complaint("--used", "diff")}));
    EXPECT_EQ(run({"run-report", ""}), (TOOL_RUN{2, "", complaint("FILE", "run-report")}));
    EXPECT_EQ(run({"snapshot", "--output="}), (TOOL_RUN{2, "", complaint("--output", "snapshot")}));
    EXPECT_EQ(run({"snapshot", "-o", ""}), (TOOL_RUN{2, "", complaint("--output", "snapshot")}));
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
    EXPECT_EQ(run({"-V"}), version);
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
