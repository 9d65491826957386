#include "cfg_ini/cfg_user_ini_reader/preference_lookup.h"

#include <climits>
#include <functional>

#include "cfg_ini/cfg_ini.h"
#include "tests/cfg_user_ini_reader/preference_test.h"

namespace
{
using namespace std::string_literals;
using PREFERENCE_LOOKUP_TEST = PREFERENCE_TEST;

bool is_loaded()
{
    return cfg_user_ini_records != nullptr;
}

// --- The value of the running release ---

TEST_F(PREFERENCE_LOOKUP_TEST, value_of_the_running_release_wins)
{
    write_preferences("[Messages]\nSHOW_MESSAGE_ID = off\n"
                      "[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n"
                      "[Messages 23.4_pro]\nSHOW_MESSAGE_ID = ON\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "ON");
    EXPECT_EQ(cfg_get_user_ini_value("SHOW_MESSAGE_ID"), "ON");
    EXPECT_EQ(cfg_get_user_ini_value_internal("SHOW_MESSAGE_ID", false), "ON");
}

TEST_F(PREFERENCE_LOOKUP_TEST, value_in_the_file_need_not_be_allowed)
{
    write_preferences("[Messages 23.4_pro]\nSHOW_MESSAGE_ID = maybe\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "maybe");
}

TEST_F(PREFERENCE_LOOKUP_TEST, value_is_found_only_under_the_spelling_of_the_file)
{
    write_preferences("[Messages 23.4_pro]\nshow_message_id = off\nSHOW_MESSAGE_PARTITION_ID = on\n");
    EXPECT_EQ(cfg_get_user_ini_value("show_message_id"), "off");
    EXPECT_EQ(cfg_get_user_ini_value("SHOW_MESSAGE_ID"), "on");            // the default
    EXPECT_EQ(cfg_get_user_ini_value("Show_Message_Partition_ID"), "off"); // the default
}

TEST_F(PREFERENCE_LOOKUP_TEST, header_in_another_letter_case_is_another_section)
{
    write_preferences("[messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = Off\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "Off");
}

TEST_F(PREFERENCE_LOOKUP_TEST, value_in_a_section_that_is_not_the_preferences_own_is_not_found)
{
    write_preferences("[General 23.4_pro]\nSHOW_MESSAGE_ID = off\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on");
}

// --- Older releases ---

TEST_F(PREFERENCE_LOOKUP_TEST, value_of_an_older_release_is_carried_over)
{
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
    EXPECT_EQ(records(), (RECORDS{{"Messages 23.3_pro", "SHOW_MESSAGE_ID", "off"},
                                  {"Messages 23.4_pro", "SHOW_MESSAGE_ID", "off"}}));
    ASSERT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n"
                             "\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n");
}

TEST_F(PREFERENCE_LOOKUP_TEST, section_of_the_running_release_stops_the_carrying_over)
{
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n[Messages 23.4_pro]\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on");
    EXPECT_EQ(records(), (RECORDS{{"Messages 23.3_pro", "SHOW_MESSAGE_ID", "off"}}));
}

TEST_F(PREFERENCE_LOOKUP_TEST, section_of_another_preference_does_not_stop_the_carrying_over)
{
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
}

TEST_F(PREFERENCE_LOOKUP_TEST, releases_are_tried_in_the_order_of_the_list)
{
    fake::ver::set_all_versions({"22.1", "23.4", "23.3"});
    write_preferences("[General 23.3_pro]\nWEB = 1\nUSER_LIBRARIES = /23.3\nHDL_PREFERENCE = KHDL\n"
                      "[General 22.1_pro]\nUSER_LIBRARIES = /22.1\n"
                      "[General 21.1_pro]\nNUM_PARALLEL_PROCESSORS = 3\n");
    EXPECT_EQ(cfg_get_user_ini_value(USER_LIBRARIES), "/22.1");
    EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), "KHDL");
    EXPECT_EQ(cfg_get_user_ini_value(NUM_PARALLEL_PROCESSORS), "All"); // a release that is not in the list
}

TEST_F(PREFERENCE_LOOKUP_TEST, section_without_release_is_tried_last)
{
    write_preferences("[General]\nUSER_LIBRARIES = /oldest\nHDL_PREFERENCE = VHDL\n"
                      "[General 23.2_pro]\nUSER_LIBRARIES = /older\n");
    EXPECT_EQ(cfg_get_user_ini_value(USER_LIBRARIES), "/older");
    EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), "VHDL");
    EXPECT_EQ(cfg_user_ini_records->at("General 23.4_proHDL_PREFERENCE")->value, "VHDL");
}

