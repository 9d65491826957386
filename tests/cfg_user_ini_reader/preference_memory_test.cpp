// What the preference store leaves behind when there is no more memory.
#include "cfg_ini/cfg_ini.h"
#include "tests/cfg_user_ini_reader/preference_test.h"
#include "tests/support/failing_memory.h"

namespace
{
const std::string long_value = "/a/value/that/is/too/long/to/be/kept/within/a/string/object";

class PREFERENCE_MEMORY_TEST : public PREFERENCE_TEST
{
protected:
    const RECORDS in_file = {{"General 23.4_pro", "RECENT_PROJECTS", long_value},
                             {"General 23.4_pro", "USER_LIBRARIES", long_value},
                             {"Messages 23.3_pro", "SHOW_MESSAGE_ID", "off"}};

    void write_file_in_use() const
    {
        write_preferences("[General 23.4_pro]\nUSER_LIBRARIES = " + long_value + "\nRECENT_PROJECTS = \"" + long_value +
                          "\"\nRECENT_PROJECTS = again\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n");
    }
};

TEST_F(PREFERENCE_MEMORY_TEST, a_reading_that_fails_leaves_the_whole_file_or_nothing)
{
    write_file_in_use();
    fail_at_every_allocation(cfg_close_user_ini_file, cfg_read_user_ini_file,
                             [&](bool failed)
                             {
                                 EXPECT_EQ(cfg_user_ini_records == nullptr, cfg_user_ini_sections_read == nullptr);
                                 EXPECT_TRUE(failed || cfg_user_ini_records != nullptr);
                                 if (cfg_user_ini_records != nullptr)
                                 {
                                     EXPECT_EQ(records(), in_file);
                                     EXPECT_EQ(sections_read(), (SECTIONS{"General 23.4_pro", "Messages 23.3_pro"}));
                                 }
                             });
}

TEST_F(PREFERENCE_MEMORY_TEST, a_lookup_that_fails_carries_over_whole_records_or_none)
{
    write_file_in_use();
    std::string value;
    const auto prepare = []
    {
        cfg_close_user_ini_file();
        cfg_read_user_ini_file();
    };
    RECORDS carried_over = in_file;
    carried_over.push_back({"Messages 23.4_pro", "SHOW_MESSAGE_ID", "off"});
    fail_at_every_allocation(
        prepare, [&] { value = cfg_get_user_ini_value(SHOW_MESSAGE_ID); },
        [&](bool failed)
        {
            if (!failed || records() != in_file)
            {
                EXPECT_EQ(records(), carried_over);
            }
        });
    EXPECT_EQ(value, "off");
}

TEST_F(PREFERENCE_MEMORY_TEST, an_assignment_that_fails_makes_a_whole_record_or_none)
{
    write_file_in_use();
    const auto prepare = []
    {
        cfg_close_user_ini_file();
        cfg_read_user_ini_file();
    };
    RECORDS assigned = in_file;
    assigned.insert(assigned.begin() + 2, {"Internet Connectivity 23.4_pro", "WEB_BROWSER", long_value});
    fail_at_every_allocation(
        prepare, [] { cfg_set_user_ini_value("WEB_BROWSER", long_value.c_str()); },
        [&](bool failed) { EXPECT_EQ(records(), failed ? in_file : assigned); });
}

TEST_F(PREFERENCE_MEMORY_TEST, a_replacement_that_fails_leaves_the_old_value)
{
    const auto prepare = []
    {
        cfg_close_user_ini_file();
        cfg_set_user_ini_value(WEB_BROWSER, "short");
    };
    fail_at_every_allocation(
        prepare, [] { cfg_set_user_ini_value(WEB_BROWSER, long_value); },
        [&](bool failed) { EXPECT_EQ(cfg_get_user_ini_value(WEB_BROWSER), failed ? "short" : long_value); });
}

TEST_F(PREFERENCE_MEMORY_TEST, a_save_that_fails_leaves_the_store_loaded)
{
    write_file_in_use();
    cfg_read_user_ini_file();
    fail_at_every_allocation([] {}, cfg_write_user_ini_file, [&](bool) { EXPECT_EQ(records(), in_file); });
    EXPECT_EQ(preferences(), "\n[General 23.4_pro]\nRECENT_PROJECTS = " + long_value + "\nUSER_LIBRARIES = " +
                                 long_value + "\n\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n");
}
}
