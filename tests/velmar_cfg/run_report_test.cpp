#include "tests/velmar_cfg/tool_test.h"

namespace
{
constexpr const char* cpu_run = R"({
  "schema": "velmar-run-report", "schema_version": 1, "run": "nightly/cpu", "release": "23.4",
  "files": {"main": "cpu/velmar.ini", "appended": null, "regtest": "cpu/regtest.ini"},
  "read": [
    {"name": "effort", "count": 40, "value": "5", "external": true, "used": true},
    {"name": "max_fanout", "count": 480, "value": "12", "external": true, "used": true},
    {"name": "retries", "count": 2, "value": "3x", "external": true, "used": false},
    {"name": "new_router", "count": 2, "value": null, "external": false, "used": false}
  ],
  "external_never_read": [
    {"name": "Licences", "value": "old"},
    {"name": "seed", "value": "1"},
    {"name": "tabs", "value": "a\tb"}
  ],
  "uncounted": ["asked_once"]
})";

constexpr const char* gpu_run = R"({
  "schema": "velmar-run-report", "schema_version": 1, "run": "nightly/gpu", "release": "23.3",
  "files": {"main": null, "appended": null, "regtest": null},
  "read": [{"name": "MAX_FANOUT", "count": 1, "value": "16", "external": false, "used": true}],
  "external_never_read": [{"name": "licences", "value": "new"}, {"name": "effort", "value": "5"}],
  "uncounted": ["SEED"]
})";

constexpr const char* unnamed_run = R"({
  "schema": "velmar-run-report", "schema_version": 1, "run": "", "release": "23.4",
  "files": {"main": null, "appended": null, "regtest": null},
  "read": [], "external_never_read": [{"name": "LICENCES", "value": "new"}], "uncounted": []
})";

class RUN_REPORT : public TOOL_TEST
{
protected:
    RUN_REPORT()
    {
        write_file("cpu.json", cpu_run);
        write_file("gpu.json", gpu_run);
        write_file("unnamed.json", unnamed_run);
    }
};

TEST_F(RUN_REPORT, ranks_what_the_run_read)
{
    EXPECT_EQ(run({"run-report", "cpu.json"}), (TOOL_RUN{0, R"(Run nightly/cpu, release 23.4
  main settings file: cpu/velmar.ini
  regression-test file: cpu/regtest.ini

READS                            VARIABLE
  480  ########################  max_fanout=12  external
   40  ##                        effort=5  external
    2  #                         retries=3x  external  (not of the type asked for)
    2  #                         new_router  (no usable value: unset, or not of the type asked for)

Set from outside and never read
  Licences=old
  seed=1
  tabs=a\tb

Asked for once while unset, or set inside the run and never read
  asked_once
)",
                                                         ""}));
}

TEST_F(RUN_REPORT, of_another_program_may_count_nothing)
{
    write_file("nothing.json", R"({
      "schema": "velmar-run-report", "schema_version": 1, "run": "", "release": "23.4",
      "files": {"main": null, "appended": null, "regtest": null},
      "read": [{"name": "seed", "count": 0, "value": "1", "external": false, "used": true}],
      "external_never_read": [], "uncounted": []
    })");
    const TOOL_RUN shown = run({"run-report", "nothing.json"});
    EXPECT_EQ(shown.exit_code, 0) << shown.err;
    EXPECT_THAT(shown.out, testing::HasSubstr("    0  #                         seed=1"));
}

TEST_F(RUN_REPORT, of_a_run_that_read_nothing_says_so)
{
    EXPECT_EQ(run({"run-report", "unnamed.json"}), (TOOL_RUN{0, R"(Run unnamed.json, release 23.4

The run read no variable that is set.

Set from outside and never read
  LICENCES=new
)",
                                                             ""}));
}

