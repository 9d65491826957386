#include <filesystem>

#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::HasSubstr;

// velmar2.ini is in the directory "user".
class PREFS_EXPLAIN : public TOOL_TEST
{
protected:
    PREFS_EXPLAIN()
    {
        variables["VELMAR2_INI"] = "user";
    }

    static void write_preferences(const std::string& bytes)
    {
        write_file("user/velmar2.ini", bytes);
    }
};

constexpr const char* several_releases = "[General]\n"
                                         "HDL_PREFERENCE = KHDL\n"
                                         "[General 22.4_pro]\n"
                                         "HDL_PREFERENCE = Verilog\n"
                                         "[General 23.3_pro]\n"
                                         "hdl_preference = KHDL\n"
                                         "HDL_PREFERENCE = \"VHDL\"\n"
                                         "HDL_PREFERENCE = KHDL\n";

TEST_F(PREFS_EXPLAIN, shows_every_line_and_the_one_that_counts)
{
    write_preferences(several_releases);
    EXPECT_EQ(run({"prefs", "explain", "hdl_preference"}),
              (TOOL_RUN{0,
                        "HDL_PREFERENCE = VHDL: carried over from an older release, section [General 23.3_pro]\n"
                        "lines of user/velmar2.ini, at most one counts:\n"
                        "  ignored  line 2  [General]           HDL_PREFERENCE = KHDL  (line 7 is found first)\n"
                        "  ignored  line 4  [General 22.4_pro]  HDL_PREFERENCE = Verilog  (line 7 is found first)\n"
                        "  ignored  line 6  [General 23.3_pro]  hdl_preference = KHDL  (a value is found only under "
                        "the key's own spelling)\n"
                        "  counts   line 7  [General 23.3_pro]  HDL_PREFERENCE = VHDL\n"
                        "  ignored  line 8  [General 23.3_pro]  HDL_PREFERENCE = KHDL  (line 7 has this section and "
                        "this key already: the first one counts)\n"
                        "default: Verilog\n"
                        "allowed: KHDL, Verilog, VHDL\n",
                        ""}));
}

TEST_F(PREFS_EXPLAIN, shows_the_section_that_keeps_older_releases_away)
{
    write_preferences("SOUND_WHEN_PROCESS_DONE = on\n[General 23.3_pro]\nBeep when process done = on\n"
                      "[General 23.4_pro]\n");
    EXPECT_EQ(run({"prefs", "explain", "SOUND_WHEN_PROCESS_DONE"}),
              (TOOL_RUN{1,
                        "SOUND_WHEN_PROCESS_DONE has no value: not set, and there is no default\n"
                        "lines of user/velmar2.ini, at most one counts:\n"
                        "  ignored  line 1  no section          SOUND_WHEN_PROCESS_DONE = on  (a key line before any "
                        "section is ignored)\n"
                        "  ignored  line 3  [General 23.3_pro]  Beep when process done = on  (an old name)  (the "
                        "running release has its own section [General 23.4_pro], at line 4: nothing older is looked "
                        "for)\n"
                        "default: none\n"
                        "allowed: off, on, 0, 1\n",
                        ""}));
}

TEST_F(PREFS_EXPLAIN, shows_that_nothing_is_said)
{
    write_preferences("# nothing\n");
    EXPECT_EQ(run({"prefs", "explain", "CLOUD_SERVER"}),
              (TOOL_RUN{1,
                        "CLOUD_SERVER has no value: not set, and there is no default\n"
                        "no line of user/velmar2.ini concerns it\ndefault: none\nallowed: any text\n",
                        ""}));
    variables["VELMAR2_INI"] = temporary.path();
    EXPECT_EQ(run({"prefs", "explain", "HDL_PREFERENCE"}),
              (TOOL_RUN{0,
                        "HDL_PREFERENCE = Verilog: the default\nthere is no preference file\ndefault: Verilog\n"
                        "allowed: KHDL, Verilog, VHDL\n",
                        ""}));
    EXPECT_EQ(run({"prefs", "explain", "HDL_PREFERENCE", "--json"}).json().at("path"), nullptr);
}

