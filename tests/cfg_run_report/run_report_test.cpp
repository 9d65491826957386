// The run report as a file.
#include "cfg_run_report/cfg_run_report.h"

#include <cmath>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <limits>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "cfg_ini/cfg_ini.h"
#include "cfg_run_report/run_circumstances.h"
#include "tests/support/faked_test.h"
#include "tests/support/system_text.h"

namespace
{
using nlohmann::json;

class RUN_REPORT_TEST : public FAKED_TEST
{
protected:
    ~RUN_REPORT_TEST() override
    {
        cfg_close_ini_file();
    }

    json report(const CFG_RUN_REPORT_OPTIONS& options = {}) const
    {
        const CFG_RUN_REPORT_RESULT result = cfg_write_run_report(file, options);
        EXPECT_TRUE(result.written) << result.error;
        return json::parse(read_file(file));
    }

    const std::string file = temporary.path("report.json");
};

using RUN_REPORT = RUN_REPORT_TEST;

// The part of the document behind its circumstances.
std::string from_sources(const std::string& text)
{
    return text.substr(text.find("  \"sources_complete\""));
}

constexpr const char* report_of_a_run = R"(  "sources_complete": true,
  "sources": [
    {"layer":"main","external":true,"path":"DIRECTORY/project/velmar.ini","size":58,"modified":"2001-09-09T01:46:40.000000005Z","state":"same"},
    {"layer":"inline","external":true,"text":"late=1;effort=4","state":"same"},
    {"layer":"regtest","external":false,"path":"DIRECTORY/project/regtest.ini","size":10,"modified":"2001-09-09T01:46:40.000000005Z","state":"same"}
  ],
  "read": [
    {"name":"effort","count":2,"value":"4","external":true,"used":true,"source":1,"item":2,"overridden":[{"source":0,"line":1,"value":"3"}]},
    {"name":"path","count":1,"value":"\"C:\\dir\"","external":true,"used":false,"source":0,"line":2},
    {"name":"other","count":1,"value":"2","external":true,"used":true,"origin":"program","overridden":[{"source":0,"line":5,"value":"1"}]},
    {"name":"not_told","count":1,"value":null,"external":false,"used":false,"origin":"unknown"},
    {"name":"never_set","count":1,"value":null,"external":false,"used":false,"origin":"unset"}
  ],
  "external_never_read": [
    {"name":"unread","value":"x","source":0,"line":3},
    {"name":"late","value":"1","source":1,"item":1},
    {"name":"empty","value":"","source":0,"line":4}
  ],
  "asked_once": [
    "asked_once"
  ],
  "set_never_read": [
    "seed",
    "by_program"
  ]
}
)";

TEST_F(RUN_REPORT, IsThisDocument)
{
    const std::string main_file = temporary.path("project/velmar.ini");
    write_file(main_file, "effort = 3\npath = \"C:\\dir\"\nunread = x\nempty =\nother = 1\n \n");
    const std::string regtest_file = temporary.path("project/regtest.ini");
    write_file(regtest_file, "seed = 17\n");
    for (const std::string& each : {main_file, regtest_file})
    {
        const struct timespec times[] = {{1'000'000'000, 5}, {1'000'000'000, 5}};
        ASSERT_EQ(utimensat(AT_FDCWD, each.c_str(), times, 0), 0);
    }
    environment.set("VELMAR_INI_VARS", "late=1;effort=4");
    EXPECT_IN_FRESH_PROCESS({
        cfg_read_project_ini_file("../project", true);
        static_cast<void>(cfg_get_int_value("effort", 0));
        static_cast<void>(cfg_get_int_value("effort", 0));
        static_cast<void>(cfg_get_int_value("path", 0));
        cfg_set_value("other", "2");
        static_cast<void>(cfg_get_int_value("other", 0));
        cfg_set_value("not_told", "text");
        static_cast<void>(cfg_get_int_value("not_told", 0));
        static_cast<void>(cfg_get_int_value("never_set", 0));
        static_cast<void>(cfg_get_int_value("never_set", 0));
        static_cast<void>(cfg_get_int_value("asked_once", 0));
        cfg_set_value("by_program", "1");
        const CFG_RUN_REPORT_RESULT result = cfg_write_run_report(file, "nightly \"cpu\"");
        EXPECT_TRUE(result.written);
        EXPECT_EQ("", result.error);
        std::string text = read_file(file);
        EXPECT_EQ(json::parse(text).at("run"), "nightly \"cpu\"");
        EXPECT_TRUE(text.starts_with("{\n  \"schema\": \"velmar-run-report\",\n  \"schema_version\": 2,\n"));
        const std::string directory = temporary.path("cwd/..");
        for (std::size_t at = text.find(directory); at != std::string::npos; at = text.find(directory))
            text.replace(at, directory.size(), "DIRECTORY");
        EXPECT_EQ(report_of_a_run, from_sources(text));
    });
}

