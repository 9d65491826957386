#include "cfg_ini/cfg_ini_reader/store_primitives.h"

#include <algorithm>

#include "tests/support/store_test.h"

using namespace zon_cfg;

namespace
{
using RANKS = std::vector<std::pair<std::string, std::string>>;

class USAGE_REPORT_TEST : public STORE_TEST
{
protected:
    // Sets a variable and reads it `count` times.
    static void use(const std::string& name, int count)
    {
        cfg_set_value(name, "value of " + name);
        for (int i = 0; i < count; ++i)
            cfg_get_value(name);
    }

    static RANKS most_accessed()
    {
        RANKS ranks;
        cfg_get_most_accessed(&ranks);
        return ranks;
    }

    static ASSIGNMENTS used()
    {
        ASSIGNMENTS map;
        cfg_get_used_variable_value_map(&map);
        return map;
    }

    static ASSIGNMENTS external()
    {
        ASSIGNMENTS map;
        cfg_get_external_variable_value_map(&map);
        return map;
    }
};

// --- The order ---

struct ORDER
{
    USAGE a;
    USAGE b;
    bool a_first;
    bool b_first;
};

void PrintTo(const ORDER& row, std::ostream* out)
{
    *out << testing::PrintToString(row.a) << " and " << testing::PrintToString(row.b);
}

class USAGE_ORDER_TEST : public testing::TestWithParam<ORDER>
{
};

TEST_P(USAGE_ORDER_TEST, is_by_count_and_then_by_name_both_descending)
{
    EXPECT_EQ(cfg_ini_usage_compare(GetParam().a, GetParam().b), GetParam().a_first);
    EXPECT_EQ(cfg_ini_usage_compare(GetParam().b, GetParam().a), GetParam().b_first);
}

INSTANTIATE_TEST_SUITE_P(, USAGE_ORDER_TEST,
                         testing::Values(ORDER{{"a", 2}, {"b", 1}, true, false},
                                         ORDER{{"zeta", 5}, {"alpha", 5}, true, false},
                                         ORDER{{"ab", 5}, {"a", 5}, true, false}, ORDER{{"a", 5}, {"", 5}, true, false},
                                         ORDER{{"a", 5}, {"a", 5}, false, false},
                                         ORDER{{"a", 5}, {"A", 5}, true, false},
                                         ORDER{{"\x80", 5}, {"z", 5}, true, false}, // bytes compare as unsigned
                                         ORDER{{"a", 18446744073709551615U}, {"z", 9223372036854775808U}, true, false},
                                         ORDER{{"a", 4294967296U}, {"b", 1}, true, false}));

// --- The ranked report ---

TEST_F(USAGE_REPORT_TEST, ranks_by_count_and_equal_counts_by_name_backwards)
{
    make_empty_store();
    use("a", 5);
    use("b", 5);
    use("c", 9);
    // The two variables that steer the report are there as well: met for the first time, so with no access counted.
    EXPECT_EQ(
        most_accessed(),
        (RANKS{{"c", "9"}, {"b", "5"}, {"a", "5"}, {"cfg_min_accessed_to_report", "0"}, {"cfg_max_to_report", "0"}}));
}

TEST_F(USAGE_REPORT_TEST, lists_the_variables_that_steer_it_with_the_lookups_made_for_it)
{
    make_empty_store();
    cfg_set_value("cfg_max_to_report", "10");
    EXPECT_EQ(most_accessed(), (RANKS{{"cfg_max_to_report", "1"}, {"cfg_min_accessed_to_report", "0"}}));
    EXPECT_EQ(most_accessed(), (RANKS{{"cfg_max_to_report", "2"}, {"cfg_min_accessed_to_report", "1"}}));
}

TEST_F(USAGE_REPORT_TEST, lists_ten_by_default)
{
    make_empty_store();
    RANKS expected;
    for (int i = 1; i <= 12; ++i)
        use("v" + std::to_string(i), i);
    for (int i = 12; i >= 3; --i)
        expected.emplace_back("v" + std::to_string(i), std::to_string(i));
    EXPECT_EQ(most_accessed(), expected);
}

TEST_F(USAGE_REPORT_TEST, lists_as_many_as_asked_for)
{
    make_empty_store();
    use("a", 3);
    use("b", 2);
    use("c", 7);
    cfg_set_int_value("cfg_max_to_report", 2);
    EXPECT_EQ(most_accessed(), (RANKS{{"c", "7"}, {"a", "3"}}));
    cfg_set_int_value("cfg_max_to_report", 1);
    EXPECT_EQ(most_accessed(), (RANKS{{"c", "7"}}));
}

TEST_F(USAGE_REPORT_TEST, lists_nothing_when_none_are_asked_for)
{
    make_empty_store();
    use("a", 3);
    cfg_set_int_value("cfg_max_to_report", 0);
    EXPECT_EQ(most_accessed(), RANKS{});
}

TEST_F(USAGE_REPORT_TEST, lists_everything_for_a_negative_maximum)
{
    make_empty_store();
    for (int i = 1; i <= 20; ++i)
        cfg_set_value("v" + std::to_string(i), "x");
    cfg_set_int_value("cfg_max_to_report", -1);
    EXPECT_EQ(most_accessed().size(), 22U);
    cfg_set_int_value("cfg_max_to_report", -2147483647 - 1);
    EXPECT_EQ(most_accessed().size(), 22U);
    cfg_set_int_value("cfg_min_accessed_to_report", 2);
    EXPECT_EQ(most_accessed(), (RANKS{{"cfg_max_to_report", "3"}, {"cfg_min_accessed_to_report", "2"}}));
}

TEST_F(USAGE_REPORT_TEST, lists_variables_never_read_unless_a_minimum_leaves_them_out)
{
    read_main_file("never_read=1\nread=1\n");
    cfg_get_value("read");
    EXPECT_EQ(
        most_accessed(),
        (RANKS{{"read", "1"}, {"never_read", "0"}, {"cfg_min_accessed_to_report", "0"}, {"cfg_max_to_report", "0"}}));
    read_main_file("never_read=1\nread=1\ncfg_min_accessed_to_report=1\n");
    cfg_get_value("read");
    EXPECT_EQ(most_accessed(), (RANKS{{"read", "1"}, {"cfg_min_accessed_to_report", "1"}}));
}

TEST_F(USAGE_REPORT_TEST, lists_variables_of_exactly_the_minimum)
{
    make_empty_store();
    use("two", 2);
    use("three", 3);
    use("four", 4);
    cfg_set_int_value("cfg_min_accessed_to_report", 3);
    EXPECT_EQ(most_accessed(), (RANKS{{"four", "4"}, {"three", "3"}}));
}

TEST_F(USAGE_REPORT_TEST, lists_nothing_for_a_negative_minimum)
{
    make_empty_store();
    use("a", 3);
    cfg_set_int_value("cfg_min_accessed_to_report", -1);
    EXPECT_EQ(most_accessed(), RANKS{});
}

TEST_F(USAGE_REPORT_TEST, takes_limits_that_are_no_numbers_for_the_defaults)
{
    make_empty_store();
    use("a", 3);
    cfg_set_value("cfg_min_accessed_to_report", "many");
    cfg_set_value("cfg_max_to_report", "3000000000"); // more than a signed integer holds
    EXPECT_EQ(most_accessed(), (RANKS{{"a", "3"}, {"cfg_min_accessed_to_report", "1"}, {"cfg_max_to_report", "1"}}));
}

TEST_F(USAGE_REPORT_TEST, writes_counts_in_decimal)
{
    make_empty_store();
    use("twelve", 12);
    use("none", 0);
    const RANKS ranks = most_accessed();
    EXPECT_EQ(ranks[0], (RANKS::value_type{"twelve", "12"}));
    EXPECT_EQ(ranks[1], (RANKS::value_type{"none", "0"}));
    {
        const STORE_LOCK lock;
        cfg_ini_get_record("none")->access_count = 18446744073709551615U;
    }
    EXPECT_EQ(most_accessed()[0], (RANKS::value_type{"none", "18446744073709551615"}));
}

TEST_F(USAGE_REPORT_TEST, appends_to_what_is_there)
{
    make_empty_store();
    use("a", 3);
    cfg_set_int_value("cfg_max_to_report", 1);
    RANKS ranks{{"before", "x"}};
    cfg_get_most_accessed(&ranks);
    EXPECT_EQ(ranks, (RANKS{{"before", "x"}, {"a", "3"}}));
}

TEST_F(USAGE_REPORT_TEST, looks_its_limits_up_also_when_there_is_no_place_for_the_report)
{
    write_file(temporary.path("cwd/velmar.ini"), "cfg_max_to_report=5\ncfg_min_accessed_to_report=0\n");
    cfg_get_most_accessed(nullptr);
    ASSERT_TRUE(store_exists()); // by the first lookup
    EXPECT_EQ(record_of("cfg_max_to_report")->access_count, 1U);
    EXPECT_EQ(record_of("cfg_min_accessed_to_report")->access_count, 1U);
}

TEST_F(USAGE_REPORT_TEST, the_ranked_report_causes_the_first_reading)
{
    write_file(temporary.path("cwd/velmar.ini"), "a=1\n");
    EXPECT_EQ(most_accessed(), (RANKS{{"cfg_min_accessed_to_report", "0"}, {"cfg_max_to_report", "0"}, {"a", "0"}}));
}

TEST_F(USAGE_REPORT_TEST, the_ranked_report_walks_under_one_lock_and_survives_a_store_that_vanishes)
{
    make_empty_store();
    use("a", 3);
    const long locks = fake::thr::locks();
    most_accessed();
    EXPECT_EQ(fake::thr::locks(), locks + 3); // two lookups, one walk
    fake::thr::before_lock(3, cfg_close_ini_file);
    EXPECT_EQ(most_accessed(), RANKS{});
    EXPECT_EQ(fake::thr::depth(), 0);
}

// --- The single most accessed ---

struct SINGLE
{
    std::uint64_t count;
    std::string name;
    std::string value;

