// A snapshot answers every command as the machine did that it was taken of.
#include <filesystem>
#include <optional>
#include <regex>

#include "tests/velmar_cfg/settings_generator.h"
#include "tests/velmar_cfg/tool_test.h"

namespace
{
using nlohmann::json;
using ARGUMENTS = std::vector<std::string>;

constexpr const char* preferences_of_releases =
    "[General]\nUSER_LIBRARIES = \"/old/lib\"\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n"
    "no preference\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\nhdl_preference = Verilog";

// What a project is made of; a source that is not given is not there.
struct PROJECT
{
    std::string what;
    std::optional<std::string> main;
    std::optional<std::string> appended;
    std::optional<std::string> inline_text;
    std::optional<std::string> regtest;
    std::optional<std::string> preferences;
    bool holds_secrets = false;
    std::map<std::string, std::string> variables = {}; // of the environment, besides
};

std::vector<PROJECT> projects()
{
    using namespace std::string_literals;
    const std::string layered = "a = 1 # first\n; a = 0\nfan out = 12\nA = 2\nno assignment\nmsg_sqlite = off\n";
    const std::optional<std::string> none;
    std::vector<PROJECT> all = {
        {"nothing", none, none, none, none, none},
        {"a main file", layered, none, none, none, none},
        {"every layer", layered, "a = 3\nb = 1\n", "a=4;b;c=", "a = 5\n; b = 2\n", preferences_of_releases},
        {"lines that end as on other systems", "a = 1\r\nb = 2 ; x\r\n\r\nc = 3", "d = 4\r", none, none,
         "[General 23.4_pro]\r\nHDL_PREFERENCE = VHDL\r\n"},
        {"a byte order mark",
         "\xef\xbb\xbf"
         "a = 1\n",
         none, none, none, "\xef\xbb\xbf[General 23.4_pro]\n"},
        {"no newline at the end", "a = 1\n# a = 2", "b = 1\n\n\n", none, "\n", "[General 23.4_pro]"},
        {"empty files", "", "", none, "", ""},
        {"bytes that are no text", "a\xff = x\xc3y\nb = 1\0z\n"s, "\x1b[31m = 1\n", "a=\xfe\nb=2", none,
         "[General 23.4_pro]\nUSER_LIBRARIES = \xff\n"},
        {"items over lines", none, none, "a=1\nb=2:c=3;d=4\n", none, none},
        {"secrets", "api_token = abc # old_token: xyz\na = 1\n# password = S3CRET\napi_token = \"d;e\" ; f\n",
         "url = http://h/?token=abc&x\n", "a=2;my_secret=abc:def==;b=1", none,
         "[Internet 23.4_pro]\nCLOUD_TOKEN = abc\nPROXY_USER1 =\n", true},
        {"a directory as a file", none, "a = 1\n", none, none, none, false, {{"VELMAR_INI", "place"}}},
        {"a missing file and a missing directory",
         layered,
         none,
         none,
         none,
         none,
         false,
         {{"APPENDED_VELMAR_INI", "missing.ini"}, {"VELMAR_INI", "nowhere"}}},
        {"a link that leads nowhere", none, none, none, none, none, false, {{"VELMAR_INI", "links"}}},
        {"a search that is off", none, none, "a=1", none, none, false, {{"VELMAR_INI_DISABLED", "1"}}},
        {"a search that only looks off", layered, none, none, none, none, false, {{"VELMAR_INI_DISABLED", "yes"}}},
        {"a preference file that cannot be read", layered, none, none, none, none, false, {{"VELMAR2_INI", "place"}}},
    };
    for (unsigned int seed = 1; seed <= 4; ++seed)
    {
        SETTINGS_GENERATOR generator(seed);
        const auto line = [&generator] { return generator.line(); };
        const auto hostile_line = [&generator] { return generator.hostile_line(); };
        all.push_back({"seed " + std::to_string(seed), generator.file(line), generator.file(hostile_line),
                       generator.inline_text(line), generator.file(hostile_line), preferences_of_releases});
    }
    return all;
}

const ARGUMENTS commands[] = {
    {"list", "--show-origin"},
    {"list", "--all"},
    {"list", "--changed"},
    {"list", "--external"},
    {"list", "--with", "x=1", "--without", "a", "--show-origin"},
    {"get", "a"},
    {"get", "a", "b", "fanout", "msg_sqlite", "--type", "int"},
    {"explain", "a"},
    {"explain", "fan_out"},
    {"explain", "A", "--without", "b"},
    {"explain", "api_token"},
    {"layers"},
    {"layers", "--overridden"},
    {"layers", "--without", "A"},
    {"paths"},
    {"lint"},
    {"lint", "--strict"},
    {"prefs", "list"},
    {"prefs", "list", "--all"},
    {"prefs", "get", "HDL_PREFERENCE"},
    {"prefs", "describe", "USER_LIBRARIES"},
};

class SNAPSHOT_STATES : public TOOL_TEST
{
protected:
    SNAPSHOT_STATES() : own_variables(variables)
    {
        std::filesystem::create_directories("place/velmar.ini");
        std::filesystem::create_directories("place/velmar2.ini");
        std::filesystem::create_directories("links");
        std::filesystem::create_symlink("gone", "links/velmar.ini");
    }

