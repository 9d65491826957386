#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "tests/velmar_cfg/tool_test.h"

namespace
{
using namespace std::string_literals;

using ARGUMENTS = std::vector<std::string>;

class LIST : public TOOL_TEST
{
};

TEST_F(LIST, is_empty_without_settings)
{
    EXPECT_EQ(run({"list"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"list", "--json"}), (TOOL_RUN{0, "[]\n", ""}));
}

TEST_F(LIST, sorts_by_the_bytes_of_the_names_as_first_spelt)
{
    write_file("velmar.ini", "b=1\nB_second=2\na=3\n\xc3\xa9=4\nA=5\n");
    EXPECT_EQ(run({"list"}), (TOOL_RUN{0, "B_second=2\na=5\nb=1\n\xc3\xa9=4\n", ""}));
}

// A line such as "= 3" sets one.
TEST_F(LIST, an_empty_pattern_matches_the_empty_name_only)
{
    write_file("project/velmar.ini", "a = 1\nb = 2\n");
    EXPECT_EQ(run({"list", "", "--project", "project"}), (TOOL_RUN{1, "", ""}));
    EXPECT_EQ(run({"list", "", "--json", "--project", "project"}), (TOOL_RUN{1, "[]\n", ""}));
    write_file("project/velmar.ini", "a = 1\n = 3\n");
    EXPECT_EQ(run({"list", "", "--project", "project"}), (TOOL_RUN{0, "=3\n", ""}));
    EXPECT_EQ(run({"list", "?*", "--project", "project"}), (TOOL_RUN{0, "a=1\n", ""}));
    // So does that of other options.
    write_file("other/velmar.ini", "a = 2\n = 4\n");
    const ARGUMENTS compare = {"diff", "project", "other", "--only", "variables", "--json"};
    const auto names = [&](const ARGUMENTS& more)
    {
        ARGUMENTS words = compare;
        words.insert(words.end(), more.begin(), more.end());
        std::vector<std::string> all;
        const nlohmann::json document = run(words).json();
        for (const nlohmann::json& row : document.at("variables"))
            all.push_back(row.at("name"));
        return all;
    };
    EXPECT_EQ(names({}), (std::vector<std::string>{"", "a"}));
    EXPECT_EQ(names({"--ignore", ""}), (std::vector<std::string>{"a"}));
}

TEST_F(LIST, shows_the_variables_of_every_layer)
{
    write_file("project/velmar.ini", "main=1\nboth=main\n");
    write_file("project/regtest.ini", "regtest=2\n");
    write_file("appended.ini", "appended=3\nboth=appended\n");
    variables["APPENDED_VELMAR_INI"] = "appended.ini";
    variables["VELMAR_INI_VARS"] = "inline=4";
    EXPECT_EQ(run({"list", "--project", "project", "--regtest"}).out,
              "appended=3\nboth=appended\ninline=4\nmain=1\nregtest=2\n");
}

TEST_F(LIST, shows_the_reports_own_variables_as_they_are)
{
    EXPECT_EQ(run({"list"}).out, "");

    write_file("velmar.ini", "CFG_max_to_report = 1\na=1\nb=2\n");
    EXPECT_EQ(run({"list"}).out, "CFG_max_to_report=1\na=1\nb=2\n");

    write_file("velmar.ini", "cfg_min_accessed_to_report = -1\ncfg_max_to_report = lots\na=1\n");
    EXPECT_EQ(run({"list"}).out, "a=1\ncfg_max_to_report=lots\ncfg_min_accessed_to_report=-1\n");

    write_file("velmar.ini", "cfg_min_accessed_to_report =\na=1\n");
    EXPECT_EQ(run({"list"}).out, "a=1\ncfg_min_accessed_to_report=\n");
}

TEST_F(LIST, keeps_every_variable_on_one_line)
{
    variables["VELMAR_INI_VARS"] = "a=one\ntwo\x1b[31m\t\\n;b=\x7f";
    EXPECT_EQ(run({"list"}).out, "a=one\\ntwo\\x1b[31m\\t\\\\n\nb=\\x7f\n");
}

TEST_F(LIST, ends_records_with_zero_bytes_and_escapes_nothing)
{
    variables["VELMAR_INI_VARS"] = "a=one\ntwo;b=2";
    EXPECT_EQ(run({"list", "-z"}).out, "a=one\ntwo\0b=2\0"s);
}

TEST_F(LIST, writes_json_rows)
{
    write_file("project/velmar.ini", "# one\na=1\nboth=main\n");
    write_file("appended.ini", "bb=\n");
    write_file("project/regtest.ini", "BOTH=regtest\n");
    variables["APPENDED_VELMAR_INI"] = "appended.ini";
    variables["VELMAR_INI_VARS"] = "skipped;c=3";
    EXPECT_EQ(run({"list", "--json", "--project", "project", "--regtest"}).json(), R"([
        {"name": "a", "set": true, "value": "1", "external": true,
         "layer": "main", "file": "project/velmar.ini", "line": 2, "item": null},
        {"name": "bb", "set": true, "value": "", "external": false,
         "layer": "appended", "file": "appended.ini", "line": 1, "item": null},
        {"name": "both", "set": true, "value": "regtest", "external": true,
         "layer": "regtest", "file": "project/regtest.ini", "line": 1, "item": null},
        {"name": "c", "set": true, "value": "3", "external": true,
         "layer": "inline", "file": null, "line": null, "item": 2}])"_json);
}

