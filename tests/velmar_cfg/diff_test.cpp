#include <unistd.h>

#include "tests/velmar_cfg/tool_test.h"

namespace
{
using nlohmann::ordered_json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* monday = R"({
  "schema": "velmar-snapshot", "schema_version": 1, "product": "velmar", "release": "23.3",
  "project": "cpu", "regtest": false,
  "files": [
    {"role": "main", "path": "cpu/velmar.ini", "size": 70,
     "sha256": "111111111111ffffffffffffffffffffffffffffffffffffffffffffffffffff"},
    {"role": "appended", "path": null, "size": null, "sha256": null},
    {"role": "regtest", "path": null, "size": null, "sha256": null},
    {"role": "preferences", "path": "/home/ana/velmar2.ini", "size": null, "sha256": null}],
  "environment": [{"name": "HOME", "value": "/home/ana"}, {"name": "VELMAR_INI_VARS", "value": null}],
  "variables": [
    {"name": "Effort", "value": "5", "external": true,
     "layer": "main", "file": "cpu/velmar.ini", "line": 3, "item": null, "layers": ["main"],
     "readings": {"bool": null, "int": 5, "uint": 5, "double": 5.0, "double_whole": true}},
    {"name": "gone", "value": "", "external": true,
     "layer": "main", "file": "cpu/velmar.ini", "line": 4, "item": null, "layers": ["main"],
     "readings": {"bool": null, "int": null, "uint": null, "double": null, "double_whole": false}},
    {"name": "limit", "value": "nan", "external": true,
     "layer": "main", "file": "cpu/velmar.ini", "line": 9, "item": null, "layers": ["main"],
     "readings": {"bool": null, "int": null, "uint": null, "double": "nan", "double_whole": true}},
    {"name": "max_fanout", "value": "12", "external": true,
     "layer": "main", "file": "cpu/velmar.ini", "line": 1, "item": null, "layers": ["main"],
     "readings": {"bool": null, "int": 12, "uint": 12, "double": 12.0, "double_whole": true}},
    {"name": "seed", "value": "7", "external": true,
     "layer": "regtest", "file": "cpu/regtest.ini", "line": 1, "item": null, "layers": ["main", "regtest"],
     "readings": {"bool": null, "int": 7, "uint": 7, "double": 7.0, "double_whole": true}}],
  "preferences": [
    {"key": "HDL_PREFERENCE", "value": "Verilog", "default": "Verilog", "source": "default", "section": null,
     "release": null},
    {"key": "SHOW_MESSAGE_ID", "value": "on", "default": "on", "source": "default", "section": null, "release": null}]
})";

// Of Monday's: the release is newer, max_fanout comes from the environment, gone has gone, seed's mark has gone with
// the main file's line, effort and limit are the same from elsewhere; HDL_PREFERENCE is carried over, SHOW_MESSAGE_ID
// is set to its default.
constexpr const char* tuesday = R"({
  "schema": "velmar-snapshot", "schema_version": 1, "product": "velmar", "release": "23.4",
  "project": "cpu", "regtest": true,
  "files": [
    {"role": "main", "path": "copy/velmar.ini", "size": 70,
     "sha256": "111111111111ffffffffffffffffffffffffffffffffffffffffffffffffffff"},
    {"role": "appended", "path": "more.ini", "size": 3,
     "sha256": "222222222222ffffffffffffffffffffffffffffffffffffffffffffffffffff"},
    {"role": "regtest", "path": null, "size": null, "sha256": null},
    {"role": "preferences", "path": "/home/ana/velmar2.ini", "size": 9,
     "sha256": "333333333333ffffffffffffffffffffffffffffffffffffffffffffffffffff"}],
  "environment": [{"name": "HOME", "value": "/home/ana"}, {"name": "VELMAR_INI_VARS", "value": ""}],
  "variables": [
    {"name": "EFFORT", "value": "5", "external": true,
     "layer": "inline", "file": null, "line": null, "item": 1, "layers": ["inline"],
     "readings": {"bool": null, "int": 5, "uint": 5, "double": 5, "double_whole": true}},
    {"name": "limit", "value": "nan", "external": true,
     "layer": "main", "file": "copy/velmar.ini", "line": 10, "item": null, "layers": ["main"],
     "readings": {"bool": null, "int": null, "uint": null, "double": "nan", "double_whole": true}},
    {"name": "MAX_fanout", "value": "16", "external": true,
     "layer": "inline", "file": null, "line": null, "item": 2, "layers": ["main", "inline"],
     "readings": {"bool": null, "int": 16, "uint": 16, "double": 16.0, "double_whole": true}},
    {"name": "seed", "value": "7", "external": false,
     "layer": "regtest", "file": "cpu/regtest.ini", "line": 1, "item": null, "layers": ["regtest"],
     "readings": {"bool": null, "int": 7, "uint": 7, "double": 7.0, "double_whole": true}}],
  "preferences": [
    {"key": "HDL_PREFERENCE", "value": "VHDL", "default": "Verilog", "source": "older release",
     "section": "General 23.3_pro", "release": "23.3"},
    {"key": "SHOW_MESSAGE_ID", "value": "on", "default": "on", "source": "running release",
     "section": "Messages 23.4_pro", "release": "23.4"}]
})";