constexpr const char* run_of_version_2 = R"({
  "schema": "velmar-run-report", "schema_version": 2, "run": "nightly/npu", "release": "24.1",
  "outcome": 12.5, "host": "farm7", "process": 4711, "directory": "/proj", "executable": "/opt/velmar",
  "started": "2026-11-22T08:25:00Z", "ended": "2026-11-22T08:26:30Z",
  "environment": [{"name": "VELMAR_INI_VARS", "value": "d=4;api_token=geheim42"}],
  "sources_complete": false,
  "sources": [
    {"layer": "main", "external": true, "path": "/proj/velmar.ini", "size": 10,
     "modified": "2026-11-22T08:00:00.000000000Z", "state": "same"},
    {"layer": "appended", "external": false, "path": "/proj/more.ini", "size": 11,
     "modified": "2026-11-22T08:00:00.000000000Z", "state": "changed"},
    {"layer": "inline", "external": true, "text": "d=4;api_token=geheim42", "state": "same"},
    {"layer": "program", "external": false, "text": "e=5", "state": "same"}
  ],
  "read": [
    {"name": "a", "count": 9, "value": "1", "external": true, "used": true, "source": 0, "line": 12},
    {"name": "b", "count": 8, "value": "2", "external": false, "used": true, "origin": "program",
     "overridden": [{"source": 0, "line": 13, "value": "0"}]},
    {"name": "c", "count": 7, "value": "3", "external": false, "used": true, "origin": "unknown",
     "perhaps": [{"source": 1}, {"source": 0, "line": 14}]},
    {"name": "d", "count": 6, "value": "4", "external": true, "used": false, "source": 2, "item": 1},
    {"name": "e", "count": 5, "value": "5", "external": false, "used": true, "origin": "program", "source": 3, "item": 1},
    {"name": "f", "count": 4, "value": null, "external": false, "used": false, "origin": "unset"},
    {"name": "g", "count": 3, "value": null, "external": false, "used": false, "origin": "unknown"},
    {"name": {"hex": "68ff"}, "count": 2, "value": {"hex": "ff"}, "external": false, "used": true, "origin": "unknown"}
  ],
  "external_never_read": [{"name": "api_token", "value": "geheim42", "source": 2, "item": 2}],
  "asked_once": ["asked"],
  "set_never_read": ["set"]
})";

TEST_F(RUN_REPORT, of_version_2_tells_where_values_came_from)
{
    write_file("npu.json", run_of_version_2);
    EXPECT_EQ(run({"run-report", "npu.json", "--with-secrets"}), (TOOL_RUN{0, R"(Run nightly/npu, release 24.1
  outcome: 12.5
  process 4711 on farm7: /opt/velmar
  current directory: /proj
  started 2026-11-22T08:25:00Z, reported 2026-11-22T08:26:30Z
  main settings file: /proj/velmar.ini
  appended file: /proj/more.ini
  not read again: /proj/more.ini (changed)
  more sources were applied than the report knows

READS                            VARIABLE
    9  ########################  a=1  /proj/velmar.ini:12
    8  #####################     b=2  set by the program
    7  ###################       c=3  origin unknown, perhaps /proj/more.ini, /proj/velmar.ini:14
    6  ################          d=4  VELMAR_INI_VARS:1  (not of the type asked for)
    5  #############             e=5  set by the program, a text:1
    4  ###########               f  (unset)
    3  ########                  g  (value not recorded: not of the type asked for)
    2  #####                     h\xff=\xff  origin unknown

Set from outside and never read
  api_token=geheim42  VELMAR_INI_VARS:2

Asked for once while unset
  asked

Set inside the run, or by files on top of the main one, and never read
  set
)",
                                                                           ""}));
}

TEST_F(RUN_REPORT, of_version_2_is_written_as_json_as_the_host_wrote_it)
{
    write_file("npu.json", run_of_version_2);
    nlohmann::json expected = nlohmann::json::parse(run_of_version_2);
    nlohmann::json written = run({"run-report", "npu.json", "--json", "--with-secrets"}).json();
    EXPECT_EQ(written.at("file"), "npu.json");
    EXPECT_EQ(written.at("files").at("appended"), "/proj/more.ini");
    EXPECT_EQ(written.at("uncounted"), nlohmann::json::array());
    for (const char* const own : {"file", "files", "uncounted"})
        written.erase(own);
    for (const char* const of_document : {"schema", "schema_version"})
        expected.erase(of_document);
    expected["outcome"] = 12.5;
    const nlohmann::json nothing = {{"origin", nullptr},
                                    {"source", nullptr},
                                    {"line", nullptr},
                                    {"item", nullptr},
                                    {"perhaps", nlohmann::json::array()},
                                    {"overridden", nlohmann::json::array()}};
    const auto fill = [](nlohmann::json& row, const nlohmann::json& all)
    {
        nlohmann::json filled = all;
        filled.update(row);
        row = filled;
    };
    const nlohmann::json no_place = {{"line", nullptr}, {"item", nullptr}};
    for (const char* const list : {"read", "external_never_read"})
    {
        for (nlohmann::json& row : expected[list])
        {
            fill(row, nothing);
            for (const char* const places : {"perhaps", "overridden"})
            {
                for (nlohmann::json& place : row[places])
                    fill(place, no_place);
            }
        }
    }
    for (nlohmann::json& row : expected["sources"])
        fill(row, {{"path", nullptr}, {"size", nullptr}, {"modified", nullptr}, {"text", nullptr}});
    EXPECT_EQ(written, expected);
}