TEST_F(RUN_REPORT, OfARunWithoutSettingsIsEmpty)
{
    EXPECT_IN_FRESH_PROCESS({
        EXPECT_TRUE(cfg_write_run_report(file).written);
        EXPECT_EQ("  \"sources_complete\": true,\n  \"sources\": [],\n  \"read\": [],\n  \"external_never_read\": [],\n"
                  "  \"asked_once\": [],\n  \"set_never_read\": []\n}\n",
                  from_sources(read_file(file)));
    });
}

TEST_F(RUN_REPORT, TellsWhoWhereAndWhen)
{
    cfg_read_ini_file("");
    fake::ver::set_version("24.1");
    environment.set("VELMAR_INI", "somewhere");
    environment.unset("HOME");
    const std::string before = circumstances_of_this_run().ended;
    const json written = report();
    const std::string after = circumstances_of_this_run().ended;
    char host[256] = {};
    ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
    EXPECT_EQ(written.at("run"), "");
    EXPECT_EQ(written.at("release"), "24.1");
    EXPECT_EQ(written.at("host"), host);
    EXPECT_EQ(written.at("process"), getpid());
    EXPECT_EQ(written.at("directory"), std::filesystem::current_path().string());
    EXPECT_EQ(written.at("executable"), std::filesystem::read_symlink("/proc/self/exe").string());
    EXPECT_LE(before, written.at("ended"));
    EXPECT_LE(written.at("ended"), after);
    EXPECT_LE(written.at("started"), written.at("ended"));
    EXPECT_EQ(written.at("environment"),
              json::parse(R"([{"name": "VELMAR_INI", "value": "somewhere"}, {"name": "HOME", "value": null},
                              {"name": "VELMAR_INI_DISABLED", "value": null},
                              {"name": "APPENDED_VELMAR_INI", "value": null},
                              {"name": "VELMAR_INI_VARS", "value": null}, {"name": "VELMAR2_INI", "value": null}])"));
}

// The child is started by this process, and so later: by the clock as the system shows it for a new file of /proc.
TEST_F(RUN_REPORT, TheStartIsThatOfTheProcess)
{
    const auto seconds_ago = [](const std::string& text)
    {
        struct tm parts = {};
        EXPECT_NE(strptime(text.c_str(), "%Y-%m-%dT%H:%M:%SZ", &parts), nullptr);
        return std::difftime(std::time(nullptr), timegm(&parts));
    };
    struct stat status = {};
    ASSERT_EQ(stat("/proc/self", &status), 0);
    const double by_proc = std::difftime(std::time(nullptr), status.st_mtim.tv_sec);
    const double told = seconds_ago(circumstances_of_this_run().started.value());
    EXPECT_GE(told, 0);
    EXPECT_GE(told + 3, by_proc) << "/proc shows the process no earlier than it was";

    const std::time_t before = std::time(nullptr);
    const pid_t child = fork();
    if (child == 0)
        _exit(seconds_ago(circumstances_of_this_run().started.value()) <= std::difftime(std::time(nullptr), before) + 2
                  ? 0
                  : 1);
    int ended = 0;
    ASSERT_EQ(waitpid(child, &ended, 0), child);
    EXPECT_EQ(ended, 0) << "a process that starts now is told to be older";
}

