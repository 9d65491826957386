// velmar-cfg prefs dump and load.
#include <filesystem>
#include <fstream>

#include "tests/velmar_cfg/preference_tool_test.h"

namespace
{
using testing::EndsWith;
using testing::HasSubstr;

class PREFS_LOAD : public PREFERENCE_TOOL_TEST
{
protected:
    // Loading the bytes over these preferences ends so and changes nothing.
    void expect_unchanged(const std::string& bytes, const TOOL_RUN& expected) const
    {
        write_preferences(mine);
        write_file("given", bytes);
        EXPECT_EQ(run({"prefs", "load", "given"}), expected);
        EXPECT_EQ(preferences(), mine);
    }

    static constexpr const char* mine = "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n";
};

// --- dump ---

TEST_F(PREFS_LOAD, dump_writes_a_file_of_the_running_release)
{
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n[General]\nUSER_LIBRARIES = /a\tb\n");
    EXPECT_EQ(
        run({"prefs", "dump", "--changed"}),
        (TOOL_RUN{0, "\n[General 23.4_pro]\nUSER_LIBRARIES = /a\tb\n\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n",
                  ""}));
    const std::string all = run({"prefs", "dump"}).out;
    EXPECT_THAT(all, HasSubstr("\nHDL_PREFERENCE = Verilog\n"));
    EXPECT_THAT(all, HasSubstr("\nSHOW_MESSAGE_ID = off\n"));
}

TEST_F(PREFS_LOAD, dump_holds_secrets_only_when_told)
{
    write_preferences("[Cloud 23.4_pro]\nCLOUD_TOKEN = hush-hush\nCLOUD_SERVER = host\n");
    const std::string masked = "# CLOUD_TOKEN is left out, since its value is masked\n\n[Cloud 23.4_pro]\n"
                               "CLOUD_SERVER = host\n";
    EXPECT_EQ(run({"prefs", "dump", "--changed"}), (TOOL_RUN{0, masked, ""}));
    EXPECT_EQ(run({"prefs", "dump", "--changed", "--with-secrets"}),
              (TOOL_RUN{0, "\n[Cloud 23.4_pro]\nCLOUD_SERVER = host\nCLOUD_TOKEN = hush-hush\n", ""}));
    EXPECT_EQ(run({"prefs", "dump", "--changed", "--json"}).out,
              (nlohmann::ordered_json{{"text", masked}, {"masked", {"CLOUD_TOKEN"}}}).dump(2) + "\n");

    // A load of it keeps the secret of the file. Only other comments are named.
    write_file("given", masked);
    EXPECT_EQ(run({"prefs", "load", "given"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"prefs", "load", "given", "--json"}).json().at("passed_over"), nlohmann::json::array());
    EXPECT_EQ(run({"prefs", "get", "CLOUD_TOKEN"}).out, "hush-hush\n");
    write_file("given", "# MY_TOKEN is left out, since its value is masked\n" + masked +
                            " # CLOUD_TOKEN is left out, since its value is masked\n");
    const std::string message = "note: this line sets nothing, and a save drops it; keep comments elsewhere; for a "
                                "preference write 'KEY = VALUE' [not-kept]\n";
    EXPECT_EQ(run({"prefs", "load", "given"}),
              (TOOL_RUN{0, "", "velmar-cfg: given:1:1: " + message + "velmar-cfg: given:6:2: " + message}));
}

TEST_F(PREFS_LOAD, of_the_own_dump_changes_nothing)
{
    const std::string bytes = "# mine\n[General]\nUSER_LIBRARIES=/x\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n"
                              "[Cloud 23.4_pro]\nCLOUD_TOKEN = hush-hush\n";
    write_preferences(bytes);
    for (const std::vector<std::string>& dump : {std::vector<std::string>{"prefs", "dump", "--with-secrets"},
                                                 {"prefs", "dump", "--changed", "--with-secrets"}})
    {
        write_file("given", run(dump).out);
        standard_input = temporary.path("cwd/given");
        EXPECT_EQ(run({"prefs", "load", "-"}), (TOOL_RUN{0, "", ""}));
        EXPECT_EQ(preferences(), bytes);
    }
}

// --- load ---

TEST_F(PREFS_LOAD, sets_all_that_the_file_gives)
{
    write_preferences(mine);
    write_file("given", "[Messages 22.4_pro]\nSHOW_MESSAGE_ID=\"off\"\n[General 23.3_pro]\nHDL_PREFERENCE = Verilog\n"
                        "Beep when process done = on\n");
    EXPECT_EQ(run({"prefs", "load", "given"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(preferences(), "\n[General 23.4_pro]\nHDL_PREFERENCE = Verilog\nSOUND_WHEN_PROCESS_DONE = on\n\n"
                             "[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n");
    EXPECT_EQ(read_file("given").substr(0, 10), "[Messages ");
}

TEST_F(PREFS_LOAD, makes_the_file_where_there_is_none)
{
    write_file("given", mine);
    EXPECT_EQ(run({"prefs", "load", "given"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(preferences(), mine);
}

TEST_F(PREFS_LOAD, dry_run_shows_the_difference_and_changes_nothing)
{
    write_preferences(mine);
    write_file("given", "[General 23.4_pro]\nHDL_PREFERENCE = KHDL\nUSER_LIBRARIES = /x\n");
    EXPECT_EQ(run({"prefs", "load", "given", "--dry-run"}),
              (TOOL_RUN{0,
                        "--- " + full_path() + "\n+++ " + full_path() +
                            " (new)\n@@ -1,3 +1,4 @@\n \n [General 23.4_pro]\n-HDL_PREFERENCE = VHDL\n"
                            "+HDL_PREFERENCE = KHDL\n+USER_LIBRARIES = /x\n",
                        ""}));
    EXPECT_EQ(preferences(), mine);
    const nlohmann::json tried = run({"prefs", "load", "given", "--dry-run", "--json"}).json();
    EXPECT_EQ(tried.at("file"), "given");
    EXPECT_EQ(tried.at("given"), R"([{"line": 3, "key": "USER_LIBRARIES", "value": "/x"},
                                     {"line": 2, "key": "HDL_PREFERENCE", "value": "KHDL"}])"_json);
    EXPECT_EQ(tried.at("passed_over"), nlohmann::json::array());
    EXPECT_EQ(tried.at("changed"), true);
    EXPECT_EQ(tried.at("dry_run"), true);
    EXPECT_EQ(tried.at("path"), full_path());
    EXPECT_THAT(tried.at("difference").get<std::string>(), EndsWith("+USER_LIBRARIES = /x\n"));
}

TEST_F(PREFS_LOAD, names_every_line_that_the_catalogue_refuses_and_sets_none)
{
    expect_unchanged("[Messages 23.4_pro]\nSHOW_MESSAGE_ID = 1\nSHOW_MESSAGE_PARTITION_ID = on\n[General 23.4_pro]\n"
                     "HDL_PREF = VHDL\nUSER_LIBRARIES = \"\"/x\"\"\n",
                     {5, "",
                      "velmar-cfg: given:2: '1' is not allowed for SHOW_MESSAGE_ID; allowed: off, on\n"
                      "velmar-cfg: given:5: there is no preference 'HDL_PREF'\n"
                      "velmar-cfg: given:6: the file cannot hold this value: it would be read back as '/x'; leave out "
                      "'[', line ends, and blanks or quotes at both ends\n"
                      "velmar-cfg: given: lines that cannot be loaded: 3; nothing was changed\n"});
    expect_unchanged("[General 23.4_pro]\nHDL_PREFERENC = VHDL\n",
                     {5, "",
                      "velmar-cfg: given:2: there is no preference 'HDL_PREFERENC' (did you mean 'HDL_PREFERENCE'?)\n"
                      "velmar-cfg: given: lines that cannot be loaded: 1; nothing was changed\n"});
}

TEST_F(PREFS_LOAD, names_lines_that_say_nothing_and_sets_the_others)
{
    write_preferences("");
    write_file("given", "# a comment\nHDL_PREFERENCE = VHDL\n[General 99.1_pro]\nHDL_PREFERENCE = VHDL\n"
                        "[Messages 23.4_pro]\nshow_message_id = off\nSHOW_MESSAGE_PARTITION_ID = on\n");
    const TOOL_RUN loaded = run({"prefs", "load", "given"});
    EXPECT_EQ(loaded.exit_code, 1);
    EXPECT_EQ(loaded.out, "");
    EXPECT_THAT(loaded.err, HasSubstr("velmar-cfg: given:1:1: note: this line sets nothing"));
    EXPECT_THAT(loaded.err, HasSubstr("velmar-cfg: given:2:1: error: a key line before any section is ignored"));
    EXPECT_THAT(loaded.err, HasSubstr("velmar-cfg: given:3:1: warning: no lookup searches the section 'General 99.1"));
    EXPECT_THAT(loaded.err, HasSubstr("velmar-cfg: given:6:1: error: a value is found only under the key's own"));
    EXPECT_EQ(std::ranges::count(loaded.err, '\n'), 4);
    EXPECT_EQ(preferences(), "\n[Messages 23.4_pro]\nSHOW_MESSAGE_PARTITION_ID = on\n");

    const nlohmann::json rows = run({"prefs", "load", "given", "--json"}).json().at("passed_over");
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows.at(1), R"({"line": 2, "reason": "before-section",
                              "message": "a key line before any section is ignored, and a save drops it"})"_json);
}

// What a value is read from all the same is no reason to complain.
TEST_F(PREFS_LOAD, is_silent_about_lines_from_which_values_are_read)
{
    const std::string running =
        "[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n";
    for (const char* const others :
         {"[General 23.4_pro]\nBeep when process done = off\n", "[Messages 23.3_pro]\nSHOW_MESSAGE_ID = 1\n",
          "[General 23.3_pro]\nUSER_LIBRARIES = \"\"/x\"\"\n"})
    {
        write_preferences("");
        write_file("given", running + others);
        EXPECT_EQ(run({"prefs", "load", "given"}), (TOOL_RUN{0, "", ""})) << others;
    }
    write_file("given", running + "[GENERAL 23.4_pro]\nx = y\n");
    const TOOL_RUN loaded = run({"prefs", "load", "given"});
    EXPECT_EQ(loaded.exit_code, 1);
    EXPECT_THAT(loaded.err, HasSubstr("[unknown-section]\n"));
    EXPECT_EQ(loaded.err.find("merged-section"), std::string::npos) << "that is for a save of it";
}

TEST_F(PREFS_LOAD, of_many_lines_that_say_nothing_names_the_first)
{
    write_preferences("");
    std::string comments;
    for (int i = 0; i < 60; ++i)
        comments += "# comment\n";
    write_file("given", comments + mine);
    const TOOL_RUN loaded = run({"prefs", "load", "given"});
    EXPECT_EQ(loaded.exit_code, 0);
    EXPECT_EQ(std::ranges::count(loaded.err, '\n'), 51);
    EXPECT_THAT(loaded.err, EndsWith("velmar-cfg: and 10 more; velmar-cfg prefs lint lists them all\n"));
    const TOOL_RUN as_json = run({"prefs", "load", "given", "--json"});
    EXPECT_THAT(as_json.err, EndsWith("velmar-cfg: and 10 more; \"passed_over\" has them all\n"));
    EXPECT_EQ(as_json.json().at("passed_over").size(), 60U);
}

TEST_F(PREFS_LOAD, refuses_utf_16_on_either_side)
{
    const std::string why =
        ": is UTF-16, which the library does not understand; save it as UTF-8 without a byte order mark\n";
    const std::string plain = "[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n";
    for (const std::string& bytes : {std::string("\xff\xfe[\0", 4), std::string("\xfe\xff\0[", 4)})
    {
        write_preferences(plain);
        write_file("given", bytes);
        EXPECT_EQ(run({"prefs", "load", "given"}), (TOOL_RUN{3, "", "velmar-cfg: given" + why}));
        EXPECT_EQ(preferences(), plain);
        write_preferences(bytes);
        write_file("given", plain);
        for (const std::vector<std::string>& words :
             std::vector<std::vector<std::string>>{{"prefs", "load", "given", "--allow-loss"},
                                                   {"prefs", "set", "HDL_PREFERENCE", "VHDL", "--allow-loss"}})
        {
            const TOOL_RUN got = run(words);
            EXPECT_EQ(got.exit_code, 3) << words[1];
            EXPECT_THAT(got.err, EndsWith("velmar2.ini" + why)) << words[1];
        }
        EXPECT_EQ(preferences(), bytes);
    }
}

TEST_F(PREFS_LOAD, loses_no_value_of_the_own_file_unless_told)
{
    const std::string bytes = "stray = 1\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n";
    write_preferences(bytes);
    write_file("given", "[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n");
    const TOOL_RUN refused = run({"prefs", "load", "given"});
    EXPECT_EQ(refused.exit_code, 4);
    EXPECT_THAT(refused.err,
                EndsWith(": a save would lose or change the value in line 1; mend the file (see velmar-cfg "
                         "prefs lint), or --allow-loss changes it anyway\n"));
    EXPECT_EQ(preferences(), bytes);
    EXPECT_EQ(run({"prefs", "load", "given", "--allow-loss"}).exit_code, 0);
    EXPECT_EQ(preferences(), "\n[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n");
}

TEST_F(PREFS_LOAD, keeps_other_answers_and_writes_out_what_was_carried_over)
{
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n");
    write_file("given", "[Messages 23.4_pro]\nSHOW_MESSAGE_PARTITION_ID = on\n");
    EXPECT_EQ(run({"prefs", "load", "given"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(preferences(), "\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = "
                             "off\nSHOW_MESSAGE_PARTITION_ID = on\n");
}

TEST_F(PREFS_LOAD, shows_no_secret)
{
    write_preferences("[Cloud 23.4_pro]\nCLOUD_TOKEN = hush-1\n");
    write_file("given", "[Cloud 23.4_pro]\nCLOUD_TOKEN = hush-2\n");
    const TOOL_RUN tried = run({"prefs", "load", "given", "--dry-run"});
    EXPECT_THAT(tried.out, HasSubstr("+CLOUD_TOKEN = \\(masked"));
    const TOOL_RUN as_json = run({"prefs", "load", "given", "--dry-run", "--json"});
    write_file("given", "CLOUD_TOKEN = hush-3\n[Cloud 23.4_pro]\napi_x: hush-4 = x\nCLOUD_TOKEN = \"\"hush-5\"\"\n"
                        "my_token = hush-6\n");
    const TOOL_RUN refused = run({"prefs", "load", "given", "--secret", "api_x"});
    EXPECT_EQ(refused.exit_code, 5);
    for (const TOOL_RUN& told : {tried, as_json, refused})
        EXPECT_EQ((told.out + told.err).find("hush"), std::string::npos) << told.out << told.err;
    write_file("given", "[Cloud 23.4_pro]\nCLOUD_TOKEN = hush-2\n");
    EXPECT_EQ(run({"prefs", "load", "given"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(preferences(), "\n[Cloud 23.4_pro]\nCLOUD_TOKEN = hush-2\n");
}

TEST_F(PREFS_LOAD, needs_a_file_that_can_be_read_whole)
{
    write_preferences(mine);
    EXPECT_EQ(run({"prefs", "load", "nowhere"}).exit_code, 3);
    EXPECT_EQ(run({"prefs", "load", "user"}).exit_code, 3);
    EXPECT_EQ(run({"prefs", "load", "user"}).out, "");
    EXPECT_EQ(run({"prefs", "load"}).exit_code, 2);
    EXPECT_EQ(run({"prefs", "load", "-"}), (TOOL_RUN{0, "", ""})) << "an empty file gives nothing";
    EXPECT_EQ(preferences(), mine);
}
}