TEST_F(RUN_REPORT, of_version_2_shows_no_secret_unasked)
{
    write_file("npu.json", run_of_version_2);
    for (const std::vector<std::string>& form : {std::vector<std::string>{}, {"--json"}})
    {
        std::vector<std::string> command = {"run-report", "npu.json"};
        command.insert(command.end(), form.begin(), form.end());
        const TOOL_RUN result = run(command);
        EXPECT_EQ(result.exit_code, 0);
        EXPECT_THAT(result.out, testing::Not(testing::HasSubstr("geheim42")));
    }
}

TEST_F(RUN_REPORT, of_version_2_tells_what_was_asked_once_from_what_was_never_read)
{
    write_file("npu.json", run_of_version_2);
    EXPECT_EQ(run({"run-report", "--merge", "--switch", "ASKED", "npu.json"}),
              (TOOL_RUN{0, "ASKED was read by 1 of 1 run\n  nightly/npu: asked for once, while unset\n", ""}));
    EXPECT_EQ(run({"run-report", "--merge", "--switch", "set", "npu.json"}),
              (TOOL_RUN{1, "set was read by 0 of 1 run\n  nightly/npu: never read, set inside the run\n", ""}));
    write_file("set.json", R"({"schema": "velmar-run-report", "schema_version": 1, "run": "one", "release": "23.4",
        "files": {"main": null, "appended": null, "regtest": null}, "read": [],
        "external_never_read": [{"name": "asked", "value": "1"}, {"name": "set", "value": "2"}], "uncounted": []})");
    EXPECT_EQ(run({"run-report", "--merge", "npu.json", "set.json", "--with-secrets"}).out,
              "Set from outside and read by none of 2 runs\n  api_token=geheim42  set in 1 run\n"
              "  set=2  set in 1 run\n");
}

TEST_F(RUN_REPORT, paints_on_request)
{
    write_file("one.json", R"({"schema": "velmar-run-report", "schema_version": 1, "run": "one", "release": "23.4",
        "files": {"main": null, "appended": null, "regtest": null},
        "read": [{"name": "a", "count": 1, "value": "x", "external": true, "used": false}],
        "external_never_read": [], "uncounted": []})");
    EXPECT_EQ(run({"run-report", "one.json", "--color", "always"}).out,
              "\x1b[1mRun one\x1b[0m, release 23.4\n"
              "\n"
              "\x1b[1mREADS                            VARIABLE\x1b[0m\n"
              "    1  \x1b[32m########################\x1b[0m  a=x\x1b[2m  external\x1b[0m"
              "  \x1b[33m(not of the type asked for)\x1b[0m\n");
}

TEST_F(RUN_REPORT, writes_json)
{
    const TOOL_RUN result = run({"run-report", "cpu.json", "--json"});
    EXPECT_EQ(result.exit_code, 0);
    nlohmann::json written = result.json();
    // What version 1 does not know.
    for (const char* const unknown : {"outcome", "host", "process", "directory", "executable", "started", "ended"})
    {
        EXPECT_EQ(written.at(unknown), nullptr) << unknown;
        written.erase(unknown);
    }
    for (const char* const list : {"environment", "sources", "asked_once", "set_never_read"})
    {
        EXPECT_EQ(written.at(list), nlohmann::json::array()) << list;
        written.erase(list);
    }
    EXPECT_EQ(written.at("sources_complete"), false);
    written.erase("sources_complete");
    for (const char* const list : {"read", "external_never_read"})
    {
        for (nlohmann::json& row : written[list])
        {
            EXPECT_EQ(row.at("origin"), "unknown");
            for (const char* const member : {"origin", "source", "line", "item", "perhaps", "overridden"})
                row.erase(member);
        }
    }
    EXPECT_EQ(written, nlohmann::json::parse(R"({
  "run": "nightly/cpu", "file": "cpu.json", "release": "23.4",
  "files": {"main": "cpu/velmar.ini", "appended": null, "regtest": "cpu/regtest.ini"},
  "read": [
    {"name": "max_fanout", "count": 480, "value": "12", "external": true, "used": true},
    {"name": "effort", "count": 40, "value": "5", "external": true, "used": true},
    {"name": "retries", "count": 2, "value": "3x", "external": true, "used": false},
    {"name": "new_router", "count": 2, "value": null, "external": false, "used": false}
  ],
  "external_never_read": [
    {"name": "Licences", "value": "old"},
    {"name": "seed", "value": "1"},
    {"name": "tabs", "value": "a\tb"}
  ],
  "uncounted": ["asked_once"]
})"));
}

