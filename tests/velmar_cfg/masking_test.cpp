// Secrets stay out of what every command writes, and snapshots tell of them whether they have changed.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

#include "tests/velmar_cfg/tool_test.h"

namespace
{
using ARGUMENTS = std::vector<std::string>;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// Every secret holds one of these.
const std::string secret_words[] = {"S3CRET", "hunter"};

constexpr const char* settings = "api_token = hunter1\n"
                                 "API_TOKEN = S3CRETa#S3CRETb\n"
                                 "db_password = \"S3CRETc; x\"  # was S3CRETd\n"
                                 "password S3CRETe\n"
                                 "tok_en = 1\n"
                                 "long_secret = S3CRET_f"
                                 "0123456789012345678901234567890123456789012345678901234567890123456789012345678901234"
                                 "5678901234567890123456789S3CRETg\n"
                                 "number_token = 1234567890\n"
                                 "url = http://h/?api_token=S3CRETh\n"
                                 "max_tokens = 12\n"
                                 "use_secret = on\n"
                                 "plain = hello # token = S3CRETi\n";

constexpr const char* preferences = "[Cloud 23.4_pro]\n"
                                    "CLOUD_TOKEN = \"S3CRETj\"\n"
                                    "CLOUD_TOKEN = S3CRETk\n"
                                    "[Internet Connectivity 23.4_pro]\n"
                                    "PROXY_USER1 = hunter2\n"
                                    "PROXY_USER2 = ab[S3CRETl]\n"
                                    "# CLOUD_TOKEN S3CRETm\n"
                                    "MY_TOKEN = S3CRETn\n";

constexpr const char* report = R"({
  "schema": "velmar-run-report", "schema_version": 2, "run": "nightly", "release": "23.4",
  "outcome": null, "host": null, "process": 1, "directory": null, "executable": null, "started": null, "ended": "",
  "environment": [{"name": "VELMAR_INI_VARS", "value": "a=1;my_secret=S3CRETr"}], "sources_complete": true,
  "sources": [{"layer": "inline", "external": true, "text": "a=1;my_secret=S3CRETr", "state": "same"}],
  "read": [{"name": "api_token", "count": 3, "value": "S3CRETo", "external": true, "used": true, "origin": "program",
            "overridden": [{"source": 0, "item": 2, "value": "S3CRETs"}]}],
  "external_never_read": [{"name": "my_password", "value": "S3CRETp", "source": 0, "item": 3}],
  "asked_once": [], "set_never_read": []
})";

const ARGUMENTS command_lines[] = {
    {"list", "--show-origin"},
    {"list", "--json"},
    {"list", "-z"},
    {"explain", "api_token"},
    {"explain", "api_token", "--json"},
    {"explain", "db_password", "--json"},
    {"explain", "number_token"},
    {"explain", "plain", "--json"},
    {"explain", "my_secret", "--json"},
    {"paths"},
    {"paths", "--json"},
    {"lint"},
    {"lint", "--json"},
    {"lint", "velmar.ini"},
    {"lint", "user/velmar2.ini"},
    {"prefs", "list"},
    {"prefs", "list", "--json"},
    {"prefs", "list", "-z"},
    {"prefs", "describe", "CLOUD_TOKEN"},
    {"prefs", "describe", "CLOUD_TOKEN", "--json"},
    {"prefs", "explain", "CLOUD_TOKEN"},
    {"prefs", "explain", "CLOUD_TOKEN", "--json"},
    {"prefs", "explain", "PROXY_USER2", "--json"},
    {"prefs", "dump"},
    {"prefs", "dump", "--changed", "--json"},
    {"prefs", "load", "user/velmar2.ini"},
    {"prefs", "load", "user/velmar2.ini", "--dry-run", "--json"},
    {"prefs", "lint"},
    {"prefs", "lint", "--json"},
    {"prefs", "set", "CLOUD_TOKEN", "S3CRETq", "--dry-run"},
    {"prefs", "set", "CLOUD_TOKEN", "S3CRETq", "--dry-run", "--json"},
    {"prefs", "set", "CLOUD_TOKEN", "[S3CRETr"},
    {"prefs", "set", "CLOUD_TOKEN", "S3CRETr "},
    {"prefs", "reset", "PROXY_USER1", "--dry-run"},
    {"prefs", "reset", "CLOUD_TOKEN", "--dry-run", "--json"},
    {"run-report", "report.json"},
    {"run-report", "report.json", "--json"},
    {"run-report", "--merge", "report.json"},
    {"run-report", "--merge", "report.json", "--json"},
    {"run-report", "--merge", "report.json", "--switch", "api_token"},
    {"run-report", "--merge", "report.json", "--switch", "my_password", "--json"},
    {"snapshot"},
    {"snapshot", "-o", "written.json"},
    {"diff", "plain.json"},
    {"diff", "plain.json", "--json"},
    {"diff", "plain.json", "--used", "report.json"},
    {"get", "api_token", "--type", "int"},
    {"get", "number_token", "--type", "bool"},
};

