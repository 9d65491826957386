// Every command that shows a state, with every kind of state.
#include <algorithm>

#include "tests/velmar_cfg/running_program.h"
#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using ARGUMENTS = std::vector<std::string>;

constexpr const char* run_report = R"({
  "schema": "velmar-run-report", "schema_version": 1, "run": "nightly", "release": "23.4",
  "files": {"main": "project/velmar.ini", "appended": null, "regtest": null},
  "read": [{"name": "max_fanout", "count": 3, "value": "12", "external": true, "used": true},
           {"name": "msg_sqlite", "count": 1, "value": "off", "external": true, "used": true},
           {"name": "asked", "count": 7, "value": null, "external": false, "used": false}],
  "external_never_read": [{"name": "effort", "value": "5"}], "uncounted": ["once"]
})";

// The same run, as a host writes it now.
constexpr const char* run_report_2 = R"({
  "schema": "velmar-run-report", "schema_version": 2, "run": "nightly", "release": "23.4", "outcome": "fail",
  "host": "farm7", "process": 4711, "directory": "/proj", "executable": "/opt/velmar/bin/velmar",
  "started": "2026-11-21T22:00:00Z", "ended": "2026-11-21T22:10:00Z",
  "environment": [{"name": "VELMAR_INI", "value": null}, {"name": "VELMAR_INI_VARS", "value": "seed=7"}],
  "sources_complete": true,
  "sources": [{"layer": "main", "external": true, "path": "/proj/velmar.ini", "size": 90,
               "modified": "2026-11-20T08:00:00Z", "state": "same"},
              {"layer": "program", "external": false, "text": "extra=1;effort=6", "state": "same"}],
  "read": [{"name": "max_fanout", "count": 3, "value": "12", "external": true, "used": true, "source": 0, "line": 2,
            "overridden": [{"source": 0, "line": 1, "value": "9"}]},
           {"name": "msg_sqlite", "count": 1, "value": "off", "external": true, "used": true, "source": 0, "line": 5},
           {"name": "asked", "count": 7, "value": null, "external": false, "used": false, "origin": "unset"}],
  "external_never_read": [{"name": "effort", "value": "5", "source": 0, "line": 3}],
  "asked_once": ["once"], "set_never_read": []
})";

enum class STATE_KIND
{
    NOW,
    PROJECT,
    SNAPSHOT,
    SNAPSHOT_2,
    STANDARD_INPUT,
    RUN_REPORT,
    RUN_REPORT_2,
    PROCESS,
    EXECUTABLE,
};

constexpr STATE_KIND all_kinds[] = {STATE_KIND::NOW,          STATE_KIND::PROJECT,        STATE_KIND::SNAPSHOT,
                                    STATE_KIND::SNAPSHOT_2,   STATE_KIND::STANDARD_INPUT, STATE_KIND::RUN_REPORT,
                                    STATE_KIND::RUN_REPORT_2, STATE_KIND::PROCESS,        STATE_KIND::EXECUTABLE};

// What a command does with a kind of state: it answers with this exit code, or refuses with a sentence and exit code 2.
struct CELL
{
    int exit_code;
    const char* refusal = nullptr; // "%" is the name of the state
};

constexpr CELL fine = {0};
constexpr CELL findings = {1};
constexpr CELL no_snapshot = {
    2, "%: a snapshot of version 1 or 2 holds only the values that won and where they stand: neither other lines nor "
       "the search"};
constexpr CELL no_run = {2, "%: a run report holds only variables that were set or asked for"};
constexpr CELL no_change_of_paths = {2, "paths shows only where files are, which '--with' does not change; see "
                                        "velmar-cfg paths --help"};
constexpr CELL no_change_of_snapshot = {
    2, "snapshot does not take '--with'; give it to the command that shows the snapshot; see velmar-cfg snapshot "
       "--help"};
constexpr CELL no_change_of_preferences = {
    2, "only commands that show variables of a state take '--with'; see velmar-cfg prefs list --help"};
constexpr CELL no_counts = {2, "only a run report says how often variables were read; name one with --of"};

struct COMMAND_ROW
{
    ARGUMENTS words;
    bool has_view;  // its text begins with the view
    bool is_object; // its JSON is an object, which has the view too
    CELL of_live;   // of here and now, a project, a process, an executable, a snapshot of the newest version
    CELL of_snapshot_2;
    CELL of_run; // of a run report, version 1
    CELL of_run_2;
    const char* text; // what it answers of each of these states, somewhere
};

const COMMAND_ROW commands[] = {
    {{"list"}, true, false, fine, fine, fine, fine, "max_fanout=12"},
    {{"list", "max*"}, true, false, fine, fine, fine, fine, "max_fanout=12"},
    {{"list", "nothing*"}, true, false, findings, findings, findings, findings, ""},
    {{"list", "--changed"}, true, false, fine, fine, fine, fine, "msg_sqlite=off"},
    {{"list", "--all"}, true, false, fine, fine, no_run, fine, "max_fanout=12"},
    {{"list", "--read"}, true, false, no_counts, no_counts, fine, fine, "3\tmax_fanout=12"},
    {{"list", "--show-origin"}, true, false, fine, fine, fine, fine, "max_fanout=12"},
    {{"list", "--with", "more=1", "--without", "effort"}, true, false, fine, fine, fine, fine, "more=1"},
    {{"get", "max_fanout"}, false, true, fine, fine, fine, fine, "12\n"},
    {{"get", "max_fanout", "--type", "int"}, false, true, fine, fine, fine, fine, "12\n"},
    {{"get", "nothing", "--default", "x"}, false, true, fine, fine, fine, fine, "x\n"},
    {{"get", "max_fanout", "effort"}, false, false, fine, fine, fine, fine, "max_fanout=12\neffort=5\n"},
    {{"explain", "max_fanout"}, true, true, fine, fine, fine, fine, "max_fanout = 12"},
    {{"explain", "nothing"}, true, true, findings, findings, findings, findings, "nothing is not "},
    {{"layers"}, true, false, fine, fine, fine, fine, "effort"},
    {{"layers", "--overridden"}, true, false, fine, no_snapshot, no_run, fine, "main settings file"},
    {{"paths"}, true, true, fine, no_snapshot, no_run, no_run, "velmar.ini"},
    {{"paths", "--with", "more=1", "--without", "effort"},
     true,
     true,
     no_change_of_paths,
     no_change_of_paths,
     no_change_of_paths,
     no_change_of_paths,
     ""},
    {{"snapshot"}, false, true, fine, fine, no_run, no_run, "\"max_fanout\""},
    {{"snapshot", "--with", "more=1", "--without", "effort"},
     false,
     true,
     no_change_of_snapshot,
     no_change_of_snapshot,
     no_change_of_snapshot,
     no_change_of_snapshot,
     ""},
    {{"lint"}, true, false, findings, no_snapshot, no_run, no_run, "[no-equals-sign]"},
    {{"lint", "--with", "more=1", "--without", "effort"},
     true,
     false,
     findings,
     no_snapshot,
     no_run,
     no_run,
     "[no-equals-sign]"},
    {{"prefs", "list"}, true, false, fine, fine, no_run, no_run, "HDL_PREFERENCE=VHDL"},
    {{"prefs", "list", "--all"}, true, false, fine, fine, no_run, no_run, "HDL_PREFERENCE=VHDL"},
    {{"prefs", "list", "HDL*"}, true, false, fine, fine, no_run, no_run, "HDL_PREFERENCE=VHDL"},
    {{"prefs", "list", "HDL*", "--changed"}, true, false, fine, fine, no_run, no_run, "HDL_PREFERENCE=VHDL"},
    {{"prefs", "list", "--with", "more=1"},
     true,
     false,
     no_change_of_preferences,
     no_change_of_preferences,
     no_change_of_preferences,
     no_change_of_preferences,
     ""},
    {{"prefs", "dump"}, false, true, fine, fine, no_run, no_run, "\nHDL_PREFERENCE = VHDL\n"},
    {{"prefs", "dump", "--changed"}, false, true, fine, fine, no_run, no_run, "HDL_PREFERENCE = VHDL"},
    {{"prefs", "get", "HDL_PREFERENCE"}, false, true, fine, fine, no_run, no_run, "VHDL"},
    {{"prefs", "explain", "HDL_PREFERENCE"}, true, true, fine, no_snapshot, no_run, no_run, "HDL_PREFERENCE = VHDL"},
    {{"prefs", "describe", "HDL_PREFERENCE"}, true, true, fine, fine, no_run, no_run, "value    VHDL"},
};