    bool operator==(const SINGLE&) const = default;
};

void PrintTo(const SINGLE& single, std::ostream* out)
{
    *out << single.count << ' ' << single.name << '=' << single.value;
}

SINGLE single_most_accessed()
{
    SINGLE single{0, "name before", "value before"};
    single.count = cfg_get_single_most_accessed_ini(single.name, single.value);
    return single;
}

const SINGLE no_single = {0, "name before", "value before"};

TEST_F(USAGE_REPORT_TEST, the_single_report_gives_the_highest_count)
{
    make_empty_store();
    use("a", 2);
    use("Bee", 5);
    use("c", 4);
    EXPECT_EQ(single_most_accessed(), (SINGLE{5, "Bee", "value of Bee"}));
    EXPECT_EQ(record_of("Bee")->access_count, 5U); // the report itself counts nothing
}

TEST_F(USAGE_REPORT_TEST, the_single_report_gives_nothing_when_nothing_was_accessed)
{
    read_main_file("a=1\nb=1\n");
    EXPECT_EQ(single_most_accessed(), no_single);
    cfg_get_value("unknown");
    EXPECT_EQ(single_most_accessed(), no_single);
}

TEST_F(USAGE_REPORT_TEST, the_single_report_gives_one_of_equals)
{
    make_empty_store();
    use("a", 3);
    use("b", 3);
    const SINGLE single = single_most_accessed();
    EXPECT_EQ(single.count, 3U);
    EXPECT_TRUE(single.name == "a" || single.name == "b") << single.name;
    EXPECT_EQ(single.value, "value of " + single.name);
}

TEST_F(USAGE_REPORT_TEST, the_single_report_gives_the_first_of_equals_in_the_tables_order)
{
    make_empty_store();
    for (int i = 0; i < 50; ++i)
        use("variable_" + std::to_string(i), 3);
    std::string first;
    {
        const STORE_LOCK lock;
        first = cfg_ini_file.load()->begin()->first;
    }
    EXPECT_EQ(single_most_accessed().name, first);
}

TEST_F(USAGE_REPORT_TEST, the_single_report_passes_over_debug_message_settings)
{
    make_empty_store();
    use("next", 2);
    use("some_DEBUG_MSG", 9);
    use("Some_Debug_Msg_Level", 8);
    use("x_debug_msg", 7);
    use("x_debug_msg_level", 6);
    EXPECT_EQ(single_most_accessed(), (SINGLE{2, "next", "value of next"}));
}

TEST_F(USAGE_REPORT_TEST, the_single_report_takes_names_that_are_only_the_suffix_or_go_on)
{
    int count = 1;
    make_empty_store();
    for (const char* const name : {"debug_msg", "debug_msg_level", "_debug_msg", "_DEBUG_MSG_LEVEL", "xdebug_msg",
                                   "x_debug_msgs", "x_debug_msg_levels", "x_debug_msg_leve", "_debug_msgx", "g"})
    {
        use(name, ++count);
        EXPECT_EQ(single_most_accessed().name, name);
    }
}

TEST_F(USAGE_REPORT_TEST, the_single_report_passes_over_everything_when_only_debug_settings_were_accessed)
{
    make_empty_store();
    use("x_debug_msg", 9);
    EXPECT_EQ(single_most_accessed(), no_single);
}

// --- The maps ---

TEST_F(USAGE_REPORT_TEST, the_used_map_wants_a_read_that_gave_a_value)
{
    read_main_file("a=maybe\n");
    cfg_is_on("a", false);
    EXPECT_EQ(used(), ASSIGNMENTS{});
    read_main_file("a=1\n");
    cfg_is_on("a", false);
    EXPECT_EQ(record_of("a")->access_count, 1U);
    EXPECT_TRUE(record_of("a")->had_valid_read);
    EXPECT_EQ(used(), (ASSIGNMENTS{{"a", "1"}}));
}

TEST_F(USAGE_REPORT_TEST, the_used_map_wants_a_counted_read)
{
    make_empty_store();
    cfg_get_value("a"); // creates the record, marks it, counts nothing
    cfg_ini_file.load()->begin()->second->value = "a value that no store brought";
    EXPECT_EQ(used(), ASSIGNMENTS{});
    cfg_get_value("a");
    EXPECT_EQ(used().size(), 1U);
}

TEST_F(USAGE_REPORT_TEST, a_new_value_must_be_read_again_to_count_as_used)
{
    make_empty_store();
    use("a", 1);
    EXPECT_EQ(used(), (ASSIGNMENTS{{"a", "value of a"}}));
    cfg_set_value("a", "2");
    EXPECT_EQ(used(), ASSIGNMENTS{});
    cfg_get_int_value("a", 0);
    EXPECT_EQ(used(), (ASSIGNMENTS{{"a", "2"}}));
}

TEST_F(USAGE_REPORT_TEST, a_variable_never_set_is_in_neither_map)
{
    make_empty_store();
    cfg_get_value("unset");
    cfg_get_value("unset");
    EXPECT_EQ(used(), ASSIGNMENTS{});
    EXPECT_EQ(external(), ASSIGNMENTS{});
}

TEST_F(USAGE_REPORT_TEST, a_variable_of_the_appended_file_alone_is_not_external_and_used_once_read)
{
    write_file(temporary.path("appended.ini"), "a=1\n");
    environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
    make_empty_store();
    EXPECT_EQ(external(), ASSIGNMENTS{});
    EXPECT_EQ(used(), ASSIGNMENTS{});
    cfg_is_on("a", false);
    EXPECT_EQ(used(), (ASSIGNMENTS{{"a", "1"}}));
    EXPECT_EQ(external(), ASSIGNMENTS{});
}

TEST_F(USAGE_REPORT_TEST, an_empty_value_is_in_neither_map)
{
    read_main_file("empty=\n");
    cfg_get_value("empty");
    EXPECT_TRUE(record_of("empty")->external);
    EXPECT_TRUE(record_of("empty")->had_valid_read);
    EXPECT_EQ(record_of("empty")->access_count, 1U);
    EXPECT_EQ(used(), ASSIGNMENTS{});
    EXPECT_EQ(external(), ASSIGNMENTS{});
}

TEST_F(USAGE_REPORT_TEST, the_external_map_has_external_variables_used_or_not)
{
    environment.set("VELMAR_INI_VARS", "inline=i");
    read_main_file("main=m\nread=r\n");
    cfg_get_value("read");
    cfg_set_value("by_program", "p");
    cfg_set_value("main", "changed by program");
    EXPECT_EQ(external(), (ASSIGNMENTS{{"inline", "i"}, {"main", "changed by program"}, {"read", "r"}}));
}

TEST_F(USAGE_REPORT_TEST, the_maps_come_in_byte_order_with_the_names_as_first_spelt)
{
    read_main_file("b=1\nA=1\na2=1\nB=2\n");
    ASSIGNMENTS map;
    cfg_get_external_variable_value_map(&map);
    std::vector<std::string> names;
    for (const auto& [name, value] : map)
        names.push_back(name);
    EXPECT_EQ(names, (std::vector<std::string>{"A", "a2", "b"}));
}

TEST_F(USAGE_REPORT_TEST, the_maps_keep_what_is_there)
{
    read_main_file("a=1\nb=2\n");
    cfg_get_value("a");
    cfg_get_value("b");
    ASSIGNMENTS map{{"a", "old"}, {"other", "x"}};
    cfg_get_used_variable_value_map(&map);
    EXPECT_EQ(map, (ASSIGNMENTS{{"a", "old"}, {"b", "2"}, {"other", "x"}}));
    map = {{"a", "old"}, {"other", "x"}};
    cfg_get_external_variable_value_map(&map);
    EXPECT_EQ(map, (ASSIGNMENTS{{"a", "old"}, {"b", "2"}, {"other", "x"}}));
}

TEST_F(USAGE_REPORT_TEST, the_maps_do_nothing_without_a_place_for_them)
{
    read_main_file("a=1\n");
    const long locks = fake::thr::locks();
    cfg_get_used_variable_value_map(nullptr);
    cfg_get_external_variable_value_map(nullptr);
    EXPECT_EQ(fake::thr::locks(), locks);
}

TEST_F(USAGE_REPORT_TEST, all_but_the_ranked_report_give_nothing_before_the_first_reading)
{
    write_file(temporary.path("cwd/velmar.ini"), "a=1\n");
    EXPECT_EQ(single_most_accessed(), no_single);
    EXPECT_EQ(used(), ASSIGNMENTS{});
    EXPECT_EQ(external(), ASSIGNMENTS{});
    EXPECT_FALSE(store_exists());
    EXPECT_EQ(fake::thr::locks(), 0);
    EXPECT_TRUE(fake::fio::asked().empty());
}

TEST_F(USAGE_REPORT_TEST, the_reports_walk_under_one_lock_and_survive_a_store_that_vanishes)
{
    read_main_file("a=1\n");
    cfg_get_value("a");
    const long locks = fake::thr::locks();
    single_most_accessed();
    used();
    external();
    EXPECT_EQ(fake::thr::locks(), locks + 3);
    EXPECT_EQ(fake::thr::depth(), 0);

    fake::thr::before_lock(1, cfg_close_ini_file);
    EXPECT_EQ(single_most_accessed(), no_single);
    read_main_file("a=1\n");
    cfg_get_value("a");
    fake::thr::before_lock(1, cfg_close_ini_file);
    EXPECT_EQ(used(), ASSIGNMENTS{});
    read_main_file("a=1\n");
    fake::thr::before_lock(1, cfg_close_ini_file);
    EXPECT_EQ(external(), ASSIGNMENTS{});
    EXPECT_EQ(fake::thr::depth(), 0);
}
}
