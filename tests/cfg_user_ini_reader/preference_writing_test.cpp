#include "cfg_ini/cfg_user_ini_reader/preference_writing.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

#include "cfg_ini/cfg_ini.h"
#include "tests/cfg_user_ini_reader/preference_test.h"
#include "tests/support/counted_writes.h"

namespace
{
using PREFERENCE_WRITING_TEST = PREFERENCE_TEST;

// --- The bytes ---

TEST_F(PREFERENCE_WRITING_TEST, nothing_loaded_leaves_the_file_alone)
{
    write_preferences("; a comment\n[A]\nk=1\n");
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_TRUE(cfg_write_and_close_user_ini_file());
    EXPECT_EQ(preferences(), "; a comment\n[A]\nk=1\n");
    EXPECT_EQ(fake::mem::messages(), std::vector<fake::mem::MESSAGE>{});
    EXPECT_EQ(fake::fio::asked(), std::vector<std::string>{});
}

TEST_F(PREFERENCE_WRITING_TEST, nothing_loaded_makes_no_file)
{
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_FALSE(std::filesystem::exists(file_path()));
}

TEST_F(PREFERENCE_WRITING_TEST, saving_after_lookups_normalises_the_file)
{
    write_preferences("; of the user\n"
                      "EARLY = 1\n"
                      "[Messages 23.4_pro]\r\n"
                      "Post warning messages=\"on\"\n"
                      "  SHOW_MESSAGE_ID\t=\toff  \n"
                      "SHOW_MESSAGE_PARTITION_ID =\n"
                      "[General 23.4_pro\n"
                      "# commented = out\n"
                      "no equals sign\n"
                      "x=\n"
                      "SHOW_MESSAGE_ID = on\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "\n"
                             "[Messages 23.4_pro]\n"
                             "# commented = out\n"
                             "DISPLAY_WARNING_MESSAGES = on\n"
                             "SHOW_MESSAGE_ID = off\n");
}

TEST_F(PREFERENCE_WRITING_TEST, sections_come_in_the_byte_order_of_their_names)
{
    ASSERT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "off"));
    ASSERT_TRUE(cfg_set_user_ini_value(USER_LIBRARIES, "/opt/lib"));
    ASSERT_TRUE(cfg_set_user_ini_value(HDL_PREFERENCE, "VHDL"));
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\nUSER_LIBRARIES = /opt/lib\n"
                             "\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n");
}

TEST_F(PREFERENCE_WRITING_TEST, keys_come_in_byte_order)
{
    write_preferences("[A]\nb=4\na=3\nB=2\n_=5\nA=1\n\xc3\xa9=6\n");
    cfg_read_user_ini_file();
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "\n[A]\nA = 1\nB = 2\n_ = 5\na = 3\nb = 4\n\xc3\xa9 = 6\n");
}

TEST_F(PREFERENCE_WRITING_TEST, walk_goes_by_section_and_name_together)
{
    // "AB" with "c" stands before "A" with "Z": a section need not come before a longer one.
    write_preferences("[A]\nZ = 1\na = 2\n[AB]\nc = 3\n");
    cfg_read_user_ini_file();
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "\n[AB]\nc = 3\n\n[A]\nZ = 1\na = 2\n");
}

TEST_F(PREFERENCE_WRITING_TEST, sections_that_differ_in_letter_case_come_under_the_first_of_them)
{
    write_preferences("[a]\nk1 = 1\n[B]\nk2 = 2\n[A]\nk3 = 3\n[b]\nk4 = 4\n");
    cfg_read_user_ini_file();
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "\n[A]\nk3 = 3\nk1 = 1\n\n[B]\nk2 = 2\nk4 = 4\n");
}

TEST_F(PREFERENCE_WRITING_TEST, empty_values_are_not_written_nor_sections_of_nothing_else)
{
    write_preferences("[A]\nk1 =\nk2 = 2\n[B]\nk3 = \n[C]\n");
    cfg_read_user_ini_file();
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "\n[A]\nk2 = 2\n");
    EXPECT_EQ(records().size(), 3U); // they stay loaded
}

TEST_F(PREFERENCE_WRITING_TEST, no_values_make_an_empty_file)
{
    write_preferences("[A]\nk1 =\n; text\n");
    cfg_read_user_ini_file();
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "");
}

TEST_F(PREFERENCE_WRITING_TEST, values_are_written_as_they_are)
{
    ASSERT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, " \"a b\" = [c] "));
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "\n[Internet Connectivity 23.4_pro]\nWEB_BROWSER =  \"a b\" = [c] \n");
}

TEST_F(PREFERENCE_WRITING_TEST, empty_name_is_written)
{
    write_preferences("[A]\n = value\n");
    cfg_read_user_ini_file();
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "\n[A]\n = value\n");
}