constexpr const char* report = R"({
  "schema": "velmar-run-report", "schema_version": 1, "run": "nightly", "release": "23.4",
  "files": {"main": null, "appended": null, "regtest": null},
  "read": [{"name": "Max_Fanout", "count": 3, "value": "12", "external": true, "used": true},
           {"name": "effort", "count": 3, "value": "5", "external": true, "used": true}],
  "external_never_read": [{"name": "seed", "value": "7"}], "uncounted": ["gone"]
})";

class DIFF : public TOOL_TEST
{
protected:
    DIFF()
    {
        write_file("monday.json", monday);
        write_file("tuesday.json", tuesday);
        write_file("run.json", report);
    }
};

TEST_F(DIFF, says_what_differs_and_what_made_it_differ)
{
    EXPECT_EQ(run({"diff", "monday.json", "tuesday.json"}), (TOOL_RUN{1, R"(A  monday.json (velmar 23.3, project cpu)
B  tuesday.json (velmar 23.4, project cpu, regression test)

Installation
  release
    A  23.3
    B  23.4

Environment
  VELMAR_INI_VARS
    A  not set
    B  \(empty)

Files
  file of APPENDED_VELMAR_INI
    A  none
    B  more.ini, 3 bytes, SHA-256 222222222222...
  preference file
    A  /home/ana/velmar2.ini, which did not exist or could not be read
    B  /home/ana/velmar2.ini, 9 bytes, SHA-256 333333333333...

Variables
  gone, by main settings file
    A  \(empty)  at cpu/velmar.ini:4 (main settings file, external)
    B  not set
  max_fanout, by environment
    A  12  at cpu/velmar.ini:1 (main settings file, external)
    B  16  at VELMAR_INI_VARS:2 (environment, external)
  seed, by main settings file
    A  7  at cpu/regtest.ini:1 (regression-test file, external)
    B  7  at cpu/regtest.ini:1 (regression-test file)

Preferences
  HDL_PREFERENCE, by an older release's section
    A  Verilog  the default
    B  VHDL  carried over from an older release, section [General 23.3_pro]
)",
                                                                      ""}));
}

TEST_F(DIFF, names_the_same_layers_the_other_way_round)
{
    const nlohmann::json document = run({"diff", "tuesday.json", "monday.json", "--json"}).json();
    std::map<std::string, std::string> makers;
    for (const nlohmann::json& row : document.at("variables"))
        makers[row.at("name")] = row.at("made_by");
    EXPECT_EQ(makers,
              (std::map<std::string, std::string>{{"gone", "main"}, {"MAX_fanout", "inline"}, {"seed", "main"}}));
}

