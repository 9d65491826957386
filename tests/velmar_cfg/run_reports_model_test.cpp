// What several runs say together.
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/support/isolated_test.h"
#include "tests/support/processor_time.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/documents/run_reports.h"
#include "tools/velmar-cfg/documents/snapshot_differences.h"

namespace
{
using nlohmann::ordered_json;
using testing::ElementsAre;
using testing::StartsWith;

// A run that read `read` twice, left `unread` with that value and did not count `uncounted`.
RUN_REPORT run_of(const std::string& name, const std::string& read, const std::string& unread, const std::string& value,
                  const std::string& uncounted)
{
    RUN_REPORT report;
    report.run = name;
    report.read.push_back({read, 2, "on", true, true});
    report.external_never_read.push_back({unread, value});
    report.uncounted.push_back(uncounted);
    return report;
}

const std::vector<RUN_REPORT> runs = {
    run_of("one", "a", "Seed", "1", "u"),
    run_of("two", "A", "seed", "2", "x"),
    run_of("three", "b", "SEED", "1", "seed"),
};

TEST(RUN_REPORTS_MODEL, tell_how_runs_stand_to_a_switch)
{
    using KIND = DEPENDENCE::KIND;
    struct ROW
    {
        const char* name;
        std::vector<KIND> kinds;
        std::size_t depending;
        bool known;
    };
    const ROW rows[] = {
        {"a", {KIND::READ, KIND::READ, KIND::UNKNOWN}, 2, true},
        {"SEED", {KIND::NEVER_READ, KIND::NEVER_READ, KIND::NEVER_READ}, 0, true},
        {"u", {KIND::PERHAPS, KIND::UNKNOWN, KIND::UNKNOWN}, 0, true},
        {"nothing", {KIND::UNKNOWN, KIND::UNKNOWN, KIND::UNKNOWN}, 0, false},
    };
    for (const ROW& row : rows)
    {
        const SWITCH_USE use = use_of_switch(row.name, runs);
        std::vector<KIND> kinds;
        for (const DEPENDENCE& dependence : use.dependences)
            kinds.push_back(dependence.kind);
        EXPECT_EQ(kinds, row.kinds) << row.name;
        for (std::size_t i = 0; i < runs.size(); ++i)
            EXPECT_EQ(DEPENDENCES(runs[i]).on(row.name), row.kinds[i]) << row.name;
        EXPECT_EQ(use.depending_runs, row.depending) << row.name;
        EXPECT_EQ(use.known, row.known) << row.name;
    }
    EXPECT_FALSE(use_of_switch("a", {}).known);
}

TEST(RUN_REPORTS_MODEL, let_the_first_list_with_the_variable_decide)
{
    using KIND = DEPENDENCE::KIND;
    RUN_REPORT run;
    run.read.push_back({"a", 1, "x", true, true});
    run.external_never_read.push_back({"A", "x"});
    run.external_never_read.push_back({"b", "x"});
    run.asked_once = {"b", "c"};
    run.set_never_read = {"C", "d"};
    run.uncounted = {"d", "e"};
    const DEPENDENCES dependences(run);
    for (const auto& [name, kind] : {std::pair("a", KIND::READ),
                                     {"B", KIND::NEVER_READ},
                                     {"c", KIND::ASKED_ONCE},
                                     {"d", KIND::NEVER_READ},
                                     {"e", KIND::PERHAPS},
                                     {"f", KIND::UNKNOWN}})
    {
        EXPECT_EQ(dependences.on(name), kind) << name;
        EXPECT_EQ(dependence_on(name, run).kind, kind) << name;
    }
}

TEST(RUN_REPORTS_MODEL, answer_for_four_times_the_names_in_four_times_the_time)
{
    const auto seconds_for = [](std::size_t count)
    {
        RUN_REPORT run;
        for (std::size_t i = 0; i < count; ++i)
            run.uncounted.push_back("name_" + std::to_string(i));
        SNAPSHOT_DIFFERENCES differences;
        for (std::size_t i = 0; i < count; ++i)
            differences.undecided.push_back({"variables", run.uncounted[count - 1 - i]});
        return least_processor_seconds(
            [&]
            {
                SNAPSHOT_DIFFERENCES kept = differences;
                keep_what_the_run_read(kept, run);
                EXPECT_EQ(kept.undecided.size(), count);
            });
    };
    EXPECT_LT(ratio_of_seconds(seconds_for, 1'000, 4'000, 9), 9) << "the square would take sixteen times as long";
}

TEST(RUN_REPORTS_MODEL, have_a_word_for_each_dependence)
{
    using enum DEPENDENCE::KIND;
    EXPECT_STREQ(dependence_word(READ), "read");
    EXPECT_STREQ(dependence_word(ASKED_ONCE), "asked once");
    EXPECT_STREQ(dependence_word(PERHAPS), "perhaps");
    EXPECT_STREQ(dependence_word(NEVER_READ), "never read");
    EXPECT_STREQ(dependence_word(UNKNOWN), "unknown");
}

TEST(RUN_REPORTS_MODEL, gather_what_no_run_read)
{
    const std::vector<NEVER_READ_VARIABLE> variables = variables_that_no_run_read(runs);
    ASSERT_EQ(variables.size(), 1U);
    EXPECT_EQ(variables[0].name, "Seed");
    EXPECT_THAT(variables[0].values, ElementsAre("1", "2"));
    EXPECT_THAT(variables[0].set_in_runs, ElementsAre("one", "two", "three"));
    EXPECT_THAT(variables[0].perhaps_read_by_runs, ElementsAre("three"));
}

class RUN_REPORTS_FILES : public ISOLATED_TEST
{
protected:
    static ordered_json report_2()
    {
        return ordered_json::parse(R"({"schema": "velmar-run-report", "schema_version": 2, "run": "r", "release": "1",
            "outcome": null, "host": null, "process": 1, "directory": null, "executable": null, "started": null,
            "ended": null, "environment": [{"name": "HOME", "value": null}, {"name": "VELMAR_INI", "value": null}],
            "sources_complete": true, "sources": [],
            "read": [{"name": "a", "count": 2, "value": "1", "external": true, "used": true, "origin": "program"},
                     {"name": "b", "count": 1, "value": null, "external": false, "used": false, "origin": "unset"}],
            "external_never_read": [{"name": "c", "value": "1", "origin": "program"},
                                    {"name": "d", "value": "1", "origin": "unknown"}],
            "asked_once": ["e", "f"], "set_never_read": ["g", "h"]})");
    }

