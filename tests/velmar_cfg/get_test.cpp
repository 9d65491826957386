#include <csignal>
#include <cstdio>
#include <sys/wait.h>
#include <unistd.h>

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
    EXPECT_EQ(run({"get", "a"}), (TOOL_RUN{1, "", "velmar-cfg: 'a' is not set\n"}));
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

TEST_F(GET, takes_the_empty_text_for_a_default)
{
    write_file("velmar.ini", "a=1\n");
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"--default="}, std::vector<std::string>{"--default", ""}})
    {
        std::vector<std::string> arguments = {"get", "nothing"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        EXPECT_EQ(run(arguments), (TOOL_RUN{0, "\n", ""})) << words.front();
        arguments.insert(arguments.end(), {"--type", "int"});
        EXPECT_EQ(run(arguments), (TOOL_RUN{0, "\n", ""})) << words.front();
        arguments[1] = "a";
        EXPECT_EQ(run(arguments), (TOOL_RUN{0, "1\n", ""})) << words.front();
    }
    EXPECT_EQ(run({"get", "--default=", "nothing"}), (TOOL_RUN{0, "\n", ""}));
    EXPECT_EQ(run({"get", "--", "--default="}).exit_code, 1);
}

TEST_F(GET, writes_json)
{
    write_file("velmar.ini", "# two lines\nDebug_Level = 2\n");
    const TOOL_RUN got = run({"get", "debug_level", "--json"});
    EXPECT_EQ(got.exit_code, 0);
    EXPECT_EQ(
        got.json(),
        nlohmann::json::parse(
            R"({"name": "debug_level", "type": "text", "value": "2", "usable": true, "set": true, "masked": false, "text": "2",
                      "external": true, "layer": "main", "file": ")" +
            temporary.path("cwd/velmar.ini") + R"(", "line": 2, "item": null})"));
}

TEST_F(GET, writes_json_of_the_same_fields_for_a_variable_without_a_value)
{
    const TOOL_RUN got = run({"get", "nothing", "--json", "--type", "int"});
    EXPECT_EQ(got.exit_code, 1);
    EXPECT_EQ(
        got.json(),
        R"({"name": "nothing", "type": "int", "value": null, "usable": false, "set": false, "masked": false, "text": "",
                              "external": false, "layer": null, "file": null, "line": null, "item": null})"_json);
    EXPECT_EQ(got.err, "velmar-cfg: 'nothing' is not set\n");
}

// What each type makes of one text: standard output and exit code, and whether there is a word on standard error.
struct READING
{
    const char* text;
    const char* type;
    const char* out;
    int exit_code;
    const char* err = "";
};

void PrintTo(const READING& row, std::ostream* stream)
{
    *stream << "'" << row.text << "' as " << row.type;
}

class GET_TYPE : public TOOL_TEST, public testing::WithParamInterface<READING>
{
};

TEST_P(GET_TYPE, reads_as_the_library_does)
{
    const READING& row = GetParam();
    write_file("project/velmar.ini", std::string("var = ") + row.text + "\n");
    EXPECT_EQ(run({"get", "var", "--type", row.type, "--project", "project"}),
              (TOOL_RUN{row.exit_code, row.out, row.err}));
}

INSTANTIATE_TEST_SUITE_P(
    table, GET_TYPE,
    testing::Values(
        READING{"TRUE", "bool", "on\n", 0}, READING{"0", "bool", "off\n", 0},
        READING{"yes", "bool", "", 1,
                "velmar-cfg: 'var' is 'yes' at project/velmar.ini:1: no switch (on, 1, true, off, 0, false)\n"},
        READING{"-12", "int", "-12\n", 0}, READING{"007", "int", "7\n", 0},
        READING{
            "2147483648", "int", "", 1,
            "velmar-cfg: 'var' is '2147483648' at project/velmar.ini:1: no integer from -2147483648 to 2147483647\n"},
        READING{"4294967295", "uint", "4294967295\n", 0},
        READING{"-1", "uint", "", 1,
                "velmar-cfg: 'var' is '-1' at project/velmar.ini:1: no integer from 0 to 4294967295\n"},
        READING{"2.50", "double", "2.5\n", 0}, READING{"0x10", "double", "16\n", 0},
        READING{"inf", "double", "inf\n", 0},
        READING{"2.5ms", "double", "2.5\n", 0,
                "velmar-cfg: 'var' is '2.5ms': only the number at its start is read, 2.5\n"},
        READING{"fast", "double", "0\n", 0,
                "velmar-cfg: 'var' is 'fast': it begins with no number, and is read as 0\n"},
        READING{"", "double", "", 1, "velmar-cfg: 'var' is set to the empty text at project/velmar.ini:1\n"},
        READING{"", "text", "", 1, "velmar-cfg: 'var' is set to the empty text at project/velmar.ini:1\n"},
        READING{"two words", "text", "two words\n", 0}));