TEST_F(PREFERENCE_LOOKUP_TEST, without_known_releases_only_the_section_without_one_is_tried)
{
    fake::ver::set_all_versions({});
    write_preferences("[General 23.3_pro]\nHDL_PREFERENCE = KHDL\nNUM_PARALLEL_PROCESSORS = 3\n"
                      "[General]\nHDL_PREFERENCE = VHDL\n");
    EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), "VHDL");
    EXPECT_EQ(cfg_get_user_ini_value(NUM_PARALLEL_PROCESSORS), "All");
}

TEST_F(PREFERENCE_LOOKUP_TEST, empty_value_ends_the_walk_over_the_releases_but_not_the_search)
{
    write_preferences("[General 23.3_pro]\nMAX_ZORPAL_JVM_MEMORY = \nRECENT_PROJECTS = \n"
                      "[General 23.2_pro]\nMAX_ZORPAL_JVM_MEMORY = 1g\nRECENT_PROJECTS = a\n"
                      "[General]\nMAX_ZORPAL_JVM_MEMORY = 2g\n");
    EXPECT_EQ(cfg_get_user_ini_value(MAX_ZORPAL_JVM_MEMORY), "2g");
    EXPECT_EQ(cfg_user_ini_records->at("General 23.4_proMAX_ZORPAL_JVM_MEMORY")->value, "2g");
    EXPECT_EQ(cfg_get_user_ini_value(RECENT_PROJECTS), "");
    EXPECT_EQ(cfg_user_ini_records->at("General 23.4_proRECENT_PROJECTS")->value, "");
}

TEST_F(PREFERENCE_LOOKUP_TEST, empty_value_of_an_older_release_yields_the_default)
{
    write_preferences(
        "[General 23.3_pro]\nNUM_PARALLEL_PROCESSORS = \n[General 23.2_pro]\nNUM_PARALLEL_PROCESSORS = 2\n");
    EXPECT_EQ(cfg_get_user_ini_value(NUM_PARALLEL_PROCESSORS), "All");
    EXPECT_FALSE(cfg_does_ini_variable_have_value(NUM_PARALLEL_PROCESSORS, false));
}

TEST_F(PREFERENCE_LOOKUP_TEST, carried_over_value_that_is_not_allowed_is_the_answer_but_is_not_copied)
{
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID = 1\n[Messages]\nSHOW_MESSAGE_PARTITION_ID = 0\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "1");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_PARTITION_ID), "0");
    EXPECT_EQ(records(),
              (RECORDS{{"Messages 23.3_pro", "SHOW_MESSAGE_ID", "1"}, {"Messages", "SHOW_MESSAGE_PARTITION_ID", "0"}}));
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "1"); // found again each time
}

TEST_F(PREFERENCE_LOOKUP_TEST, empty_value_of_an_older_release_is_not_copied_where_it_is_not_allowed)
{
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID = \n[Messages]\nSHOW_MESSAGE_ID = off\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
    EXPECT_EQ(cfg_user_ini_records->at("Messages 23.4_proSHOW_MESSAGE_ID")->value, "off");
}

TEST_F(PREFERENCE_LOOKUP_TEST, values_of_a_section_are_carried_over_one_by_one)
{
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\nSHOW_MESSAGE_PARTITION_ID = on\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
    EXPECT_EQ(sections_read(), SECTIONS{"Messages 23.3_pro"}); // the copied value makes no section
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_PARTITION_ID), "on");
}

TEST_F(PREFERENCE_LOOKUP_TEST, what_was_not_carried_over_before_a_save_is_not_carried_over_after_it)
{
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\nSHOW_MESSAGE_PARTITION_ID = on\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
    ASSERT_TRUE(cfg_write_and_close_user_ini_file());
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_PARTITION_ID), "off"); // the default
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
}

TEST_F(PREFERENCE_LOOKUP_TEST, carrying_over_keeps_the_spelling_of_the_name)
{
    write_preferences("[Messages 23.3_pro]\nshow_message_id = off\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on");
    EXPECT_EQ(cfg_get_user_ini_value("show_message_id"), "off");
    EXPECT_EQ(records(), (RECORDS{{"Messages 23.3_pro", "show_message_id", "off"},
                                  {"Messages 23.4_pro", "show_message_id", "off"}}));
}

