// What describe, path and diff say of preferences, word for word.
#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::EndsWith;
using testing::HasSubstr;

class TOLD_PREFERENCES : public TOOL_TEST
{
protected:
    TOLD_PREFERENCES()
    {
        variables["VELMAR2_INI"] = "user";
    }

    static void write_preferences(const std::string& bytes)
    {
        write_file("user/velmar2.ini", bytes);
    }
};

// What stands behind the description.
struct DESCRIBED
{
    const char* file;
    const char* key;
    const char* rows;
};

TEST_F(TOLD_PREFERENCES, are_described_in_rows)
{
    for (const auto& [file, key, rows] :
         {DESCRIBED{"", "cloud_server",
                    "value    none, not set, and there is no default\n"
                    "default  none\n"
                    "allowed  any text\n"
                    "section  Cloud\n"},
          DESCRIBED{"[Cloud]\nCLOUD_SERVER = a\tb", "CLOUD_SERVER",
                    "value    a\\tb, carried over from section [Cloud], which names no release\n"
                    "default  none\n"
                    "allowed  any text\n"
                    "section  Cloud\n"},
          DESCRIBED{"[Messages 23.4_pro]\nSHOW_MESSAGE_ID = OFF", "SHOW_MESSAGE_ID",
                    "value    OFF, set in section [Messages 23.4_pro]\n"
                    "default  on\n"
                    "allowed  off, on\n"
                    "section  Messages\n"},
          DESCRIBED{"[Messages 22.4_pro]\nSHOW_MESSAGE_ID = off", "SHOW_MESSAGE_ID",
                    "value    off, carried over from an older release, section [Messages 22.4_pro]\n"
                    "default  on\n"
                    "allowed  off, on\n"
                    "section  Messages\n"},
          DESCRIBED{"", "PROXY_SETTINGS",
                    "value    none, not set, and there is no default\n"
                    "default  none\n"
                    "allowed  any text\n"
                    "section  Internet Connectivity\n"

                    "registry Proxy Settings, in General\n"}})
    {
        write_preferences(file);
        const TOOL_RUN described = run({"prefs", "describe", key});
        EXPECT_EQ(described.exit_code, 0);
        EXPECT_EQ(described.err, "");
        EXPECT_THAT(described.out, EndsWith(std::string("\n\n") + rows)) << key;
    }
}

TEST_F(TOLD_PREFERENCES, are_described_in_json_with_what_the_catalogue_knows)
{
    write_preferences("[General 23.3_pro]\nPROXY_SETTINGS = a:1\n");
    EXPECT_EQ(run({"prefs", "describe", "PROXY_SETTINGS", "--json"}).json(), R"({
        "key": "PROXY_SETTINGS", "value": "", "default": "", "allowed": null, "source": "none", "section": null,
        "release": null,
        "description": "Specifies the host name and port of the proxy server, separated by a colon. Ask your network administrator for the values and enter them in the Address and Port boxes on the Internet Connectivity page of the Options dialog box.",
        "catalogue_section": "Internet Connectivity", "old_names": [],
        "registry_name": "Proxy Settings", "registry_branch": "General"})"_json);
    const nlohmann::json described = run({"prefs", "describe", "SHOW_MESSAGE_ID", "--json"}).json();
    EXPECT_EQ(described.at("old_names"), nlohmann::json::array());
    EXPECT_EQ(described.at("registry_name"), nullptr);
    EXPECT_EQ(described.at("registry_branch"), nullptr);
}

TEST_F(TOLD_PREFERENCES, are_answered_raw_and_with_their_secrets_when_asked_for_by_key)
{
    write_preferences("[Cloud 23.4_pro]\nCLOUD_TOKEN = hush-hush\nCLOUD_SERVER = a\tb\n");
    EXPECT_EQ(run({"prefs", "get", "CLOUD_TOKEN"}), (TOOL_RUN{0, "hush-hush\n", ""}));
    EXPECT_EQ(run({"prefs", "get", "CLOUD_SERVER"}), (TOOL_RUN{0, "a\tb\n", ""}));
    EXPECT_EQ(run({"prefs", "get", "CLOUD_SERVER", "-z"}), (TOOL_RUN{0, std::string("a\tb\0", 4), ""}));
    EXPECT_EQ(run({"prefs", "get", "CLOUD_USER_ID", "--json"}).exit_code, 1);
    EXPECT_EQ(run({"prefs", "get", "CLOUD_USER_ID", "--json"}).json().at("value"), "");
    EXPECT_EQ(run({"prefs", "get", "CLOUD_USER_ID"}),
              (TOOL_RUN{1, "", "velmar-cfg: CLOUD_USER_ID is not set, and has no default\n"}));
    EXPECT_THAT(run({"prefs", "list"}).out, HasSubstr("CLOUD_SERVER=a\\tb\n"));
    EXPECT_EQ(run({"prefs", "list"}).out.find("hush"), std::string::npos);
}