TEST_F(GET, prints_the_default_only_for_what_is_not_usable)
{
    write_file("velmar.ini", "a=maybe\nb=1\n");
    EXPECT_EQ(run({"get", "a", "--type", "bool", "--default", "off"}), (TOOL_RUN{0, "off\n", ""}));
    EXPECT_EQ(run({"get", "b", "--type", "bool", "--default", "off"}), (TOOL_RUN{0, "on\n", ""}));
    EXPECT_EQ(run({"get", "unset", "--default", "-5"}), (TOOL_RUN{0, "-5\n", ""}));
    EXPECT_EQ(run({"get", "unset", "--default", ""}), (TOOL_RUN{0, "\n", ""}));
}

// A default, and how it is shown and told in JSON.
struct DEFAULT_ROW
{
    const char* type;
    const char* text;
    const char* shown;
    const char* json;
};

TEST_F(GET, types_the_default_like_the_value)
{
    const DEFAULT_ROW rows[] = {
        {"bool", "TRUE", "on\n", "true"},      {"bool", "0", "off\n", "false"},     {"int", "007", "7\n", "7"},
        {"int", "-5", "-5\n", "-5"},           {"uint", "5", "5\n", "5"},           {"double", "2.50", "2.5\n", "2.5"},
        {"double", "inf", "inf\n", "\"inf\""}, {"text", "007", "007\n", "\"007\""}, {"int", "", "\n", "\"\""},
    };
    for (const DEFAULT_ROW& row : rows)
    {
        SCOPED_TRACE(std::string(row.type) + " " + row.text);
        EXPECT_EQ(run({"get", "unset", "--type", row.type, "--default", row.text}), (TOOL_RUN{0, row.shown, ""}));
        const nlohmann::json answer = run({"get", "unset", "--type", row.type, "--default", row.text, "--json"}).json();
        EXPECT_EQ(answer["value"].dump(), row.json);
        EXPECT_EQ(answer["usable"], false);
    }
}

TEST_F(GET, refuses_a_default_of_another_type)
{
    write_file("velmar.ini", "a=1\n"); // also where it is not needed
    const DEFAULT_ROW rows[] = {
        {"bool", "yes", "no switch (on, 1, true, off, 0, false)", ""},
        {"int", "2147483648", "no integer from -2147483648 to 2147483647", ""},
        {"int", "on", "no integer from -2147483648 to 2147483647", ""},
        {"uint", "-1", "no integer from 0 to 4294967295", ""},
        {"double", "2.5ms", "no number", ""},
        {"double", "x", "no number", ""},
    };
    for (const DEFAULT_ROW& row : rows)
        EXPECT_EQ(run({"get", "a", "--type", row.type, "--default", row.text}),
                  (TOOL_RUN{2, "",
                            std::string("velmar-cfg: the default '") + row.text + "' is " + row.shown +
                                "; give one of the type\n"}));
}

// A value may be a megabyte long. What is cut off a secret is hidden as well.
TEST_F(GET, tells_of_a_long_value_in_a_short_line)
{
    const std::string letters = std::string(60, 'q') + "\"" + std::string(100000, 'q');
    write_file("velmar.ini", "a = " + letters + "\ntoken = " + letters + "\n");
    const std::string shown = std::string(60, 'q') + "\"" + std::string(39, 'q') + "...";
    EXPECT_EQ(run({"get", "a", "--type", "double"}),
              (TOOL_RUN{0, "0\n", "velmar-cfg: 'a' is '" + shown + "': it begins with no number, and is read as 0\n"}));
    EXPECT_THAT(run({"get", "a", "--type", "int"}).err, testing::StartsWith("velmar-cfg: 'a' is '" + shown + "' at "));
    EXPECT_THAT(run({"get", "a", "--type", "int", "--default", letters}).err,
                testing::StartsWith("velmar-cfg: the default '" + shown + "' is no integer "));
    EXPECT_THAT(run({"get", "token", "--type", "int"}).err,
                testing::StartsWith("velmar-cfg: 'token' is '\\(masked)' at "));
}

TEST_F(GET, points_to_prefs_get_for_a_preference)
{
    EXPECT_EQ(run({"get", "hdl_preference"}),
              (TOOL_RUN{1, "",
                        "velmar-cfg: 'hdl_preference' is not set; it is a preference: ask velmar-cfg prefs get "
                        "hdl_preference\n"}));
    EXPECT_EQ(run({"get", "hdl_preference", "--default", "x"}), (TOOL_RUN{0, "x\n", ""}));
    write_file("velmar.ini", "hdl_preference=1\n");
    EXPECT_EQ(run({"get", "hdl_preference"}), (TOOL_RUN{0, "1\n", ""}));
}

// Without a moment in which there is no file, and with one, in which a host finds none either.
TEST_F(GET, answers_while_the_file_is_replaced)
{
    write_file("project/velmar.ini", "a=1\n");
    const pid_t writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0)
    {
        for (bool removed = false;; removed = !removed)
        {
            write_file("project/new", "a=1\n");
            if (removed)
                unlink("project/velmar.ini");
            rename("project/new", "project/velmar.ini");
        }
    }
    for (int i = 0; i < 120; ++i)
    {
        const TOOL_RUN got = run({"get", "a", "--default", "none", "--project", "project"});
        EXPECT_EQ(got.exit_code, 0);
        EXPECT_EQ(got.err, "");
        EXPECT_TRUE(got.out == "1\n" || got.out == "none\n") << got.out;
    }
    kill(writer, SIGKILL);
    waitpid(writer, nullptr, 0);
}