TEST_F(PREFERENCE_LOOKUP_TEST, carrying_over_also_happens_without_the_default)
{
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n");
    EXPECT_TRUE(cfg_does_ini_variable_have_value(SHOW_MESSAGE_ID, false));
    EXPECT_EQ(records().size(), 2U);
}

TEST_F(PREFERENCE_LOOKUP_TEST, running_release_in_the_list_changes_nothing)
{
    fake::ver::set_all_versions({"23.4"});
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on");
    EXPECT_EQ(records().size(), 1U);
}

// --- Defaults ---

TEST_F(PREFERENCE_LOOKUP_TEST, empty_value_yields_the_default)
{
    write_preferences("[General 23.4_pro]\nHDL_PREFERENCE = \n[General]\nHDL_PREFERENCE = VHDL\n");
    EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), "Verilog");
    EXPECT_EQ(cfg_get_user_ini_value_internal("HDL_PREFERENCE", false), "");
}

TEST_F(PREFERENCE_LOOKUP_TEST, default_is_found_in_any_letter_case)
{
    EXPECT_EQ(cfg_get_user_ini_value("hdl_Preference"), "Verilog");
    EXPECT_EQ(cfg_get_user_ini_value_internal("hdl_Preference", false), "");
}

TEST_F(PREFERENCE_LOOKUP_TEST, default_applies_only_when_asked_for)
{
    EXPECT_TRUE(cfg_does_ini_variable_have_value(HDL_PREFERENCE, true));
    EXPECT_FALSE(cfg_does_ini_variable_have_value(HDL_PREFERENCE, false));
    EXPECT_FALSE(cfg_does_ini_variable_have_value(WEB_BROWSER, true)); // has none
    ASSERT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "/usr/bin/browser"));
    EXPECT_TRUE(cfg_does_ini_variable_have_value(WEB_BROWSER, false));
}

// --- Names that are no keys ---

TEST_F(PREFERENCE_LOOKUP_TEST, unknown_name_has_no_value_even_if_the_file_has_it)
{
    write_preferences("[General 23.4_pro]\nNO_SUCH_KEY = 1\n[General]\nNO_SUCH_KEY = 2\n");
    EXPECT_EQ(cfg_get_user_ini_value("NO_SUCH_KEY"), "");
    EXPECT_EQ(cfg_get_user_ini_value(""), "");
    EXPECT_EQ(records().size(), 2U);
    EXPECT_EQ(fake::err::reports().size(), 0U);
}

TEST_F(PREFERENCE_LOOKUP_TEST, old_name_has_no_value)
{
    write_preferences("[Messages 23.4_pro]\nPost warning messages = on\n");
    EXPECT_EQ(cfg_get_user_ini_value("Post warning messages"), "");
    EXPECT_EQ(cfg_get_user_ini_value("DISPLAY_WARNING_MESSAGES"), "on");
}

TEST_F(PREFERENCE_LOOKUP_TEST, numbers_without_preference_have_no_value)
{
    for (const int number : {39, 40, 41, 42, 73, 126})
    {
        const auto preference = static_cast<CFG_USER_INI_ENUMS>(number);
        EXPECT_EQ(cfg_get_user_ini_value(preference), "") << number;
        EXPECT_EQ(cfg_get_user_ini_int_value(preference), 0) << number;
        EXPECT_TRUE(cfg_user_ini_is_on(preference, true)) << number;
        EXPECT_FALSE(cfg_does_ini_variable_have_value(preference, true)) << number;
        EXPECT_FALSE(cfg_set_user_ini_value(preference, "on")) << number;
        EXPECT_FALSE(cfg_set_user_ini_value(preference, "")) << number;
    }
    EXPECT_EQ(records(), RECORDS{});
}

TEST_F(PREFERENCE_LOOKUP_TEST, null_name_is_reported_and_has_no_value)
{
    const char* const null = nullptr;
    EXPECT_EQ(cfg_get_user_ini_value(null), "");
    EXPECT_EQ(cfg_get_user_ini_value_internal(nullptr, false), "");
    const std::vector<fake::err::REPORT> reports = fake::err::reports();
    ASSERT_EQ(reports.size(), 2U);
    for (const fake::err::REPORT& report : reports)
        EXPECT_EQ(report, (fake::err::REPORT{"name != NULL", "CFG_INI", "cfg_ini/cfg_user_ini_reader", report.line}));
    EXPECT_FALSE(is_loaded());
}