TEST_F(PREFERENCE_WRITING_TEST, sections_of_older_releases_and_of_others_stay)
{
    write_preferences("[Messages 22.1_pro]\nSHOW_MESSAGE_ID = maybe\n[Other]\nx = 1\n[Messages]\nUNKNOWN = 2\n");
    ASSERT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "on"));
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "\n[Messages 22.1_pro]\nSHOW_MESSAGE_ID = maybe\n"
                             "\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = on\n"
                             "\n[Messages]\nUNKNOWN = 2\n"
                             "\n[Other]\nx = 1\n");
}

TEST_F(PREFERENCE_WRITING_TEST, saved_records_read_back_the_same)
{
    write_preferences("[AB]\nc = 1\n[A]\nZ = 2\nk2 = \"\"\nk3 = 'q' = r\n = n\n[Messages 23.3_pro]\n"
                      "SHOW_MESSAGE_ID = off\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
    const RECORDS saved = records();
    ASSERT_EQ(saved.size(), 7U);
    ASSERT_TRUE(cfg_write_and_close_user_ini_file());
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), saved);
}

TEST_F(PREFERENCE_WRITING_TEST, section_without_values_no_longer_stops_the_carrying_over_once_it_is_saved)
{
    write_preferences("[General 23.4_pro]\n[General 23.3_pro]\nUSER_LIBRARIES = /lib\n");
    EXPECT_EQ(cfg_get_user_ini_value(USER_LIBRARIES), "");
    ASSERT_TRUE(cfg_write_and_close_user_ini_file());
    EXPECT_EQ(preferences(), "\n[General 23.3_pro]\nUSER_LIBRARIES = /lib\n");
    EXPECT_EQ(cfg_get_user_ini_value(USER_LIBRARIES), "/lib");
    EXPECT_EQ(records(), (RECORDS{{"General 23.3_pro", "USER_LIBRARIES", "/lib"},
                                  {"General 23.4_pro", "USER_LIBRARIES", "/lib"}}));
}

TEST_F(PREFERENCE_WRITING_TEST, value_with_a_bracket_does_not_come_back)
{
    ASSERT_TRUE(cfg_set_user_ini_value(PROXY_SETTINGS, "[::1]:8080"));
    ASSERT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "b"));
    ASSERT_TRUE(cfg_write_and_close_user_ini_file());
    EXPECT_EQ(cfg_get_user_ini_value(PROXY_SETTINGS), "");
    EXPECT_EQ(cfg_get_user_ini_value(WEB_BROWSER), ""); // stands behind it, now in the section "::1"
    EXPECT_EQ(records(), (RECORDS{{"::1", "WEB_BROWSER", "b"}}));
}

// --- The file ---

TEST_F(PREFERENCE_WRITING_TEST, every_save_writes)
{
    write_preferences("[A]\nk = 1\n");
    cfg_read_user_ini_file();
    EXPECT_TRUE(cfg_write_user_ini_file());
    write_preferences("changed by someone else");
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "\n[A]\nk = 1\n");
}

TEST_F(PREFERENCE_WRITING_TEST, saving_leaves_the_store_loaded)
{
    ASSERT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "b"));
    EXPECT_TRUE(cfg_write_user_ini_file());
    write_preferences("");
    EXPECT_EQ(cfg_get_user_ini_value(WEB_BROWSER), "b");
    EXPECT_FALSE(cfg_user_ini_records->begin()->second->pending_write);
}

TEST_F(PREFERENCE_WRITING_TEST, file_is_written_in_place)
{
    write_preferences("[A]\nk = a long value that is not to show behind the shorter new contents of the file\n");
    std::filesystem::create_hard_link(file_path(), temporary.path("same_file"));
    ASSERT_EQ(chmod(file_path().c_str(), 0640), 0);
    cfg_read_user_ini_file();
    cfg_user_ini_records->begin()->second->value = "2";
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(read_file(temporary.path("same_file")), "\n[A]\nk = 2\n");
    struct stat status = {};
    ASSERT_EQ(stat(file_path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
}

TEST_F(PREFERENCE_WRITING_TEST, file_is_written_where_it_stands_at_the_time)
{
    write_preferences("[A]\nk = 1\n");
    cfg_read_user_ini_file();
    environment.set("VELMAR2_INI", temporary.path());
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(read_file(temporary.path("velmar2.ini")), "\n[A]\nk = 1\n");
    EXPECT_EQ(preferences(), "[A]\nk = 1\n");
}

TEST_F(PREFERENCE_WRITING_TEST, saving_says_where)
{
    ASSERT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "100%s"));
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(fake::mem::messages(),
              (std::vector<fake::mem::MESSAGE>{{"CFG_INI", "writing ini file: " + file_path(), false}}));
}

TEST_F(PREFERENCE_WRITING_TEST, message_comes_when_the_file_is_open_and_truncated)
{
    write_preferences("[A]\nk = 1\n");
    cfg_read_user_ini_file();
    std::string bytes = "unseen";
    fake::mem::before_message(1, [&] { bytes = preferences(); });
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(bytes, "");
}

