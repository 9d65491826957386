#include <unistd.h>

#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::HasSubstr;

// velmar2.ini is in the directory "user".
class PREFS : public TOOL_TEST
{
protected:
    PREFS()
    {
        variables["VELMAR2_INI"] = "user";
    }

    static void write_preferences(const std::string& bytes)
    {
        write_file("user/velmar2.ini", bytes);
    }
};

constexpr const char* three_releases = "; kept since 22.1\n"
                                       "[General]\n"
                                       "USER_LIBRARIES = \"/old/lib\"\n"
                                       "[Messages 23.3_pro]\n"
                                       "SHOW_MESSAGE_ID = off\n"
                                       "[Programmer 23.4_pro]\n"
                                       "PGMW_SERIAL_FLASH_PP_TIME = 7\n"
                                       "PGMW_TRV_USE_CRC_CHECK = ON\n";

TEST_F(PREFS, list_shows_what_differs_from_the_defaults)
{
    write_preferences(three_releases);
    EXPECT_EQ(
        run({"prefs", "list"}),
        (TOOL_RUN{0,
                  "USER_LIBRARIES=/old/lib\n"
                  "    carried over from section [General], which names no release; default none; allowed: any "
                  "text\n"
                  "SHOW_MESSAGE_ID=off\n"
                  "    carried over from an older release, section [Messages 23.3_pro]; default on; allowed: off, "
                  "on\n"
                  "PGMW_SERIAL_FLASH_PP_TIME=7\n"
                  "    set in section [Programmer 23.4_pro]; default 0; allowed: any text\n",
                  ""}));
    EXPECT_EQ(run({"prefs", "list", "-z"}).out,
              std::string("USER_LIBRARIES=/old/lib\0SHOW_MESSAGE_ID=off\0PGMW_SERIAL_FLASH_PP_TIME=7\0", 72));
}

TEST_F(PREFS, list_is_empty_without_a_file)
{
    EXPECT_EQ(run({"prefs", "list"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"prefs", "list", "--json"}), (TOOL_RUN{0, "[]\n", ""}));
}

struct LISTED
{
    std::vector<std::string> options;
    int exit_code;
    std::string keys;
};

TEST_F(PREFS, list_takes_a_pattern)
{
    write_preferences("[General 23.4_pro]\nHDL_PREFERENCE = VHDL\nMANAGED_FLOW_HDL_PREFERENCE = x\n"
                      "[Messages 23.4_pro]\nSHOW_MESSAGE_ID = ON\n");
    for (const auto& [options, exit_code, keys] : {
             LISTED{{}, 0, "HDL_PREFERENCE MANAGED_FLOW_HDL_PREFERENCE "},
             LISTED{{"hdl_*"}, 0, "HDL_PREFERENCE "},
             LISTED{{"*hdl_*"}, 0, "HDL_PREFERENCE MANAGED_FLOW_HDL_PREFERENCE "},
             LISTED{{"show_message_*d"}, 0, "SHOW_MESSAGE_ID SHOW_MESSAGE_PARTITION_ID "},
             LISTED{{"SHOW_MESSAGE_??"}, 0, "SHOW_MESSAGE_ID "},
             LISTED{{"show_message_*", "--changed"}, 1, ""},
             LISTED{{"*_preference", "--changed"}, 0, "HDL_PREFERENCE MANAGED_FLOW_HDL_PREFERENCE "},
             LISTED{{"show_message_id", "--all"}, 0, "SHOW_MESSAGE_ID "},
             LISTED{{"--changed"}, 0, "HDL_PREFERENCE MANAGED_FLOW_HDL_PREFERENCE "},
             LISTED{{"--all", "--changed"}, 0, "HDL_PREFERENCE MANAGED_FLOW_HDL_PREFERENCE "},
             LISTED{{""}, 1, ""}, // no preference has an empty name
             LISTED{{"", "--all"}, 1, ""},
             LISTED{{"HDL"}, 1, ""},
         })
    {
        std::vector<std::string> arguments = {"prefs", "list", "--json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const TOOL_RUN listed = run(arguments);
        EXPECT_EQ(listed.exit_code, exit_code) << testing::PrintToString(options);
        std::string listed_keys;
        for (const nlohmann::json& row : listed.json())
            listed_keys += row.at("key").get<std::string>() + " ";
        EXPECT_EQ(listed_keys, keys) << testing::PrintToString(options);
    }
    EXPECT_EQ(run({"prefs", "list", "nothing*"}), (TOOL_RUN{1, "", ""}));
    EXPECT_EQ(run({"prefs", "list", "hdl_*", "-z"}), (TOOL_RUN{0, std::string("HDL_PREFERENCE=VHDL\0", 20), ""}));
}

TEST_F(PREFS, list_all_has_a_row_for_each_of_the_121)
{
    write_preferences(three_releases);
    const nlohmann::json rows = run({"prefs", "list", "--all", "--json"}).json();
    ASSERT_EQ(rows.size(), 121);
    EXPECT_EQ(rows.at(0), R"({"key": "DISPLAY_WARNING_MESSAGES", "value": "", "default": "", "allowed": null,
                              "source": "none", "section": null, "release": null})"_json);
    EXPECT_EQ(rows.at(5), R"({"key": "DISPLAY_COMMAND_LINE_MESSAGES_IN_COLOR", "value": "on", "default": "on",
                              "allowed": ["off", "on", "0", "1"], "source": "default", "section": null, "release": null})"_json);
    for (const nlohmann::json& row : rows)
        EXPECT_EQ(row.size(), 7) << row;
}

