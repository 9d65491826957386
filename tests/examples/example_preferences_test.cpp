// The example host of the preference store as a process, on a copy of the sample preference file: its whole output, and
// the file that it leaves.
#include <gtest/gtest.h>

#include "tests/support/isolated_test.h"
#include "tests/support/run_program.h"

namespace
{
using EXAMPLE_PREFERENCES = ISOLATED_TEST;

TEST_F(EXAMPLE_PREFERENCES, CarriesOverAssignsAndSaves)
{
    const std::string file = temporary.path("velmar2.ini");
    write_file(file, read_file(ZON_TEST_EXAMPLES "/preferences/velmar2.ini"));
    const PROGRAM_RESULT result = run_program({ZON_TEST_EXAMPLE_PREFERENCES}, {{"VELMAR2_INI", temporary.path()}});
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("", result.err);
    EXPECT_EQ(R"(From this release's section
  PROXY_SETTINGS                    proxy.example.com:3128
  PROXY_USER1                       (none)

Carried over from older releases
  HDL_PREFERENCE                    Verilog
  GENERATE_JSON_REPORT_FILES        on
  GENERATE_HTML_REPORT_FILES        1
  NUM_PARALLEL_PROCESSORS           4
  USER_LIBRARIES                    /home/ana/libs;/proj/shared libs
  DISPLAY_WARNING_MESSAGES          on
  SHOW_MESSAGE_ID                   off
  COMMAND_LINE_ERROR_MESSAGE_COLOR  Bright_Red
  EDA_TOOL_PATH_MODELSIM            /opt/modelsim/bin

By the catalogue's default
  PGMW_OVERWRITE_START_UP_DELAY_US  20000
  CLOUD_SEND_REPORTS                is on

Assigned
  HDL_PREFERENCE                    VHDL
  SHOW_MESSAGE_ID                   sometimes (refused: not one of the allowed values)
  SHOW_MESSAGE_ID                   ON
  PGMW_OVERWRITE_START_UP_DELAY_US  5000

Saved, and read again
  HDL_PREFERENCE                    VHDL
  SHOW_MESSAGE_ID                   ON
)",
              result.out);
    EXPECT_EQ(R"(
[EDA_Tool_Paths 23.4_pro]
EDA_TOOL_PATH_MODELSIM = /opt/modelsim/bin

[EDA_Tool_Paths]
EDA_TOOL_PATH_MODELSIM = /opt/modelsim/bin

[General 22.4_pro]
GENERATE_HTML_REPORT_FILES = 1
HDL_PREFERENCE = VHDL
NUM_PARALLEL_PROCESSORS = 4
USER_LIBRARIES = /home/ana/libs;/proj/shared libs

[General 23.3_pro]
GENERATE_JSON_REPORT_FILES = on
HDL_PREFERENCE = Verilog
LAST_TIP_SHOWN = 17

[General 23.4_pro]
GENERATE_HTML_REPORT_FILES = 1
GENERATE_JSON_REPORT_FILES = on
HDL_PREFERENCE = VHDL
NUM_PARALLEL_PROCESSORS = 4
USER_LIBRARIES = /home/ana/libs;/proj/shared libs

[Internet Connectivity 23.4_pro]
PROXY_ENABLED = on
PROXY_SETTINGS = proxy.example.com:3128

[Messages 22.4_pro]
COMMAND_LINE_ERROR_MESSAGE_COLOR = Bright_Red
DISPLAY_WARNING_MESSAGES = on
SHOW_MESSAGE_ID = off

[Messages 23.4_pro]
COMMAND_LINE_ERROR_MESSAGE_COLOR = Bright_Red
DISPLAY_WARNING_MESSAGES = on
SHOW_MESSAGE_ID = ON

[Plugins 23.3_pro]
SYNC = nightly

[Programmer 23.4_pro]
PGMW_OVERWRITE_START_UP_DELAY_US = 5000
)",
              read_file(file));
}

TEST_F(EXAMPLE_PREFERENCES, SaysWhenTheFileCannotBeSaved)
{
    const PROGRAM_RESULT result =
        run_program({ZON_TEST_EXAMPLE_PREFERENCES}, {{"HOME", temporary.path("no such directory")}});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("the preferences could not be saved\n", result.err);
}
}