// "effort" is read by one of the runs, "seed" is no more than perhaps read, and names are equal in any letter case.
TEST_F(RUN_REPORT, merge_lists_what_no_run_read)
{
    EXPECT_EQ(run({"run-report", "--merge", "cpu.json", "gpu.json", "unnamed.json"}),
              (TOOL_RUN{0, R"(Set from outside and read by none of 3 runs
  Licences=old, new  set in 3 runs
  seed=1  set in 1 run
    perhaps asked for once, while unset, by nightly/gpu
  tabs=a\tb  set in 1 run
)",
                        ""}));
    EXPECT_EQ(run({"run-report", "--merge", "cpu.json", "gpu.json", "unnamed.json", "--json"}).json(),
              nlohmann::json::parse(R"({
  "runs": 3,
  "never_read": [
    {"name": "Licences", "values": ["old", "new"], "set_in_runs": ["nightly/cpu", "nightly/gpu", "unnamed.json"],
     "perhaps_read_by_runs": []},
    {"name": "seed", "values": ["1"], "set_in_runs": ["nightly/cpu"], "perhaps_read_by_runs": ["nightly/gpu"]},
    {"name": "tabs", "values": ["a\tb"], "set_in_runs": ["nightly/cpu"], "perhaps_read_by_runs": []}
  ]
})"));
}

TEST_F(RUN_REPORT, merge_with_an_empty_switch_asks_for_that_name)
{
    const TOOL_RUN asked = run({"run-report", "--merge", "--switch", "", "cpu.json", "gpu.json"});
    EXPECT_EQ(asked.exit_code, 1);
    EXPECT_EQ(asked.err, "velmar-cfg: no report contains ''\n");
    EXPECT_THAT(asked.out, testing::HasSubstr("was read by 0 of 2 runs"));
}

TEST_F(RUN_REPORT, merge_of_runs_that_read_everything_lists_nothing)
{
    write_file("all.json", R"({"schema": "velmar-run-report", "schema_version": 1, "run": "all", "release": "23.4",
        "files": {"main": null, "appended": null, "regtest": null},
        "read": [{"name": "licences", "count": 1, "value": "x", "external": true, "used": true}],
        "external_never_read": [], "uncounted": []})");
    EXPECT_EQ(run({"run-report", "--merge", "unnamed.json", "all.json"}),
              (TOOL_RUN{0, "Set from outside and read by none of 2 runs\n  none\n", ""}));
    EXPECT_EQ(run({"run-report", "--merge", "all.json", "--json"}).json(),
              nlohmann::json::parse(R"({"runs": 1, "never_read": []})"));
}

TEST_F(RUN_REPORT, merge_lists_the_runs_that_a_switch_mattered_to)
{
    EXPECT_EQ(run({"run-report", "--merge", "--switch", "Max_Fanout", "cpu.json", "gpu.json", "unnamed.json"}),
              (TOOL_RUN{0, R"(Max_Fanout was read by 2 of 3 runs
  nightly/cpu: read 480 times, set to 12
  nightly/gpu: read 1 time, set to 16
)",
                        ""}));
    EXPECT_EQ(run({"run-report", "--merge", "--switch", "new_router", "cpu.json"}),
              (TOOL_RUN{0, "new_router was read by 1 of 1 run\n  nightly/cpu: read 2 times, no usable value\n", ""}));
    EXPECT_EQ(run({"run-report", "--merge", "--switch", "seed", "cpu.json", "gpu.json", "unnamed.json"}),
              (TOOL_RUN{1, R"(seed was read by 0 of 3 runs
  nightly/cpu: never read, set to 1
  nightly/gpu: perhaps: unset and asked for once, or set inside the run and never read
)",
                        ""}));
    const TOOL_RUN json =
        run({"run-report", "--merge", "--switch", "seed", "cpu.json", "gpu.json", "unnamed.json", "--json"});
    EXPECT_EQ(json.exit_code, 1);
    EXPECT_EQ(json.json(), nlohmann::json::parse(R"({
  "switch": "seed",
  "runs": [
    {"run": "nightly/cpu", "file": "cpu.json", "dependence": "never read", "count": 0, "value": "1"},
    {"run": "nightly/gpu", "file": "gpu.json", "dependence": "perhaps", "count": 0, "value": null},
    {"run": "unnamed.json", "file": "unnamed.json", "dependence": "unknown", "count": 0, "value": null}
  ]
})"));
}