// The same as an older tool wrote it.
nlohmann::json as_version_2(nlohmann::json snapshot)
{
    for (const char* const member :
         {"user", "host", "directory", "taken", "tool", "as", "search", "findings", "problems", "sources", "lines"})
        snapshot.erase(member);
    snapshot["schema_version"] = 2;
    return snapshot;
}

class STATES : public TOOL_TEST
{
protected:
    STATES()
    {
        write_file("project/velmar.ini",
                   "max_fanout = 9\nmax_fanout = 12\neffort = 5 # note\nno assignment\nmsg_sqlite = off\n");
        write_file("user/velmar2.ini", "[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n");
        write_file("velmar.ini", read_file("project/velmar.ini"));
        write_file("run.json", run_report);
        write_file("run2.json", run_report_2);
        variables["VELMAR2_INI"] = temporary.path("cwd/user");
        nlohmann::json snapshot = run({"snapshot", "--project", "project"}).json();
        write_file("snapshot2.json", as_version_2(snapshot).dump());
        snapshot["user"] = "ana";
        snapshot["host"] = "farm7";
        snapshot["directory"] = "/proj";
        snapshot["taken"] = "2026-11-22T08:00:00Z";
        write_file("snapshot.json", snapshot.dump());
        standard_input = temporary.path("cwd/snapshot.json");
    }

    // The arguments that name the state.
    ARGUMENTS of(STATE_KIND kind) const
    {
        switch (kind)
        {
        case STATE_KIND::NOW:
            return {};
        case STATE_KIND::PROJECT:
            return {"--of", "project"};
        case STATE_KIND::SNAPSHOT:
            return {"--of", "snapshot.json"};
        case STATE_KIND::SNAPSHOT_2:
            return {"--of", "snapshot2.json"};
        case STATE_KIND::STANDARD_INPUT:
            return {"--of", "-"};
        case STATE_KIND::RUN_REPORT:
            return {"--of", "run.json"};
        case STATE_KIND::RUN_REPORT_2:
            return {"--of", "run2.json"};
        case STATE_KIND::PROCESS:
            return {"--of", program.state()};
        case STATE_KIND::EXECUTABLE:
            break;
        }
        return {"--of", "exe:opt/velmar/bin/velmar"};
    }

    // What the text begins with; empty for the plain view.
    std::string view_of(STATE_KIND kind) const
    {
        const std::string basis = "with the present files and the product and release of this tool, velmar 23.4";
        const std::string executable = temporary.path("cwd/opt/velmar/bin/velmar");
        switch (kind)
        {
        case STATE_KIND::NOW:
        case STATE_KIND::PROJECT:
            return "";
        case STATE_KIND::SNAPSHOT:
            return "as snapshot snapshot.json has it (velmar 23.4, project project, taken 2026-11-22T08:00:00Z by ana "
                   "on "
                   "farm7 in /proj)";
        case STATE_KIND::SNAPSHOT_2:
            return "as snapshot snapshot2.json has it (velmar 23.4, project project)";
        case STATE_KIND::STANDARD_INPUT:
            return "as snapshot standard input has it (velmar 23.4, project project, taken 2026-11-22T08:00:00Z by ana "
                   "on farm7 in /proj)";
        case STATE_KIND::RUN_REPORT:
            return "as run nightly had it (run.json, release 23.4)";
        case STATE_KIND::RUN_REPORT_2:
            return "as run nightly had it (run2.json, release 23.4, process 4711 on farm7, in /proj, started "
                   "2026-11-21T22:00:00Z)";
        case STATE_KIND::PROCESS:
            return "as process " + std::to_string(program.number()) + " (" + executable + ", in " +
                   temporary.path("cwd/project") + ") started, " + basis;
        case STATE_KIND::EXECUTABLE:
            break;
        }
        return "as " + executable + " would read, started here, " + basis;
    }

    static const CELL& cell(const COMMAND_ROW& row, STATE_KIND kind)
    {
        switch (kind)
        {
        case STATE_KIND::SNAPSHOT_2:
            return row.of_snapshot_2;
        case STATE_KIND::RUN_REPORT:
            return row.of_run;
        case STATE_KIND::RUN_REPORT_2:
            return row.of_run_2;
        default:
            return row.of_live;
        }
    }

    // Whether it is refused, as the cell says.
    bool expect_refusal(const CELL& expected, STATE_KIND kind, const TOOL_RUN& got) const
    {
        if (expected.refusal == nullptr)
            return false;
        std::string sentence = expected.refusal;
        const std::string name = kind == STATE_KIND::STANDARD_INPUT ? "standard input"
                                 : of(kind).empty()                 ? ""
                                                                    : of(kind).back();
        if (sentence.starts_with('%'))
            sentence.replace(0, 1, name);
        EXPECT_EQ(got, (TOOL_RUN{2, "", "velmar-cfg: " + sentence + "\n"}));
        return true;
    }

    const RUNNING_PROGRAM program{make_waiting_executable(temporary.path("cwd/opt/velmar/bin/velmar")),
                                  made_directory("project"),
                                  {"VELMAR2_INI=" + temporary.path("cwd/user"), "HOME=" + temporary.path("home")}};
};

