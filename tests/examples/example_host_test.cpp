// The example host as a process, on the sample project: its whole output.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/isolated_test.h"
#include "tests/support/run_program.h"

namespace
{
class EXAMPLE_HOST : public ISOLATED_TEST
{
private:
    SCOPED_CURRENT_DIRECTORY examples{ZON_TEST_EXAMPLES};
};

TEST_F(EXAMPLE_HOST, ReportsOnTheSampleProject)
{
    const PROGRAM_RESULT result = run_program({ZON_TEST_EXAMPLE_HOST, "project"});
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("", result.err);
    EXPECT_EQ(R"(Settings files
  main                   project/velmar.ini
  appended               (none)
  regression test        (none)

Answers
  banner                 "Sample; run #1"
  report_dir             reports//nightly
  place_effort           4
  thermallimit           85.500000
  regtest_seed           1
  enhanced_html_reports  on
  msg_sqlite             on
  retry_limit            5
  incremental            (no usable value)
  max_fanout             12
  trace_routes           on for 0 of 100000 routes

After setting variables
  router was told of     1, 3, 7, 6
  router works with      6
  msg_sqlite             off

Most accessed variables
  max_fanout             9
  route_effort           4
  thermallimit           1
  retry_limit            1
  report_dir             1
  msg_sqlite             1

Most accessed of all
  max_fanout             12, asked for 9 times

Variables that the run depended on
  Place_Effort           4
  banner                 "Sample; run #1"
  enhanced_html_reports  ON
  max_fanout             12
  msg_sqlite             off
  report_dir             reports//nightly
  route_effort           6
  thermallimit           85.5

Variables from outside the program
  Place_Effort           4
  banner                 "Sample; run #1"
  cfg_max_to_report      6
  enhanced_html_reports  ON
  incremental            maybe
  licences               http://licences.example.com:1800/pool
  max_fanout             12
  report_dir             reports//nightly
  retry_limit            3x
  route_effort           6
  thermallimit           85.5
)",
              result.out);
}

TEST_F(EXAMPLE_HOST, SeesEveryLayer)
{
    const PROGRAM_RESULT result =
        run_program({ZON_TEST_EXAMPLE_HOST, "--regtest", "project"},
                    {{"APPENDED_VELMAR_INI", "appended.ini"}, {"VELMAR_INI_VARS", "banner=inline"}});
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("", result.err);
    EXPECT_EQ(R"(Settings files
  main                   project/velmar.ini
  appended               appended.ini
  regression test        project/regtest.ini

Answers
  banner                 inline
  report_dir             reports//nightly
  place_effort           4
  thermallimit           85.500000
  regtest_seed           20230401
  enhanced_html_reports  on
  msg_sqlite             on
  retry_limit            5
  incremental            (no usable value)
  max_fanout             16
  trace_routes           on for 100000 of 100000 routes

After setting variables
  router was told of     1, 3, 5, 7, 6
  router works with      6
  msg_sqlite             off

Most accessed variables
  max_fanout             9
  route_effort           5
  trace_routes           1
  thermallimit           1
  retry_limit            1
  report_dir             1

Most accessed of all
  max_fanout             16, asked for 9 times

Variables that the run depended on
  Place_Effort           4
  banner                 inline
  enhanced_html_reports  ON
  max_fanout             16
  msg_sqlite             off
  regtest_seed           20230401
  report_dir             reports//nightly
  route_effort           6
  thermallimit           85.5
  trace_routes           on

Variables from outside the program
  Place_Effort           4
  banner                 inline
  cfg_max_to_report      6
  enhanced_html_reports  ON
  incremental            maybe
  licences               http://licences.example.com:1800/pool
  max_fanout             16
  report_dir             reports//nightly
  retry_limit            3x
  route_effort           6
  thermallimit           85.5
)",
              result.out);
}