TEST_F(RUN_REPORT, merge_suggests_a_name_for_a_switch_that_no_run_knows)
{
    EXPECT_EQ(run({"run-report", "--merge", "--switch", "max_fanuot", "cpu.json", "gpu.json"}),
              (TOOL_RUN{1, "max_fanuot was read by 0 of 2 runs\n",
                        "velmar-cfg: no report contains 'max_fanuot' (did you mean 'max_fanout'?)\n"}));
}

TEST_F(RUN_REPORT, merge_tells_runs_of_one_name_apart)
{
    write_file("again.json", cpu_run);
    EXPECT_EQ(run({"run-report", "--merge", "--switch", "effort", "cpu.json", "again.json", "gpu.json"}).out,
              R"(effort was read by 2 of 3 runs
  nightly/cpu (cpu.json): read 40 times, set to 5
  nightly/cpu (again.json): read 40 times, set to 5
  nightly/gpu: never read, set to 5
)");
}

TEST_F(RUN_REPORT, takes_one_file_unless_told_to_merge)
{
    EXPECT_EQ(run({"run-report", "cpu.json", "gpu.json"}),
              (TOOL_RUN{2, "", "velmar-cfg: run-report shows one report; give --merge to put several together\n"}));
    EXPECT_EQ(run({"run-report"}),
              (TOOL_RUN{2, "", "velmar-cfg: FILE is required; see velmar-cfg run-report --help\n"}));
    EXPECT_EQ(run({"run-report", "--switch", "a", "cpu.json"}),
              (TOOL_RUN{2, "", "velmar-cfg: --switch requires --merge; see velmar-cfg run-report --help\n"}));
}

struct BAD_REPORT
{
    const char* name;
    const char* content;
    const char* complaint; // behind "velmar-cfg: report.json: "
};

void PrintTo(const BAD_REPORT& row, std::ostream* stream)
{
    *stream << row.name;
}

class BAD_RUN_REPORT : public TOOL_TEST, public testing::WithParamInterface<BAD_REPORT>
{
};

TEST_P(BAD_RUN_REPORT, is_refused_with_what_is_wrong)
{
    write_file("report.json", GetParam().content);
    const TOOL_RUN expected = {3, "", "velmar-cfg: report.json: " + std::string(GetParam().complaint) + "\n"};
    EXPECT_EQ(run({"run-report", "report.json"}), expected);
    EXPECT_EQ(run({"run-report", "--merge", "report.json"}), expected);
}

// A report whose rows are these.
#define REPORT_WITH(rows)                                                                                              \
    R"({"schema": "velmar-run-report", "schema_version": 1, "run": "r", "release": "1",)"                              \
    R"("files": {"main": null, "appended": null, "regtest": null}, )" rows "}"

// One of version 2 with this row and one source.
#define REPORT_OF_VERSION_2(row)                                                                                       \
    R"({"schema": "velmar-run-report", "schema_version": 2, "run": "r", "release": "1", "outcome": null,)"             \
    R"("host": null, "process": 1, "directory": null, "executable": null, "started": null, "ended": "",)"              \
    R"("environment": [], "sources_complete": true,)"                                                                  \
    R"("sources": [{"layer": "inline", "external": true, "text": "a=1", "state": "same"}],)"                           \
    R"("read": [)" row R"(], "external_never_read": [], "asked_once": [], "set_never_read": []})"

