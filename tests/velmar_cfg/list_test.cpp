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
    EXPECT_EQ(run({"list"}).out, "a=one\\ntwo\\x1b[31m\\t\\n\nb=\\x7f\n");
}

TEST_F(LIST, ends_records_with_zero_bytes_and_escapes_nothing)
{
    variables["VELMAR_INI_VARS"] = "a=one\ntwo;b=2";
    EXPECT_EQ(run({"list", "-z"}).out, "a=one\ntwo\0b=2\0"s);
}

TEST_F(LIST, writes_json_rows)
{
    write_file("velmar.ini", "a=1\n");
    write_file("appended.ini", "bb=\n");
    variables["APPENDED_VELMAR_INI"] = "appended.ini";
    EXPECT_EQ(run({"list", "--json"}).json(), R"([
        {"name": "a", "value": "1", "external": true},
        {"name": "bb", "value": "", "external": false}])"_json);
}

TEST_F(LIST, replaces_bytes_that_json_cannot_hold)
{
    write_file("velmar.ini", "a=x\xffy\n");
    EXPECT_EQ(run({"list", "--json"}).json().at(0).at("value"), "x\xef\xbf\xbdy");
}
}
