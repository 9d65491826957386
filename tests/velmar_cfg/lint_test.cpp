#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::HasSubstr;

// The findings of one file, each as "LINE:COLUMN severity reason".
struct CHECKED
{
    const char* title;
    std::string bytes;
    std::vector<std::string> findings;
};

void PrintTo(const CHECKED& row, std::ostream* stream)
{
    *stream << row.title;
}

class LINT : public TOOL_TEST
{
protected:
    static std::vector<std::string> brief(const TOOL_RUN& linted)
    {
        std::vector<std::string> findings;
        const nlohmann::json rows = linted.json();
        for (const nlohmann::json& row : rows)
        {
            EXPECT_EQ(row.size(), 9U) << row;
            EXPECT_NE(row.at("message"), "");
            EXPECT_NE(row.at("instead"), "") << row;
            const nlohmann::json& position = row.at("line") != nullptr ? row.at("line") : row.at("item");
            findings.push_back(position.dump() + ":" + row.at("column").dump() + " " +
                               row.at("severity").get<std::string>() + " " + row.at("reason").get<std::string>());
        }
        return findings;
    }
};

class LINT_SETTINGS : public LINT, public testing::WithParamInterface<CHECKED>
{
};

TEST_P(LINT_SETTINGS, finds)
{
    write_file("checked.ini", GetParam().bytes);
    const TOOL_RUN linted = run({"lint", "checked.ini", "--json"});
    EXPECT_EQ(brief(linted), GetParam().findings);
    EXPECT_EQ(linted.err, "");
}

INSTANTIATE_TEST_SUITE_P(
    table, LINT_SETTINGS,
    testing::Values(
        CHECKED{"nothing in a good file",
                "# comment\n\n; comment\n  // comment\na = 1 # one\nb = \"x;y\" ; two\nc = //server/path\n\r\nd=x=y\n"
                "msg_sqlite = OFF\ndebug_msg_level = 3\r\n",
                {}},
        CHECKED{"too short",
                "ab\n a\na=\n#a\n;\n =\n==\n",
                {"1:1 error too-short", "2:2 error too-short", "3:1 error too-short", "6:2 error too-short",
                 "7:1 warning empty-name"}},
        CHECKED{"no equals sign",
                "name value\n [section]\nname: value\n",
                {"1:1 error no-equals-sign", "2:2 error no-equals-sign", "3:1 error no-equals-sign"}},
        CHECKED{"a comment before the equals sign",
                "a # b = 1\na // b = 1\n",
                {"1:3 error comment-cut", "2:3 error comment-cut"}},
        CHECKED{"a value that a comment sign cuts",
                "url = host#part\nlist = x;y\ncolor = #ff0000\nspaced = 1 #fine\nquoted = \"x#y\"\n",
                {"1:11 warning comment-cut", "2:9 warning comment-cut", "3:9 warning comment-cut"}},
        CHECKED{"a second assignment",
                "a=1;b=2\nc=1 ; d = 2\ne=1 ; was f = 2\ng=1 ; h\n",
                {"1:4 error second-assignment", "2:5 error second-assignment"}},
        CHECKED{"slashes that begin no comment",
                "a = 1 // one\nb = x//y\nc = http://x\n",
                {"1:7 warning slashes-in-value"}},
        CHECKED{"an open quote", "a = \"x # y\n", {"1:5 warning unclosed-quote"}},
        CHECKED{"quotes", "a = \"x\"\nb = \"x;y\"\n", {"1:5 note quotes-kept"}},
        CHECKED{"blanks in a name",
                "max fanout = 12\n  fine  = 1\n\tta\tb=1\n",
                {"1:1 warning blanks-in-name", "3:2 warning blanks-in-name"}},
        CHECKED{"an empty name",
                "=5\n = 6\n",
                {"1:1 warning empty-name", "1:1 warning overridden", "2:1 warning empty-name"}},
        CHECKED{"overridden by a later line",
                "a=1\nbb=2\nA=3\na=3\n",
                {"1:1 warning overridden", "3:1 warning letter-case", "3:1 note overridden"}},
        CHECKED{"two letter cases", "Fan=1\nx=1\nfan=2\n", {"1:1 warning overridden", "3:1 warning letter-case"}},
        CHECKED{"a known switch",
                "msg_sqlite = yes\nMSG_SQLITE=on\n",
                {"1:1 warning overridden", "1:14 error no-boolean", "2:1 warning letter-case"}},
        CHECKED{"a known number",
                "debug_msg_level = high\ncfg_max_to_report =\n",
                {"1:19 error no-integer", "2:20 error no-integer"}},
        CHECKED{"a name that is almost known", "msg_sqlit = on\nmsg_sql = on\n", {"1:1 warning almost-known"}},
        CHECKED{"a byte order mark",
                "\xef\xbb\xbf"
                "a=1\n",
                {"1:1 error byte-order-mark"}},
        CHECKED{"UTF-16, whose other lines are not judged",
                std::string("\xff\xfe"
                            "a\0=\0001\0\r\0\n\0b\0\r\0\n\0",
                            18),
                {"1:1 error byte-order-mark"}},
        CHECKED{"carriage returns that end no line", "a=1\rb=2\r", {"1:4 error carriage-return"}},
        CHECKED{"signs before the equals sign",
                "a:=1\npath += x\n",
                {"1:2 warning operator-in-name", "2:6 warning operator-in-name"}},
        CHECKED{"two equals signs", "b == 1\n", {"1:4 warning double-equals"}},
        CHECKED{"quotes around a name", " \"c\" = 1\n", {"1:2 warning quoted-name"}},
        CHECKED{"two assignments between blanks", "g=1 h=2\n", {"1:3 warning second-assignment"}},
        CHECKED{"single quotes", "d = 'on'\n", {"1:5 note quotes-kept"}},
        CHECKED{"booleans and numbers of other formats",
                "e = yes\nf = 0x10\nh = on,\n",
                {"1:5 note boolean-word", "2:5 note hexadecimal", "3:7 warning trailing-comma"}},
        CHECKED{"a number out of range", "debug_msg_level = 99999999999\n", {"1:19 error no-integer"}},
        CHECKED{"a byte order mark before a comment", "\xef\xbb\xbf# a\n", {}},
        CHECKED{"bytes that look like something else",
                "a\xc2\xa0"
                "b = 1\ncaf\xc3\xa9 = x\n\xc2\xa0 = 2\n",
                {"1:2 warning odd-character", "2:4 warning odd-character", "3:1 warning odd-character"}}));

