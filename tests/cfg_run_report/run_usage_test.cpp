// What the run report takes from the usage reports, and what it leaves behind in the store.
#include "cfg_run_report/run_usage.h"

#include <algorithm>
#include <map>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_primitives.h"
#include "tests/support/faked_test.h"

using namespace zon_cfg;

bool operator==(const VARIABLE_USAGE& a, const VARIABLE_USAGE& b)
{
    return a.name == b.name && a.count == b.count && a.value == b.value && a.external == b.external && a.used == b.used;
}

void PrintTo(const VARIABLE_USAGE& usage, std::ostream* stream)
{
    *stream << usage.name << " " << usage.count << " (" << usage.value.value_or("no value") << ")"
            << (usage.external ? " external" : "") << (usage.used ? " used" : "");
}

namespace
{
using USAGES = std::vector<VARIABLE_USAGE>;

class RUN_USAGE_TEST : public FAKED_TEST
{
protected:
    RUN_USAGE_TEST()
    {
        read_main_file("");
    }

    ~RUN_USAGE_TEST() override
    {
        cfg_close_ini_file();
    }

    void read_main_file(const std::string& lines)
    {
        write_file(temporary.path("main.ini"), lines);
        cfg_read_ini_file(temporary.path("main.ini"));
    }
};

using RUN_USAGE = RUN_USAGE_TEST;

void read_times(const char* name, int times)
{
    for (int i = 0; i < times; ++i)
        static_cast<void>(cfg_get_value(name));
}

CFG_INI_RECORD record_of(const char* name)
{
    const STORE_LOCK lock;
    return *cfg_ini_get_record(name);
}

TEST_F(RUN_USAGE, NothingUsedIsNothing)
{
    EXPECT_EQ(USAGES{}, usage_of_all_variables());
}

TEST_F(RUN_USAGE, TellsEveryKindOfVariable)
{
    read_main_file("outside_used = 12\n"
                   "outside_not_usable = maybe\n"
                   "outside_not_read = 5\n"
                   "outside_empty =\n");
    cfg_set_value("inside_used", "on");
    cfg_set_value("inside_not_usable", "perhaps");
    cfg_set_value("inside_not_read", "1");

    for (int i = 0; i < 3; ++i)
        static_cast<void>(cfg_get_int_value("outside_used", 0));
    static_cast<void>(cfg_is_on("outside_not_usable", false));
    static_cast<void>(cfg_is_on("inside_used", false));
    static_cast<void>(cfg_is_on("inside_used", false));
    static_cast<void>(cfg_is_on("inside_not_usable", false));
    static_cast<void>(cfg_is_on("unset_asked_once", false));
    for (int i = 0; i < 5; ++i)
        static_cast<void>(cfg_is_on("unset_asked_five_times", false));

    const std::optional<std::string> untold;
    EXPECT_EQ((USAGES{
                  {"unset_asked_five_times", 4, untold, false, false},
                  {"outside_used", 3, "12", true, true},
                  {"inside_used", 2, "on", false, true},
                  {"outside_not_usable", 1, "maybe", true, false},
                  {"inside_not_usable", 1, untold, false, false},
                  {"unset_asked_once", 0, untold, false, false},
                  {"outside_not_read", 0, "5", true, false},
                  {"outside_empty", 0, untold, true, false},
                  {"inside_not_read", 0, untold, false, false},
              }),
              usage_of_all_variables());
}

TEST_F(RUN_USAGE, ListsMoreThanTheRankedReportDoesByItself)
{
    for (int i = 0; i < 25; ++i)
        static_cast<void>(cfg_get_value("variable" + std::to_string(i)));
    EXPECT_EQ(25U, usage_of_all_variables().size());
}

// The host may steer its own ranked report as it likes: everything is listed, and the host's texts stay.
TEST_F(RUN_USAGE, TheHostsOwnSteeringLimitsNothingAndStays)
{
    read_main_file("CFG_Max_To_Report = 1\ncfg_min_accessed_to_report = 3\na = 1\nb = 2\n");
    read_times("a", 1);
    EXPECT_EQ((USAGES{
                  {"a", 1, "1", true, true},
                  {"cfg_min_accessed_to_report", 0, "3", true, false},
                  {"b", 0, "2", true, false},
                  {"CFG_Max_To_Report", 0, "1", true, false},
              }),
              usage_of_all_variables());
    EXPECT_EQ("1", cfg_get_value("cfg_max_to_report"));
    EXPECT_EQ("3", cfg_get_value("cfg_min_accessed_to_report"));
    EXPECT_TRUE(cfg_ini_is_external("cfg_max_to_report"));
}

TEST_F(RUN_USAGE, TextsOfTheHostThatAreNoNumbersStayToo)
{
    cfg_set_value("cfg_max_to_report", "all of them");
    usage_of_all_variables();
    EXPECT_EQ("all of them", record_of("cfg_max_to_report").value);
    EXPECT_EQ("", record_of("cfg_min_accessed_to_report").value);
}

TEST_F(RUN_USAGE, CountsTheHostsOwnAccessesOfTheSteeringVariables)
{
    cfg_set_value("cfg_max_to_report", "7");
    read_times("cfg_max_to_report", 4);
    const USAGES expected = {
        {"cfg_max_to_report", 4, "7", false, true},
    };
    EXPECT_EQ(expected, usage_of_all_variables());
    EXPECT_EQ(expected, usage_of_all_variables()) << "the second report leaves out what the first one did";
    EXPECT_EQ(expected, usage_of_all_variables());

    read_times("cfg_max_to_report", 2);
    EXPECT_EQ((USAGES{{"cfg_max_to_report", 6, "7", false, true}}), usage_of_all_variables());
}

TEST_F(RUN_USAGE, AccessesOfReportsAloneNeverShow)
{
    EXPECT_EQ(USAGES{}, usage_of_all_variables());
    EXPECT_EQ(USAGES{}, usage_of_all_variables());

    read_times("cfg_max_to_report", 1);
    EXPECT_EQ((USAGES{{"cfg_max_to_report", 1, std::nullopt, false, false}}), usage_of_all_variables());
}

TEST_F(RUN_USAGE, ASteeringVariableThatTheHostSetsBetweenReportsShows)
{
    usage_of_all_variables();
    cfg_set_value("cfg_max_to_report", "7");
    EXPECT_EQ((USAGES{{"cfg_max_to_report", 0, std::nullopt, false, false}}), usage_of_all_variables());
}

TEST_F(RUN_USAGE, AHostThatOnlyAskedForTheRankedReportShowsItsTwoSettings)
{
    std::vector<std::pair<std::string, std::string>> ranked;
    cfg_get_most_accessed(&ranked);
    cfg_get_most_accessed(&ranked);
    EXPECT_EQ((USAGES{
                  {"cfg_min_accessed_to_report", 1, std::nullopt, false, false},
                  {"cfg_max_to_report", 1, std::nullopt, false, false},
              }),
              usage_of_all_variables());
}

TEST_F(RUN_USAGE, KeepsTheMarkOfAValidRead)
{
    cfg_set_value("cfg_max_to_report", "7");
    cfg_set_value("cfg_min_accessed_to_report", "2");
    read_times("cfg_max_to_report", 1);
    usage_of_all_variables();
    EXPECT_TRUE(record_of("cfg_max_to_report").had_valid_read);
    EXPECT_FALSE(record_of("cfg_min_accessed_to_report").had_valid_read);
}

TEST_F(RUN_USAGE, StartsAfreshWhenTheStoreIsEmptied)
{
    cfg_set_value("cfg_max_to_report", "7");
    usage_of_all_variables();
    usage_of_all_variables();
    read_main_file("cfg_max_to_report = 5\n");
    read_times("cfg_max_to_report", 1);
    EXPECT_EQ((USAGES{{"cfg_max_to_report", 1, "5", true, true}}), usage_of_all_variables());
}

TEST_F(RUN_USAGE, ForgetsWhichRecordsItMadeWhenTheStoreIsEmptied)
{
    usage_of_all_variables();
    read_main_file("");
    read_times("cfg_max_to_report", 1);
    EXPECT_EQ((USAGES{{"cfg_max_to_report", 0, std::nullopt, false, false}}), usage_of_all_variables());
}

TEST_F(RUN_USAGE, ReadsAndSetsNoOtherVariable)
{
    read_main_file("a = 1\nb = 2\n");
    read_times("a", 1);
    cfg_set_value("c", "text");
    const USAGES before = usage_of_all_variables();
    EXPECT_EQ(before, usage_of_all_variables());
    EXPECT_FALSE(record_of("b").had_valid_read);
    EXPECT_FALSE(record_of("c").had_valid_read);
    EXPECT_EQ(0U, record_of("b").access_count);
}

TEST_F(RUN_USAGE, TheHostsObjectsEndUpToldOfTheHostsValues)
{
    class LISTENER : public CFG_INI_CALLBACK
    {
    public:
        LISTENER() : CFG_INI_CALLBACK("cfg_max_to_report") {}

        void refresh() override
        {
            heard = cfg_get_value("cfg_max_to_report");
        }

        std::string heard;
    };
    cfg_set_value("cfg_max_to_report", "7");
    const LISTENER listener;
    usage_of_all_variables();
    EXPECT_EQ("7", listener.heard);
}

TEST_F(RUN_USAGE, AFailureLeavesTheHostsSteeringAlone)
{
    cfg_set_value("cfg_max_to_report", "7");
    cfg_set_value("cfg_min_accessed_to_report", "2");
    // Nine locks are taken before the host's texts are put back: by the used variables, the two texts remembered, the
    // external variables, the two texts set, and the ranked report's two lookups and its walk.
    for (int nth = 1; nth <= 9; ++nth)
    {
        fake::thr::before_lock(nth, fake::out_of_memory);
        EXPECT_THROW(usage_of_all_variables(), std::bad_alloc) << "lock " << nth;
        EXPECT_EQ("7", cfg_get_value("cfg_max_to_report")) << "lock " << nth;
        EXPECT_EQ("2", cfg_get_value("cfg_min_accessed_to_report")) << "lock " << nth;
    }
}

TEST_F(RUN_USAGE, TheFirstUseOfAllReadsTheSettings)
{
    write_file(temporary.path("cwd/velmar.ini"), "a = 1\n");
    cfg_close_ini_file();
    EXPECT_EQ((USAGES{{"a", 0, "1", true, false}}), usage_of_all_variables());
}
}