// --- Integers and switches ---

struct INTEGER
{
    std::string text;
    int number;
};

void PrintTo(const INTEGER& row, std::ostream* out)
{
    *out << testing::PrintToString(row.text);
}

class PREFERENCE_INTEGER_TEST : public PREFERENCE_TEST, public testing::WithParamInterface<INTEGER>
{
};

TEST_P(PREFERENCE_INTEGER_TEST, is_read_in_base_10_up_to_the_first_other_character)
{
    ASSERT_TRUE(cfg_set_user_ini_value(MAX_ZORPAL_JVM_MEMORY, GetParam().text));
    EXPECT_EQ(cfg_get_user_ini_int_value(MAX_ZORPAL_JVM_MEMORY), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(texts, PREFERENCE_INTEGER_TEST,
                         testing::Values(INTEGER{"", 0}, INTEGER{"0", 0}, INTEGER{"42", 42}, INTEGER{"-42", -42},
                                         INTEGER{"+42", 42}, INTEGER{"  42", 42}, INTEGER{"\t42", 42},
                                         INTEGER{"2048m", 2048}, INTEGER{"1.9", 1}, INTEGER{"1 2", 1},
                                         INTEGER{"007", 7}, INTEGER{"0x10", 0}, INTEGER{"All", 0}, INTEGER{"-", 0},
                                         INTEGER{"- 1", 0}, INTEGER{"--1", 0}, INTEGER{"2147483647", INT_MAX},
                                         INTEGER{"-2147483648", INT_MIN}, INTEGER{"4294967301", 5}));

TEST_F(PREFERENCE_LOOKUP_TEST, integers_take_the_default)
{
    EXPECT_EQ(cfg_get_user_ini_int_value(PGMW_OVERWRITE_START_UP_DELAY_US), 20000);
    EXPECT_EQ(cfg_get_user_ini_int_value(NUM_PARALLEL_PROCESSORS), 0); // "All"
    EXPECT_EQ(cfg_get_user_ini_int_value(WEB_BROWSER), 0);
}

struct SWITCH
{
    std::string text;
    bool with_fallback_true;
    bool with_fallback_false;
};

void PrintTo(const SWITCH& row, std::ostream* out)
{
    *out << testing::PrintToString(row.text);
}

class PREFERENCE_SWITCH_TEST : public PREFERENCE_TEST, public testing::WithParamInterface<SWITCH>
{
};

TEST_P(PREFERENCE_SWITCH_TEST, is_on_off_or_the_fallback)
{
    ASSERT_TRUE(cfg_set_user_ini_value(DISPLAY_WARNING_MESSAGES, GetParam().text)); // takes any text
    EXPECT_EQ(cfg_user_ini_is_on(DISPLAY_WARNING_MESSAGES, true), GetParam().with_fallback_true);
    EXPECT_EQ(cfg_user_ini_is_on(DISPLAY_WARNING_MESSAGES, false), GetParam().with_fallback_false);
}

INSTANTIATE_TEST_SUITE_P(on, PREFERENCE_SWITCH_TEST,
                         testing::Values(SWITCH{"on", true, true}, SWITCH{"ON", true, true}, SWITCH{"oN", true, true},
                                         SWITCH{"1", true, true}));
INSTANTIATE_TEST_SUITE_P(off, PREFERENCE_SWITCH_TEST,
                         testing::Values(SWITCH{"off", false, false}, SWITCH{"OFF", false, false},
                                         SWITCH{"oFf", false, false}, SWITCH{"0", false, false}));
INSTANTIATE_TEST_SUITE_P(neither, PREFERENCE_SWITCH_TEST,
                         testing::Values(SWITCH{"", true, false}, SWITCH{"true", true, false},
                                         SWITCH{"false", true, false}, SWITCH{"2", true, false},
                                         SWITCH{"00", true, false}, SWITCH{"10", true, false},
                                         SWITCH{" on", true, false}, SWITCH{"on ", true, false},
                                         SWITCH{"o", true, false}, SWITCH{"of", true, false}));

TEST_F(PREFERENCE_LOOKUP_TEST, default_of_a_switch_goes_before_the_fallback)
{
    EXPECT_TRUE(cfg_user_ini_is_on(DISPLAY_COMMAND_LINE_MESSAGES_IN_COLOR, false));
    EXPECT_TRUE(cfg_user_ini_is_on(DISPLAY_COMMAND_LINE_MESSAGES_IN_COLOR, true));
    EXPECT_FALSE(cfg_user_ini_is_on(GENERATE_EQUATION_FILES, true));
    EXPECT_TRUE(cfg_user_ini_is_on(SOUND_WHEN_PROCESS_DONE, true)); // has no default
    EXPECT_FALSE(cfg_user_ini_is_on(SOUND_WHEN_PROCESS_DONE, false));
}

// --- Assignment ---

TEST_F(PREFERENCE_LOOKUP_TEST, assignment_makes_a_record_of_the_running_release)
{
    EXPECT_TRUE(cfg_set_user_ini_value("USER_IP_SEARCH_PATHS", "/ip"));
    EXPECT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "b"));
    EXPECT_EQ(records(), (RECORDS{{"General 23.4_pro", "USER_IP_SEARCH_PATHS", "/ip"},
                                  {"Internet Connectivity 23.4_pro", "WEB_BROWSER", "b"}}));
    EXPECT_EQ(cfg_user_ini_records->begin()->first, "General 23.4_proUSER_IP_SEARCH_PATHS");
    EXPECT_FALSE(cfg_user_ini_records->begin()->second->pending_write);
    EXPECT_EQ(sections_read(), SECTIONS{});
    EXPECT_EQ(cfg_get_user_ini_value(WEB_BROWSER), "b");
}