TEST_F(PREFERENCE_WRITING_TEST, every_end_of_line_is_flushed)
{
    ASSERT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "b"));
    ASSERT_TRUE(cfg_set_user_ini_value(PROXY_USER1, "me"));
    ASSERT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "off"));
    const long before = write_calls();
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(write_calls() - before, 7); // two sections of two lines each, three keys
    EXPECT_EQ(std::ranges::count(preferences(), '\n'), 7);
}

// --- Failures ---

TEST_F(PREFERENCE_WRITING_TEST, path_that_cannot_be_opened_fails_the_save)
{
    ASSERT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "b"));
    fake::gen::set_user_profile_directory(temporary.path("missing"));
    EXPECT_FALSE(cfg_write_user_ini_file());
    EXPECT_FALSE(std::filesystem::exists(temporary.path("missing")));
    EXPECT_EQ(fake::mem::messages(),
              (std::vector<fake::mem::MESSAGE>{
                  {"CFG_INI", "writing ini file: " + temporary.path("missing/velmar2.ini"), false}}));
    EXPECT_EQ(fake::err::reports().size(), 0U);
    EXPECT_EQ(cfg_get_user_ini_value(WEB_BROWSER), "b"); // still loaded
}

TEST_F(PREFERENCE_WRITING_TEST, save_works_again_after_a_failed_one)
{
    ASSERT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "b"));
    fake::gen::set_user_profile_directory(temporary.path("missing"));
    EXPECT_FALSE(cfg_write_user_ini_file());
    fake::gen::set_user_profile_directory(temporary.path("home"));
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "\n[Internet Connectivity 23.4_pro]\nWEB_BROWSER = b\n");
}

TEST_F(PREFERENCE_WRITING_TEST, failed_save_unloads_all_the_same)
{
    write_preferences("[Internet Connectivity 23.4_pro]\nWEB_BROWSER = saved\n");
    ASSERT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "unsaved"));
    fake::gen::set_user_profile_directory(temporary.path("missing"));
    EXPECT_FALSE(cfg_write_and_close_user_ini_file());
    EXPECT_EQ(cfg_user_ini_records, nullptr);
    EXPECT_EQ(cfg_user_ini_sections_read, nullptr);
    fake::gen::set_user_profile_directory(temporary.path("home"));
    EXPECT_EQ(cfg_get_user_ini_value(WEB_BROWSER), "saved");
}

// --- Unloading ---

TEST_F(PREFERENCE_WRITING_TEST, save_and_unload_writes_and_forgets)
{
    ASSERT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "b"));
    EXPECT_TRUE(cfg_write_and_close_user_ini_file());
    EXPECT_EQ(cfg_user_ini_records, nullptr);
    EXPECT_EQ(cfg_user_ini_sections_read, nullptr);
    EXPECT_EQ(preferences(), "\n[Internet Connectivity 23.4_pro]\nWEB_BROWSER = b\n");
    write_preferences("[Internet Connectivity 23.4_pro]\nWEB_BROWSER = of someone else\n");
    EXPECT_EQ(cfg_get_user_ini_value(WEB_BROWSER), "of someone else");
}

TEST_F(PREFERENCE_WRITING_TEST, unloading_writes_nothing)
{
    write_preferences("[A]\nk=1\n");
    ASSERT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "b"));
    cfg_close_user_ini_file();
    EXPECT_EQ(cfg_user_ini_records, nullptr);
    EXPECT_EQ(cfg_user_ini_sections_read, nullptr);
    EXPECT_EQ(preferences(), "[A]\nk=1\n");
    EXPECT_EQ(cfg_get_user_ini_value(WEB_BROWSER), "");
}

TEST_F(PREFERENCE_WRITING_TEST, unloading_what_is_not_loaded_does_nothing)
{
    cfg_close_user_ini_file();
    cfg_close_user_ini_file();
    EXPECT_EQ(cfg_user_ini_records, nullptr);
    EXPECT_EQ(fake::err::reports().size(), 0U);
}

TEST_F(PREFERENCE_WRITING_TEST, unloading_reports_each_null_record)
{
    write_preferences("[A]\nk1 = 1\nk2 = 2\nk3 = 3\n");
    cfg_read_user_ini_file();
    for (const char* const key : {"Ak1", "Ak3"})
    {
        delete cfg_user_ini_records->at(key);
        cfg_user_ini_records->at(key) = nullptr;
    }
    cfg_close_user_ini_file();
    EXPECT_EQ(cfg_user_ini_records, nullptr);
    const std::vector<fake::err::REPORT> reports = fake::err::reports();
    ASSERT_EQ(reports.size(), 2U);
    for (const fake::err::REPORT& report : reports)
        EXPECT_EQ(report,
                  (fake::err::REPORT{"(*i).second != 0", "CFG_INI", "cfg_ini/cfg_user_ini_reader", report.line}));
}
}