TEST_F(LIST, shows_where_values_came_from)
{
    write_file("project/velmar.ini", "# one\na=1\n");
    variables["VELMAR_INI_VARS"] = "skipped;c=3";
    EXPECT_EQ(run({"list", "--show-origin", "--project", "project"}).out,
              "project/velmar.ini:2\ta=1\nVELMAR_INI_VARS:2\tc=3\n");
    EXPECT_EQ(run({"list", "--show-origin", "--project", "project", "-z"}).out,
              "project/velmar.ini:2\0a=1\0VELMAR_INI_VARS:2\0c=3\0"s);
}

TEST_F(LIST, narrows_by_a_shell_pattern_in_any_letter_case)
{
    write_file("velmar.ini", "debug_msg=on\nDebug_Level=2\nother=1\ndebug=0\n");
    EXPECT_EQ(run({"list", "DEBUG_*"}), (TOOL_RUN{0, "Debug_Level=2\ndebug_msg=on\n", ""}));
    EXPECT_EQ(run({"list", "debug"}), (TOOL_RUN{0, "debug=0\n", ""}));
    EXPECT_EQ(run({"list", "nothing*"}), (TOOL_RUN{1, "", ""}));
}

TEST_F(LIST, shows_known_variables_that_are_not_set)
{
    write_file("velmar.ini", "MSG_sqlite=off\nother=1\n");
    const std::string all = run({"list", "--all"}).out;
    EXPECT_THAT(all, testing::StartsWith("MSG_sqlite=off\n"));
    EXPECT_THAT(all, testing::HasSubstr("\ndebug_msg\tnot set\n"));
    EXPECT_THAT(all, testing::HasSubstr("\nother=1\n"));
    EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 42);
    EXPECT_EQ(run({"list", "--all", "debug_msg", "-z"}).out, "debug_msg\0"s);
    EXPECT_EQ(run({"list", "--all", "*msg_sqlite", "--json"}).json(), nlohmann::json::parse(R"([
        {"name": "MSG_sqlite", "set": true, "value": "off", "external": true, "layer": "main", "file": ")" +
                                                                                            temporary.path("cwd") +
                                                                                            R"(/velmar.ini",
         "line": 1, "item": null, "default": "on"}])"));
    EXPECT_EQ(run({"list", "--all", "debug_msg", "--json"}).json(), R"([
        {"name": "debug_msg", "set": false, "value": null, "external": false, "layer": null, "file": null, "line": null,
         "item": null, "default": null}])"_json);
    unlink("velmar.ini");
    EXPECT_EQ(run({"list", "--all", "msg_sqlite"}).out, "msg_sqlite\tnot set, default on\n");
}

TEST_F(LIST, shows_what_differs_from_the_catalogues_default)
{
    write_file("velmar.ini", "msg_sqlite=1\nzanth_flow=maybe\nother=1\n");
    EXPECT_EQ(run({"list", "--changed"}).out, "zanth_flow=maybe\n");
    EXPECT_EQ(run({"list", "--changed", "msg*"}).exit_code, 1);
}

TEST_F(LIST, sorts_by_reads)
{
    write_file("run.json", R"({"schema": "velmar-run-report", "schema_version": 1, "run": "r", "release": "23.4",
        "files": {"main": null, "appended": null, "regtest": null},
        "read": [{"name": "a", "count": 1, "value": "12", "external": true, "used": true},
                 {"name": "msg_sqlite", "count": 9, "value": null, "external": false, "used": false},
                 {"name": "b", "count": 5, "value": "2", "external": false, "used": true}],
        "external_never_read": [{"name": "c", "value": "1"}], "uncounted": ["d"]})");
    const std::string view = "as run r had it (run.json, release 23.4)\n";
    EXPECT_EQ(run({"list", "--read", "--of", "run.json"}).out,
              view + "9\tmsg_sqlite\tno usable value\n5\tb=2\n1\ta=12\n0\tc=1\n");
    EXPECT_EQ(run({"list", "--read", "--of", "run.json", "-z"}).out, "9\0msg_sqlite\0"
                                                                     "5\0b=2\0"
                                                                     "1\0a=12\0"
                                                                     "0\0c=1\0"s);
    EXPECT_EQ(run({"list", "a", "--read", "--of", "run.json", "--json"}).json(), R"([
        {"name": "a", "set": true, "value": "12", "external": true, "layer": "unknown", "file": null, "line": null, "item": null,
         "reads": 1}])"_json);
    EXPECT_EQ(run({"list", "--read", "--external", "--of", "run.json"}).out, view + "1\ta=12\n0\tc=1\n");
}