TEST_F(PREFERENCE_LOOKUP_TEST, assignment_replaces_the_value_of_the_running_release_only)
{
    write_preferences("[Messages 23.4_pro]\nSHOW_MESSAGE_ID = on\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = on\n");
    EXPECT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "off"));
    EXPECT_EQ(records(), (RECORDS{{"Messages 23.3_pro", "SHOW_MESSAGE_ID", "on"},
                                  {"Messages 23.4_pro", "SHOW_MESSAGE_ID", "off"}}));
}

TEST_F(PREFERENCE_LOOKUP_TEST, refused_value_leaves_the_old_one)
{
    write_preferences("[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n");
    EXPECT_FALSE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "1"));
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
    EXPECT_TRUE(cfg_set_user_ini_value("SHOW_MESSAGE_ID", "ON"));
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "ON"); // as written
    EXPECT_EQ(fake::err::reports().size(), 0U);
}

TEST_F(PREFERENCE_LOOKUP_TEST, colors_go_by_name_or_number)
{
    EXPECT_TRUE(cfg_set_user_ini_value(COMMAND_LINE_ERROR_MESSAGE_COLOR, "Bright_Red"));
    EXPECT_TRUE(cfg_set_user_ini_value(COMMAND_LINE_ERROR_MESSAGE_COLOR, "12"));
    EXPECT_FALSE(cfg_set_user_ini_value(COMMAND_LINE_ERROR_MESSAGE_COLOR, "Purple"));
    EXPECT_FALSE(cfg_set_user_ini_value(COMMAND_LINE_ERROR_MESSAGE_COLOR, "16"));
    EXPECT_EQ(cfg_get_user_ini_value(COMMAND_LINE_ERROR_MESSAGE_COLOR), "12");
}

TEST_F(PREFERENCE_LOOKUP_TEST, unknown_name_is_refused)
{
    for (const char* const name : {"NO_SUCH_KEY", "", "Post warning messages", "USER_LIBRARIES "})
        EXPECT_FALSE(cfg_set_user_ini_value(name, "on")) << name;
    EXPECT_EQ(records(), RECORDS{});
    EXPECT_EQ(fake::err::reports().size(), 0U);
}

TEST_F(PREFERENCE_LOOKUP_TEST, name_in_another_letter_case_makes_a_second_record)
{
    EXPECT_TRUE(cfg_set_user_ini_value("SHOW_MESSAGE_ID", "on"));
    EXPECT_TRUE(cfg_set_user_ini_value("Show_Message_Id", "off"));
    EXPECT_EQ(records(), (RECORDS{{"Messages 23.4_pro", "SHOW_MESSAGE_ID", "on"},
                                  {"Messages 23.4_pro", "Show_Message_Id", "off"}}));
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on");
    EXPECT_EQ(cfg_get_user_ini_value("Show_Message_Id"), "off");
}