class MASKING : public TOOL_TEST
{
protected:
    MASKING()
    {
        write_file("velmar.ini", settings);
        write_file("user/velmar2.ini", preferences);
        write_file("report.json", report);
        variables["VELMAR2_INI"] = "user";
        variables["VELMAR_INI_VARS"] = "b=2;my_secret=S3CRETs:S3CRETt;api_token=S3CRETu;c=3";
    }

    static mode_t mode_of(const std::string& path)
    {
        struct stat found;
        return stat(path.c_str(), &found) == 0 ? found.st_mode & 07777U : 0;
    }

    std::string key_file() const
    {
        return temporary.path("home/.local/share/velmar-cfg/mask-key");
    }
};

bool tells(const std::string& text)
{
    return std::ranges::any_of(secret_words,
                               [&text](const std::string& word) { return text.find(word) != std::string::npos; }) ||
           text.find("1234567890\n") != std::string::npos || text.find(": 1234567890") != std::string::npos;
}

TEST_F(MASKING, keeps_secrets_out_of_what_every_command_writes)
{
    ASSERT_EQ(run({"snapshot", "--with-secrets", "-o", "plain.json"}).exit_code, 0);
    ASSERT_TRUE(tells(read_file("plain.json")));
    variables["VELMAR_INI_VARS"] = "b=2;my_secret=S3CRETs:S3CRETt;c=3"; // the files' api_token counts now
    for (const ARGUMENTS& arguments : command_lines)
    {
        const TOOL_RUN result = run(arguments);
        EXPECT_FALSE(tells(result.out + result.err))
            << testing::PrintToString(arguments) << testing::PrintToString(result);
        EXPECT_THAT(result.out, Not(HasSubstr("Q0"))) << "a mark as it is inside";
    }
    EXPECT_FALSE(tells(read_file("written.json")));
}

TEST_F(MASKING, keeps_secrets_out_of_what_is_shown_of_a_document_that_shows_them)
{
    ASSERT_EQ(run({"snapshot", "--with-secrets", "-o", "plain.json"}).exit_code, 0);
    for (const ARGUMENTS& arguments :
         {ARGUMENTS{"list"}, {"explain", "api_token"}, {"layers"}, {"paths"}, {"lint"}, {"prefs", "list", "--all"}})
    {
        for (const char* const format : {"--color=never", "--json"})
        {
            ARGUMENTS words = arguments;
            words.insert(words.end(), {"--of", "plain.json", format});
            const TOOL_RUN result = run(words);
            EXPECT_FALSE(tells(result.out + result.err)) << testing::PrintToString(words) << result.out << result.err;
            EXPECT_NE(result.out, "");
        }
    }
    EXPECT_EQ(run({"get", "api_token", "--of", "plain.json"}).out, "S3CRETu\n");
}

// A long line is cut short, but not within a mask.
TEST_F(MASKING, is_not_cut)
{
    write_file("velmar.ini", std::string(80, 'a') + "_token = abc\n");
    variables["VELMAR_INI_VARS"] = "";
    EXPECT_THAT(run({"layers"}).out, HasSubstr("     1  " + std::string(80, 'a') + "_token = \\(masked)\n"));
}

TEST_F(MASKING, hides_nothing_else)
{
    const TOOL_RUN list = run({"list"});
    EXPECT_EQ(
        list,
        (TOOL_RUN{0,
                  "api_token=\\(masked)\nb=2\nc=3\ndb_password=\"\\(masked); \\(masked)\"\nlong_secret=\\(masked)\n"
                  "max_tokens=12\nmy_secret=\\(masked):\\(masked)\nnumber_token=\\(masked)\nplain=hello\ntok_en=1\n"
                  "url=http://h/?api_token=\\(masked)\nuse_secret=on\n",
                  ""}));
    EXPECT_THAT(run({"paths"}).out,
                HasSubstr("VELMAR_INI_VARS=b=2;my_secret=\\(masked):\\(masked);api_token=\\(masked);c=3\n"));
}

TEST_F(MASKING, looks_like_no_value)
{
    write_file("velmar.ini", "token = abc\nplain = \\(masked)\n");
    variables["VELMAR_INI_VARS"] = "";
    EXPECT_EQ(run({"list"}).out, "plain=\\\\(masked)\ntoken=\\(masked)\n");
    const json rows = run({"list", "--json"}).json();
    EXPECT_EQ(rows[0].at("value"), "\\(masked)");
    EXPECT_EQ(rows[1].at("value"), R"({"masked": [null]})"_json);
    // Nothing is escaped: a masked value is left out, with the "=" that each other record has.
    EXPECT_EQ(run({"list", "-z"}).out, std::string("plain=\\(masked)\0token\0", 22));
    const std::string all = run({"prefs", "list", "-z"}).out;
    EXPECT_THAT(all, HasSubstr(std::string("CLOUD_TOKEN\0", 12)));
}