TEST_F(EXAMPLE_HOST, WritesARunReport)
{
    const std::string report = temporary.path("run.json");
    const PROGRAM_RESULT result = run_program({ZON_TEST_EXAMPLE_HOST, "--run-report", report, "project"});
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("", result.err);
    nlohmann::ordered_json written = nlohmann::ordered_json::parse(read_file(report));
    EXPECT_EQ(ZON_TEST_EXAMPLES, written.at("directory"));
    EXPECT_EQ(ZON_TEST_EXAMPLE_HOST, written.at("executable"));
    EXPECT_EQ("pass", written.at("outcome"));
    EXPECT_EQ(ZON_TEST_EXAMPLES "/project/velmar.ini", written.at("sources").at(0).at("path"));
    EXPECT_EQ(1U, written.at("sources").size());
    for (const char* const elsewhere :
         {"host", "process", "directory", "executable", "started", "ended", "environment", "sources"})
        written.erase(elsewhere);
    EXPECT_EQ(nlohmann::ordered_json::parse(R"({
  "schema": "velmar-run-report",
  "schema_version": 2,
  "run": "project",
  "release": "23.4",
  "outcome": "pass",
  "sources_complete": true,
  "read": [
    {"name": "max_fanout", "count": 9, "value": "12", "external": true, "used": true, "source": 0, "line": 5},
    {"name": "route_effort", "count": 4, "value": "6", "external": true, "used": true, "origin": "program",
     "overridden": [{"source": 0, "line": 11, "value": "1"}, {"source": 0, "line": 12, "value": "3"}]},
    {"name": "thermallimit", "count": 1, "value": "85.5", "external": true, "used": true, "source": 0, "line": 19},
    {"name": "retry_limit", "count": 1, "value": "3x", "external": true, "used": false, "source": 0, "line": 24},
    {"name": "report_dir", "count": 1, "value": "reports//nightly", "external": true, "used": true,
     "source": 0, "line": 7},
    {"name": "msg_sqlite", "count": 1, "value": "off", "external": false, "used": true, "origin": "program"},
    {"name": "incremental", "count": 1, "value": "maybe", "external": true, "used": false, "source": 0, "line": 23},
    {"name": "enhanced_html_reports", "count": 1, "value": "ON", "external": true, "used": true,
     "source": 0, "line": 22},
    {"name": "cfg_max_to_report", "count": 1, "value": "6", "external": true, "used": true, "source": 0, "line": 27},
    {"name": "banner", "count": 1, "value": "\"Sample; run #1\"", "external": true, "used": true,
     "source": 0, "line": 6},
    {"name": "Place_Effort", "count": 1, "value": "4", "external": true, "used": true, "source": 0, "line": 16,
     "overridden": [{"source": 0, "line": 15, "value": "2"}]}
  ],
  "external_never_read": [
    {"name": "licences", "value": "http://licences.example.com:1800/pool", "source": 0, "line": 8}
  ],
  "asked_once": ["trace_routes", "regtest_seed", "cfg_min_accessed_to_report"],
  "set_never_read": []
})"),
              written);
}

TEST_F(EXAMPLE_HOST, SaysWhyARunReportCannotBeWritten)
{
    const PROGRAM_RESULT result = run_program({ZON_TEST_EXAMPLE_HOST, "--run-report", "/dev/full", "project"});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(ZON_TEST_EXAMPLE_HOST ": cannot write the run report /dev/full: No space left on device\n", result.err);
}

TEST_F(EXAMPLE_HOST, WithoutAProjectSaysHowItIsUsed)
{
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {}, {"--regtest"}, {"project", "project"}, {"project", "--run-report"}, {"--no-such-option", "project"}})
    {
        std::vector<std::string> command = {ZON_TEST_EXAMPLE_HOST};
        command.insert(command.end(), arguments.begin(), arguments.end());
        const PROGRAM_RESULT result = run_program(command);
        EXPECT_EQ(2, result.status);
        EXPECT_EQ("", result.out);
        EXPECT_EQ("usage: " ZON_TEST_EXAMPLE_HOST " [--regtest] [--run-report FILE] PROJECT_DIRECTORY\n", result.err);
    }
}
}