ARGUMENTS operator+(ARGUMENTS a, const ARGUMENTS& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

std::string spoken(const ARGUMENTS& words)
{
    std::string text;
    for (const std::string& word : words)
        text += word + " ";
    return text;
}

TEST_F(STATES, each_command_answers_of_each_state_or_refuses_in_one_sentence)
{
    for (const COMMAND_ROW& row : commands)
    {
        for (const STATE_KIND kind : all_kinds)
        {
            const ARGUMENTS words = row.words + of(kind);
            SCOPED_TRACE(spoken(words));
            const TOOL_RUN got = run(words);
            const CELL& expected = cell(row, kind);
            if (expect_refusal(expected, kind, got))
                continue;
            EXPECT_EQ(got.exit_code, expected.exit_code) << got.err;
            EXPECT_EQ(got.err, "");
            EXPECT_THAT(got.out, HasSubstr(row.text));
            const std::string view = view_of(kind);
            const bool changed = std::ranges::count(row.words, "--with") > 0;
            const std::string first_line = view + (changed ? "; what if: with more=1, without effort\n" : "\n");
            EXPECT_EQ(!view.empty() && got.out.starts_with(first_line), row.has_view && !view.empty()) << got.out;
            EXPECT_EQ(got.out.find("as ") == 0, row.has_view && !view.empty()) << got.out;
        }
    }
}

TEST_F(STATES, each_command_answers_in_json_or_refuses_in_one_sentence)
{
    for (const COMMAND_ROW& row : commands)
    {
        const bool is_always_refused = row.of_live.refusal != nullptr && row.of_run.refusal != nullptr;
        const STATE_KIND sample_kind = row.of_live.refusal == nullptr ? STATE_KIND::NOW : STATE_KIND::RUN_REPORT;
        const nlohmann::json plain =
            is_always_refused ? nlohmann::json() : run(row.words + of(sample_kind) + ARGUMENTS{"--json"}).json();
        for (const STATE_KIND kind : all_kinds)
        {
            const ARGUMENTS words = row.words + of(kind) + ARGUMENTS{"--json"};
            SCOPED_TRACE(spoken(words));
            const TOOL_RUN got = run(words);
            const CELL& expected = cell(row, kind);
            if (expect_refusal(expected, kind, got))
                continue;
            EXPECT_EQ(got.exit_code, expected.exit_code) << got.err;
            EXPECT_EQ(got.err, "");
            const nlohmann::json document = got.json();
            EXPECT_EQ(document.is_array(), plain.is_array());
            const bool has_view = row.is_object && !view_of(kind).empty() && row.words.front() != "snapshot";
            EXPECT_EQ(document.is_object() && document.contains("view"), has_view);
            if (has_view)
            {
                EXPECT_EQ(document.at("view"), view_of(kind));
            }
            // Whatever the state, the members are those of here and now.
            EXPECT_EQ(document.empty(), plain.empty());
            if (document.empty())
                continue;
            const nlohmann::json& sample = document.is_array() ? document.at(0) : document;
            if (words.front() == "snapshot" && kind == STATE_KIND::SNAPSHOT_2)
                continue; // which stays one of version 2
            for (const auto& [name, value] : (plain.is_array() ? plain.at(0) : plain).items())
                EXPECT_TRUE(sample.contains(name)) << name;
        }
    }
}

TEST_F(STATES, diff_compares_each_state_with_each)
{
    for (const STATE_KIND a : all_kinds)
    {
        for (const STATE_KIND b : all_kinds)
        {
            if (a == STATE_KIND::NOW || (a == STATE_KIND::STANDARD_INPUT && b == STATE_KIND::STANDARD_INPUT))
                continue;
            ARGUMENTS words = {"diff", of(a).back()};
            if (b != STATE_KIND::NOW)
                words.push_back(of(b).back());
            for (const ARGUMENTS& more : {ARGUMENTS{}, ARGUMENTS{"--json"}})
            {
                SCOPED_TRACE(spoken(words + more));
                const TOOL_RUN got = run(words + more + ARGUMENTS{"--only", "variables"});
                const bool has_no_project = a == STATE_KIND::RUN_REPORT || a == STATE_KIND::RUN_REPORT_2;
                std::string remark;
                if (b == STATE_KIND::NOW && has_no_project)
                    remark = "velmar-cfg: " + words[1] +
                             ": a run report names no project; compared with the settings of the current directory; "
                             "--project DIR names others\n";
                else if (b == STATE_KIND::NOW && (a == STATE_KIND::SNAPSHOT || a == STATE_KIND::STANDARD_INPUT))
                    remark = std::string("velmar-cfg: ") +
                             (a == STATE_KIND::SNAPSHOT ? "snapshot.json" : "standard input") +
                             ": this snapshot was taken in /proj; compared with the settings of project in the "
                             "current directory; --project DIR names others\n";
                else if (b == STATE_KIND::NOW && a == STATE_KIND::PROJECT)
                    remark = "velmar-cfg: project: this project is compared with itself; name B, such as . for the "
                             "current directory, or give --with or --without\n";
                EXPECT_EQ(got.err, remark);
                EXPECT_EQ(got.exit_code, 0) << got.out; // the same variables everywhere, as far as they are known
            }
        }
    }
}

// --- What a state does not know ---

TEST_F(STATES, a_refusal_says_what_such_a_state_holds)
{
    const std::string of_run = "run.json: a run report holds only variables that were set or asked for\n";
    const std::string of_snapshot = "snapshot2.json: a snapshot of version 1 or 2 holds only the values that won and "
                                    "where they stand: neither other lines nor the search\n";
    EXPECT_EQ(run({"paths", "--of", "run.json"}), (TOOL_RUN{2, "", "velmar-cfg: " + of_run}));
    EXPECT_EQ(run({"lint", "--of", "snapshot2.json"}), (TOOL_RUN{2, "", "velmar-cfg: " + of_snapshot}));
    EXPECT_EQ(
        run({"list", "--read"}),
        (TOOL_RUN{2, "", "velmar-cfg: only a run report says how often variables were read; name one with --of\n"}));
}

TEST_F(STATES, what_a_run_report_does_not_hold_is_not_said_to_be_unset)
{
    EXPECT_EQ(run({"get", "other", "--of", "run.json"}),
              (TOOL_RUN{1, "",
                        "velmar-cfg: 'other' is not in run.json: a run report holds only variables that were set or "
                        "asked for\n"}));
    EXPECT_EQ(run({"get", "other", "--of", "run.json", "--default", "x"}), (TOOL_RUN{0, "x\n", ""}));
    const TOOL_RUN explained = run({"explain", "other", "--of", "run.json"});
    EXPECT_EQ(explained.exit_code, 1);
    EXPECT_THAT(explained.out,
                testing::EndsWith("\nother is not in run.json: a run report holds only variables that were set "
                                  "or asked for\nread as: not known\n"));
    EXPECT_EQ(run({"explain", "other", "--of", "run.json", "--json"}).json().at("external"), nullptr);
    EXPECT_EQ(run({"get", "other", "--of", "run.json", "--json"}).json().at("external"), nullptr);
    EXPECT_EQ(run({"get", "other", "--of", "snapshot.json"}).err, "velmar-cfg: 'other' is not set\n");
}

TEST_F(STATES, what_a_run_left_unset_is_known)
{
    EXPECT_EQ(run({"get", "ASKED", "--of", "run2.json"}), (TOOL_RUN{1, "", "velmar-cfg: 'ASKED' is not set\n"}));
    EXPECT_EQ(run({"get", "once", "--of", "run2.json"}).err, "velmar-cfg: 'once' is not set\n");
    EXPECT_EQ(run({"get", "other", "--of", "run2.json"}).err, "velmar-cfg: 'other' is not set\n");
    EXPECT_THAT(run({"get", "asked", "--of", "run.json"}).err,
                HasSubstr("'asked' is not known: run.json names it and does not tell whether it was set\n"));
    EXPECT_THAT(run({"explain", "ONCE", "--of", "run.json"}).out,
                HasSubstr("\nONCE is not known: run.json names it and does not tell whether it was set\nread as"));
    EXPECT_THAT(run({"explain", "once", "--of", "run2.json"}).out, HasSubstr("\nonce is not set\n"));
    // So it is where the user asks what would be without an assignment.
    EXPECT_EQ(run({"get", "effort", "--without", "effort", "--of", "run2.json"}).err,
              "velmar-cfg: 'effort' is not set\n");

    write_file("project/velmar.ini", "max_fanout = 12\neffort = 5\nmsg_sqlite = off\nasked = 1\nother = 2\n");
    EXPECT_THAT(run({"diff", "run2.json", "project", "--only", "variables"}).out,
                HasSubstr("\nVariables\n  asked, by main settings file\n    A  not set\n"
                          "    B  1  at project/velmar.ini:4 (main settings file, external)\n"));
    EXPECT_THAT(run({"diff", "run2.json", "project", "--only", "variables"}).out,
                HasSubstr("\n  other, by main settings file\n    A  not set\n"));
    EXPECT_EQ(run({"diff", "run2.json", "project", "--json"}).json().at("variables").size(), 2U);
    EXPECT_EQ(run({"diff", "run.json", "project", "--only", "variables"}).exit_code, 0);
}

// What is known of a variable, and how the commands say so.
struct KNOWLEDGE_ROW
{
    const char* name;
    const char* explained; // the lines behind the view, without "external"
    int exit_code;         // of explain
    const char* listed;    // by list; null when it is not
    const char* remark;    // of get
    nlohmann::json set;
    nlohmann::json value; // of explain
    nlohmann::json reads;
};

TEST_F(STATES, what_a_run_report_leaves_out_is_told_from_what_is_unset)
{
    nlohmann::json report = nlohmann::json::parse(run_report_2);
    report["set_never_read"] = {"Quiet"};
    report["read"].push_back({{"name", "odd"},
                              {"count", 2},
                              {"value", nullptr},
                              {"external", false},
                              {"used", false},
                              {"origin", "unknown"}});
    write_file("other.json", report.dump());
    const std::string view =
        "as run nightly had it (other.json, release 23.4, process 4711 on farm7, in /proj, started "
        "2026-11-21T22:00:00Z)\n";
    const char* const unset = "read as:\n  bool    no value\n  int     no value\n  uint    no value\n"
                              "  double  no value\n";
    const KNOWLEDGE_ROW rows[] = {
        {"QUIET", "QUIET is set, its value is not recorded\nread: never\nread as: not known\n", 0,
         "Quiet\tset, value not recorded, never read\n",
         "'QUIET' is set and was never read: other.json does not record its value", true, nullptr, 0},
        {"odd", "odd is set, its value is not recorded\nread: 2 times\nread as: not known\n", 0,
         "odd\tset, value not recorded\n", "'odd' is set: other.json does not record its value", true, nullptr, 2},
        {"once", "once is not set\nread: 1 time\n", 1, nullptr, "'once' is not set", false, "", 1},
        {"asked", "asked is not set\nread: 7 times\n", 1, nullptr, "'asked' is not set", false, "", 7},
        {"other", "other is not set\n", 1, nullptr, "'other' is not set", false, "", nullptr},
    };
    for (const KNOWLEDGE_ROW& row : rows)
    {
        SCOPED_TRACE(row.name);
        const ARGUMENTS of_report = {"--of", "other.json"};
        const std::string readings = row.set == false ? unset : "";
        EXPECT_EQ(run(ARGUMENTS{"explain", row.name} + of_report),
                  (TOOL_RUN{row.exit_code, view + row.explained + readings + "external: no\n", ""}));
        const nlohmann::json explained = run(ARGUMENTS{"explain", row.name, "--json"} + of_report).json();
        EXPECT_EQ(explained.at("set"), row.set);
        EXPECT_EQ(explained.at("value"), row.value);
        EXPECT_EQ(explained.at("reads"), row.reads);
        const TOOL_RUN listed = run(ARGUMENTS{"list", row.name} + of_report);
        EXPECT_EQ(listed.out, row.listed == nullptr ? view : view + row.listed);
        if (row.listed != nullptr)
        {
            EXPECT_EQ(run(ARGUMENTS{"list", row.name, "--json"} + of_report).json().at(0).at("set"), row.set);
        }
        EXPECT_EQ(run(ARGUMENTS{"get", row.name} + of_report),
                  (TOOL_RUN{1, "", std::string("velmar-cfg: ") + row.remark + "\n"}));
        const nlohmann::json got = run(ARGUMENTS{"get", row.name, "--json"} + of_report).json();
        EXPECT_EQ(got.at("set"), row.set);
        EXPECT_EQ(got.at("text"), row.value);
        EXPECT_EQ(got.at("usable"), false);
    }
    // A default stands in for what has no value, not for a value that is left out.
    EXPECT_EQ(run({"get", "quiet", "--default", "x", "--of", "other.json"}).exit_code, 1);
    EXPECT_EQ(run({"get", "once", "--default", "x", "--of", "other.json"}), (TOOL_RUN{0, "x\n", ""}));
    EXPECT_THAT(run({"layers", "--of", "other.json"}).out,
                HasSubstr("\nset, value not recorded\n        Quiet\n        odd\n"));
    EXPECT_EQ(run({"layers", "--of", "other.json", "--json"}).json().back(),
              R"({"layer": "unknown", "file": null, "line": null, "item": null, "text": null, "name": "odd",
                  "value": null, "effect": "counts", "winner": null})"_json);
    // They lost to nothing.
    EXPECT_THAT(run({"layers", "--overridden", "--of", "other.json"}).out, Not(HasSubstr("Quiet")));
    EXPECT_EQ(run({"layers", "--overridden", "--of", "other.json", "--json"}).json().size(), 1U);
    EXPECT_THAT(
        run({"list", "--read", "--of", "other.json"}).out,
        HasSubstr("\n7\tasked\tnot set\n3\tmax_fanout=12\n2\todd\tset, value not recorded\n"
                  "1\tmsg_sqlite=off\n1\tonce\tnot set\n0\tQuiet\tset, value not recorded, never read\n0\teffort=5\n"));
    EXPECT_THAT(run({"explain", "effort", "--of", "other.json"}).out, HasSubstr("\nread: never\n"));
    EXPECT_THAT(run({"list", "--external", "--of", "other.json"}).out, Not(HasSubstr("Quiet")));
    // What the user asks to see changed is known again.
    EXPECT_EQ(run({"get", "quiet", "--with", "quiet=3", "--of", "other.json"}), (TOOL_RUN{0, "3\n", ""}));
    EXPECT_EQ(run({"get", "quiet", "--without", "quiet", "--of", "other.json"}),
              (TOOL_RUN{1, "", "velmar-cfg: 'quiet' is not set\n"}));
    EXPECT_THAT(run({"list", "--read", "--with", "QUIET=3", "--of", "other.json"}).out, HasSubstr("\n0\tQUIET=3\n"));
}