TEST_F(DIFF, writes_json)
{
    const TOOL_RUN got = run({"diff", "monday.json", "tuesday.json", "--json"});
    EXPECT_EQ(got.exit_code, 1);
    const nlohmann::json document = got.json();
    const nlohmann::json a = nlohmann::json::parse(monday);
    const nlohmann::json b = nlohmann::json::parse(tuesday);
    EXPECT_EQ(
        document.at("a"),
        R"({"title": "monday.json", "product": "velmar", "release": "23.3", "project": "cpu", "regtest": false})"_json);
    EXPECT_EQ(document.at("same"), false);
    EXPECT_EQ(document.at("used"), nullptr);
    EXPECT_EQ(document.at("installation"), R"([{"what": "release", "a": "23.3", "b": "23.4"}])"_json);
    EXPECT_EQ(document.at("environment"), R"([{"name": "VELMAR_INI_VARS", "a": null, "b": ""}])"_json);
    EXPECT_EQ(document.at("files"),
              (nlohmann::json{{{"role", "appended"}, {"a", a.at("files").at(1)}, {"b", b.at("files").at(1)}},
                              {{"role", "preferences"}, {"a", a.at("files").at(3)}, {"b", b.at("files").at(3)}}}));
    EXPECT_EQ(document.at("variables").at(1), (nlohmann::json{{"name", "max_fanout"},
                                                              {"a", a.at("variables").at(3)},
                                                              {"b", b.at("variables").at(2)},
                                                              {"made_by", "inline"},
                                                              {"same_in_every_type", false},
                                                              {"dependence", nullptr}}));
    EXPECT_EQ(document.at("variables").at(0).at("b"), nullptr);
    EXPECT_EQ(document.at("preferences"), (nlohmann::json::array({{{"key", "HDL_PREFERENCE"},
                                                                   {"a", a.at("preferences").at(0)},
                                                                   {"b", b.at("preferences").at(0)},
                                                                   {"made_by", "older release"}}})));
}

TEST_F(DIFF, keeps_only_what_a_run_read)
{
    EXPECT_EQ(run({"diff", "monday.json", "tuesday.json", "--used", "run.json"}),
              (TOOL_RUN{1, R"(A  monday.json (velmar 23.3, project cpu)
B  tuesday.json (velmar 23.4, project cpu, regression test)

Variables that nightly read
  gone, by main settings file; perhaps asked for once, while unset
    A  \(empty)  at cpu/velmar.ini:4 (main settings file, external)
    B  not set
  max_fanout, by environment
    A  12  at cpu/velmar.ini:1 (main settings file, external)
    B  16  at VELMAR_INI_VARS:2 (environment, external)
)",
                        ""}));
    const nlohmann::json document = run({"diff", "monday.json", "tuesday.json", "--used", "run.json", "--json"}).json();
    EXPECT_EQ(document.at("used"), R"({"file": "run.json", "run": "nightly"})"_json);
    EXPECT_EQ(document.at("variables").at(0).at("dependence"), "perhaps");
    EXPECT_EQ(document.at("variables").at(1).at("dependence"), "read");
    for (const char* const list : {"installation", "environment", "files", "preferences"})
        EXPECT_EQ(document.at(list), nlohmann::json::array()) << list;
}

TEST_F(DIFF, is_silent_about_what_is_the_same)
{
    EXPECT_EQ(run({"diff", "monday.json", "monday.json"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"diff", "monday.json", "monday.json", "--json"}).json().at("same"), true);
    ordered_json without_reads = ordered_json::parse(report);
    without_reads["read"].clear();
    without_reads["uncounted"].clear();
    write_file("other_run.json", without_reads.dump());
    EXPECT_EQ(run({"diff", "monday.json", "tuesday.json", "--used", "other_run.json"}), (TOOL_RUN{0, "", ""}));
}

TEST_F(DIFF, tells_readings_of_another_release_apart)
{
    ordered_json other = ordered_json::parse(monday);
    other["variables"][0]["readings"]["bool"] = true;
    write_file("other.json", other.dump());
    const TOOL_RUN got = run({"diff", "monday.json", "other.json"});
    EXPECT_EQ(got.exit_code, 1);
    EXPECT_THAT(got.out, HasSubstr("\n  Effort, by the release, which reads it differently\n"));
}