TEST_F(LINT, says_what_to_write_instead)
{
    write_file("checked.ini", "max fanout = 12\n");
    EXPECT_EQ(run({"lint", "checked.ini"}),
              (TOOL_RUN{0,
                        "checked.ini:1:1: warning: white space in a name is removed: this sets 'maxfanout'; write "
                        "'max_fanout = 12' if that is the variable [blanks-in-name]\n",
                        ""}));
}

TEST_F(LINT, the_exit_code_follows_the_worst_finding)
{
    write_file("note.ini", "a = \"x\"\n");
    write_file("warning.ini", "a b = 1\n");
    write_file("error.ini", "ab\n");
    EXPECT_EQ(run({"lint", "note.ini", "--strict"}).exit_code, 0);
    EXPECT_EQ(run({"lint", "warning.ini"}).exit_code, 0);
    EXPECT_EQ(run({"lint", "warning.ini", "--strict"}).exit_code, 1);
    EXPECT_EQ(run({"lint", "error.ini"}).exit_code, 1);
    EXPECT_EQ(run({"lint", "note.ini", "error.ini"}).exit_code, 1);
}

TEST_F(LINT, a_file_that_is_missing_is_named)
{
    EXPECT_EQ(run({"lint", "nothing.ini"}),
              (TOOL_RUN{3, "", "velmar-cfg: nothing.ini: No such file or directory; check the path\n"}));
    EXPECT_EQ(run({"prefs", "lint", "velmar2.ini"}).exit_code, 3);
}