    // The same run as version 1 has it.
    static ordered_json report_1()
    {
        ordered_json json = report_2();
        json["schema_version"] = 1;
        json["files"] = {{"main", nullptr}, {"appended", nullptr}, {"regtest", nullptr}};
        json["uncounted"] = {"e", "f"};
        return json;
    }

    static std::string complaint_about(const ordered_json& json)
    {
        write_file("report.json", json.dump());
        try
        {
            SECRETS secrets;
            read_run_report("report.json", secrets);
        }
        catch (const TOOL_ERROR& error)
        {
            EXPECT_EQ(error.exit_code, EXIT_CODE::BAD_INPUT);
            return error.what();
        }
        return "";
    }
};

TEST_F(RUN_REPORTS_FILES, that_contradict_themselves_are_refused)
{
    struct ROW
    {
        const char* pointer;
        const char* value;
        const char* refused; // what is no row of its own
    };
    const ROW twice[] = {
        {"/read/1/name", R"("A")", ".read[1]"},
        {"/external_never_read/0/name", R"("a")", ".external_never_read[0]"},
        {"/external_never_read/1/name", R"("C")", ".external_never_read[1]"},
        {"/asked_once/0", R"("B")", ".asked_once[0]"},
        {"/asked_once/1", R"("e")", ".asked_once[1]"},
        {"/set_never_read/0", R"("A")", ".set_never_read[0]"},
        {"/set_never_read/0", R"("d")", ".set_never_read[0]"},
        {"/set_never_read/1", R"("F")", ".set_never_read[1]"},
        {"/environment/1/name", R"("HOME")", ".environment[1]"},
    };
    for (const ROW& row : twice)
    {
        ordered_json json = report_2();
        json[ordered_json::json_pointer(row.pointer)] = ordered_json::parse(row.value);
        EXPECT_EQ(complaint_about(json), std::string("report.json: ") + row.refused +
                                             " is no row of its own: there is another of that name; have the file "
                                             "written again")
            << row.pointer << " = " << row.value;
    }
    const ROW otherwise[] = {
        {"/read/0/count", "-1", ".read[0].count is no natural number"},
        {"/read/1/value", R"("1")", ".read[1].value is no null, as of a variable that is unset"},
        {"/external_never_read/0/origin", R"("unset")",
         ".external_never_read[0].value is no null, as of a variable that is unset"},
    };
    for (const ROW& row : otherwise)
    {
        ordered_json json = report_2();
        json[ordered_json::json_pointer(row.pointer)] = ordered_json::parse(row.value);
        EXPECT_EQ(complaint_about(json), std::string("report.json: ") + row.refused + "; have the file written again")
            << row.pointer << " = " << row.value;
    }
    EXPECT_EQ(complaint_about(report_2()), "");
    EXPECT_EQ(complaint_about(report_1()), "");
}