TEST_F(STATES, a_name_without_a_value_may_be_meant)
{
    nlohmann::json report = nlohmann::json::parse(run_report_2);
    report["set_never_read"] = {"Quietly"};
    write_file("run2.json", report.dump());
    struct ROW
    {
        const char* typed;
        const char* report;
        const char* meant; // null for none
    };
    const ROW rows[] = {
        {"asekd", "run.json", "asked"},
        {"onse", "run.json", "once"},
        {"max_fanotu", "run.json", "max_fanout"},
        {"efort", "run.json", "effort"},
        {"asekd", "run2.json", "asked"},
        {"onse", "run2.json", "once"},
        {"quitely", "run2.json", "Quietly"},
        // The name itself is not another, and one that is known is not mistyped.
        {"ONCE", "run.json", nullptr},
        {"ONCE", "run2.json", nullptr},
        {"debug_msg", "run.json", nullptr},
        {"xyzzy", "run.json", nullptr},
    };
    for (const ROW& row : rows)
    {
        SCOPED_TRACE(std::string(row.typed) + " of " + row.report);
        const TOOL_RUN got = run({"get", row.typed, "--of", row.report});
        EXPECT_EQ(got.exit_code, 1);
        const std::string meant = row.meant == nullptr ? "" : row.meant;
        EXPECT_EQ(got.err.find("did you mean") != std::string::npos, row.meant != nullptr) << got.err;
        EXPECT_THAT(got.err, HasSubstr(row.meant == nullptr ? "\n" : " (did you mean '" + meant + "'?)\n"));
        const std::string explained = run({"explain", row.typed, "--of", row.report}).out;
        EXPECT_EQ(explained.find("hint:") != std::string::npos, row.meant != nullptr) << explained;
        EXPECT_THAT(explained,
                    HasSubstr(row.meant == nullptr ? "" : "\nhint: there is also '" + meant + "'; is that the one?\n"));
    }
    EXPECT_EQ(run({"explain", "max_fanot", "--of", "run.json", "--json"}).json().at("hints").size(), 1U);
    // Nor is one that the report names.
    nlohmann::json alike = nlohmann::json::parse(run_report);
    alike["uncounted"] = {"once", "onces"};
    write_file("alike.json", alike.dump());
    EXPECT_THAT(run({"get", "once", "--of", "alike.json"}).err,
                testing::EndsWith("does not tell whether it was set\n"));
    EXPECT_THAT(run({"get", "oncez", "--of", "alike.json"}).err, testing::EndsWith(" (did you mean 'once'?)\n"));
}

