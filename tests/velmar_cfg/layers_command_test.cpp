#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::HasSubstr;

class LAYERS_COMMAND : public TOOL_TEST
{
protected:
    LAYERS_COMMAND()
    {
        write_file("project/velmar.ini", "# sample\nmax_fanout = 9\nmax_fanout = 12 # note\n\nno assignment\n");
        write_file("project/regtest.ini", "seed = 7\n");
        write_file("appended.ini", "MAX_fanout = 16\n");
        variables["APPENDED_VELMAR_INI"] = "appended.ini";
        variables["VELMAR_INI_VARS"] = "seed=1;broken;trace=on";
    }
};

TEST_F(LAYERS_COMMAND, show_the_whole_configuration)
{
    EXPECT_EQ(run({"layers", "--project", "project", "--regtest"}),
              (TOOL_RUN{0, R"(main settings file  project/velmar.ini
     2  max_fanout = 9  lost to appended.ini:1
     3  max_fanout = 12 # note  lost to appended.ini:1
     5  no assignment  does nothing
file of APPENDED_VELMAR_INI  appended.ini
     1  MAX_fanout = 16
environment  VELMAR_INI_VARS
     1  seed=1  lost to project/regtest.ini:1
     2  broken  does nothing
     3  trace=on
regression-test file  project/regtest.ini
     1  seed = 7
)",
                        ""}));
}

TEST_F(LAYERS_COMMAND, show_only_what_has_no_effect)
{
    EXPECT_EQ(run({"layers", "--overridden", "--project", "project"}),
              (TOOL_RUN{0, R"(main settings file  project/velmar.ini
     2  max_fanout = 9  lost to appended.ini:1
     3  max_fanout = 12 # note  lost to appended.ini:1
     5  no assignment  does nothing
file of APPENDED_VELMAR_INI  appended.ini
environment  VELMAR_INI_VARS
     2  broken  does nothing
)",
                        ""}));
}

TEST_F(LAYERS_COMMAND, are_empty_without_settings)
{
    variables.erase("APPENDED_VELMAR_INI");
    variables.erase("VELMAR_INI_VARS");
    EXPECT_EQ(run({"layers"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"layers", "--json"}), (TOOL_RUN{0, "[]\n", ""}));
}

TEST_F(LAYERS_COMMAND, write_json_rows)
{
    EXPECT_EQ(run({"layers", "--json", "--project", "project"}).json(), R"([
        {"layer": "main", "file": "project/velmar.ini", "line": 2, "item": null, "text": "max_fanout = 9",
         "name": "max_fanout", "value": "9", "effect": "lost",
         "winner": {"layer": "appended", "file": "appended.ini", "line": 1, "item": null}},
        {"layer": "main", "file": "project/velmar.ini", "line": 3, "item": null, "text": "max_fanout = 12 # note",
         "name": "max_fanout", "value": "12", "effect": "lost",
         "winner": {"layer": "appended", "file": "appended.ini", "line": 1, "item": null}},
        {"layer": "main", "file": "project/velmar.ini", "line": 5, "item": null, "text": "no assignment",
         "name": null, "value": null, "effect": "ignored", "winner": null},
        {"layer": "appended", "file": "appended.ini", "line": 1, "item": null, "text": "MAX_fanout = 16",
         "name": "MAX_fanout", "value": "16", "effect": "counts", "winner": null},
        {"layer": "inline", "file": null, "line": null, "item": 1, "text": "seed=1",
         "name": "seed", "value": "1", "effect": "counts", "winner": null},
        {"layer": "inline", "file": null, "line": null, "item": 2, "text": "broken",
         "name": null, "value": null, "effect": "ignored", "winner": null},
        {"layer": "inline", "file": null, "line": null, "item": 3, "text": "trace=on",
         "name": "trace", "value": "on", "effect": "counts", "winner": null}])"_json);
}

TEST_F(LAYERS_COMMAND, tell_what_could_not_be_read)
{
    ASSERT_EQ(mkdir("broken.ini", 0777), 0);
    variables["APPENDED_VELMAR_INI"] = "broken.ini";
    const TOOL_RUN got = run({"layers", "--project", "project"});
    EXPECT_EQ(got.exit_code, 3);
    EXPECT_THAT(got.out, HasSubstr("\nfile of APPENDED_VELMAR_INI  broken.ini  ("));
}

TEST_F(LAYERS_COMMAND, hide_secrets_and_what_steers_a_terminal)
{
    write_file("project/velmar.ini", "api_token = S3CRET\nodd = \x1b[31m\n");
    EXPECT_THAT(run({"layers", "--project", "project"}).out,
                HasSubstr("     1  api_token = \\(masked)\n     2  odd = \\x1b[31m\n"));
}
}