TEST_F(RUN_REPORTS_FILES, may_have_no_assignment_that_wins_and_loses)
{
    ordered_json json = report_2();
    json["sources"] = ordered_json::parse(
        R"([{"role": "inline", "layer": "inline", "external": true, "path": null, "text": "a=1;a=2", "state": "same"}])");
    json["read"][0].erase("origin");
    json["read"][0]["source"] = 0;
    json["read"][0]["item"] = 2;
    json["read"][0]["overridden"] = ordered_json::parse(R"([{"source": 0, "item": 1, "value": "1"}])");
    EXPECT_EQ(complaint_about(json), "");
    json["read"][0]["overridden"][0]["item"] = 2;
    EXPECT_EQ(complaint_about(json), "report.json: .read[0].overridden[0] is no assignment that lost: it is the one "
                                     "that won; have the file written again");
    json["read"][0].erase("item"); // the position is not known
    json["read"][0]["overridden"][0].erase("item");
    EXPECT_EQ(complaint_about(json), "");
}

// It has U+FFFD for every byte that is no UTF-8.
TEST_F(RUN_REPORTS_FILES, of_version_1_may_have_two_names_that_look_the_same)
{
    const char* const pointers[] = {"/read/0/name", "/read/1/name", "/external_never_read/0/name", "/uncounted/0"};
    ordered_json json = report_1();
    for (const char* const pointer : pointers)
        json[ordered_json::json_pointer(pointer)] = "x\xef\xbf\xbd";
    EXPECT_EQ(complaint_about(json), "");
    json["schema_version"] = 2;
    EXPECT_THAT(complaint_about(json), StartsWith("report.json: .read[1] is no row of its own"));
    json = report_1();
    json["uncounted"][0] = "A";
    EXPECT_THAT(complaint_about(json), StartsWith("report.json: .uncounted[0] is no row of its own"));
}

TEST_F(RUN_REPORTS_FILES, take_four_times_the_time_for_four_times_the_names)
{
    const auto seconds_for = [](std::size_t count)
    {
        ordered_json json = report_2();
        for (std::size_t i = 0; i < count; ++i)
            json["set_never_read"].push_back("name_" + std::to_string(i));
        write_file("report.json", json.dump());
        return least_processor_seconds(
            [&]
            {
                SECRETS secrets;
                EXPECT_EQ(read_run_report("report.json", secrets).set_never_read.size(), count + 2);
            });
    };
    EXPECT_LT(ratio_of_seconds(seconds_for, 2'000, 8'000, 9), 9) << "the square would take sixteen times as long";
}

TEST_F(RUN_REPORTS_FILES, that_cannot_be_read_are_told_in_order)
{
    constexpr const char* good = R"({"schema": "velmar-run-report", "schema_version": 1, "run": "", "release": "1",
        "files": {"main": null, "appended": null, "regtest": null},
        "read": [], "external_never_read": [{"name": "", "value": ""}], "uncounted": []})";
    write_file("good", good);
    write_file("bad", "{");
    SECRETS secrets;
    const RUN_REPORTS read = read_run_reports({"missing", "good", "bad", "good"}, secrets);
    ASSERT_EQ(read.reports.size(), 2U);
    EXPECT_EQ(read.reports[0].run, "good (good)");
    EXPECT_THAT(read.problems,
                ElementsAre(StartsWith("missing: No such file"), StartsWith("bad: is not well-formed JSON")));
    // The variable of empty name is one like the others.
    ASSERT_EQ(variables_that_no_run_read(read.reports).size(), 1U);
    EXPECT_EQ(variables_that_no_run_read(read.reports)[0].set_in_runs.size(), 2U);
}
}