TEST_F(PREFERENCE_LOOKUP_TEST, free_text_may_be_anything)
{
    for (const std::string& value : {""s, " blanks "s, "a=b"s, "[x]"s, "\"q\""s, "line\nfeed"s, std::string(5000, 'x')})
    {
        EXPECT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, value));
        EXPECT_EQ(cfg_get_user_ini_value(WEB_BROWSER), value);
    }
}

TEST_F(PREFERENCE_LOOKUP_TEST, value_given_by_number_ends_at_its_first_nul)
{
    EXPECT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "off\0x"s));
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
}

TEST_F(PREFERENCE_LOOKUP_TEST, value_may_be_the_stored_one_itself)
{
    ASSERT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "/a/browser/with/a/long/path"));
    const std::string& stored = cfg_user_ini_records->begin()->second->value;
    EXPECT_TRUE(cfg_set_user_ini_value("WEB_BROWSER", stored.c_str() + 2));
    EXPECT_EQ(cfg_get_user_ini_value(WEB_BROWSER), "/browser/with/a/long/path");
}

TEST_F(PREFERENCE_LOOKUP_TEST, integers_are_assigned_in_decimal)
{
    for (const auto& [number, text] : std::vector<std::pair<int, std::string>>{
             {0, "0"}, {20, "20"}, {-7, "-7"}, {INT_MAX, "2147483647"}, {INT_MIN, "-2147483648"}})
    {
        EXPECT_TRUE(cfg_set_user_ini_int_value(PGMW_SERIAL_FLASH_PP_TIME, number));
        EXPECT_EQ(cfg_get_user_ini_value(PGMW_SERIAL_FLASH_PP_TIME), text);
        EXPECT_EQ(cfg_get_user_ini_int_value(PGMW_SERIAL_FLASH_PP_TIME), number);
    }
    EXPECT_TRUE(cfg_set_user_ini_int_value(RTL_ANALYSIS_FLOW, 1));
    EXPECT_FALSE(cfg_set_user_ini_int_value(RTL_ANALYSIS_FLOW, 2));
    EXPECT_EQ(cfg_get_user_ini_value(RTL_ANALYSIS_FLOW), "1");
}

TEST_F(PREFERENCE_LOOKUP_TEST, switches_are_assigned_as_words)
{
    EXPECT_TRUE(cfg_set_user_ini_on(PROXY_ENABLED));
    EXPECT_EQ(cfg_get_user_ini_value(PROXY_ENABLED), "on");
    EXPECT_TRUE(cfg_set_user_ini_off(PROXY_ENABLED));
    EXPECT_EQ(cfg_get_user_ini_value(PROXY_ENABLED), "off");
    EXPECT_FALSE(cfg_set_user_ini_on(RTL_ANALYSIS_FLOW)); // takes only "0" and "1"
    EXPECT_FALSE(cfg_set_user_ini_off(HDL_PREFERENCE));
}

TEST_F(PREFERENCE_LOOKUP_TEST, search_paths_are_handed_on_when_they_are_assigned)
{
    EXPECT_TRUE(cfg_set_user_ini_value(USER_LIBRARIES, "/a"));
    EXPECT_TRUE(cfg_set_user_ini_value("user_Libraries", "/b"));
    EXPECT_TRUE(cfg_set_user_ini_value(USER_LIBRARIES, ""));
    EXPECT_EQ(fake::gen::user_library_paths(), (std::vector<std::string>{"/a", "/b", ""}));
    EXPECT_EQ(fake::gen::user_ip_search_paths(), std::vector<std::string>{});
    EXPECT_TRUE(cfg_set_user_ini_value(USER_IP_SEARCH_PATHS, "/c"));
    EXPECT_TRUE(cfg_set_user_ini_value("USER_ip_SEARCH_PATHS", "/d"));
    EXPECT_EQ(fake::gen::user_ip_search_paths(), (std::vector<std::string>{"/c", "/d"}));
    EXPECT_TRUE(cfg_set_user_ini_value(USER_PLATFORM_SEARCH_PATHS, "/e"));
    EXPECT_TRUE(cfg_set_user_ini_value(USER_FLOW_TEMPLATE_SEARCH_PATHS, "/f"));
    EXPECT_EQ(fake::gen::user_library_paths().size() + fake::gen::user_ip_search_paths().size(), 5U);
}