TEST_F(GET, refuses_an_unknown_type)
{
    EXPECT_EQ(run({"get", "a", "--type", "float"}).exit_code, 2);
}

TEST_F(GET, suggests_a_name_that_is_set_or_known)
{
    write_file("velmar.ini", "max_fanout=12\n");
    EXPECT_EQ(run({"get", "max_fanuot"}).err, "velmar-cfg: 'max_fanuot' is not set (did you mean 'max_fanout'?)\n");
    EXPECT_EQ(run({"get", "msg_sqlit"}).err, "velmar-cfg: 'msg_sqlit' is not set (did you mean 'msg_sqlite'?)\n");
}

TEST_F(GET, names_the_catalogues_default_but_does_not_print_it)
{
    EXPECT_EQ(run({"get", "MSG_SQLITE"}),
              (TOOL_RUN{1, "", "velmar-cfg: 'MSG_SQLITE' is not set; the catalogue's default is on\n"}));
    EXPECT_EQ(run({"get", "debug_msg"}), (TOOL_RUN{1, "", "velmar-cfg: 'debug_msg' is not set\n"}));
}

TEST_F(GET, reads_the_variable_of_empty_name)
{
    write_file("velmar.ini", "=5\n");
    EXPECT_EQ(run({"get", ""}), (TOOL_RUN{0, "5\n", ""}));
}

TEST_F(GET, prints_pairs_for_several_names)
{
    using namespace std::string_literals;
    write_file("project/velmar.ini", "a=1\nb=two\x1b\nempty=\n");
    const std::string not_set = "velmar-cfg: 'c' is not set\n";
    EXPECT_EQ(run({"get", "B", "a", "--project", "project"}), (TOOL_RUN{0, "B=two\\x1b\na=1\n", ""}));
    EXPECT_EQ(run({"get", "a", "c", "b", "--project", "project"}), (TOOL_RUN{1, "a=1\nc\nb=two\\x1b\n", not_set}));
    EXPECT_EQ(run({"get", "a", "c", "b", "--project", "project", "-z"}),
              (TOOL_RUN{1, "a=1\0c\0b=two\x1b\0"s, not_set}));
    EXPECT_EQ(run({"get", "a", "c", "--default", "x", "--project", "project"}), (TOOL_RUN{0, "a=1\nc=x\n", ""}));
    EXPECT_EQ(run({"get", "a", "a", "--type", "bool", "--project", "project"}).out, "a=on\na=on\n");
    const nlohmann::json rows = run({"get", "a", "c", "--project", "project", "--json"}).json();
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows.at(0), run({"get", "a", "--project", "project", "--json"}).json());
    EXPECT_EQ(rows.at(1).at("value"), nullptr);
}

TEST_F(GET, reads_names_from_standard_input)
{
    using namespace std::string_literals;
    write_file("project/velmar.ini", "a=1\n b c =2\n");
    write_file("names", "a\nBC\na");
    standard_input = temporary.path("cwd/names");
    EXPECT_EQ(run({"get", "--stdin", "--project", "project"}), (TOOL_RUN{0, "a=1\nBC=2\na=1\n", ""}));
    write_file("names", "a\n");
    EXPECT_EQ(run({"get", "--stdin", "--project", "project"}).out, "a=1\n"); // also of one
    EXPECT_EQ(run({"get", "--stdin", "--project", "project", "--json"}).json().size(), 1U);
    write_file("names", "bc\0a\0"s);
    EXPECT_EQ(run({"get", "--stdin", "-z", "--project", "project"}).out, "bc=2\0a=1\0"s);
    write_file("names", "");
    EXPECT_EQ(run({"get", "--stdin", "--project", "project"}), (TOOL_RUN{0, "", ""}));
    const TOOL_RUN refused{2, "", "velmar-cfg: --stdin and names exclude each other\n"};
    EXPECT_EQ(run({"get", "a", "--stdin"}), refused);
    EXPECT_EQ(run({"get", "a", "--stdin", "--root", "gone"}), refused); // before a directory is looked for
}

TEST_F(GET, ends_the_value_with_a_zero_byte_on_request)
{
    write_file("velmar.ini", "a=1\n");
    EXPECT_EQ(run({"get", "a", "-z"}).out, std::string("1\0", 2));
}

TEST_F(GET, names_on_input_may_end_with_carriage_returns)
{
    write_file("velmar.ini", "a = 1\nb = 2\n");
    write_file("names", "a\r\nb\r\nA");
    standard_input = temporary.path("cwd/names");
    EXPECT_EQ(run({"get", "--stdin"}), (TOOL_RUN{0, "a=1\nb=2\nA=1\n", ""}));
    EXPECT_EQ(run({"get", "--stdin", "-z"}).exit_code, 1); // where it is part of the one name
}
}