    void make(const PROJECT& project)
    {
        std::filesystem::remove_all("project");
        std::filesystem::create_directories("project");
        variables = own_variables;
        variables["VELMAR2_INI"] = temporary.path("cwd/project");
        const auto write = [](const char* path, const std::optional<std::string>& text)
        {
            if (text)
                write_file(path, *text);
        };
        write("project/velmar.ini", project.main);
        write("project/appended.ini", project.appended);
        write("project/regtest.ini", project.regtest);
        write("project/velmar2.ini", project.preferences);
        if (project.appended)
            variables["APPENDED_VELMAR_INI"] = "project/appended.ini";
        if (project.inline_text)
            variables["VELMAR_INI_VARS"] = *project.inline_text;
        for (const auto& [name, value] : project.variables)
            variables[name] = value;
    }

    const std::map<std::string, std::string> own_variables;
};

ARGUMENTS operator+(ARGUMENTS a, const ARGUMENTS& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

const ARGUMENTS of_machine = {"--project", "project", "--regtest"};
const ARGUMENTS of_snapshot = {"--of", "taken.json"};

// Marks of a snapshot say more than those of a process.
std::string without_hashes(const std::string& text)
{
    static const std::regex named(R"(\\\(masked [0-9a-f]{8}\))");
    return std::regex_replace(text, named, R"(\(masked))");
}

void remove_hashes(json& value)
{
    if (value.is_object() && value.contains("hmac"))
        value = nullptr;
    for (json& part : value)
    {
        if (part.is_structured())
            remove_hashes(part);
    }
}

std::string without_view(const std::string& text)
{
    const bool has_view = text.starts_with("as snapshot ") || text.starts_with("what if: ");
    return has_view ? text.substr(text.find('\n') + 1) : text;
}

std::string replaced(std::string text, const std::string& part, const std::string& by)
{
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + by.size()))
        text.replace(at, part.size(), by);
    return text;
}

json plain_json(const TOOL_RUN& run)
{
    json document = run.json();
    if (document.is_object())
        document.erase("view");
    remove_hashes(document);
    return document;
}

TEST_F(SNAPSHOT_STATES, answer_every_command_as_the_machine_did)
{
    for (const PROJECT& project : projects())
    {
        make(project);
        const int exit_code = run(ARGUMENTS{"snapshot", "-o", "taken.json"} + of_machine).exit_code;
        ASSERT_TRUE(exit_code == 0 || exit_code == 3) << project.what;
        for (const ARGUMENTS& command : commands)
        {
            if (project.holds_secrets && command.front() == "lint")
                continue; // see below
            SCOPED_TRACE(project.what + ": " + testing::PrintToString(command));
            const TOOL_RUN machine = run(command + of_machine);
            const TOOL_RUN snapshot = run(command + of_snapshot);
            EXPECT_EQ(without_hashes(without_view(snapshot.out)), without_view(machine.out));
            EXPECT_EQ(snapshot.exit_code, machine.exit_code);
            EXPECT_EQ(without_hashes(replaced(snapshot.err, "taken.json: ", "")), machine.err);
            const ARGUMENTS in_json = command + ARGUMENTS{"--json"};
            EXPECT_EQ(plain_json(run(in_json + of_snapshot)), plain_json(run(in_json + of_machine)));
        }
    }
}

// How long a secret is is not written down, so that no column behind one is known.
TEST_F(SNAPSHOT_STATES, tell_no_column_behind_a_secret)
{
    write_file("project/velmar.ini", "url = ?token=abc&x\ntoken = abc;e\n");
    ASSERT_EQ(run(ARGUMENTS{"snapshot", "-o", "taken.json"} + of_machine).exit_code, 0);
    json machine = plain_json(run(ARGUMENTS{"lint", "--json"} + of_machine));
    const json snapshot = plain_json(run(ARGUMENTS{"lint", "--json"} + of_snapshot));
    ASSERT_EQ(machine.size(), snapshot.size());
    bool behind = false;
    for (std::size_t i = 0; i < machine.size(); ++i)
    {
        if (snapshot[i].at("column").is_null())
        {
            EXPECT_GT(machine[i].at("column"), 8) << machine[i]; // behind "token = "
            machine[i]["column"] = nullptr;
            behind = true;
        }
        EXPECT_EQ(snapshot[i], machine[i]);
    }
    EXPECT_TRUE(behind) << snapshot;
}