TEST_F(STATES, what_a_snapshot_could_not_read_is_told_by_diff)
{
    nlohmann::json snapshot = nlohmann::json::parse(read_file("snapshot.json"));
    snapshot["problems"].push_back({{"of", "settings"}, {"text", "x/velmar.ini: Permission denied"}});
    write_file("blind.json", snapshot.dump());
    for (const ARGUMENTS& arguments : {ARGUMENTS{"diff", "blind.json", "project"}, {"diff", "project", "blind.json"}})
    {
        const TOOL_RUN compared = run(arguments);
        EXPECT_EQ(compared.exit_code, 3);
        EXPECT_EQ(compared.err, "velmar-cfg: blind.json: x/velmar.ini: Permission denied\n");
    }
}

// Version 1 does not tell what is unset from what was set and never read.
TEST_F(STATES, what_a_run_report_of_version_1_does_not_tell_is_not_known)
{
    for (const char* const name : {"asked", "once"})
    {
        EXPECT_EQ(run({"explain", name, "--json", "--of", "run.json"}).json().at("set"), nullptr) << name;
        EXPECT_EQ(run({"get", name, "--json", "--of", "run.json"}).json().at("set"), nullptr) << name;
    }
    EXPECT_EQ(run({"list", "asked", "--read", "--json", "--of", "run.json"}).json().at(0).at("set"), nullptr);
    EXPECT_EQ(run({"explain", "other", "--json", "--of", "snapshot.json"}).json().at("set"), false);
    EXPECT_EQ(run({"list", "debug_msg", "--all", "--json"}).json().at(0).at("set"), false);
}

TEST_F(STATES, a_value_that_one_run_left_out_differs_only_from_none)
{
    nlohmann::json a = nlohmann::json::parse(run_report_2);
    nlohmann::json b = a;
    a["set_never_read"] = {"quiet", "max_fanout_2", "both"};
    b["set_never_read"] = {"BOTH"};
    b["asked_once"] = {"once", "Quiet"};
    b["external_never_read"].push_back({{"name", "max_fanout_2"}, {"value", "1"}, {"source", 0}, {"line", 4}});
    write_file("a.json", a.dump());
    write_file("b.json", b.dump());
    EXPECT_THAT(run({"diff", "a.json", "b.json"}).out,
                testing::EndsWith("\n\nVariables\n  quiet, by unknown source\n    A  set, value not recorded\n"
                                  "    B  not set\n"));
    const nlohmann::json rows = run({"diff", "b.json", "a.json", "--json"}).json().at("variables");
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows.at(0).at("a"), nullptr);
    EXPECT_EQ(rows.at(0).at("b").at("value"), nullptr);
    EXPECT_EQ(rows.at(0).at("made_by"), "unknown");
    // Those that this run never met were unset in it; "a" does not say what they were set to.
    EXPECT_EQ(run({"diff", "a.json", "run2.json", "--json"}).json().at("variables").size(), 3U);
    EXPECT_EQ(run({"diff", "a.json", "project", "--only", "variables", "--with", "BOTH=1", "--with", "quiet=2",
                   "--with", "max_fanout_2=3"}),
              (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"diff", "project", "a.json", "--only", "variables", "--json"}).json().at("variables").size(), 3U);
}

TEST_F(STATES, a_run_report_of_version_2_tells_origins)
{
    EXPECT_EQ(run({"list", "--show-origin", "--of", "run2.json"}).out,
              view_of(STATE_KIND::RUN_REPORT_2) + "\n/proj/velmar.ini:3\teffort=5\n/proj/velmar.ini:2\tmax_fanout=12\n"
                                                  "/proj/velmar.ini:5\tmsg_sqlite=off\n");
    EXPECT_THAT(run({"explain", "max_fanout", "--of", "run2.json"}).out,
                HasSubstr("\nmax_fanout = 12\nassignments, the last one wins:\n"
                          "  lost  /proj/velmar.ini:1  max_fanout = 9  (main settings file)\n"
                          "  won   /proj/velmar.ini:2  max_fanout = 12  (main settings file)\nread: 3 times\n"));
    EXPECT_EQ(run({"layers", "--of", "run2.json"}).out,
              view_of(STATE_KIND::RUN_REPORT_2) +
                  "\nonly assignments to variables that were set or asked for are known\n"
                  "main settings file  /proj/velmar.ini\n     1  max_fanout=9  lost to /proj/velmar.ini:2\n"
                  "     2  max_fanout=12\n     3  effort=5\n     5  msg_sqlite=off\n");
    nlohmann::json report = nlohmann::json::parse(run_report_2);
    report["sources"][0]["state"] = "changed"; // so that there may be others
    report["read"][1] = {{"name", "msg_sqlite"}, {"count", 1},   {"value", "off"},
                         {"external", true},     {"used", true}, {"origin", "program"}};
    report["external_never_read"][0] = {{"name", "effort"},    {"value", "6"},
                                        {"origin", "program"}, {"source", 1},
                                        {"item", 2},           {"overridden", {{{"source", 0}, {"value", "5"}}}}};
    write_file("other.json", report.dump());
    EXPECT_THAT(run({"list", "--show-origin", "--of", "other.json"}).out,
                HasSubstr("\na text:2\teffort=6\n/proj/velmar.ini:2\tmax_fanout=12\nthe program\tmsg_sqlite=off\n"));
    EXPECT_THAT(run({"explain", "effort", "--of", "other.json"}).out,
                HasSubstr("\nassignments that are known, the last one won:\n"
                          "  lost  /proj/velmar.ini  effort = 5  (main settings file)\n"
                          "  won   a text:2          effort = 6  (program)\n"));
    EXPECT_EQ(run({"get", "msg_sqlite", "--of", "other.json", "--json"}).json().at("layer"), "program");
    // Two runs lead to the cause without their project.
    EXPECT_THAT(run({"diff", "run2.json", "other.json"}).out, HasSubstr("\nVariables\n  effort, by program\n"));
}