TEST_F(LINT, a_document_is_no_settings_file)
{
    write_file("velmar.ini", "a = 1\n");
    const std::string snapshot = run({"snapshot"}).out;
    const std::string compact = "\r\n{\"schema\":\"velmar-run-report\"}";
    const TOOL_RUN refused{3, "", "velmar-cfg: given: is a document; check the state that it holds with lint --of\n"};
    for (const std::string& document : {snapshot, compact})
    {
        write_file("given", document);
        EXPECT_EQ(run({"lint", "given"}), refused);
        EXPECT_EQ(run({"lint", "--fix", "given"}), refused);
        EXPECT_EQ(run({"prefs", "lint", "given"}), refused);
        EXPECT_EQ(read_file("given"), document);
    }
    for (const char* const settings : {"{", "{\"schema\"", "{ \"schema\" = \"velmar-\"", "schema: \"velmar-x\"", ""})
    {
        write_file("given", settings);
        EXPECT_NE(run({"lint", "given"}).exit_code, 3) << settings;
    }

    // The other files are checked and changed all the same.
    write_file("given", snapshot);
    write_file("other.ini", "a b = 1\n");
    const TOOL_RUN got = run({"lint", "--fix", "other.ini", "given"});
    EXPECT_EQ(got.exit_code, 3);
    EXPECT_THAT(got.err, HasSubstr("other.ini: 1 line was replaced"));
    EXPECT_EQ(read_file("other.ini"), "a_b = 1\n");
    EXPECT_EQ(read_file("given"), snapshot);
}

TEST_F(LINT, without_a_file_it_checks_all_that_would_be_read)
{
    write_file("project/velmar.ini", "ab\n");
    write_file("appended.ini", "a b=1\n");
    write_file("project/regtest.ini", "cc\n");
    write_file("user/velmar2.ini", "x\n");
    variables["APPENDED_VELMAR_INI"] = "appended.ini";
    variables["VELMAR_INI_VARS"] = "nothing";
    variables["VELMAR2_INI"] = "user";
    const TOOL_RUN linted = run({"lint", "--project", "project", "--regtest", "--json"});
    std::vector<std::string> files;
    const nlohmann::json rows = linted.json();
    for (const nlohmann::json& row : rows)
        files.push_back(row.at("file"));
    EXPECT_EQ(files, (std::vector<std::string>{"project/velmar.ini", "appended.ini", "VELMAR_INI_VARS",
                                               "project/regtest.ini", "user/velmar2.ini"}));
    EXPECT_EQ(rows.at(2).at("line"), nullptr);
    EXPECT_EQ(rows.at(2).at("item"), 1);
}

// With the other sign at its beginning the text would set 'url' twice. Lines that assign nothing do not hide that.
TEST_F(LINT, no_separator_is_suggested_that_makes_one_item_override_another)
{
    variables["VELMAR_INI_VARS"] = "url=http://h;url=1";
    for (const char* const settings : {"", "# a comment\n", "x = 1\n# a comment\n\n"})
    {
        write_file("project/velmar.ini", settings);
        EXPECT_THAT(run({"--project", "project", "lint"}).out, Not(HasSubstr("begin the text with \"")));
    }
    variables["VELMAR_INI_VARS"] = "url=http://h;b=1";
    EXPECT_THAT(run({"--project", "project", "lint"}).out, HasSubstr("begin the text with \";\""));
}

TEST_F(LINT, a_variable_may_have_another_value_in_a_later_layer)
{
    write_file("project/velmar.ini", "a=1\n");
    write_file("project/regtest.ini", "a=2\n");
    EXPECT_EQ(run({"lint", "--project", "project", "--regtest"}), (TOOL_RUN{0, "", ""}));
}

class LINT_INLINE : public LINT, public testing::WithParamInterface<CHECKED>
{
};

TEST_P(LINT_INLINE, finds)
{
    variables["VELMAR_INI_VARS"] = GetParam().bytes;
    EXPECT_EQ(brief(run({"lint", "--json"})), GetParam().findings);
}