TEST_F(MASKING, of_an_assignment_shows_where_it_stands_and_not_what_it_is_read_as)
{
    EXPECT_THAT(run({"explain", "number_token"}).out,
                AllOf(HasSubstr("number_token = \\(masked)\n"), HasSubstr("velmar.ini:7"),
                      HasSubstr("read as: not shown, since the value is masked\n")));
    const json explanation = run({"explain", "number_token", "--json"}).json();
    EXPECT_EQ(explanation.at("readings"),
              R"({"bool": null, "int": null, "uint": null, "double": null, "double_whole": false})"_json);
    EXPECT_EQ(explanation.at("assignments")[0].at("text"), R"({"masked": ["number_token = ", null]})"_json);
}

TEST_F(MASKING, leaves_the_columns_of_findings_as_they_are_in_the_file)
{
    variables["VELMAR_INI_VARS"] = "";
    json shown = run({"lint", "--with-secrets", "--json"}).json();
    json masked = run({"lint", "--json"}).json();
    ASSERT_EQ(shown.size(), masked.size());
    for (std::size_t i = 0; i < shown.size(); ++i)
    {
        for (const char* const field : {"file", "line", "column", "reason"})
            EXPECT_EQ(masked[i].at(field), shown[i].at(field)) << masked[i];
    }
    EXPECT_THAT(run({"lint"}).out,
                HasSubstr("velmar.ini:2:1: warning: the same variable as 'api_token' at " +
                          temporary.path("cwd/velmar.ini") +
                          ":1, but callbacks registered under that spelling are not notified of this one; write "
                          "'api_token = \\(masked)#\\(masked)' [letter-case]"));
}

TEST_F(MASKING, takes_further_names)
{
    const TOOL_RUN list = run({"--secret", "pl*", "--secret", "B", "list"});
    EXPECT_THAT(list.out, AllOf(HasSubstr("plain=\\(masked)\n"), HasSubstr("\nb=2\n"), HasSubstr("api_token=\\(m")));
    EXPECT_THAT(run({"list", "--secret", "tok_*", "--secret", "c"}).out,
                AllOf(HasSubstr("tok_en=1\n"), HasSubstr("c=3\n"), HasSubstr("plain=hello\n")));
}

TEST_F(MASKING, shows_all_when_told_to)
{
    EXPECT_THAT(run({"--with-secrets", "list"}).out,
                AllOf(HasSubstr("api_token=S3CRETu\n"), HasSubstr("number_token=1234567890\n"),
                      HasSubstr("my_secret=S3CRETs:S3CRETt\n"), Not(HasSubstr("masked"))));
    EXPECT_THAT(run({"--with-secrets", "prefs", "list"}).out, HasSubstr("CLOUD_TOKEN=S3CRETj\n"));
    EXPECT_THAT(run({"--with-secrets", "paths"}).out, HasSubstr("my_secret=S3CRETs"));
    EXPECT_THAT(run({"--with-secrets", "run-report", "report.json"}).out, HasSubstr("api_token=S3CRETo"));
    EXPECT_THAT(run({"--with-secrets", "prefs", "set", "CLOUD_TOKEN", "S3CRETq", "--dry-run"}).out,
                HasSubstr("+CLOUD_TOKEN = S3CRETq\n"));
}

TEST_F(MASKING, is_not_for_what_was_asked_for)
{
    EXPECT_EQ(run({"get", "api_token"}), (TOOL_RUN{0, "S3CRETu\n", ""}));
    EXPECT_EQ(run({"get", "number_token", "--json"}).json().at("value"), "1234567890");
    EXPECT_EQ(run({"prefs", "get", "cloud_token"}), (TOOL_RUN{0, "S3CRETj\n", ""}));
    EXPECT_EQ(run({"prefs", "get", "proxy_user1", "--json"}).json().at("value"), "hunter2");
    // Messages are for logs.
    EXPECT_THAT(run({"get", "api_token", "--type", "int"}).err, HasSubstr("'api_token' is '\\(masked)' at "));
}