INSTANTIATE_TEST_SUITE_P(
    rows, BAD_RUN_REPORT,
    testing::Values(
        BAD_REPORT{"empty", "",
                   "is not well-formed JSON from line 1, column 1 on; give a run report as a host's "
                   "cfg_write_run_report writes it"},
        BAD_REPORT{"cut_off", "{\n  \"schema\": \"velm",
                   "is not well-formed JSON from line 2, column 18 on; give a run report as a host's "
                   "cfg_write_run_report writes it"},
        BAD_REPORT{"settings_file", "max_fanout = 12\n",
                   "is not well-formed JSON from line 1, column 1 on; give a run report as a host's "
                   "cfg_write_run_report writes it"},
        BAD_REPORT{"another_document", "[]",
                   "is no run report; give one that a host's cfg_write_run_report has written"},
        BAD_REPORT{"a_snapshot", R"({"schema": "velmar-snapshot", "schema_version": 1})",
                   "is no run report; give one that a host's cfg_write_run_report has written"},
        BAD_REPORT{"no_version", R"({"schema": "velmar-run-report"})",
                   "is no run report; give one that a host's cfg_write_run_report has written"},
        BAD_REPORT{"version_as_text", R"({"schema": "velmar-run-report", "schema_version": "1"})",
                   "is no run report; give one that a host's cfg_write_run_report has written"},
        BAD_REPORT{"newer_version", R"({"schema": "velmar-run-report", "schema_version": 3})",
                   "is a run report of version 3, and this velmar-cfg knows them up to version 2; use a newer "
                   "velmar-cfg"},
        BAD_REPORT{"source_out_of_range",
                   REPORT_OF_VERSION_2(R"({"name": "a", "count": 1, "value": "1", "external": true, "used": true,)"
                                       R"("source": 1, "line": 1})"),
                   ".read[0].source is no index of a source; have the file written again"},
        BAD_REPORT{"no_source",
                   REPORT_OF_VERSION_2(R"({"name": "a", "count": 1, "value": "1", "external": true, "used": true})"),
                   ".read[0].source is missing; have the file written again"},
        BAD_REPORT{"origin_of_no_kind",
                   REPORT_OF_VERSION_2(R"({"name": "a", "count": 1, "value": "1", "external": true, "used": true,)"
                                       R"("origin": "guess"})"),
                   ".read[0].origin is no origin; have the file written again"},
        BAD_REPORT{"field_missing", R"({"schema": "velmar-run-report", "schema_version": 1, "files": {}})",
                   ".run is missing; have the file written again"},
        BAD_REPORT{"files_no_object", R"({"schema": "velmar-run-report", "schema_version": 1, "run": "r",
                   "release": "1", "files": 3})",
                   ".files.main is missing; have the file written again"},
        BAD_REPORT{"rows_no_list", REPORT_WITH(R"("read": {}, "external_never_read": [], "uncounted": [])"),
                   ".read is no list; have the file written again"},
        BAD_REPORT{"negative_count", REPORT_WITH(R"("read": [{"name": "a", "count": -1}])"),
                   ".read[0].count is no natural number; have the file written again"},
        BAD_REPORT{"mark_no_truth_value",
                   REPORT_WITH(R"("read": [{"name": "a", "count": 1, "value": null, "external": "yes"}])"),
                   ".read[0].external is no truth value; have the file written again"},
        BAD_REPORT{"name_no_text", REPORT_WITH(R"("read": [], "external_never_read": [{"name": 1}])"),
                   ".external_never_read[0].name is no text; have the file written again"},
        BAD_REPORT{"second_row", REPORT_WITH(R"("read": [], "external_never_read": [], "uncounted": ["a", null])"),
                   ".uncounted[1] is no text; have the file written again"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(RUN_REPORT, that_cannot_be_read_says_why)
{
    EXPECT_EQ(run({"run-report", "missing.json"}),
              (TOOL_RUN{3, "", "velmar-cfg: missing.json: No such file or directory; check the path\n"}));
    EXPECT_EQ(run({"run-report", "--merge", ".", "missing.json"}),
              (TOOL_RUN{3, "",
                        "velmar-cfg: .: is a directory, not a file; check the path\n"
                        "velmar-cfg: missing.json: No such file or directory; check the path\n"}));
}

TEST_F(RUN_REPORT, merge_names_the_bad_ones_and_answers_from_the_others)
{
    write_file("cut.json", "{");
    const std::string told =
        "velmar-cfg: cut.json: is not well-formed JSON from line 1, column 2 on; give a run report as "
        "a host's cfg_write_run_report writes it\n"
        "velmar-cfg: .: is a directory, not a file; check the path\n";
    const TOOL_RUN good = run({"run-report", "--merge", "cpu.json", "gpu.json"});
    EXPECT_EQ(run({"run-report", "--merge", "cut.json", "cpu.json", ".", "gpu.json"}), (TOOL_RUN{3, good.out, told}));
    EXPECT_EQ(run({"run-report", "--merge", "cut.json", ".", "gpu.json", "--json"}).json()["runs"], 1);
    EXPECT_EQ(run({"run-report", "--merge", "--switch", "max_fanout", "cut.json", "gpu.json", "."}),
              (TOOL_RUN{3, "max_fanout was read by 1 of 1 run\n  nightly/gpu: read 1 time, set to 16\n", told}));
}

TEST_F(RUN_REPORT, merge_takes_standard_input_once)
{
    standard_input = "gpu.json";
    EXPECT_EQ(run({"run-report", "--merge", "cpu.json", "-"}), run({"run-report", "--merge", "cpu.json", "gpu.json"}));
    const TOOL_RUN twice = {
        2, "", "velmar-cfg: standard input has been read already; only one argument or option can take it\n"};
    EXPECT_EQ(run({"run-report", "--merge", "-", "-", "cpu.json"}), twice);
    EXPECT_EQ(run({"diff", "cpu.json", "-", "--used", "-"}), twice);
    standard_input = "unnamed.json";
    EXPECT_THAT(run({"run-report", "-"}).out, testing::StartsWith("Run standard input, release 23.4\n"));
}

// The runs of a farm have a seed each.
TEST_F(RUN_REPORT, merge_counts_values_and_shows_a_few)
{
    std::vector<std::string> arguments = {"run-report", "--merge"};
    for (int i = 1; i <= 40; ++i)
    {
        const std::string name = "run" + std::to_string(i);
        nlohmann::json report = nlohmann::json::parse(unnamed_run);
        report["run"] = "";
        report["external_never_read"] = {{{"name", "seed"}, {"value", "s" + std::to_string(i % 20)}}};
        report["uncounted"] = nlohmann::json::array();
        write_file("set_in_" + name, report.dump());
        report["external_never_read"] = nlohmann::json::array();
        report["uncounted"] = {"SEED"};
        write_file(name, report.dump());
        arguments.insert(arguments.end(), {"set_in_" + name, name});
    }
    EXPECT_EQ(run(arguments), (TOOL_RUN{0, R"(Set from outside and read by none of 80 runs
  seed=s1, s2, s3 and 17 more  set in 40 runs
    perhaps asked for once, while unset, by run1, run2, run3 and 37 more
)",
                                        ""}));
    arguments.emplace_back("--json");
    const nlohmann::json all = run(arguments).json()["never_read"][0];
    EXPECT_EQ(all["values"].size(), 20U);
    EXPECT_EQ(all["set_in_runs"].size(), 40U);
}

