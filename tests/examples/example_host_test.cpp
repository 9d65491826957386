// The example host as a process, on the sample project: its whole output.
#include <gtest/gtest.h>

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

TEST_F(EXAMPLE_HOST, WithoutAProjectSaysHowItIsUsed)
{
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {}, {"--regtest"}, {"project", "project"}, {"--no-such-option", "project"}})
    {
        std::vector<std::string> command = {ZON_TEST_EXAMPLE_HOST};
        command.insert(command.end(), arguments.begin(), arguments.end());
        const PROGRAM_RESULT result = run_program(command);
        EXPECT_EQ(2, result.status);
        EXPECT_EQ("", result.out);
        EXPECT_EQ("usage: " ZON_TEST_EXAMPLE_HOST " [--regtest] PROJECT_DIRECTORY\n", result.err);
    }
}
}