TEST_F(SNAPSHOT_STATES, do_not_differ_from_the_machine)
{
    for (const PROJECT& project : projects())
    {
        make(project);
        run(ARGUMENTS{"snapshot", "-o", "taken.json"} + of_machine);
        SCOPED_TRACE(project.what);
        EXPECT_EQ(run({"diff", "taken.json"}).out, "");
        EXPECT_EQ(run({"diff", "project", "taken.json", "--regtest"}).out, "");
        // What a change uncovers is known too.
        const auto changed = [this](const char* b)
        {
            json document =
                run({"diff", "project", b, "--without", "a", "--with", "x=1", "--json", "--regtest"}).json();
            remove_hashes(document);
            return document.at("variables");
        };
        EXPECT_EQ(changed("taken.json"), changed("project"));
    }
}

TEST_F(SNAPSHOT_STATES, name_who_took_them_where_and_when)
{
    write_file("project/velmar.ini", "a = 1\n");
    const json document = run(ARGUMENTS{"snapshot"} + of_machine).json();
    EXPECT_EQ(document.at("directory"), temporary.path("cwd"));
    EXPECT_TRUE(std::regex_match(std::string(document.at("taken")), std::regex(R"(20\d\d-\d\d-\d\dT\d\d:\d\d:\d\dZ)")));
    EXPECT_TRUE(std::regex_match(std::string(document.at("tool")), std::regex(R"(velmar-cfg \d+\.\d+\.\d+)")));
    EXPECT_THAT(std::string(document.at("user")), testing::Not(testing::IsEmpty()));
    json known = document;
    known["user"] = "ana";
    known["host"] = "farm7";
    known["directory"] = "/proj";
    known["taken"] = "2026-11-22T08:00:00Z";
    write_file("known.json", known.dump());
    const std::string view = "as snapshot known.json has it (velmar 23.4, project project, regression test, taken "
                             "2026-11-22T08:00:00Z by ana on farm7 in /proj)";
    EXPECT_EQ(run({"list", "--of", "known.json"}).out, view + "\na=1\n");
    EXPECT_EQ(run({"get", "a", "--of", "known.json", "--json"}).json().at("view"), view);
    known["host"] = nullptr;
    known["directory"] = nullptr;
    write_file("known.json", known.dump());
    EXPECT_THAT(run({"list", "--of", "known.json"}).out, testing::HasSubstr("T08:00:00Z by ana)\n"));
    // None of it is a difference.
    write_file("taken.json", document.dump());
    EXPECT_EQ(run({"diff", "taken.json", "known.json"}), (TOOL_RUN{0, "", ""}));
}

TEST_F(SNAPSHOT_STATES, have_a_row_a_line)
{
    write_file("project/velmar.ini", "a = 1\nb = \"x\"\n");
    const std::string text = run(ARGUMENTS{"snapshot"} + of_machine).out;
    EXPECT_THAT(text, testing::HasSubstr("\n  \"lines\": [\n    {\"of\": \"main\", \"text\": \"a = 1\"},\n"
                                         "    {\"of\": \"main\", \"text\": \"b = \\\"x\\\"\"}\n  ],\n"));
    EXPECT_THAT(text,
                testing::HasSubstr("\n    {\"of\": \"main\", \"path\": \"project/velmar.ini\", \"problem\": null, "
                                   "\"newline_at_end\": true}\n"));
    EXPECT_THAT(text, testing::HasSubstr("\n    {\"name\": \"a\", \"value\": \"1\", \"external\": true, "));
}

// Where lines and rows contradict each other, as in a document that was edited, the lines are shown.
TEST_F(SNAPSHOT_STATES, are_asked_for_their_lines_and_compared_by_their_rows)
{
    write_file("project/velmar.ini", "a = 1\n");
    json document = run(ARGUMENTS{"snapshot"} + of_machine).json();
    document["lines"][0]["text"] = "a = 2";
    write_file("taken.json", document.dump());
    EXPECT_EQ(run({"get", "a", "--of", "taken.json"}).out, "2\n");
    EXPECT_EQ(run({"diff", "taken.json", "project", "--regtest"}).exit_code, 0);
    // Each reads what it needs, and no more: a comparison the lines only to tell which files hold secrets.
    document["lines"] = "none";
    write_file("taken.json", document.dump());
    EXPECT_EQ(run({"diff", "taken.json", "project", "--regtest"}).exit_code, 3);
    EXPECT_EQ(run({"--with-secrets", "diff", "taken.json", "project", "--regtest"}).exit_code, 0);
    EXPECT_EQ(run({"get", "a", "--of", "taken.json"}),
              (TOOL_RUN{3, "", "velmar-cfg: taken.json: .lines is no list; have the file written again\n"}));
}
}