TEST_F(MASKING, changes_no_file_by_it)
{
    ASSERT_EQ(run({"prefs", "set", "HDL_PREFERENCE", "VHDL", "--allow-loss"}).exit_code, 0);
    EXPECT_THAT(read_file("user/velmar2.ini"), AllOf(HasSubstr("CLOUD_TOKEN = S3CRETj\n"), HasSubstr("= hunter2\n")));
    ASSERT_EQ(run({"prefs", "set", "CLOUD_TOKEN", "S3CRETv"}).exit_code, 0);
    EXPECT_EQ(run({"prefs", "get", "CLOUD_TOKEN"}).out, "S3CRETv\n");
    EXPECT_THAT(run({"prefs", "reset", "CLOUD_TOKEN", "--dry-run"}).out, HasSubstr("-CLOUD_TOKEN = \\(masked)\n"));
}

// A line that holds a secret by chance is not shown as it is on one side and masked on the other.
TEST_F(MASKING, shows_no_difference_that_masking_alone_makes)
{
    write_file("user/velmar2.ini", "[General 23.4_pro]\nUSER_LIBRARIES = /home/anacorp/libs\n\n"
                                   "[Internet Connectivity 23.4_pro]\nPROXY_USER1 = anacorp\n");
    for (const ARGUMENTS& arguments : {ARGUMENTS{"prefs", "set", "HDL_PREFERENCE", "VHDL", "--dry-run"},
                                       ARGUMENTS{"prefs", "set", "HDL_PREFERENCE", "VHDL", "--dry-run", "--json"}})
    {
        const std::string out = run(arguments).out;
        EXPECT_THAT(out, AllOf(HasSubstr("HDL_PREFERENCE = VHDL"), Not(HasSubstr("anacorp"))));
        EXPECT_THAT(out, AllOf(Not(HasSubstr("-USER_LIBRARIES")), Not(HasSubstr("+USER_LIBRARIES"))));
    }
}

// --- Snapshots ---