TEST_F(STATES, environments_of_runs_are_compared_as_far_as_both_know_them)
{
    nlohmann::json report = nlohmann::json::parse(run_report_2);
    report["environment"][1]["value"] = "seed=8";
    report["environment"].push_back({{"name", "HOME"}, {"value", "/home/x"}});
    write_file("other.json", report.dump());
    EXPECT_EQ(run({"diff", "run2.json", "other.json", "--json"}).json().at("environment"),
              R"([{"name": "VELMAR_INI_VARS", "a": "seed=7", "b": "seed=8"}])"_json);
    EXPECT_EQ(run({"diff", "run.json", "other.json", "--json"}).json().at("environment"), nlohmann::json::array());
}

TEST_F(STATES, an_origin_that_is_not_known_is_called_so)
{
    EXPECT_EQ(run({"list", "--show-origin", "--of", "run.json"}).out,
              view_of(STATE_KIND::RUN_REPORT) +
                  "\nunknown\teffort=5\nunknown\tmax_fanout=12\nunknown\tmsg_sqlite=off\n");
    EXPECT_EQ(
        run({"get", "effort", "--of", "run.json", "--json"}).json(),
        R"json({"name": "effort", "type": "text", "value": "5", "usable": true, "set": true, "masked": false, "text": "5",
                      "external": true, "layer": "unknown", "file": null, "line": null, "item": null,
                      "view": "as run nightly had it (run.json, release 23.4)"})json"_json);
    EXPECT_EQ(run({"get", "effort", "--type", "bool", "--of", "run.json"}).err,
              "velmar-cfg: 'effort' is '5': no switch (on, 1, true, off, 0, false)\n");
    EXPECT_THAT(run({"explain", "max_fanout", "--of", "run.json"}).out,
                HasSubstr("\nmax_fanout = 12\nassignment that won, others are not known:\n"
                          "  won   unknown  max_fanout = 12  (unknown source)\nread: 3 times\n"));
}

TEST_F(STATES, an_origin_that_is_not_known_may_be_narrowed_down)
{
    nlohmann::json report = nlohmann::json::parse(run_report_2);
    const auto unknown = [](const char* name, nlohmann::json perhaps)
    {
        return nlohmann::json{{"name", name},
                              {"count", 1},
                              {"value", "1"},
                              {"external", false},
                              {"used", true},
                              {"origin", "unknown"},
                              {"perhaps", std::move(perhaps)}};
    };
    report["read"] = {unknown("one", {{{"source", 0}, {"line", 7}}, {{"source", 1}, {"item", 2}}}),
                      unknown("two", nlohmann::json::array())};
    report["external_never_read"] = nlohmann::json::array();
    write_file("other.json", report.dump());
    const ARGUMENTS of_report = {"--of", "other.json"};
    const std::string perhaps = "perhaps /proj/velmar.ini:7, a text:2";
    EXPECT_THAT(run(ARGUMENTS{"run-report", "other.json"}).out, HasSubstr("one=1  origin unknown, " + perhaps + "\n"));
    EXPECT_THAT(run(ARGUMENTS{"explain", "one"} + of_report).out,
                HasSubstr("  won   unknown, " + perhaps + "  one = 1  (unknown source)\n"));
    EXPECT_THAT(run(ARGUMENTS{"explain", "two"} + of_report).out,
                HasSubstr("  won   unknown  two = 1  (unknown source)\n"));
    EXPECT_THAT(run(ARGUMENTS{"list", "--show-origin"} + of_report).out,
                HasSubstr("\nunknown, " + perhaps + "\tone=1\nunknown\ttwo=1\n"));
    EXPECT_THAT(run(ARGUMENTS{"layers"} + of_report).out,
                HasSubstr("\nunknown source\n        two=1\nunknown source  " + perhaps + "\n        one=1\n"));
    // JSON tells everywhere that it is unknown, and run-report alone where it may be.
    for (const nlohmann::json& row :
         {run(ARGUMENTS{"list", "--json"} + of_report).json().at(0),
          run(ARGUMENTS{"get", "one", "--json"} + of_report).json(),
          run(ARGUMENTS{"layers", "--json"} + of_report).json().at(0),
          run(ARGUMENTS{"explain", "one", "--json"} + of_report).json().at("assignments").at(0)})
    {
        EXPECT_EQ(row.at("layer"), "unknown") << row;
        EXPECT_EQ(row.at("file"), nullptr) << row;
        EXPECT_EQ(row.at("line"), nullptr) << row;
        EXPECT_EQ(row.at("item"), nullptr) << row;
    }
}

TEST_F(STATES, a_snapshot_of_version_2_knows_where_its_values_stand)
{
    EXPECT_EQ(run({"list", "--show-origin", "--of", "snapshot2.json"}).out,
              view_of(STATE_KIND::SNAPSHOT_2) +
                  "\nproject/velmar.ini:3\teffort=5\nproject/velmar.ini:2\tmax_fanout=12\n"
                  "project/velmar.ini:5\tmsg_sqlite=off\n");
    EXPECT_EQ(run({"layers", "--of", "snapshot2.json"}).out,
              view_of(STATE_KIND::SNAPSHOT_2) +
                  "\nonly the values that won are known\nmain settings file  project/velmar.ini\n"
                  "     2  max_fanout=12\n     3  effort=5\n     5  msg_sqlite=off\n");
    EXPECT_EQ(run({"list", "--of", "snapshot2.json", "--external", "--json"}).json().size(), 3U);
}

TEST_F(STATES, external_marks_come_from_the_document)
{
    nlohmann::json snapshot = nlohmann::json::parse(read_file("snapshot2.json"));
    snapshot["variables"][1]["layer"] = "regtest"; // still set by the main file too
    snapshot["variables"][2]["layer"] = "appended";
    snapshot["variables"][2]["external"] = false;
    write_file("marks.json", snapshot.dump());
    EXPECT_THAT(run({"list", "--of", "marks.json", "--external"}).out,
                AllOf(HasSubstr("max_fanout=12\n"), HasSubstr("effort=5\n"), Not(HasSubstr("msg_sqlite"))));
}

TEST_F(STATES, a_snapshot_of_an_older_release_may_not_know_a_preference)
{
    nlohmann::json snapshot = nlohmann::json::parse(read_file("snapshot.json"));
    std::erase_if(snapshot["preferences"].get_ref<nlohmann::json::array_t&>(),
                  [](const nlohmann::json& row) { return row.at("key") == "HDL_PREFERENCE"; });
    write_file("old.json", snapshot.dump());
    EXPECT_EQ(run({"prefs", "get", "HDL_PREFERENCE", "--of", "old.json"}),
              (TOOL_RUN{2, "",
                        "velmar-cfg: old.json: knows no preference HDL_PREFERENCE, which its release may not have "
                        "had\n"}));
    EXPECT_THAT(run({"prefs", "list", "--all", "--of", "old.json"}).out, Not(HasSubstr("\nHDL_PREFERENCE=")));
    EXPECT_EQ(run({"prefs", "list", "--all", "--json", "--of", "old.json"}).json().size(), 120U);
}