TEST_F(RUN_REPORT, TimesAreUtc)
{
    EXPECT_EQ(time_as_text(0), "1970-01-01T00:00:00Z");
    EXPECT_EQ(time_as_text(951'782'399), "2000-02-28T23:59:59Z");
    EXPECT_EQ(time_as_text(951'782'400, 0), "2000-02-29T00:00:00.000000000Z");
    EXPECT_EQ(time_as_text(4'102'444'800), "2100-01-01T00:00:00Z") << "beyond 32 bits";
    EXPECT_EQ(time_as_text(-1, 999'999'999), "1969-12-31T23:59:59.999999999Z");
    EXPECT_EQ(time_as_text(std::numeric_limits<std::int64_t>::max()), "9223372036854775807") << "no year holds it";
}

TEST_F(RUN_REPORT, TellsTheOutcomeThatItIsGiven)
{
    struct ROW
    {
        CFG_RUN_OUTCOME outcome;
        double number;
        json expected;
    };
    const ROW rows[] = {
        {CFG_RUN_OUTCOME::NOT_GIVEN, 5, nullptr},
        {CFG_RUN_OUTCOME::PASS, 5, "pass"},
        {CFG_RUN_OUTCOME::FAIL, 5, "fail"},
        {CFG_RUN_OUTCOME::NUMBER, 12.5, 12.5},
        {CFG_RUN_OUTCOME::NUMBER, 0, 0.0},
        {CFG_RUN_OUTCOME::NUMBER, HUGE_VAL, "inf"},
        {CFG_RUN_OUTCOME::NUMBER, -HUGE_VAL, "-inf"},
        {CFG_RUN_OUTCOME::NUMBER, std::nan(""), "nan"},
    };
    cfg_read_ini_file("");
    for (const auto& [outcome, number, expected] : rows)
    {
        CFG_RUN_REPORT_OPTIONS options;
        options.outcome = outcome;
        options.number = number;
        EXPECT_EQ(report(options).at("outcome"), expected);
    }
}

TEST_F(RUN_REPORT, BytesThatAreNoUtf8AreKept)
{
    cfg_read_ini_file("");
    cfg_set_value("name\xff", "val\xc3ue");
    static_cast<void>(cfg_get_value("name\xff"));
    cfg_set_value("unread\xfe", "x");
    CFG_RUN_REPORT_OPTIONS options;
    options.run = "\x80";
    const json written = report(options);
    EXPECT_EQ(written.at("run"), json::parse(R"({"hex": "80"})"));
    EXPECT_EQ(written.at("read").at(0).at("name"), json::parse(R"({"hex": "6e616d65ff"})"));
    EXPECT_EQ(written.at("read").at(0).at("value"), json::parse(R"({"hex": "76616cc37565"})"));
    EXPECT_EQ(written.at("set_never_read").at(0), json::parse(R"({"hex": "756e72656164fe"})"));
}

TEST_F(RUN_REPORT, SaysOfASourceThatChangedThatItGivesNoLines)
{
    write_file(temporary.path("main.ini"), "a = 1\n");
    cfg_read_ini_file(temporary.path("main.ini"));
    static_cast<void>(cfg_get_value("a"));
    std::filesystem::remove(temporary.path("main.ini"));
    const json written = report();
    EXPECT_EQ(written.at("sources").at(0).at("state"), "gone");
    EXPECT_EQ(written.at("read").at(0).at("origin"), "unknown");
    EXPECT_EQ(written.at("read").at(0).at("perhaps"), json::parse(R"([{"source": 0}])"));
}

TEST_F(RUN_REPORT, AVariableThatIsSetToTheEmptyTextIsNoUnsetOne)
{
    write_file(temporary.path("main.ini"), "");
    cfg_read_ini_file(temporary.path("main.ini"));
    write_file(temporary.path("regtest.ini"), "set_empty =\n");
    cfg_read_regtest_ini_file(temporary.path("regtest.ini"));
    const json written = report();
    EXPECT_EQ(written.at("asked_once"), json::array());
    EXPECT_EQ(written.at("set_never_read"), json::array({"set_empty"}));
}

TEST_F(RUN_REPORT, IsReadByWhomTheUmaskLetsUnlessTheOptionsSayOtherwise)
{
    const auto mode = [this]
    {
        struct stat status = {};
        EXPECT_EQ(stat(file.c_str(), &status), 0);
        return status.st_mode & 0777U;
    };
    cfg_read_ini_file("");
    const mode_t before = umask(022);
    report();
    EXPECT_EQ(mode(), 0644U);
    CFG_RUN_REPORT_OPTIONS options;
    options.only_owner_may_read = true;
    report(options);
    EXPECT_EQ(mode(), 0600U);
    umask(before);
}

// The example of version 1: a row of six lines for each variable that was read.
TEST_F(RUN_REPORT, TakesLittleMoreRoomThanVersion1)
{
    std::string lines;
    std::size_t size_of_version_1 = 0;
    for (int i = 0; i < 1000; ++i)
    {
        const std::string name = "a_variable_" + std::to_string(i);
        lines += name + " = 12\n";
        const std::string row = i % 2 == 0
                                    ? "    {\n      \"name\": \"" + name +
                                          "\",\n      \"count\": 1,\n      \"value\": \"12\",\n"
                                          "      \"external\": true,\n      \"used\": true\n    },\n"
                                    : "    {\n      \"name\": \"" + name + "\",\n      \"value\": \"12\"\n    },\n";
        size_of_version_1 += row.size();
    }
    write_file(temporary.path("main.ini"), lines);
    cfg_read_ini_file(temporary.path("main.ini"));
    for (int i = 0; i < 1000; i += 2)
        static_cast<void>(cfg_get_value("a_variable_" + std::to_string(i)));
    report();
    EXPECT_LT(static_cast<double>(read_file(file).size()), 1.3 * static_cast<double>(size_of_version_1));
}

TEST_F(RUN_REPORT, ThatCannotBeWrittenSaysWhichFileAndWhy)
{
    cfg_read_ini_file("");
    const std::string nowhere = temporary.path("nowhere/report.json");
    const CFG_RUN_REPORT_RESULT result = cfg_write_run_report(nowhere);
    EXPECT_FALSE(result.written);
    EXPECT_EQ("cannot write the run report " + nowhere + ": " + system_text(std::errc::no_such_file_or_directory),
              result.error);
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

// A host's own function may throw anything.
TEST_F(RUN_REPORT, AnExceptionOfAnyTypeIsReportedNotThrown)
{
    cfg_read_ini_file("");
    const std::string error = "cannot write the run report " + file + ": an exception that is no std::exception";
    fake::thr::before_lock(1, [] { throw 5; });
    EXPECT_EQ(cfg_write_run_report(file, "nightly").error, error);
    fake::thr::before_lock(1, [] { throw 5; });
    const CFG_RUN_REPORT_RESULT result = cfg_write_run_report(file, CFG_RUN_REPORT_OPTIONS{});
    EXPECT_FALSE(result.written);
    EXPECT_EQ(result.error, error);
    EXPECT_FALSE(std::filesystem::exists(file));
}
}