INSTANTIATE_TEST_SUITE_P(table, LINT_INLINE,
                         testing::Values(CHECKED{"nothing in a good text", "a=1;b=/x:/y;; c = # ;", {}},
                                         CHECKED{"items that are skipped",
                                                 "ab;=1;c=; d",
                                                 {"1:1 error no-equals-sign", "2:1 error empty-name",
                                                  "3:1 error empty-value", "4:2 error no-equals-sign"}},
                                         CHECKED{"the other separator", "p=x;y:z=1", {"1:4 warning separator"}},
                                         CHECKED{"a colon that came first", "q=c:\\dir;r=2", {"1:4 warning separator"}},
                                         CHECKED{"both separators", "a=1:b=2;c=3", {"2:4 warning separator"}},
                                         CHECKED{"blanks in a name", "my var=on", {"1:1 warning blanks-in-name"}},
                                         CHECKED{"tabs and newlines at the ends",
                                                 "a=1\t;b = 2\n;\nc=3",
                                                 {"1:2 warning white-space-kept", "2:3 warning white-space-kept",
                                                  "3:1 warning white-space-kept"}},
                                         CHECKED{"quotes", "a=\"x;y\"", {"2:1 error no-equals-sign"}},
                                         CHECKED{"quotes around all", "a=\"x\"", {"1:3 note quotes-kept"}},
                                         CHECKED{"a known switch", "msg_sqlite=maybe", {"1:12 error no-boolean"}}));

// What the environment of a run holds, and what lint says of it, each as "FILE: severity reason: replacement".
struct ENVIRONMENT_CASE
{
    const char* title;
    std::map<std::string, std::string> variables;
    std::vector<std::string> findings;
};

void PrintTo(const ENVIRONMENT_CASE& row, std::ostream* stream)
{
    *stream << row.title;
}

class LINT_ENVIRONMENT : public LINT, public testing::WithParamInterface<ENVIRONMENT_CASE>
{
};