TEST_F(DIFF, says_where_two_texts_read_the_same)
{
    write_file("cpu/velmar.ini", "number = 12\nswitch = on\ntext = a\n");
    write_file("gpu/velmar.ini", "number = 012\nswitch = TRUE\ntext = b\n");
    const std::string got = run({"diff", "cpu", "gpu", "--only", "variables"}).out;
    EXPECT_THAT(got, HasSubstr("\n  number, by main settings file; reads the same in every type but text\n"));
    EXPECT_THAT(got, HasSubstr("\n  switch, by main settings file; reads the same in every type but text\n"));
    EXPECT_THAT(got, HasSubstr("\n  text, by main settings file\n"));
}

TEST_F(DIFF, is_narrowed_by_names_and_sections)
{
    const TOOL_RUN some = run({"diff", "monday.json", "tuesday.json", "--only", "files", "--only", "environment"});
    EXPECT_EQ(some.exit_code, 1);
    EXPECT_THAT(some.out, AllOf(HasSubstr("\nEnvironment\n"), HasSubstr("\nFiles\n"), Not(HasSubstr("Variables")),
                                Not(HasSubstr("Preferences")), Not(HasSubstr("Installation"))));
    EXPECT_EQ(run({"diff", "monday.json", "tuesday.json", "--only", "variables", "--ignore", "MAX_*", "--ignore",
                   "seed", "--ignore=gone"}),
              (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"diff", "monday.json", "tuesday.json", "--only", "colours"}).exit_code, 2);
    EXPECT_EQ(run({"diff", "monday.json", "tuesday.json", "--ignore", "*", "--json"}).json().at("same"), true);
}

TEST_F(DIFF, compares_with_what_a_run_had)
{
    EXPECT_EQ(run({"diff", "run.json", "tuesday.json"}),
              (TOOL_RUN{1, R"(A  as run nightly had it (run.json, release 23.4)
B  tuesday.json (velmar 23.4, project cpu, regression test)

Variables
  Max_Fanout, by unknown source
    A  12
    B  16  at VELMAR_INI_VARS:2 (environment, external)
)",
                        ""}));
    const nlohmann::json document = run({"diff", "tuesday.json", "run.json", "--json"}).json();
    EXPECT_EQ(document.at("variables").size(), 1U);
    EXPECT_EQ(document.at("variables").at(0).at("made_by"), "unknown");
    EXPECT_EQ(document.at("b").at("view"), "as run nightly had it (run.json, release 23.4)");
    EXPECT_EQ(document.at("b").at("product"), nullptr);
    EXPECT_EQ(run({"diff", "run.json", "run.json"}), (TOOL_RUN{0, "", ""}));
}

TEST_F(DIFF, paints_the_sides)
{
    EXPECT_THAT(run({"diff", "monday.json", "tuesday.json", "--color", "always"}).out,
                AllOf(StartsWith("\x1b[31mA  monday.json (velmar 23.3, project cpu)\x1b[0m\n\x1b[32mB  tuesday.json"),
                      HasSubstr("\n    \x1b[31mA  23.3\x1b[0m\n    \x1b[32mB  23.4\x1b[0m\n")));
}