// By the rules of this release another line of the file may count than did then.
TEST_F(STATES, preferences_of_another_release_are_not_explained)
{
    nlohmann::json snapshot = nlohmann::json::parse(read_file("snapshot.json"));
    snapshot["release"] = "23.1";
    write_file("old.json", snapshot.dump());
    EXPECT_EQ(run({"prefs", "explain", "HDL_PREFERENCE", "--of", "old.json"}),
              (TOOL_RUN{2, "",
                        "velmar-cfg: old.json: is of release 23.1, and this velmar-cfg explains preferences of release "
                        "23.4; see prefs list and prefs get\n"}));
    EXPECT_EQ(run({"prefs", "get", "HDL_PREFERENCE", "--of", "old.json"}), (TOOL_RUN{0, "VHDL\n", ""}));
}

TEST_F(STATES, secrets_of_documents_are_masked_in_all_but_get)
{
    write_file("project/velmar.ini", "api_token = S3CRET\n");
    write_file("secret.json", run({"snapshot", "--project", "project", "--with-secrets"}).out);
    EXPECT_THAT(run({"list", "--of", "secret.json"}).out, HasSubstr("api_token=\\(masked)\n"));
    EXPECT_EQ(run({"get", "api_token", "--of", "secret.json"}).out, "S3CRET\n");
}

TEST_F(STATES, a_snapshot_of_a_snapshot_is_the_same)
{
    write_file("project/velmar.ini", "api_token = S3CRET\nb\xff = \xfe\n");
    variables["VELMAR_INI_VARS"] = "c=1;d";
    const std::string now = run({"snapshot", "--project", "project"}).out;
    write_file("now.json", now);
    const TOOL_RUN again = run({"snapshot", "--of", "now.json"});
    EXPECT_EQ(again.exit_code, 0);
    EXPECT_EQ(again.out, now);
    EXPECT_EQ(run({"snapshot", "--of", "snapshot2.json"}).json(), nlohmann::json::parse(read_file("snapshot2.json")));
    nlohmann::json version_1 = nlohmann::json::parse(read_file("snapshot2.json"));
    version_1["schema_version"] = 1;
    write_file("snapshot1.json", version_1.dump());
    EXPECT_EQ(run({"snapshot", "--of", "snapshot1.json"}).json(), nlohmann::json::parse(read_file("snapshot2.json")));
    // Secrets are masked on the way, unless they are to be shown.
    const std::string with_secrets = run({"snapshot", "--project", "project", "--with-secrets"}).out;
    write_file("secret.json", with_secrets);
    EXPECT_THAT(run({"snapshot", "--of", "secret.json"}).out, Not(HasSubstr("S3CRET")));
    EXPECT_EQ(run({"snapshot", "--of", "secret.json", "--with-secrets"}).out, with_secrets);
    // What could not be read then is said again.
    nlohmann::json with_problem = nlohmann::json::parse(now);
    with_problem["problems"] = {{{"of", "settings"}, {"text", "a.ini: is a directory"}}};
    write_file("problem.json", with_problem.dump());
    EXPECT_EQ(run({"snapshot", "--of", "problem.json"}).exit_code, 3);
    EXPECT_EQ(run({"snapshot", "--of", "problem.json"}).json(), with_problem);
}

TEST_F(STATES, lint_checks_what_would_be_set)
{
    write_file("project/velmar.ini", "effort = 5\nno assignment\nmsg_sqlite = off\n");
    const ARGUMENTS lint = {"lint", "--project", "project"};
    EXPECT_EQ(run(lint + ARGUMENTS{"--with", "msg_sqlite=maybe", "--with", "a;b:c=1;d=2", "--with", "x=1", "--without",
                                   "y", "--with", "X=2"}),
              (TOOL_RUN{1,
                        R"(what if: with msg_sqlite=maybe, with a;b:c=1;d=2, with x=1, without y, with X=2
project/velmar.ini:2:1: error: a line without "=" is ignored; put "#" before it to make it a comment [no-equals-sign]
--with:1:12: error: 'maybe' is no boolean, so readers of 'msg_sqlite' take their default; )"
                        R"(write 'msg_sqlite = on' or 'msg_sqlite = off' [no-boolean]
--with:3:1: warning: --with:4 sets 'x' again; remove one of the two [overridden]
--with:4:1: warning: the same variable as 'x' at --with:3, but callbacks registered under that spelling are not )"
                        R"(notified of this one; write 'x' [letter-case]
)",
                        ""}));
    const nlohmann::json rows = run(lint + ARGUMENTS{"--with", "msg_sqlite=maybe", "--json"}).json();
    EXPECT_EQ(rows.back().at("file"), "--with");
    EXPECT_EQ(rows.back().at("item"), 1);
    EXPECT_EQ(rows.back().at("replacement"), nullptr);
    EXPECT_EQ(run({"lint", "--of", "snapshot.json", "--with", "msg_sqlite=maybe", "--json"}).json().back(),
              rows.back());
    EXPECT_THAT(run(lint + ARGUMENTS{"--without", "effort", "--with", "EFFORT=6", "--json"}).out,
                Not(HasSubstr("letter-case")));
    // That there are no settings is not changed by them.
    unlink("velmar.ini");
    for (const ARGUMENTS& changes : {ARGUMENTS{}, ARGUMENTS{"--with", "a=1"}})
        EXPECT_THAT(run(ARGUMENTS{"lint"} + changes).out, HasSubstr("[no-settings-file]"));
    EXPECT_EQ(run({"lint", "project/velmar.ini", "--with", "a=1"}),
              (TOOL_RUN{2, "",
                        "velmar-cfg: --with and --without are for findings of a state; naming files excludes them\n"}));
    EXPECT_EQ(run({"lint", "--fix", "--without", "a"}),
              (TOOL_RUN{2, "", "velmar-cfg: --with and --without are for findings of a state; --fix excludes them\n"}));
}

// --- Names ---

TEST_F(STATES, a_file_that_is_called_as_a_process_is_reached_by_its_directory)
{
    write_file("pid:5", run_report);
    mkdir("exe:x", 0777);
    write_file("exe:x/velmar.ini", "a = 1\n");
    EXPECT_EQ(run({"get", "effort", "--of", "./pid:5"}).out, "5\n");
    EXPECT_EQ(run({"get", "a", "--of", "./exe:x"}).out, "1\n");
    for (const char* const name : {"pid:", "pid:x", "pid:-1", "pid:0", "pid:5x", "pid:99999999999"})
    {
        EXPECT_EQ(run({"list", "--of", name}),
                  (TOOL_RUN{2, "",
                            std::string("velmar-cfg: ") + name +
                                ": give the number of a process, such as pid:4711; a file of that name is ./" + name +
                                "\n"}));
    }
    EXPECT_EQ(run({"list", "--of", "exe:"}),
              (TOOL_RUN{2, "", "velmar-cfg: exe: wants the path of an executable; a file of that name is ./exe:\n"}));
    EXPECT_EQ(run({"list", "--of="}).exit_code, 2);
}

TEST_F(STATES, a_file_that_is_no_document_is_refused)
{
    EXPECT_EQ(run({"list", "--of", "missing"}).exit_code, 3);
    write_file("other.json", R"({"schema": "other", "schema_version": 1})");
    EXPECT_EQ(run({"list", "--of", "other.json"}),
              (TOOL_RUN{3, "",
                        "velmar-cfg: other.json: is no snapshot or run report; give one that velmar-cfg snapshot or a "
                        "host's cfg_write_run_report has written\n"}));
    write_file("new.json", R"({"schema": "velmar-run-report", "schema_version": 99})");
    EXPECT_THAT(run({"list", "--of", "new.json"}).err, HasSubstr("new.json: is a run report of version 99, and"));
    EXPECT_THAT(run({"list", "--of", "project/velmar.ini"}).err,
                HasSubstr("give a snapshot or run report as velmar-cfg snapshot or a host's cfg_write_run_report"));
}

