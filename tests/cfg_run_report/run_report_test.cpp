// The run report as a file.
#include "cfg_run_report/cfg_run_report.h"

#include <filesystem>

#include "cfg_ini/cfg_ini.h"
#include "tests/support/faked_test.h"

namespace
{
class RUN_REPORT_TEST : public FAKED_TEST
{
protected:
    ~RUN_REPORT_TEST() override
    {
        cfg_close_ini_file();
    }

    const std::string file = temporary.path("report.json");
};

using RUN_REPORT = RUN_REPORT_TEST;

constexpr const char* report_of_a_run = R"({
  "schema": "velmar-run-report",
  "schema_version": 1,
  "run": "nightly \"cpu\"",
  "release": "24.1",
  "files": {
    "main": "../cwd/velmar.ini",
    "appended": null,
    "regtest": "../cwd/regtest.ini"
  },
  "read": [
    {
      "name": "effort",
      "count": 2,
      "value": "3",
      "external": true,
      "used": true
    },
    {
      "name": "path",
      "count": 1,
      "value": "\"C:\\dir\"",
      "external": true,
      "used": false
    }
  ],
  "external_never_read": [
    {
      "name": "unread",
      "value": "x"
    }
  ],
  "uncounted": [
    "seed",
    "asked_once"
  ]
}
)";

TEST_F(RUN_REPORT, IsThisDocument)
{
    write_file(temporary.path("cwd/velmar.ini"), "effort = 3\npath = \"C:\\dir\"\nunread = x\n");
    write_file(temporary.path("cwd/regtest.ini"), "seed = 17\n");
    EXPECT_IN_FRESH_PROCESS({
        fake::ver::set_version("24.1");
        cfg_read_project_ini_file("../cwd", true);
        static_cast<void>(cfg_get_int_value("effort", 0));
        static_cast<void>(cfg_get_int_value("effort", 0));
        static_cast<void>(cfg_get_int_value("path", 0));
        static_cast<void>(cfg_get_int_value("asked_once", 0));
        const CFG_RUN_REPORT_RESULT result = cfg_write_run_report(file, "nightly \"cpu\"");
        EXPECT_TRUE(result.written);
        EXPECT_EQ("", result.error);
        EXPECT_EQ(report_of_a_run, read_file(file));
    });
}

constexpr const char* report_of_nothing = R"({
  "schema": "velmar-run-report",
  "schema_version": 1,
  "run": "",
  "release": "23.4",
  "files": {
    "main": null,
    "appended": null,
    "regtest": null
  },
  "read": [],
  "external_never_read": [],
  "uncounted": []
}
)";

TEST_F(RUN_REPORT, OfARunWithoutSettingsIsEmpty)
{
    EXPECT_IN_FRESH_PROCESS({
        EXPECT_TRUE(cfg_write_run_report(file).written);
        EXPECT_EQ(report_of_nothing, read_file(file));
    });
}

TEST_F(RUN_REPORT, BytesThatAreNoUtf8AreReplaced)
{
    cfg_read_ini_file("");
    cfg_set_value("name\xff", "val\xc3ue");
    static_cast<void>(cfg_get_value("name\xff"));
    ASSERT_TRUE(cfg_write_run_report(file).written);
    const std::string text = read_file(file);
    EXPECT_NE(std::string::npos, text.find("\"name\": \"name\xef\xbf\xbd\""));
    EXPECT_NE(std::string::npos, text.find("\"value\": \"val\xef\xbf\xbdue\""));
}

TEST_F(RUN_REPORT, ThatCannotBeWrittenSaysWhichFileAndWhy)
{
    cfg_read_ini_file("");
    const std::string nowhere = temporary.path("nowhere/report.json");
    const CFG_RUN_REPORT_RESULT result = cfg_write_run_report(nowhere);
    EXPECT_FALSE(result.written);
    EXPECT_EQ("cannot write the run report " + nowhere + ": No such file or directory", result.error);
}

TEST_F(RUN_REPORT, AFailureInsideIsReportedNotThrown)
{
    cfg_read_ini_file("");
    fake::thr::before_lock(1, fake::out_of_memory);
    const CFG_RUN_REPORT_RESULT result = cfg_write_run_report(file);
    EXPECT_FALSE(result.written);
    EXPECT_EQ("cannot write the run report " + file + ": std::bad_alloc", result.error);
    EXPECT_FALSE(std::filesystem::exists(file));
}
}
