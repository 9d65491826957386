#include "tests/velmar_cfg/tool_test.h"

namespace
{
class GET : public TOOL_TEST
{
};

TEST_F(GET, prints_the_text_as_stored)
{
    write_file("velmar.ini", "path = \"a b;c\" ; comment\n");
    EXPECT_EQ(run({"get", "path"}), (TOOL_RUN{0, "\"a b;c\"\n", ""}));
}

TEST_F(GET, finds_a_variable_in_any_letter_case)
{
    write_file("velmar.ini", "Max_Fanout = 12\n");
    EXPECT_EQ(run({"get", "mAX_fANOUT"}), (TOOL_RUN{0, "12\n", ""}));
}

TEST_F(GET, has_nothing_to_print_for_an_unset_variable)
{
    EXPECT_EQ(run({"get", "a"}), (TOOL_RUN{1, "", "velmar-cfg: a is not set\n"}));
}

TEST_F(GET, takes_the_project_before_the_search)
{
    write_file("velmar.ini", "a=search\n");
    write_file("project/velmar.ini", "a=project\n");
    EXPECT_EQ(run({"get", "a"}).out, "search\n");
    EXPECT_EQ(run({"get", "a", "--project", "project"}).out, "project\n");
    EXPECT_EQ(run({"get", "a", "--project", "project/"}).out, "project\n");
}

TEST_F(GET, takes_the_search_for_a_project_without_settings)
{
    write_file("velmar.ini", "a=search\n");
    write_file("project/readme", "");
    EXPECT_EQ(run({"get", "a", "--project", "project"}).out, "search\n");
}

TEST_F(GET, lays_the_projects_regtest_file_over_everything)
{
    write_file("project/velmar.ini", "a=main\n");
    write_file("project/regtest.ini", "a=regtest\n");
    write_file("regtest.ini", "a=search\n");
    variables["VELMAR_INI_VARS"] = "a=inline";
    EXPECT_EQ(run({"get", "a", "--project", "project"}).out, "inline\n");
    EXPECT_EQ(run({"get", "a", "--project", "project", "--regtest"}).out, "regtest\n");
}

TEST_F(GET, searches_the_regtest_file_without_a_project)
{
    write_file("regtest.ini", "a=regtest\n");
    write_file("velmar.ini", "a=main\n");
    EXPECT_EQ(run({"get", "a", "--regtest"}).out, "regtest\n");
    variables["VELMAR_INI_DISABLED"] = "1";
    EXPECT_EQ(run({"get", "a", "--regtest"}).exit_code, 1);
}

TEST_F(GET, writes_json)
{
    write_file("velmar.ini", "Debug_Level = 2\n");
    const TOOL_RUN got = run({"get", "debug_level", "--json"});
    EXPECT_EQ(got.exit_code, 0);
    EXPECT_EQ(got.json(), R"({"name": "debug_level", "value": "2", "external": true})"_json);
}
}