// --- Options that say otherwise ---

TEST_F(STATES, options_that_say_otherwise_are_refused)
{
    mkdir("root", 0777);
    EXPECT_EQ(run({"--project", "project", "list", "--of", "project"}).err,
              "velmar-cfg: --of and --project exclude each other: a project is --of DIR too\n");
    for (const char* const state : {"snapshot.json", "run.json", "exe:opt/velmar/bin/velmar"})
        EXPECT_EQ(run({"--root", "root", "list", "--of", state}).exit_code, 2) << state;
    EXPECT_EQ(run({"--root", "root", "list", "--of", "project"}).exit_code, 0);
    EXPECT_EQ(run({"lint", "velmar.ini", "--of", "project"}),
              (TOOL_RUN{2, "", "velmar-cfg: --of and files exclude each other\n"}));
    // Whether the directories exist does not matter then.
    EXPECT_EQ(run({"list", "--of", "snapshot.json", "--root", "gone"}),
              (TOOL_RUN{2, "",
                        "velmar-cfg: --root is for what is read here: snapshot.json has its own installation; leave "
                        "--root out\n"}));
    EXPECT_EQ(run({"list", "--of", "project", "--project", "gone"}).exit_code, 2);
    EXPECT_EQ(run({"list", "--of", "project", "--root", "gone"}).exit_code, 3);
    EXPECT_EQ(run({"prefs", "get", "HDL_PREFERENCE", "--of", "gone.json", "--root", "root"}).exit_code, 2);
}

TEST_F(STATES, a_diff_takes_a_root_for_the_side_that_is_read_here)
{
    write_file("root/bin/velmar.ini", "place = root\n");
    write_file("empty/readme", "");
    write_file("empty.json", run({"snapshot", "--of", "empty"}).out);
    ASSERT_EQ(unlink("velmar.ini"), 0);
    const std::string refusal = "velmar-cfg: --root is for what is read here: A and B have installations of their own; "
                                "leave --root out\n";
    for (const ARGUMENTS& sides : {ARGUMENTS{"run.json", "snapshot.json"}, ARGUMENTS{"snapshot.json", "gone.json"},
                                   ARGUMENTS{"exe:opt/velmar/bin/velmar", "run.json"}})
    {
        EXPECT_EQ(run(ARGUMENTS{"diff"} + sides + ARGUMENTS{"--root", "root"}), (TOOL_RUN{2, "", refusal}));
        EXPECT_EQ(run(ARGUMENTS{"diff"} + sides + ARGUMENTS{"--root", "gone"}), (TOOL_RUN{2, "", refusal}));
    }
    for (const ARGUMENTS& sides :
         {ARGUMENTS{"empty.json"}, ARGUMENTS{"empty.json", "empty"}, ARGUMENTS{"empty", "empty.json"}})
    {
        SCOPED_TRACE(spoken(sides));
        EXPECT_THAT(run(ARGUMENTS{"diff", "--root", "root", "--only", "variables"} + sides).out,
                    HasSubstr("  place, by main settings file\n"));
    }
    EXPECT_EQ(run({"diff", "run.json", "snapshot.json", "--project", "gone"}).exit_code, 2);
}

TEST_F(STATES, what_changes_files_is_of_here_and_now)
{
    const std::string settings = read_file("velmar.ini");
    EXPECT_EQ(run({"lint", "--fix", "--of", "project"}),
              (TOOL_RUN{2, "",
                        "velmar-cfg: --fix changes files of the present state or of --project DIR; --fix and --of "
                        "exclude each other\n"}));
    for (const ARGUMENTS& words :
         {ARGUMENTS{"set", "max_fanout", "1"}, ARGUMENTS{"unset", "max_fanout"},
          ARGUMENTS{"prefs", "set", "HDL_PREFERENCE", "Verilog"}, ARGUMENTS{"prefs", "reset", "HDL_PREFERENCE"}})
    {
        for (const STATE_KIND kind : all_kinds)
        {
            if (kind == STATE_KIND::NOW)
                continue;
            SCOPED_TRACE(spoken(words + of(kind)));
            const TOOL_RUN got = run(words + of(kind));
            EXPECT_EQ(got.exit_code, 2);
            EXPECT_EQ(got.out, "");
            const std::string command = words.front() == "prefs" ? "prefs " + words[1] : words.front();
            EXPECT_EQ(got.err, "velmar-cfg: only commands that show one state take '--of'; see velmar-cfg " + command +
                                   " --help\n");
        }
    }
    EXPECT_EQ(read_file("velmar.ini"), settings);
    EXPECT_EQ(read_file("user/velmar2.ini"), "[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n");
}

TEST_F(STATES, regtest_beside_a_document_that_says_otherwise_is_refused)
{
    write_file("project/regtest.ini", "seed = 7\n");
    write_file("regression.json", run({"snapshot", "--project", "project", "--regtest"}).out);
    nlohmann::json report = nlohmann::json::parse(run_report);
    report["files"]["regtest"] = "project/regtest.ini";
    write_file("regression_run.json", report.dump());
    EXPECT_EQ(
        run({"list", "--regtest", "--of", "snapshot.json"}),
        (TOOL_RUN{2, "",
                  "velmar-cfg: snapshot.json: the snapshot was taken without regtest.ini; leave --regtest out\n"}));
    EXPECT_EQ(run({"list", "--regtest", "--of", "run.json"}),
              (TOOL_RUN{2, "", "velmar-cfg: run.json: the run read without regtest.ini; leave --regtest out\n"}));
    EXPECT_EQ(run({"diff", "--regtest", "snapshot.json"}).exit_code, 2);
    for (const char* const document : {"regression.json", "regression_run.json"})
        EXPECT_EQ(run({"list", "--regtest", "--of", document}).exit_code, 0) << document;
    EXPECT_EQ(run({"list", "--regtest", "--of", "project"}).out, "effort=5\nmax_fanout=12\nmsg_sqlite=off\nseed=7\n");
}

TEST_F(STATES, a_diff_without_b_reads_now_for_the_project_and_with_the_mark_of_a)
{
    write_file("project/regtest.ini", "seed = 7\n");
    write_file("regression.json", run({"snapshot", "--project", "project", "--regtest"}).out);
    write_file("velmar.ini", "other = 1\n");
    EXPECT_EQ(run({"diff", "regression.json"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"diff", "snapshot2.json"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"diff", "snapshot.json", "--project", "user"}).exit_code, 1); // which has none, so that the search's
    nlohmann::json elsewhere = nlohmann::json::parse(read_file("snapshot.json"));
    elsewhere["project"] = "gone";
    write_file("elsewhere.json", elsewhere.dump());
    EXPECT_EQ(run({"diff", "elsewhere.json"}),
              (TOOL_RUN{3, "",
                        "velmar-cfg: gone: no such directory; name what to compare with, or give --project an existing "
                        "one\n"}));
    EXPECT_EQ(run({"diff", "elsewhere.json", "project"}).exit_code, 0); // what a project is called makes no difference
}
}