TEST_F(RUN_REPORT, shows_the_beginning_of_a_long_value)
{
    const std::string value(500'000, 'x');
    const std::string shown = std::string(100, 'x') + "...";
    nlohmann::json report = nlohmann::json::parse(unnamed_run);
    report["run"] = "long";
    report["external_never_read"] = {{{"name", "a"}, {"value", value}}};
    report["read"] = {{{"name", "b"}, {"count", 1}, {"value", value}, {"external", true}, {"used", true}}};
    report["uncounted"] = {value};
    write_file("long.json", report.dump());
    EXPECT_EQ(run({"run-report", "--merge", "long.json"}).out,
              "Set from outside and read by none of 1 run\n  a=" + shown + "  set in 1 run\n");
    EXPECT_EQ(run({"run-report", "--merge", "--switch", "b", "long.json"}).out,
              "b was read by 1 of 1 run\n  long: read 1 time, set to " + shown + "\n");
    const TOOL_RUN single = run({"run-report", "long.json"});
    EXPECT_LT(single.out.size(), 1000U);
    EXPECT_THAT(single.out, testing::HasSubstr("b=" + shown + "  external\n"));
    EXPECT_THAT(single.out, testing::HasSubstr("\n  a=" + shown + "\n"));
    EXPECT_THAT(single.out, testing::HasSubstr("\n  " + shown + "\n"));
}
}
