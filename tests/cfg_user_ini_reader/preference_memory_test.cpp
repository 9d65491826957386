// What the preference store leaves behind when there is no more memory.
#include <new>

#include "cfg_ini/cfg_ini.h"
#include "platform/gen/gen.h"
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

// --- Search paths ---

TEST_F(PREFERENCE_MEMORY_TEST, search_paths_are_handed_over_once_however_often_the_loading_fails)
{
    write_preferences("[General 23.4_pro]\nUSER_LIBRARIES = " + long_value + "\nUSER_IP_SEARCH_PATHS = ip" +
                      long_value + "\n");
    const auto prepare = [this]
    {
        cfg_close_user_ini_file();
        begin_services();
    };
    for (const int failures : {1, 2, 3})
    {
        SCOPED_TRACE(failures);
        fail_at_every_allocation(
            prepare, [] { cfg_get_user_ini_value(SHOW_MESSAGE_ID); },
            [&](bool)
            {
                for (int again = 1; again < failures; ++again)
                {
                    const FAILING_ALLOCATION failing(again);
                    try
                    {
                        cfg_get_user_ini_value(SHOW_MESSAGE_ID);
                    }
                    catch (const std::bad_alloc&)
                    {
                    }
                }
                EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on");
                EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on");
                EXPECT_EQ(fake::gen::user_library_paths(), std::vector<std::string>{long_value});
                EXPECT_EQ(fake::gen::user_ip_search_paths(), std::vector<std::string>{"ip" + long_value});
            });
    }
}

TEST_F(PREFERENCE_MEMORY_TEST, search_paths_of_an_older_release_are_carried_over_in_the_end)
{
    write_preferences("[General 23.3_pro]\nUSER_LIBRARIES = " + long_value + "\nUSER_IP_SEARCH_PATHS = ip" +
                      long_value + "\n");
    fail_at_every_allocation(cfg_close_user_ini_file, cfg_read_user_ini_file,
                             [&](bool)
                             {
                                 cfg_get_user_ini_value(SHOW_MESSAGE_ID);
                                 EXPECT_EQ(records(),
                                           (RECORDS{{"General 23.3_pro", "USER_IP_SEARCH_PATHS", "ip" + long_value},
                                                    {"General 23.3_pro", "USER_LIBRARIES", long_value},
                                                    {"General 23.4_pro", "USER_IP_SEARCH_PATHS", "ip" + long_value},
                                                    {"General 23.4_pro", "USER_LIBRARIES", long_value}}));
                                 EXPECT_EQ(gen_get_user_library_paths(), long_value);
                                 EXPECT_EQ(gen_get_user_ip_search_paths(), "ip" + long_value);
                             });
}

TEST_F(PREFERENCE_MEMORY_TEST, search_paths_are_assigned_and_handed_over_or_neither)
{
    for (const char* const section : {"General 23.4_pro", "General 23.2_pro", "Other"})
    {
        SCOPED_TRACE(section);
        write_preferences("[" + std::string(section) + "]\nUSER_LIBRARIES = short\n");
        RECORDS before;
        const auto prepare = [&]
        {
            begin_services();
            cfg_close_user_ini_file();
            cfg_read_user_ini_file();
            before = records();
        };
        fail_at_every_allocation(
            prepare, [] { cfg_set_user_ini_value(USER_LIBRARIES, long_value); },
            [&](bool failed)
            {
                const std::string old_value = section == std::string("Other") ? "" : "short";
                EXPECT_EQ(cfg_get_user_ini_value(USER_LIBRARIES), failed ? old_value : long_value);
                EXPECT_EQ(gen_get_user_library_paths(), failed ? old_value : long_value);
                EXPECT_EQ(records() == before, failed);
            });
    }
}

// --- Saving ---

TEST_F(PREFERENCE_MEMORY_TEST, a_save_that_fails_leaves_the_store_loaded_and_the_file_as_it_was)
{
    write_file_in_use();
    cfg_read_user_ini_file();
    const std::string saved = "\n[General 23.4_pro]\nRECENT_PROJECTS = " + long_value +
                              "\nUSER_LIBRARIES = " + long_value + "\n\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n";
    // The message comes when the file is open. A real message service does not fail; the fake allocates to record it.
    bool is_open = false;
    const auto prepare = [&]
    {
        write_preferences("as it was");
        is_open = false;
        fake::mem::before_message(1, [&is_open] { is_open = true; });
    };
    fail_at_every_allocation(prepare, cfg_write_user_ini_file,
                             [&](bool failed)
                             {
                                 EXPECT_EQ(records(), in_file);
                                 EXPECT_EQ(preferences(), !failed ? saved : is_open ? "" : "as it was");
                             });
}

TEST_F(PREFERENCE_MEMORY_TEST, a_save_and_unloading_that_fails_unloads_nothing)
{
    write_file_in_use();
    const auto prepare = [&]
    {
        cfg_close_user_ini_file();
        write_file_in_use();
        cfg_read_user_ini_file();
    };
    fail_at_every_allocation(prepare, cfg_write_and_close_user_ini_file,
                             [&](bool failed)
                             {
                                 EXPECT_EQ(cfg_user_ini_records != nullptr, failed);
                                 if (failed)
                                 {
                                     EXPECT_EQ(records(), in_file);
                                 }
                             });
}
}