TEST_F(PREFS, the_source_of_each_kind_of_value)
{
    write_preferences(three_releases);
    const auto source_and_section = [this](const char* key)
    {
        const nlohmann::json row = run({"prefs", "get", key, "--json"}).json();
        return row.at("source").dump() + " " + row.at("section").dump();
    };
    EXPECT_EQ(source_and_section("USER_LIBRARIES"), R"("unversioned section" "General")");
    EXPECT_EQ(source_and_section("SHOW_MESSAGE_ID"), R"("older release" "Messages 23.3_pro")");
    EXPECT_EQ(source_and_section("PGMW_SERIAL_FLASH_PP_TIME"), R"("running release" "Programmer 23.4_pro")");
    EXPECT_EQ(source_and_section("HDL_PREFERENCE"), R"("default" null)");
    EXPECT_EQ(source_and_section("CLOUD_SERVER"), R"("none" null)");
}

TEST_F(PREFS, nothing_is_carried_over_into_a_section_that_the_file_has)
{
    write_preferences("[Messages 23.4_pro]\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n");
    EXPECT_EQ(run({"prefs", "get", "SHOW_MESSAGE_ID", "--json"}).json().at("source"), "default");
    EXPECT_EQ(run({"prefs", "get", "SHOW_MESSAGE_ID"}).out, "on\n");
}

TEST_F(PREFS, an_empty_value_counts_as_none)
{
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID =\n[Messages]\nSHOW_MESSAGE_ID = off\n"
                      "[General 23.4_pro]\nHDL_PREFERENCE =\n");
    EXPECT_EQ(run({"prefs", "get", "SHOW_MESSAGE_ID", "--json"}).json().at("source"), "unversioned section");
    EXPECT_EQ(run({"prefs", "get", "HDL_PREFERENCE", "--json"}).json().at("source"), "default");
}

TEST_F(PREFS, get_prints_the_value_or_the_default)
{
    write_preferences(three_releases);
    EXPECT_EQ(run({"prefs", "get", "show_message_id"}), (TOOL_RUN{0, "off\n", ""}));
    EXPECT_EQ(run({"prefs", "get", "HDL_PREFERENCE"}), (TOOL_RUN{0, "Verilog\n", ""}));
    EXPECT_EQ(run({"prefs", "get", "CLOUD_SERVER"}),
              (TOOL_RUN{1, "", "velmar-cfg: CLOUD_SERVER is not set, and has no default\n"}));
}

