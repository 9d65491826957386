#include "tests/velmar_cfg/tool_test.h"

namespace
{
using namespace std::string_literals;

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

TEST_F(LIST, an_empty_pattern_is_none)
{
    write_file("project/velmar.ini", "a = 1\nb = 2\n");
    EXPECT_EQ(run({"list", "", "--project", "project"}), (TOOL_RUN{0, "a=1\nb=2\n", ""}));
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
        {"name": "a", "value": "1", "external": true,
         "layer": "main", "file": "project/velmar.ini", "line": 2, "item": null},
        {"name": "bb", "value": "", "external": false,
         "layer": "appended", "file": "appended.ini", "line": 1, "item": null},
        {"name": "both", "value": "regtest", "external": true,
         "layer": "regtest", "file": "project/regtest.ini", "line": 1, "item": null},
        {"name": "c", "value": "3", "external": true,
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