TEST_F(TOLD_PREFERENCES, have_a_path_for_people_scripts_and_programs)
{
    write_preferences("");
    variables["VELMAR2_INI"] = "us\ter";
    write_file("us\ter/velmar2.ini", "");
    EXPECT_EQ(run({"prefs", "path"}), (TOOL_RUN{0, "us\\ter/velmar2.ini\n", ""}));
    EXPECT_EQ(run({"prefs", "path", "-z"}), (TOOL_RUN{0, std::string("us\ter/velmar2.ini\0", 18), ""}));
    EXPECT_EQ(run({"prefs", "path", "--json"}).json(),
              R"({"path": "us\ter/velmar2.ini", "exists": true, "from": "VELMAR2_INI"})"_json);
    variables.erase("VELMAR2_INI");
    variables["HOME"] = "/home/somebody";
    EXPECT_EQ(run({"prefs", "path", "--json"}).json(),
              R"({"path": "/home/somebody/velmar2.ini", "exists": false, "from": "profile directory"})"_json);
}

// --- Differences ---

TEST_F(TOLD_PREFERENCES, that_differ_are_told_with_what_made_them_differ)
{
    struct ROW
    {
        const char* file;
        const char* told; // of SHOW_MESSAGE_ID, which is the default "on" on the other side
    };
    write_preferences("");
    write_file("before.json", run({"snapshot"}).out);
    for (const auto& [file, told] :
         {ROW{"[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n", "  SHOW_MESSAGE_ID, by the running release's section\n"
                                                              "    A  on  the default\n"
                                                              "    B  off  set in section [Messages 23.4_pro]\n"},
          ROW{"[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n",
              "  SHOW_MESSAGE_ID, by an older release's section\n"
              "    A  on  the default\n"
              "    B  off  carried over from an older release, section [Messages 23.3_pro]\n"},
          ROW{"[Messages]\nSHOW_MESSAGE_ID = off\n",
              "  SHOW_MESSAGE_ID, by the section without a release\n"
              "    A  on  the default\n"
              "    B  off  carried over from section [Messages], which names no release\n"}})
    {
        write_preferences(file);
        const TOOL_RUN diff = run({"diff", "before.json"});
        EXPECT_EQ(diff.exit_code, 1);
        EXPECT_EQ(diff.err, "");
        EXPECT_THAT(diff.out, EndsWith(std::string("\nPreferences\n") + told));
    }
}

// Snapshots of other releases: a default that changed, and preferences that only one of them has.
TEST_F(TOLD_PREFERENCES, of_another_release_differ_by_its_catalogue)
{
    write_preferences("");
    nlohmann::json snapshot = run({"snapshot"}).json();
    nlohmann::json& preferences = snapshot.at("preferences");
    write_file("now.json", snapshot.dump());
    for (nlohmann::json& row : preferences)
    {
        if (row.at("key") == "SHOW_MESSAGE_ID")
            row["value"] = "off";
        if (row.at("key") == "CLOUD_SERVER")
            row["key"] = "CLOUD_SERVICE";
    }
    write_file("then.json", snapshot.dump());
    const std::string told = run({"diff", "then.json", "now.json"}).out;
    EXPECT_THAT(told, HasSubstr("\n  SHOW_MESSAGE_ID, by the catalogue's default\n"
                                "    A  off  the default\n"
                                "    B  on  the default\n"));
    EXPECT_THAT(told, HasSubstr("\n  CLOUD_SERVER, by the catalogue\n"
                                "    A  no such preference\n"
                                "    B  \\(empty)  not set, and there is no default\n"));
    EXPECT_THAT(told, HasSubstr("\n  CLOUD_SERVICE, by the catalogue\n"
                                "    A  \\(empty)  not set, and there is no default\n"
                                "    B  no such preference\n"));
}
}