// What the tool writes to a terminal.
class LIST_ON_TERMINAL : public LIST
{
protected:
    LIST_ON_TERMINAL()
    {
        controller = posix_openpt(O_RDWR | O_NOCTTY);
        EXPECT_TRUE(controller >= 0 && grantpt(controller) == 0 && unlockpt(controller) == 0);
        terminal = open(ptsname(controller), O_RDWR | O_NOCTTY);
        termios settings = {};
        EXPECT_EQ(tcgetattr(terminal, &settings), 0);
        cfmakeraw(&settings);
        EXPECT_EQ(tcsetattr(terminal, TCSANOW, &settings), 0);
    }

    ~LIST_ON_TERMINAL() override
    {
        close(terminal);
        close(controller);
    }

    std::string text_of(const std::vector<std::string>& arguments) const
    {
        const pid_t child = start(arguments, ptsname(controller));
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        std::string text(4096, ' '); // what fits into the terminal's buffer
        const ssize_t size = read(controller, text.data(), text.size());
        return text.substr(0, static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    }

    int controller = -1;
    int terminal = -1;
};

TEST_F(LIST_ON_TERMINAL, is_a_table)
{
    write_file("project/velmar.ini", "a = 1\nlong_name_\xc3\xa9 = two words\nempty =\n");
    EXPECT_EQ(text_of({"list", "--project", "project"}), "NAME         VALUE      ORIGIN\n"
                                                         "a            1          project/velmar.ini:1\n"
                                                         "empty                   project/velmar.ini:3\n"
                                                         "long_name_\xc3\xa9  two words  project/velmar.ini:2\n");
    EXPECT_EQ(text_of({"list", "--project", "project", "a", "-z"}), "a=1\0"s);
    write_file("project/velmar.ini", "msg_sqlite = off\n");
    EXPECT_EQ(text_of({"list", "--project", "project", "--all", "*msg_s*"}),
              "NAME        VALUE  DEFAULT  ORIGIN\nmsg_sqlite  off    on       project/velmar.ini:1\n");
    EXPECT_EQ(text_of({"list", "--project", "project", "--all", "debug_msg"}), "NAME       VALUE    DEFAULT  ORIGIN\n"
                                                                               "debug_msg  not set\n");
    write_file("project/velmar.ini", "a = " + std::string(200, 'x') + "\n");
    EXPECT_EQ(text_of({"list", "--project", "project"}), "NAME  VALUE" + std::string(100, ' ') + "ORIGIN\na     " +
                                                             std::string(100, 'x') + "...  project/velmar.ini:1\n");
    variables["TERM"] = "xterm";
    EXPECT_THAT(text_of({"list", "--project", "project"}), testing::StartsWith("\x1b[1mNAME\x1b[0m"));
}

TEST_F(LIST, narrows_to_external_variables)
{
    write_file("velmar.ini", "a=1\n");
    write_file("appended.ini", "a=2\nb2=3\n");
    variables["APPENDED_VELMAR_INI"] = "appended.ini";
    variables["VELMAR_INI_VARS"] = "c=4";
    EXPECT_EQ(run({"list", "--external"}).out, "a=2\nc=4\n");
}

TEST_F(LIST, colours_only_when_asked_to)
{
    write_file("velmar.ini", "a=1\n");
    variables["TERM"] = "xterm";
    EXPECT_EQ(run({"list"}).out, "a=1\n");
    EXPECT_EQ(run({"list", "--color", "always"}).out, "\x1b[1ma\x1b[0m=1\n");
    EXPECT_EQ(run({"list", "--color", "never"}).out, "a=1\n");
}

TEST_F(LIST, replaces_bytes_that_json_cannot_hold)
{
    write_file("velmar.ini", "a=x\xffy\n");
    EXPECT_EQ(run({"list", "--json"}).json().at(0).at("value"), R"({"hex": "78ff79"})"_json);
}

TEST_F(LIST, takes_a_line_of_a_megabyte)
{
    const std::string value(1 << 20, 'x');
    write_file("velmar.ini", "a=" + value + "\n");
    const TOOL_RUN listed = run({"list"});
    EXPECT_EQ(listed.exit_code, 0);
    EXPECT_TRUE(listed.out == "a=" + value + "\n");
}
}