TEST_F(DIFF, heads_have_short_paths_if_they_would_not_fit_a_line)
{
    const std::string deep =
        temporary.path("cwd") + "/" + std::string(60, 'd') + "/\xc3\xa9" + std::string(28, 'e') + "/cpu";
    write_file(deep + "/velmar.ini", "a = 1\n");
    write_file("gpu/velmar.ini", "a = 2\n");
    const auto first_line = [](const std::string& text) { return text.substr(0, text.find('\n')); };
    const std::string of_project = first_line(run({"diff", deep, "gpu"}).out);
    EXPECT_EQ(of_project, "A  " + deep.substr(0, 12) + "..." + std::string(26, 'e') + "/cpu (velmar 23.4)");
    // The character that would be cut in two is left out.
    const std::string two =
        temporary.path("cwd") + "/" + std::string(60, 'd') + "/\xc3\xa9" + std::string(25, 'e') + "/cpu";
    write_file(two + "/velmar.ini", "a = 1\n");
    EXPECT_EQ(first_line(run({"diff", two, "gpu"}).out),
              "A  " + two.substr(0, 12) + "..." + std::string(25, 'e') + "/cpu (velmar 23.4)");
    ASSERT_EQ(run({"snapshot", "--project", deep, "-o", "deep.json"}).exit_code, 0);
    const std::string of_snapshot = first_line(run({"diff", "deep.json", "gpu"}).out);
    EXPECT_EQ(of_snapshot,
              "A  deep.json (velmar 23.4, project " + deep.substr(0, 12) + "..." + std::string(26, 'e') + "/cpu)");
    const TOOL_RUN long_view = run({"diff", "monday.json", "gpu", "--with", "x=" + std::string(500, 'v')});
    const std::size_t at = long_view.out.find("\nB  ") + 1;
    EXPECT_EQ(long_view.out.find('\n', at) - at, 3 + 400U + 3);
    EXPECT_THAT(long_view.out, HasSubstr("vvv...\n"));
    EXPECT_EQ(run({"diff", deep, "gpu", "--json"}).json().at("a").at("title"), deep);
    // Whose view it is is said to the end.
    const std::string of_process = first_line(run({"diff", "pid:" + std::to_string(getpid()), "gpu"}).out);
    EXPECT_THAT(of_process, HasSubstr("the product and release of this tool, velmar 23.4")) << of_process;
}

// Without B, a project is compared with itself, as it would be with changes.
TEST_F(DIFF, shows_what_changes_would_do_in_a_project)
{
    write_file("cpu/velmar.ini", "max_fanout = 7\n");
    write_file("velmar.ini", "max_fanout = 8\n");
    const TOOL_RUN got = run({"diff", "cpu", "--with", "max_fanout=9", "--only", "variables"});
    EXPECT_EQ(got.exit_code, 1);
    EXPECT_EQ(got.err, "");
    EXPECT_THAT(got.out, HasSubstr("A  cpu (velmar 23.4)\n"));
    EXPECT_THAT(got.out, HasSubstr("B  now (velmar 23.4, project cpu; what if: with max_fanout=9)\n"));
    EXPECT_THAT(got.out,
                HasSubstr("    A  7  at cpu/velmar.ini:1 (main settings file, external)\n    B  9  at --with:1 "
                          "(what if, external)\n"));
    EXPECT_EQ(run({"diff", "cpu"}),
              (TOOL_RUN{0, "",
                        "velmar-cfg: cpu: this project is compared with itself; name B, such as . for the current "
                        "directory, or give --with or --without\n"}));
    // The option names another one.
    EXPECT_THAT(run({"diff", "cpu", "--project", ".", "--only", "variables"}).out,
                HasSubstr("    A  7  at cpu/velmar.ini:1 (main settings file, external)\n    B  8  at "));
}

// The relative path of a snapshot's project is one of the present directory.
TEST_F(DIFF, tells_that_a_snapshot_was_taken_elsewhere)
{
    write_file("cpu/velmar.ini", "max_fanout = 7\n");
    write_file("other/cpu/velmar.ini", "max_fanout = 8\n");
    const std::string here = temporary.path("cwd");
    ASSERT_EQ(run({"snapshot", "-o", "plain.json"}).exit_code, 0);
    ASSERT_EQ(run({"snapshot", "--project", "cpu", "-o", "relative.json"}).exit_code, 0);
    ASSERT_EQ(run({"snapshot", "--project", here + "/cpu", "-o", "absolute.json"}).exit_code, 0);
    EXPECT_EQ(run({"diff", "plain.json"}).err, "");
    EXPECT_EQ(run({"diff", "relative.json"}).err, "");
    std::filesystem::current_path("other");
    const std::string present = " the current directory; --project DIR names others\n";
    EXPECT_EQ(run({"diff", "../plain.json"}).err, "velmar-cfg: ../plain.json: this snapshot was taken in " + here +
                                                      "; compared with the settings of" + present);
    const TOOL_RUN relative = run({"diff", "../relative.json", "--only", "variables"});
    EXPECT_EQ(relative.err, "velmar-cfg: ../relative.json: this snapshot was taken in " + here +
                                "; compared with the settings of cpu in" + present);
    EXPECT_THAT(
        relative.out,
        HasSubstr("    A  7  at cpu/velmar.ini:1 (main settings file, external)\n    B  8  at cpu/velmar.ini:1"));
    EXPECT_EQ(run({"diff", "../absolute.json"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"diff", "../plain.json", "--project", here}).err, "");
    EXPECT_EQ(run({"diff", "../plain.json", "."}).err, "");
}