TEST_F(MASKING, makes_a_key_with_the_first_snapshot_that_needs_one)
{
    run({"list"});
    run({"lint"});
    EXPECT_FALSE(std::filesystem::exists(key_file()));
    EXPECT_EQ(run({"snapshot", "-o", "a.json"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(mode_of(key_file()), 0600U);
    const std::string key = read_file(key_file());
    EXPECT_EQ(run({"snapshot", "-o", "b.json"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(read_file(key_file()), key);
    const auto but_when = [](const char* file)
    {
        nlohmann::json document = nlohmann::json::parse(read_file(file));
        document.erase("taken");
        return document;
    };
    EXPECT_EQ(but_when("a.json"), but_when("b.json"));
}

TEST_F(MASKING, makes_no_key_without_secrets)
{
    write_file("velmar.ini", "a=1\nmax_tokens=12\n");
    write_file("user/velmar2.ini", "");
    variables["VELMAR_INI_VARS"] = "";
    EXPECT_EQ(run({"snapshot", "-o", "a.json"}), (TOOL_RUN{0, "", ""}));
    EXPECT_FALSE(std::filesystem::exists(temporary.path("home")));
}

// The key's bytes are 0 to 31; the name and the hash were worked out with another program (see the test of HMAC).
TEST_F(MASKING, tells_in_snapshots_a_keyed_hash_and_the_name_of_its_key)
{
    variables["XDG_DATA_HOME"] = temporary.path("data");
    write_file(temporary.path("data/velmar-cfg/mask-key"),
               "000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f\n");
    chmod(temporary.path("data/velmar-cfg/mask-key").c_str(), 0600);
    write_file("velmar.ini", "token = hunter2\n");
    write_file("user/velmar2.ini", "");
    variables["VELMAR_INI_VARS"] = "";
    const json document = run({"snapshot"}).json();
    EXPECT_EQ(document.at("schema_version"), 3);
    EXPECT_EQ(document.at("variables")[0].at("value"),
              R"({"masked": [{"key": "2b8ba56af169bc93", "hmac": "8629d712da366318"}]})"_json);
    // The hash of a file that holds secrets would let them be guessed.
    EXPECT_EQ(document.at("files")[0].at("sha256"),
              R"({"masked": [{"key": "2b8ba56af169bc93", "hmac": "933d640d1107f563"}]})"_json);
    EXPECT_EQ(document.at("files")[3].at("sha256"), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_FALSE(std::filesystem::exists(temporary.path("home")));
}

TEST_F(MASKING, tells_changed_from_same)
{
    ASSERT_EQ(run({"snapshot", "-o", "a.json"}).exit_code, 0);
    EXPECT_EQ(run({"diff", "a.json"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"diff", "a.json", "a.json"}), (TOOL_RUN{0, "", ""}));
    std::ofstream("velmar.ini", std::ios::app) << "db_password = S3CRETw\n";
    std::ofstream("user/velmar2.ini", std::ios::app) << "[Cloud 23.4_pro]\nx = y\n";
    variables["VELMAR_INI_VARS"] = "b=2;my_secret=S3CRETs:S3CRETt;api_token=S3CRETx;c=3";
    const TOOL_RUN diff = run({"diff", "a.json", "--json"});
    EXPECT_EQ(diff.exit_code, 1);
    const json differences = diff.json();
    EXPECT_EQ(differences.at("same"), false);
    ASSERT_EQ(differences.at("environment").size(), 1U);
    ASSERT_EQ(differences.at("variables").size(), 2U);
    EXPECT_EQ(differences.at("variables")[0].at("name"), "api_token");
    EXPECT_EQ(differences.at("variables")[0].at("made_by"), "inline");
    EXPECT_EQ(differences.at("variables")[1].at("name"), "db_password");
    ASSERT_EQ(differences.at("files").size(), 2U);
    EXPECT_EQ(differences.at("preferences").size(), 0U);
    EXPECT_EQ(differences.at("cannot_tell"), json::array());
    const json& a = differences.at("variables")[0].at("a").at("value").at("masked")[0];
    const json& b = differences.at("variables")[0].at("b").at("value").at("masked")[0];
    EXPECT_EQ(a.at("key"), b.at("key"));
    EXPECT_NE(a.at("hmac"), b.at("hmac"));
    EXPECT_THAT(run({"diff", "a.json"}).out,
                AllOf(HasSubstr("    A  \\(masked " + a.at("hmac").get<std::string>().substr(0, 8) + ")  at "),
                      HasSubstr("bytes, SHA-256 \\(masked "), Not(HasSubstr("cannot tell"))));
}

TEST_F(MASKING, compares_masks_with_secrets_that_are_shown)
{
    ASSERT_EQ(run({"snapshot", "-o", "a.json"}).exit_code, 0);
    EXPECT_EQ(run({"diff", "a.json", "--with-secrets"}), (TOOL_RUN{0, "", ""}));
    std::ofstream("velmar.ini", std::ios::app) << "db_password = S3CRETw\n";
    const json differences = run({"diff", "a.json", "--with-secrets", "--json"}).json();
    ASSERT_EQ(differences.at("variables").size(), 1U);
    EXPECT_EQ(differences.at("variables")[0].at("b").at("value"), "S3CRETw");
    EXPECT_EQ(differences.at("variables")[0].at("made_by"), "main");
    ASSERT_EQ(differences.at("files").size(), 1U);
    EXPECT_EQ(differences.at("files")[0].at("role"), "main");
    EXPECT_EQ(differences.at("cannot_tell"), json::array());
    // Under another key nothing is said of them, but for the quotes that are shown beside the mask.
    variables["XDG_DATA_HOME"] = temporary.path("other");
    const json under_other_key = run({"diff", "a.json", "--with-secrets", "--json"}).json();
    ASSERT_EQ(under_other_key.at("variables").size(), 1U);
    EXPECT_EQ(under_other_key.at("variables")[0].at("name"), "db_password");
    EXPECT_EQ(under_other_key.at("files"), json::array());
    EXPECT_THAT(under_other_key.at("cannot_tell").dump(), HasSubstr(R"({"name":"api_token","what":"variables"})"));
}

TEST_F(MASKING, get_prints_no_mask)
{
    ASSERT_EQ(run({"snapshot", "-o", "a.json"}).exit_code, 0);
    for (const char* const type : {"text", "int", "bool"})
        EXPECT_EQ(run({"get", "api_token", "--of", "a.json", "--type", type}),
                  (TOOL_RUN{1, "", "velmar-cfg: 'api_token' is masked in a.json: its value is not known\n"}))
            << type;
    EXPECT_EQ(run({"get", "api_token", "--of", "a.json", "--default", "x"}).out, "");
    EXPECT_EQ(run({"get", "api_token", "max_tokens", "--of", "a.json"}).out.find("api_token\nmax_tokens="), 0U);
    const json got = run({"get", "api_token", "--of", "a.json", "--json"}).json();
    EXPECT_EQ(got.at("masked"), true);
    EXPECT_EQ(got.at("set"), true);
    EXPECT_EQ(got.at("usable"), false);
    EXPECT_EQ(got.at("value"), nullptr);
    EXPECT_EQ(run({"prefs", "get", "CLOUD_TOKEN", "--of", "a.json"}),
              (TOOL_RUN{1, "", "velmar-cfg: CLOUD_TOKEN is masked in a.json: its value is not known\n"}));
    EXPECT_EQ(run({"prefs", "get", "CLOUD_TOKEN", "--of", "a.json", "--json"}).json().at("masked"), true);
    EXPECT_EQ(run({"prefs", "get", "CLOUD_TOKEN", "--json"}).json().at("masked"), false);
}

TEST_F(MASKING, cannot_tell_under_different_keys_which_is_no_difference)
{
    ASSERT_EQ(run({"snapshot", "-o", "a.json"}).exit_code, 0);
    variables["XDG_DATA_HOME"] = temporary.path("other");
    const TOOL_RUN diff = run({"diff", "a.json"});
    EXPECT_EQ(diff.exit_code, 0) << diff.out;
    EXPECT_THAT(diff.out, AllOf(StartsWith("A  a.json (velmar 23.4)\nB  now (velmar 23.4)\n\n"
                                           "Masked, cannot be compared\n  VELMAR_INI_VARS  (environment)\n"
                                           "  main  (files)\n"),
                                HasSubstr("\n  api_token  (variables)\n"),
                                HasSubstr("\n  CLOUD_TOKEN  (preferences)\n"), Not(HasSubstr("max_tokens"))));
    const json differences = run({"diff", "a.json", "--json"}).json();
    EXPECT_EQ(differences.at("same"), true);
    EXPECT_EQ(differences.at("cannot_tell")[0], R"({"what": "environment", "name": "VELMAR_INI_VARS"})"_json);
    // What is shown is compared all the same.
    std::ofstream("velmar.ini", std::ios::app) << "url = http://other/?api_token=S3CRETh\n";
    const TOOL_RUN other = run({"diff", "a.json"});
    EXPECT_EQ(other.exit_code, 1);
    EXPECT_THAT(other.out, HasSubstr("  url, by main settings file\n"));
    EXPECT_THAT(
        run({"diff", "a.json", "--used", "report.json"}).out,
        AllOf(HasSubstr("  api_token  (variables)\n"), Not(HasSubstr("number_token")), Not(HasSubstr("environment"))));
}

TEST_F(MASKING, says_when_masks_cannot_be_compared_later)
{
    write_file(key_file(), "no key");
    const TOOL_RUN snapshot = run({"snapshot"});
    EXPECT_EQ(snapshot.exit_code, 0);
    EXPECT_THAT(snapshot.err, AllOf(StartsWith("velmar-cfg: " + key_file() + ": "),
                                    HasSubstr("masks cannot be compared with those of other runs")));
    EXPECT_EQ(snapshot.json().at("variables")[0].at("value"), R"({"masked": [null]})"_json);
    write_file("a.json", snapshot.out);
    EXPECT_THAT(run({"diff", "a.json", "a.json"}).out, HasSubstr("api_token  (variables)\n"));
    // Two of one run can.
    write_file("one/velmar.ini", "token = S3CRETa\n");
    write_file("two/velmar.ini", "token = S3CRETb\n");
    EXPECT_EQ(run({"diff", "one", "one"}).out, "");
    EXPECT_EQ(run({"diff", "one", "two"}).exit_code, 1);
}

// What is typed wrong is repeated by the message, and messages go to logs.
TEST_F(MASKING, hides_what_was_typed)
{
    const std::string long_secret = "S3CRET" + std::string(200, 'x');
    const std::vector<ARGUMENTS> wrong = {
        {"prefs", "set", "CLOUD_TOKEN", "S3CRETa\nS3CRETb"},
        {"prefs", "set", "CLOUD_TOKEN", "S3CRETa\v\nS3CRETb\""},
        {"prefs", "set", "PROXY_USER1", "[S3CRETa]\nS3CRETb"},
        {"prefs", "set", "CLOUD_TOKEN", "S3CRETa", "S3CRETb"},
        {"prefs", "set", "--dry-run", "proxy_user1", "S3CRETa", "S3CRETb"},
        {"prefs", "set", "CLOUD_TOKEN", "-S3CRETa"},
        {"prefs", "set", "CLOUD_TOKEN=S3CRETa"},
        {"prefs", "set", "CLOUD_TOKEN=S3CRETa", "x"},
        {"prefs", "set", "PROXY_USER1=S3CRETa", "x"},
        {"prefs", "get", "CLOUD_TOKEN=S3CRETa"},
        {"prefs", "reset", "PROXY_USER2=" + long_secret},
        {"get", "api_token=S3CRETa"},
        {"api_token=S3CRETa"},
        {"get", "api_token:S3CRETa"},
        {"prefs", "get", "CLOUD_TOKEN:S3CRETa"},
        {"get", "api_token", "--type", "int", "--default", "S3CRETa"},
        {"set", "api_token", "--S3CRETa"},
        {"set", "api_token", "--S3CRETa=b"},
        {"set", "api_token", long_secret + ";x"},
        {"prefs", "set", "CLOUD_TOKEN", "--S3CRETa"},
    };
    for (const ARGUMENTS& arguments : wrong)
    {
        const TOOL_RUN result = run(arguments);
        EXPECT_NE(result.exit_code, 0) << testing::PrintToString(arguments);
        EXPECT_FALSE(tells(result.out + result.err))
            << testing::PrintToString(arguments) << testing::PrintToString(result);
    }
    EXPECT_THAT(run({"prefs", "set", "CLOUD_TOKEN", "S3CRETa", "--dryrun"}).err, HasSubstr("'--dryrun'"));
    EXPECT_THAT(run({"prefs", "get", "HDL_PREFERENCE=S3CRETa"}).err, HasSubstr("'HDL_PREFERENCE=S3CRETa'"));
}

// A short secret is part of any sentence and of many paths.
TEST_F(MASKING, leaves_the_sentences_of_messages_whole)
{
    EXPECT_EQ(run({"set", "api_token", "a;b"}).err,
              "velmar-cfg: a line of a settings file cannot hold this value: it would be read back as '\\(masked)'; "
              "outside double quotes, ';' or '#' begins a comment\n");
    const std::string file = std::filesystem::canonical(temporary.path("cwd")).string() + "/a/velmar.ini";
    write_file("a/velmar.ini", "api_token = a\n");
    EXPECT_THAT(run({"set", "api_token", "ab", "--file", "a/velmar.ini", "--dry-run"}).out,
                StartsWith("--- " + file + "\n+++ " + file + " (new)\n"));
}

TEST_F(MASKING, hides_comments_that_hold_what_was_a_secret)
{
    variables["VELMAR_INI_VARS"] = "";
    write_file("velmar.ini", "api_token S3CRETa S3CRETb\nuse_token = on ; was S3CRETc\na = 1 # my_password S3CRETd\n");
    for (const ARGUMENTS& arguments : {ARGUMENTS{"lint", "--fix", "--dry-run", "velmar.ini"},
                                       {"set", "a", "2", "--dry-run"},
                                       {"unset", "use_token", "--dry-run"},
                                       {"layers"}})
        EXPECT_FALSE(tells(run(arguments).out)) << testing::PrintToString(arguments);
    ASSERT_EQ(run({"lint", "--fix", "velmar.ini"}).exit_code, 0);
    EXPECT_THAT(read_file("velmar.ini"), StartsWith("# api_token S3CRETa S3CRETb\n"));
    EXPECT_FALSE(tells(run({"unset", "use_token", "--dry-run"}).out));
}

// The hash of a file tells a secret in it to whoever guesses: also one on a line that no answer is made of.
TEST_F(MASKING, hides_hashes_of_documents_that_show_secrets_on_any_line)
{
    for (const auto& [role, file, text] :
         {std::array{"main", "velmar.ini", "a = 1\n# my_password S3CRETd\n"},
          {"main", "velmar.ini", "api_token = S3CRETa\napi_token = on\n"},
          {"preferences", "user/velmar2.ini", "[General 23.4_pro]\n# CLOUD_TOKEN = S3CRETe\n"}})
    {
        write_file("velmar.ini", "");
        write_file("user/velmar2.ini", "");
        write_file(file, text);
        const std::string document = run({"--with-secrets", "snapshot"}).out;
        std::string hash;
        const nlohmann::json files = nlohmann::json::parse(document).at("files");
        for (const nlohmann::json& row : files)
        {
            if (row.at("role") == role)
                hash = row.at("sha256").get<std::string>();
        }
        ASSERT_EQ(hash.size(), 64U);
        write_file("shown.json", document);
        write_file(file, std::string(text) + "x = 2\n");
        const std::string differences = run({"diff", "shown.json", "--json"}).out;
        EXPECT_THAT(differences, HasSubstr("\"sha256\""));
        EXPECT_THAT(differences, Not(HasSubstr(hash))) << text;
        EXPECT_THAT(run({"diff", "shown.json"}).out, Not(HasSubstr(hash.substr(0, 12)))) << text;
        EXPECT_THAT(run({"--with-secrets", "diff", "shown.json", "--json"}).out, HasSubstr(hash)) << text;
    }
}

TEST_F(MASKING, hides_assignments_in_variables_that_name_files)
{
    for (const char* const variable : {"VELMAR_INI", "VELMAR_INI_DISABLED", "APPENDED_VELMAR_INI", "VELMAR2_INI"})
    {
        variables[variable] = "api_token=S3CRETa";
        for (const ARGUMENTS& arguments : {ARGUMENTS{"paths"},
                                           {"lint"},
                                           {"lint", "--json"},
                                           {"prefs", "path"},
                                           {"prefs", "set", "HDL_PREFERENCE", "VHDL", "--dry-run"},
                                           {"snapshot"}})
        {
            const TOOL_RUN result = run(arguments);
            EXPECT_FALSE(tells(result.out + result.err)) << variable << testing::PrintToString(arguments);
        }
        variables.erase(variable);
    }
    EXPECT_THAT(run({"list", "--without", "api_token=S3CRETa"}).out,
                StartsWith("what if: without api_token=\\(masked)\n"));
}

// A section's name that is cut for a message leaves no part of a secret.
TEST_F(MASKING, hides_secrets_of_every_length)
{
    const std::string secret = "S3CRET" + std::string(200, 'x');
    write_file("user/velmar2.ini", "[General 23.4_pro]\n#PROXY_USER1 = S3CRETy\n; PROXY_USER2 = " + secret +
                                       "\nPROXY_USER1 = a[" + secret + "]b\nk = v\n[x]\nk = v\n");
    write_file("report.json", R"({
  "schema": "velmar-run-report", "schema_version": 1, "run": "nightly", "release": "23.4",
  "files": {"main": null, "appended": null, "regtest": null}, "read": [],
  "external_never_read": [{"name": "url", "value": ")" +
                                  std::string(80, 'u') + R"(?token=S3CRETp"}], "uncounted": []})");
    EXPECT_THAT(run({"run-report", "report.json"}).out, HasSubstr("uuu?token=\\(masked)\n"));
    for (const ARGUMENTS& arguments :
         std::vector<ARGUMENTS>{{"prefs", "set", "HDL_PREFERENCE", "VHDL", "--dry-run"},
                                {"prefs", "set", "HDL_PREFERENCE", "VHDL", "--json"},
                                {"prefs", "lint"},
                                {"prefs", "lint", "--json"},
                                {"prefs", "set", "HDL_PREFERENCE", "VHDL"},
                                {"prefs", "set", "HDL_PREFERENCE", "VHDL", "--allow-loss"}})
    {
        const TOOL_RUN result = run(arguments);
        EXPECT_FALSE(tells(result.out + result.err))
            << testing::PrintToString(arguments) << testing::PrintToString(result);
    }
    EXPECT_THAT(read_file("user/velmar2.ini"), HasSubstr("#PROXY_USER1 = S3CRETy\n"));
}

TEST_F(MASKING, reads_documents_that_show_secrets)
{
    ASSERT_EQ(run({"snapshot", "--with-secrets", "-o", "plain.json"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"diff", "plain.json"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"diff", "plain.json", "--with-secrets"}), (TOOL_RUN{0, "", ""}));
    ASSERT_EQ(run({"snapshot", "-o", "masked.json"}).exit_code, 0);
    json version_1 = json::parse(read_file("plain.json"));
    version_1["schema_version"] = 1;
    write_file("old.json", version_1.dump());
    EXPECT_EQ(run({"diff", "old.json"}), (TOOL_RUN{0, "", ""}));
    // A hash that is masked on one side only is compared by its mask, and shown on neither.
    EXPECT_EQ(run({"diff", "masked.json", "old.json"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"diff", "plain.json", "masked.json"}), (TOOL_RUN{0, "", ""}));
    json changed = version_1;
    for (json& row : changed["files"])
        row["sha256"] = row["sha256"].is_null() ? json() : json(std::string(64, '0'));
    write_file("changed.json", changed.dump());
    for (const char* const other : {"old.json", "masked.json", "plain.json"})
    {
        const json files = run({"diff", "changed.json", other, "--json"}).json().at("files");
        EXPECT_EQ(files.size(), 2U) << other;
        EXPECT_THAT(files.dump(), Not(HasSubstr("\"sha256\":\""))) << other;
    }
    variables["VELMAR_INI_VARS"] = "b=2;my_secret=S3CRETs:S3CRETt;api_token=S3CRETx;c=3";
    EXPECT_EQ(run({"diff", "old.json", "--json"}).json().at("variables").size(), 1U);
    EXPECT_THAT(run({"diff", "old.json", "--with-secrets"}).out,
                AllOf(HasSubstr("    A  S3CRETu"), HasSubstr("    B  S3CRETx")));
}

TEST_F(MASKING, is_lifted_only_in_a_document_for_the_owner)
{
    umask(022);
    ASSERT_EQ(run({"snapshot", "-o", "masked.json"}).exit_code, 0);
    EXPECT_EQ(mode_of("masked.json"), 0644U);
    ASSERT_EQ(run({"snapshot", "--with-secrets", "-o", "shown.json"}).exit_code, 0);
    EXPECT_EQ(mode_of("shown.json"), 0600U);
    EXPECT_THAT(read_file("shown.json"), HasSubstr("S3CRETu"));
    // A file that others can read is theirs no more.
    ASSERT_EQ(run({"snapshot", "--with-secrets", "-o", "masked.json"}).exit_code, 0);
    EXPECT_EQ(mode_of("masked.json"), 0600U);
}
}