TEST_F(PREFS_EXPLAIN, says_the_same_in_json)
{
    write_preferences("HDL_PREFERENCE = KHDL\n[General 23.4_pro]\nHDL_PREFERENCE = other\nHDL_PREFERENCE = VHDL\n");
    EXPECT_EQ(run({"prefs", "explain", "HDL_PREFERENCE", "--json"}).json(), R"({
        "key": "HDL_PREFERENCE", "value": "other", "default": "Verilog", "allowed": ["KHDL", "Verilog", "VHDL"],
        "source": "running release", "section": "General 23.4_pro", "release": "23.4", "path": "user/velmar2.ini",
        "lines": [
            {"line": 1, "section": null, "name": "HDL_PREFERENCE", "value": "KHDL", "old_name": false, "counts": false,
             "reason": "before-section", "why": "a key line before any section is ignored", "other_line": null},
            {"line": 3, "section": "General 23.4_pro", "name": "HDL_PREFERENCE", "value": "other", "old_name": false,
             "counts": true, "reason": "not-allowed",
             "why": "the catalogue does not allow this value; programs get it all the same", "other_line": null},
            {"line": 4, "section": "General 23.4_pro", "name": "HDL_PREFERENCE", "value": "VHDL", "old_name": false,
             "counts": false, "reason": "duplicate",
             "why": "line 3 has this section and this key already: the first one counts", "other_line": 3}]})"_json);
    write_preferences("[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n");
    const nlohmann::json line = run({"prefs", "explain", "HDL_PREFERENCE", "--json"}).json().at("lines").at(0);
    EXPECT_EQ(line.at("reason"), nullptr);
    EXPECT_EQ(line.at("why"), nullptr);
}

TEST_F(PREFS_EXPLAIN, masks_secrets)
{
    write_preferences("CLOUD_TOKEN = hush-1\n# CLOUD_TOKEN = hush-2\n[Cloud 23.4_pro]\nCLOUD_TOKEN = [hush-3\n"
                      "CLOUD_TOKEN = hush-4\ncloud_token = hush-5\n");
    for (const char* const format : {"--json", "--color=always"})
    {
        const TOOL_RUN explained = run({"prefs", "explain", "CLOUD_TOKEN", format});
        EXPECT_EQ(explained.exit_code, 0);
        EXPECT_EQ((explained.out + explained.err).find("hush"), std::string::npos) << explained.out;
    }
    EXPECT_THAT(run({"prefs", "explain", "CLOUD_TOKEN", "--with-secrets"}).out,
                HasSubstr("counts   line 5  [Cloud 23.4_pro]  CLOUD_TOKEN = hush-4\n"));
}

TEST_F(PREFS_EXPLAIN, suggests_a_key)
{
    EXPECT_EQ(run({"prefs", "explain", "HDL_PREFERENC"}),
              (TOOL_RUN{5, "",
                        "velmar-cfg: there is no preference 'HDL_PREFERENC' (did you mean 'HDL_PREFERENCE'?); see "
                        "velmar-cfg prefs list --all\n"}));
    EXPECT_EQ(run({"prefs", "explain", "Beep when process done"}).exit_code, 5);
}

TEST_F(PREFS_EXPLAIN, of_a_file_that_cannot_be_read_says_only_that)
{
    std::filesystem::create_directories("directory/velmar2.ini");
    variables["VELMAR2_INI"] = "directory";
    for (const char* const format : {"--color=never", "--json"})
    {
        const TOOL_RUN explained = run({"prefs", "explain", "HDL_PREFERENCE", format});
        EXPECT_EQ(explained.exit_code, 3);
        EXPECT_EQ(explained.out, "");
        EXPECT_THAT(explained.err, testing::MatchesRegex("velmar-cfg: [^\n]*velmar2.ini: is a directory, not a file; "
                                                         "check the path\n"));
    }
}
}