TEST_F(DIFF, refuses_a_project_beside_two_states)
{
    write_file("cpu/velmar.ini", "a = 1\n");
    EXPECT_EQ(run({"--project", "cpu", "diff", "monday.json", "tuesday.json"}),
              (TOOL_RUN{2, "", "velmar-cfg: --project names what A is compared with, and so does B; leave one out\n"}));
}

// --- What is now ---

TEST_F(DIFF, compares_a_snapshot_with_now)
{
    write_file("cpu/velmar.ini", "a = 1\nb = 2\n");
    ASSERT_EQ(run({"snapshot", "--project", "cpu", "-o", "before.json"}).exit_code, 0);
    EXPECT_EQ(run({"diff", "before.json", "--project", "cpu"}), (TOOL_RUN{0, "", ""}));
    variables["VELMAR_INI_VARS"] = "b=3";
    EXPECT_EQ(run({"--project", "cpu", "diff", "before.json"}),
              (TOOL_RUN{1, R"(A  before.json (velmar 23.4, project cpu)
B  now (velmar 23.4, project cpu)

Environment
  VELMAR_INI_VARS
    A  not set
    B  b=3

Variables
  b, by environment
    A  2  at cpu/velmar.ini:2 (main settings file, external)
    B  3  at VELMAR_INI_VARS:1 (environment, external)
)",
                        ""}));
}

TEST_F(DIFF, compares_two_projects_each_with_its_own_files)
{
    write_file("cpu/velmar.ini", "a = 1\n");
    write_file("cpu/regtest.ini", "effort = 9\n");
    write_file("gpu/velmar.ini", "a = 1\n");
    variables["VELMAR_INI_VARS"] = "cfg_max_to_report=6";
    EXPECT_EQ(run({"diff", "cpu", "gpu"}), (TOOL_RUN{0, "", ""}));
    const TOOL_RUN got = run({"diff", "cpu", "gpu", "--regtest"});
    EXPECT_EQ(got.exit_code, 1);
    EXPECT_THAT(got.out, HasSubstr("\nVariables\n  effort, by regression-test file\n"
                                   "    A  9  at cpu/regtest.ini:1 (regression-test file)\n    B  not set\n"));
    EXPECT_EQ(run({"diff", "gpu", "cpu", "--regtest"}).exit_code, 1);
}

TEST_F(DIFF, finds_a_name_that_is_no_text_in_a_run_report)
{
    write_file("cpu/velmar.ini", "a\xff = 1\nb\xff = 1\n");
    write_file("gpu/velmar.ini", "a\xff = 2\nb\xff = 2\n");
    ordered_json with_bytes = ordered_json::parse(report);
    with_bytes["read"][0]["name"] = "A\xef\xbf\xbd";
    write_file("bytes.json", with_bytes.dump());
    const nlohmann::json document = run({"diff", "cpu", "gpu", "--used", "bytes.json", "--json"}).json();
    ASSERT_EQ(document.at("variables").size(), 1);
    EXPECT_EQ(document.at("variables").at(0).at("name"), R"({"hex": "61ff"})"_json);
}

TEST_F(DIFF, compares_a_directory_and_a_snapshot_alike)
{
    write_file("cpu/velmar.ini", "a\xff = x\xc3y\nb = inf\nc = \"\x01\xe2\x82\xac\"\n");
    ASSERT_EQ(run({"snapshot", "--project", "cpu", "-o", "before.json"}).exit_code, 0);
    EXPECT_EQ(run({"diff", "before.json", "cpu"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"diff", "cpu", "before.json"}), (TOOL_RUN{0, "", ""}));
    EXPECT_EQ(run({"diff", "cpu", "--project", "cpu"}), (TOOL_RUN{0, "", ""}));
}
}