TEST_F(PREFS, a_name_that_is_no_key_is_refused)
{
    EXPECT_EQ(run({"prefs", "get", "SHOW_MESAGE_ID"}),
              (TOOL_RUN{5, "",
                        "velmar-cfg: there is no preference 'SHOW_MESAGE_ID' (did you mean 'SHOW_MESSAGE_ID'?); see "
                        "velmar-cfg prefs list --all\n"}));
    EXPECT_EQ(run({"prefs", "get", "QQQQQQQQ"}),
              (TOOL_RUN{5, "", "velmar-cfg: there is no preference 'QQQQQQQQ'; see velmar-cfg prefs list --all\n"}));
    EXPECT_EQ(run({"prefs", "describe", "auto recompile"}),
              (TOOL_RUN{5, "",
                        "velmar-cfg: 'auto recompile' is an old name; the preference is called "
                        "AUTO_RECOMPILE_BEFORE_SIM\n"}));
    EXPECT_EQ(run({"prefs", "get", ""}).exit_code, 5);
}

TEST_F(PREFS, describe_says_what_the_catalogue_knows)
{
    EXPECT_EQ(run({"prefs", "describe", "GENERATE_HTML_REPORT_FILES", "--json"}).json().at("old_names"),
              R"(["GENERATE_HTML_REPORT_FILE", "Generate HTML report file"])"_json);

    const TOOL_RUN described = run({"prefs", "describe", "SHOW_MESSAGE_ID"});
    EXPECT_EQ(described.exit_code, 0);
    EXPECT_EQ(described.out, "SHOW_MESSAGE_ID\n\n"
                             "Displays the numeric ID of the message after its type definition in parentheses.\n\n"
                             "value    on, the default\n"
                             "default  on\n"
                             "allowed  off, on\n"
                             "section  Messages\n");
    EXPECT_THAT(run({"prefs", "describe", "SOUND_WHEN_PROCESS_DONE"}).out,
                HasSubstr("formerly Beep when process done\nregistry Beep when process done, in General\n"));
}

// Whether there is a file behind it cannot be told.
TEST_F(PREFS, path_tells_what_is_in_the_way)
{
    write_file("user/readme", "");
    ASSERT_EQ(symlink("nowhere", "user/velmar2.ini"), 0);
    EXPECT_EQ(
        run({"prefs", "path"}),
        (TOOL_RUN{3, "user/velmar2.ini\n",
                  "velmar-cfg: user/velmar2.ini: is a broken symbolic link; remove it or create what it names\n"}));
    EXPECT_EQ(run({"prefs", "path", "--json"}).json().at("exists"), false);
}

TEST_F(PREFS, path_prints_where_the_file_is_or_would_be)
{
    write_file("user/anything", "");
    EXPECT_EQ(run({"prefs", "path"}), (TOOL_RUN{0, "user/velmar2.ini\n", ""}));
    EXPECT_EQ(run({"prefs", "path", "--json"}).json(),
              R"({"path": "user/velmar2.ini", "exists": false, "from": "VELMAR2_INI"})"_json);

    variables["HOME"] = "/home/somebody";
    variables["VELMAR2_INI"] = "user/anything";
    EXPECT_EQ(run({"prefs", "path"}),
              (TOOL_RUN{0, "/home/somebody/velmar2.ini\n",
                        "velmar-cfg: VELMAR2_INI names no directory and is ignored: user/anything\n"}));
}

TEST_F(PREFS, looking_never_writes_the_file)
{
    write_preferences(three_releases);
    for (const auto& arguments : std::vector<std::vector<std::string>>{{"list"},
                                                                       {"list", "--all"},
                                                                       {"get", "SHOW_MESSAGE_ID"},
                                                                       {"describe", "USER_LIBRARIES"},
                                                                       {"explain", "USER_LIBRARIES"},
                                                                       {"dump"},
                                                                       {"path"}})
    {
        std::vector<std::string> words = {"prefs"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        EXPECT_EQ(run(words).exit_code, 0);
        EXPECT_EQ(read_file("user/velmar2.ini"), three_releases);
    }
}
}