TEST_P(LINT_ENVIRONMENT, is_told)
{
    write_file("set/velmar.ini", "a = 1\n");
    write_file("set/other.ini", "a = 2\n");
    write_file("velmar.ini", "a = 3\n");
    for (const auto& [name, value] : GetParam().variables)
        variables[name] = value;
    const TOOL_RUN linted = run({"lint", "--json"});
    std::vector<std::string> findings;
    bool fails = false;
    const nlohmann::json rows = linted.json();
    for (const nlohmann::json& row : rows)
    {
        EXPECT_EQ(row.at("line"), nullptr);
        EXPECT_EQ(row.at("item"), 1);
        EXPECT_EQ(row.at("column"), 1);
        findings.push_back(row.at("file").get<std::string>() + ": " + row.at("severity").get<std::string>() + " " +
                           row.at("reason").get<std::string>() + ": " + row.at("replacement").dump());
        fails = fails || row.at("severity") == "error";
    }
    EXPECT_EQ(findings, GetParam().findings);
    EXPECT_EQ(linted.exit_code, fails ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(
    table, LINT_ENVIRONMENT,
    testing::Values(
        ENVIRONMENT_CASE{
            "nothing in a good one",
            {{"VELMAR_INI", "set"}, {"APPENDED_VELMAR_INI", "set/other.ini"}, {"VELMAR_INI_DISABLED", "0"}},
            {}},
        ENVIRONMENT_CASE{
            "empty values", {{"VELMAR_INI", ""}, {"APPENDED_VELMAR_INI", ""}, {"VELMAR_INI_DISABLED", ""}}, {}},
        ENVIRONMENT_CASE{"a word that disables nothing",
                         {{"VELMAR_INI_DISABLED", "true"}},
                         {"VELMAR_INI_DISABLED: warning disables-nothing: \"1\""}},
        ENVIRONMENT_CASE{"another such word",
                         {{"VELMAR_INI_DISABLED", "Yes"}},
                         {"VELMAR_INI_DISABLED: warning disables-nothing: \"1\""}},
        ENVIRONMENT_CASE{"a blank behind the 1",
                         {{"VELMAR_INI_DISABLED", "1 "}},
                         {"VELMAR_INI_DISABLED: warning disables-nothing: \"1\""}},
        ENVIRONMENT_CASE{
            "another number", {{"VELMAR_INI_DISABLED", "2"}}, {"VELMAR_INI_DISABLED: warning disables-nothing: \"1\""}},
        ENVIRONMENT_CASE{"a word for no", {{"VELMAR_INI_DISABLED", "no"}}, {}},
        ENVIRONMENT_CASE{"the settings file for its directory",
                         {{"VELMAR_INI", "set/velmar.ini"}},
                         {"VELMAR_INI: error no-directory: \"set\""}},
        ENVIRONMENT_CASE{"the settings file of the current directory",
                         {{"VELMAR_INI", "velmar.ini"}},
                         {"VELMAR_INI: error no-directory: \".\""}},
        ENVIRONMENT_CASE{"another file for a directory",
                         {{"VELMAR_INI", "set/other.ini"}},
                         {"VELMAR_INI: error no-directory: null"}},
        ENVIRONMENT_CASE{"a directory that is missing",
                         {{"VELMAR_INI", "nowhere"}},
                         {"VELMAR_INI: warning missing-directory: null"}},
        ENVIRONMENT_CASE{"a directory below a file",
                         {{"VELMAR_INI", "velmar.ini/x"}},
                         {"VELMAR_INI: warning missing-directory: null"}},
        ENVIRONMENT_CASE{"an appended file that is missing",
                         {{"APPENDED_VELMAR_INI", "nothing.ini"}},
                         {"APPENDED_VELMAR_INI: error missing-file: null"}}));

TEST_F(LINT, that_nothing_is_checked_is_told)
{
    EXPECT_EQ(run({"lint"}),
              (TOOL_RUN{0,
                        "velmar.ini: warning: no settings file found; 'velmar-cfg paths' shows where it is looked for "
                        "[no-settings-file]\n",
                        ""}));
    EXPECT_EQ(run({"lint", "--strict"}).exit_code, 1);
    EXPECT_EQ(run({"prefs", "lint"}),
              (TOOL_RUN{0,
                        "velmar2.ini: warning: no preference file found; 'velmar-cfg prefs path' shows where it is "
                        "looked for [no-preference-file]\n",
                        ""}));
    EXPECT_EQ(run({"prefs", "lint", "--strict"}).exit_code, 1);
    const nlohmann::json row = run({"lint", "--json"}).json().at(0);
    for (const char* const position : {"line", "item", "column", "replacement"})
        EXPECT_EQ(row.at(position), nullptr) << position;
}

TEST_F(LINT, that_the_search_is_disabled_is_told)
{
    write_file("velmar.ini", "a = 1\n");
    variables["VELMAR_INI_DISABLED"] = "1";
    EXPECT_THAT(run({"lint"}).out, HasSubstr("no settings file found, since VELMAR_INI_DISABLED is 1;"));
    variables["VELMAR_INI_VARS"] = "a=1";
    EXPECT_EQ(run({"lint", "--strict"}), (TOOL_RUN{0, "", ""}));
}

TEST_F(LINT, what_cannot_be_read_is_told_and_the_rest_is_checked)
{
    write_file("first.ini", "ab\n");
    const TOOL_RUN linted = run({"lint", "first.ini", "nothing.ini", "--json"});
    EXPECT_EQ(linted.exit_code, 3);
    EXPECT_EQ(linted.json().size(), 1U);
    EXPECT_THAT(linted.err, HasSubstr("nothing.ini: "));
}

TEST_F(LINT, suggestions_stand_in_json_whole)
{
    const std::string value(3000, 'v');
    write_file("checked.ini", "a = 1\n\"name\" := '" + value + "'\r\n");
    const nlohmann::json rows = run({"lint", "checked.ini", "--json"}).json();
    ASSERT_EQ(rows.size(), 3U);
    for (const nlohmann::json& row : rows)
        EXPECT_EQ(row.at("replacement"), "name = " + value + "\r");
}

class LINT_PREFERENCES : public LINT, public testing::WithParamInterface<CHECKED>
{
};

TEST_P(LINT_PREFERENCES, finds)
{
    write_file("checked/velmar2.ini", GetParam().bytes);
    const TOOL_RUN linted = run({"lint", "checked/velmar2.ini", "--json"});
    EXPECT_EQ(brief(linted), GetParam().findings);
    EXPECT_EQ(run({"prefs", "lint", "checked/velmar2.ini", "--json"}), linted);
    variables["VELMAR2_INI"] = "checked";
    EXPECT_EQ(run({"prefs", "lint", "--json"}), linted);
}

INSTANTIATE_TEST_SUITE_P(
    table, LINT_PREFERENCES,
    testing::Values(
        CHECKED{"nothing in a good file",
                "\n[General]\nUSER_LIBRARIES = \"/opt/lib\"\n\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = OFF\r\n"
                "[Internet Connectivity 23.4_pro]\nPROXY_ENABLED=1\n",
                {}},
        CHECKED{"a bracket in a value",
                "[Internet Connectivity 23.4_pro]\nPROXY_SETTINGS = [host]\nPROXY_USER1 = x[\n",
                {"1:1 note empty-section", "2:18 error bracket-in-value", "3:16 error bracket-in-value"}},
        CHECKED{"a key before any section", "USER_LIBRARIES = /x\n", {"1:1 error before-section"}},
        CHECKED{"an unknown key",
                "[Messages 23.4_pro]\nSHOW_MESAGE_ID = on\nSOMETHING_ELSE = 1\n",
                {"2:1 warning unknown-key", "3:1 warning unknown-key"}},
        CHECKED{
            "a value that is not allowed", "[Messages 23.4_pro]\nSHOW_MESSAGE_ID =  1\n", {"2:20 error not-allowed"}},
        CHECKED{"a dropped duplicate",
                "[Messages 23.4_pro]\nSHOW_MESSAGE_ID = on\nSHOW_MESSAGE_ID = off\n",
                {"3:1 error duplicate"}},
        CHECKED{"an old name", "[Messages 23.4_pro]\nPost warning messages = 1\n", {"2:1 note old-name"}},
        CHECKED{"an empty value",
                "[Messages 23.4_pro]\nSHOW_MESSAGE_ID =\n",
                {"1:1 note empty-section", "2:17 warning empty-value"}},
        CHECKED{"comments",
                "# a comment\n[Messages 23.4_pro]\n; SHOW_MESSAGE_ID = off\n",
                {"1:1 note not-kept", "3:1 warning no-comment"}},
        CHECKED{"short lines", "ab\n \n[]\n", {"1:1 error too-short", "3:1 error too-short"}},
        CHECKED{"headers",
                "[Messages 23.4_pro\n[ Messages]\n[messages 23.4_pro]\n[] x\nUSER_LIBRARIES = 1\n",
                {"1:1 error malformed-header", "2:1 note empty-section", "2:1 warning unknown-section",
                 "3:1 note empty-section", "3:1 warning unknown-section", "4:1 error empty-header",
                 "5:1 error below-empty-header"}},
        CHECKED{
            "text beside a header",
            "[General 23.4_pro] # mine\nHDL_PREFERENCE = VHDL\nold [Messages 23.4_pro] SHOW_MESSAGE_ID = on\nx = 1\n",
            {"1:1 note beside-header", "3:1 error beside-header", "4:1 warning unknown-key"}},
        CHECKED{"sections in two letter cases",
                "[general 23.4_pro]\nHDL_PREFERENCE = VHDL\n[General 23.4_pro]\nUSER_LIBRARIES = /x\n",
                {"1:1 error merged-section", "1:1 warning unknown-section", "2:1 error merged-section",
                 "2:1 error wrong-section"}},
        CHECKED{
            "quotes within quotes", "[General 23.4_pro]\nUSER_LIBRARIES = \"\"/x\"\"\n", {"2:1 warning changed-value"}},
        CHECKED{"comments that look like something else",
                "#\n; a = 1\n# [General 23.4_pro\n;[Messages 23.4_pro]\nSHOW_MESSAGE_ID = on\n",
                {"1:1 note not-kept", "2:1 note not-kept", "3:1 note not-kept", "4:1 note beside-header"}},
        CHECKED{"the wrong section", "[General 23.4_pro]\nSHOW_MESSAGE_ID = on\n", {"2:1 error wrong-section"}},
        CHECKED{
            "a key in another letter case", "[Messages 23.4_pro]\nshow_message_id = on\n", {"2:1 error letter-case"}}));
}