TEST_F(PREFERENCE_LOOKUP_TEST, search_path_is_stored_before_it_is_handed_on)
{
    std::string stored;
    fake::gen::before_set_user_library_paths(
        1, [&] { stored = cfg_user_ini_records->at("General 23.4_proUSER_LIBRARIES")->value; });
    ASSERT_TRUE(cfg_set_user_ini_value(USER_LIBRARIES, "/a"));
    EXPECT_EQ(stored, "/a");
}

TEST_F(PREFERENCE_LOOKUP_TEST, null_arguments_are_reported_and_nothing_is_stored)
{
    const char* const null = nullptr;
    EXPECT_FALSE(cfg_set_user_ini_value(null, "on"));
    EXPECT_FALSE(cfg_set_user_ini_value("SHOW_MESSAGE_ID", null));
    EXPECT_FALSE(cfg_set_user_ini_value("USER_LIBRARIES", null)); // which any value would fit
    EXPECT_FALSE(cfg_set_user_ini_value(null, null));
    std::vector<std::string> conditions;
    for (const fake::err::REPORT& report : fake::err::reports())
    {
        conditions.push_back(report.condition);
        EXPECT_EQ(report.module, "CFG_INI");
        EXPECT_EQ(report.source_file, "cfg_ini/cfg_user_ini_reader");
        EXPECT_GT(report.line, 0);
    }
    EXPECT_EQ(conditions, (std::vector<std::string>{"name != NULL", "value != NULL", "value != NULL", "name != NULL",
                                                    "value != NULL"}));
    EXPECT_FALSE(is_loaded());
    EXPECT_EQ(fake::gen::user_library_paths(), std::vector<std::string>{});
}

TEST_F(PREFERENCE_LOOKUP_TEST, reporter_may_throw)
{
    const char* const null = nullptr;
    ASSERT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "b"));
    fake::err::throw_from_now_on();
    EXPECT_THROW(cfg_get_user_ini_value(null), fake::err::REPORTED);
    EXPECT_THROW(cfg_set_user_ini_value(null, "on"), fake::err::REPORTED);
    EXPECT_THROW(cfg_set_user_ini_value("WEB_BROWSER", null), fake::err::REPORTED);
    EXPECT_EQ(cfg_get_user_ini_value(WEB_BROWSER), "b");
}

// --- Loading ---

TEST_F(PREFERENCE_LOOKUP_TEST, whatever_comes_first_loads_the_file_once)
{
    write_preferences("[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n");
    const std::vector<std::pair<std::string, std::function<void()>>> first_calls = {
        {"lookup by number", [] { cfg_get_user_ini_value(HDL_PREFERENCE); }},
        {"lookup by name", [] { cfg_get_user_ini_value("HDL_PREFERENCE"); }},
        {"lookup of an unknown name", [] { cfg_get_user_ini_value("NO_SUCH_KEY"); }},
        {"lookup of no preference", [] { cfg_get_user_ini_value(CFG_USER_INI_ENUMS_END); }},
        {"integer", [] { cfg_get_user_ini_int_value(HDL_PREFERENCE); }},
        {"switch", [] { cfg_user_ini_is_on(HDL_PREFERENCE, true); }},
        {"question", [] { cfg_does_ini_variable_have_value(HDL_PREFERENCE, false); }},
        {"assignment", [] { cfg_set_user_ini_value(WEB_BROWSER, ""); }},
        {"assignment of an unknown name", [] { cfg_set_user_ini_value("NO_SUCH_KEY", "1"); }},
        {"refused assignment", [] { cfg_set_user_ini_value(SHOW_MESSAGE_ID, "1"); }},
        {"refused switch", [] { cfg_set_user_ini_on(HDL_PREFERENCE); }},
        {"refused integer", [] { cfg_set_user_ini_int_value(HDL_PREFERENCE, 1); }}};
    for (const auto& [name, first_call] : first_calls)
    {
        SCOPED_TRACE(name);
        cfg_close_user_ini_file();
        const std::size_t asked_before = fake::fio::asked().size();
        first_call();
        ASSERT_TRUE(is_loaded());
        EXPECT_EQ(cfg_user_ini_records->count("General 23.4_proHDL_PREFERENCE"), 1U);
        first_call();
        EXPECT_EQ(fake::fio::asked().size(), asked_before + 1);
    }
}

