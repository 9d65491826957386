#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::HasSubstr;

class EXPLAIN : public TOOL_TEST
{
protected:
    // The reasons of the hints, in order.
    std::vector<std::string> hints(const std::string& name)
    {
        std::vector<std::string> reasons;
        const nlohmann::json document = run({"explain", name, "--project", "project", "--json"}).json();
        for (const nlohmann::json& hint : document.at("hints"))
            reasons.push_back(hint.at("reason"));
        return reasons;
    }
};

TEST_F(EXPLAIN, shows_every_assignment_and_the_one_that_won)
{
    write_file("project/velmar.ini", "fanout = 12 # twelve\nFanout=14\n");
    write_file("appended.ini", "\nfanout=15\n");
    write_file("project/regtest.ini", "fanout=16\n");
    variables["APPENDED_VELMAR_INI"] = "appended.ini";
    variables["VELMAR_INI_VARS"] = "x=1;fanout=2.5";
    EXPECT_EQ(
        run({"explain", "fanout", "--project", "project", "--regtest"}),
        (TOOL_RUN{0,
                  "fanout = 16\n"
                  "assignments, the last one wins:\n"
                  "  lost  project/velmar.ini:1   fanout = 12  (main settings file)\n"
                  "  lost  project/velmar.ini:2   Fanout = 14  (main settings file)\n"
                  "  lost  appended.ini:2         fanout = 15  (file of APPENDED_VELMAR_INI)\n"
                  "  lost  VELMAR_INI_VARS:2      fanout = 2.5  (environment)\n"
                  "  won   project/regtest.ini:1  fanout = 16  (regression-test file)\n"
                  "read as:\n"
                  "  bool    no value\n"
                  "  int     16\n"
                  "  uint    16\n"
                  "  double  16\n"
                  "external: yes\n"
                  "hint: set as 'Fanout': the same variable, since the case of A to Z does not count\n"
                  "hint: project/velmar.ini:2: the same variable as 'fanout' at project/velmar.ini:1, but callbacks "
                  "registered under that spelling are not notified of this one; write 'fanout=14'\n",
                  ""}));
}

TEST_F(EXPLAIN, an_unset_variable_has_its_catalogue_entry)
{
    EXPECT_EQ(run({"explain", "msg_sqlite"}),
              (TOOL_RUN{1,
                        "msg_sqlite is not set\n"
                        "read as:\n"
                        "  bool    no value\n"
                        "  int     no value\n"
                        "  uint    no value\n"
                        "  double  no value\n"
                        "default: on, from the catalogue, for readers that give no default\n"
                        "external: no\n",
                        ""}));
}

TEST_F(EXPLAIN, writes_json)
{
    write_file("project/velmar.ini", "msg_sqlite = 1\n");
    write_file("project/regtest.ini", "# over\n msg_sqlite = 2.5ms ; slow\n");
    EXPECT_EQ(run({"explain", "msg_sqlite", "--project", "project", "--regtest", "--json"}).json(), R"({
        "name": "msg_sqlite", "set": true, "value": "2.5ms", "external": true,
        "assignments": [
            {"name": "msg_sqlite", "value": "1", "layer": "main", "file": "project/velmar.ini", "line": 1, "item": null,
             "text": "msg_sqlite = 1", "won": false},
            {"name": "msg_sqlite", "value": "2.5ms", "layer": "regtest", "file": "project/regtest.ini", "line": 2,
             "item": null, "text": " msg_sqlite = 2.5ms ; slow", "won": true}],
        "readings": {"bool": null, "int": null, "uint": null, "double": 2.5, "double_whole": false},
        "known": true, "default": "on",
        "hints": [{"reason": "no-boolean", "text":
            "project/regtest.ini:2: '2.5ms' is no boolean, so readers of 'msg_sqlite' take their default; write 'msg_sqlite = on' or 'msg_sqlite = off'"}], "reads": null
        })"_json);
}

TEST_F(EXPLAIN, a_number_that_json_lacks_is_a_text)
{
    write_file("project/velmar.ini", "limit = inf\n");
    EXPECT_EQ(run({"explain", "limit", "--project", "project", "--json"}).json().at("readings").at("double"), "inf");
}

TEST_F(EXPLAIN, says_that_a_number_is_only_the_start_of_the_text)
{
    write_file("project/velmar.ini", "delay = 2.5ms\nspeed = fast\nscale = 2.5\n");
    const std::string start = ", read from the start of the text; 0 when no number is there\n";
    EXPECT_THAT(run({"explain", "delay", "--project", "project"}).out, HasSubstr("  double  2.5" + start));
    EXPECT_THAT(run({"explain", "speed", "--project", "project"}).out, HasSubstr("  double  0" + start));
    EXPECT_THAT(run({"explain", "scale", "--project", "project"}).out, HasSubstr("  double  2.5\n"));
}

TEST_F(EXPLAIN, hints)
{
    write_file("project/velmar.ini", "url = http://host#part\n"
                                     "# old = 3\n"
                                     "new = 1 ;old=2\n"
                                     "max_fanout = 12\n"
                                     "MSG_SQLITE = on\n"
                                     "plain = 1\n");
    EXPECT_EQ(hints("url"), (std::vector<std::string>{"comment-cut"}));
    EXPECT_EQ(hints("old"), (std::vector<std::string>{"in-comment", "in-comment"}));
    EXPECT_EQ(hints("max_fanuot"), (std::vector<std::string>{"near-miss"}));
    EXPECT_EQ(hints("msg_sqlite"), (std::vector<std::string>{"spelling", "letter-case"}));
    EXPECT_EQ(hints("plain"), (std::vector<std::string>{}));
}
}