TEST_F(PREFERENCE_LOOKUP_TEST, first_assignment_is_laid_over_the_file)
{
    write_preferences("[General 23.4_pro]\nHDL_PREFERENCE = VHDL\nRECENT_PROJECTS = p\n");
    EXPECT_TRUE(cfg_set_user_ini_value(HDL_PREFERENCE, "KHDL"));
    EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), "KHDL");
    EXPECT_EQ(cfg_get_user_ini_value(RECENT_PROJECTS), "p");
}

TEST_F(PREFERENCE_LOOKUP_TEST, accessors_of_the_catalogue_load_nothing)
{
    cfg_get_name_from_enum(USER_LIBRARIES);
    cfg_get_user_ini_ini_desc(USER_LIBRARIES);
    EXPECT_FALSE(is_loaded());
}

// --- Questions to the version service ---

TEST_F(PREFERENCE_LOOKUP_TEST, releases_are_fetched_where_the_answer_depends_on_them)
{
    write_preferences("[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n[General 23.2_pro]\nUSER_LIBRARIES = /lib\n"
                      "[Cloud 22.1_pro]\nCLOUD_SERVER = of an unknown release\n");
    cfg_get_user_ini_value(SHOW_MESSAGE_ID); // loads, which looks up two search paths
    for (int time = 0; time < 3; ++time)
    {
        const auto calls = fake::ver::all_versions_calls();
        EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");           // in the running release's section
        EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_PARTITION_ID), "off"); // not in it, though it is there
        EXPECT_EQ(cfg_get_user_ini_value("NO_SUCH_KEY"), "");
        EXPECT_EQ(cfg_get_user_ini_value(CLOUD_USERNAME), ""); // in no release's section, known or not
        EXPECT_EQ(cfg_get_user_ini_value(WEB_BROWSER), "");    // nor this one, of whose section there is nothing at all
        EXPECT_EQ(fake::ver::all_versions_calls(), calls);
        EXPECT_EQ(cfg_get_user_ini_value(CLOUD_SERVER), ""); // in that of a release that may become known
        EXPECT_EQ(fake::ver::all_versions_calls(), calls + 1);
        cfg_set_user_ini_value(SHOW_MESSAGE_ID, "off");
        EXPECT_EQ(fake::ver::all_versions_calls(), calls + 1);
    }
}

TEST_F(PREFERENCE_LOOKUP_TEST, the_running_release_is_asked_for_before_the_file_is_read)
{
    bool loaded_at_first_version = true;
    fake::ver::before_version(1, [&] { loaded_at_first_version = is_loaded(); });
    cfg_get_user_ini_value(SHOW_MESSAGE_ID);
    EXPECT_FALSE(loaded_at_first_version);
}

TEST_F(PREFERENCE_LOOKUP_TEST, the_running_release_is_asked_for_only_where_a_section_needs_it)
{
    cfg_get_user_ini_value(SHOW_MESSAGE_ID);
    const long calls = fake::ver::version_calls();
    EXPECT_EQ(cfg_get_user_ini_value("NO_SUCH_KEY"), "");
    EXPECT_EQ(cfg_get_user_ini_value(CFG_USER_INI_ENUMS_END), "");
    EXPECT_FALSE(cfg_set_user_ini_value("NO_SUCH_KEY", "1"));
    EXPECT_FALSE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "1"));
    EXPECT_EQ(fake::ver::version_calls(), calls);
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on");
    EXPECT_EQ(fake::ver::version_calls(), calls + 1);
}

TEST_F(PREFERENCE_LOOKUP_TEST, running_release_may_have_any_name)
{
    for (const std::string& version : {""s, "24.1 beta"s, std::string(300, '7')})
    {
        fake::ver::set_version(version);
        EXPECT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "b" + version));
        EXPECT_EQ(cfg_get_user_ini_value(WEB_BROWSER), "b" + version);
        EXPECT_EQ(cfg_user_ini_records->count("Internet Connectivity " + version + "_proWEB_BROWSER"), 1U);
    }
}

TEST_F(PREFERENCE_LOOKUP_TEST, record_of_another_pair_with_the_same_map_key_is_the_one_found)
{
    write_preferences("[General 23.4_proHDL]\n_PREFERENCE = found\n");
    EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), "found");
    EXPECT_TRUE(cfg_set_user_ini_value(HDL_PREFERENCE, "VHDL"));
    EXPECT_EQ(records(), (RECORDS{{"General 23.4_proHDL", "_PREFERENCE", "VHDL"}}));
}
}
