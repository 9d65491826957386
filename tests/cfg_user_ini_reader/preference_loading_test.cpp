// The search paths reach the host exactly once for each loading and assignment, whatever fails on the way.
#include "cfg_ini/cfg_user_ini_reader/preference_loading.h"

#include <filesystem>
#include <functional>
#include <stdexcept>

#include "cfg_ini/cfg_ini.h"
#include "tests/cfg_user_ini_reader/preference_test.h"

namespace
{
using PATHS = std::vector<std::string>;

const PATHS none = {};

[[noreturn]] void fail()
{
    throw std::runtime_error("the host's function fails");
}

class PREFERENCE_LOADING_TEST : public PREFERENCE_TEST
{
protected:
    const std::string both_paths = "[General 23.4_pro]\nUSER_LIBRARIES = /lib\nUSER_IP_SEARCH_PATHS = /ip\n";
    const std::string both_paths_of_an_older_release =
        "[General 23.3_pro]\nUSER_LIBRARIES = /old/lib\nUSER_IP_SEARCH_PATHS = /old/ip\n";

    // The first use of the preferences, which fails.
    void load_with_failing(void (*lie_in_wait)(int nth, fake::HOOK hook))
    {
        lie_in_wait(1, fail);
        EXPECT_THROW(cfg_get_user_ini_value(SHOW_MESSAGE_ID), std::runtime_error);
    }
};

// --- Owed by loading ---

TEST_F(PREFERENCE_LOADING_TEST, search_paths_that_were_not_taken_are_handed_over_at_the_next_use)
{
    const std::vector<std::pair<const char*, std::function<void()>>> uses = {
        {"lookup by number", [] { cfg_get_user_ini_value(SHOW_MESSAGE_ID); }},
        {"lookup by name", [] { cfg_get_user_ini_value("SHOW_MESSAGE_ID"); }},
        {"lookup of an unknown name", [] { cfg_get_user_ini_value("NO_SUCH_KEY"); }},
        {"lookup of no preference", [] { cfg_get_user_ini_value(CFG_USER_INI_ENUMS_END); }},
        {"integer", [] { cfg_get_user_ini_int_value(SHOW_MESSAGE_ID); }},
        {"switch", [] { cfg_user_ini_is_on(SHOW_MESSAGE_ID, true); }},
        {"question", [] { cfg_does_ini_variable_have_value(SHOW_MESSAGE_ID, false); }},
        {"assignment", [] { cfg_set_user_ini_value(WEB_BROWSER, "b"); }},
        {"refused assignment", [] { cfg_set_user_ini_value(SHOW_MESSAGE_ID, "1"); }},
        {"origin", [] { zon_cfg::preference_origin(SHOW_MESSAGE_ID); }},
        {"save", [] { cfg_write_user_ini_file(); }},
    };
    for (const auto& [name, use] : uses)
    {
        SCOPED_TRACE(name);
        begin_services();
        cfg_close_user_ini_file();
        write_preferences(both_paths);
        load_with_failing(fake::gen::before_set_user_library_paths);
        EXPECT_EQ(fake::gen::user_library_paths(), none);
        EXPECT_EQ(fake::gen::user_ip_search_paths(), none);
        for (int time = 0; time < 3; ++time)
        {
            use();
            EXPECT_EQ(fake::gen::user_library_paths(), PATHS{"/lib"});
            EXPECT_EQ(fake::gen::user_ip_search_paths(), PATHS{"/ip"});
        }
    }
}

TEST_F(PREFERENCE_LOADING_TEST, search_paths_stay_owed_for_as_long_as_the_host_fails)
{
    write_preferences(both_paths);
    for (int time = 0; time < 4; ++time)
        load_with_failing(fake::gen::before_set_user_library_paths);
    EXPECT_EQ(fake::gen::user_ip_search_paths(), none);
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on");
    EXPECT_EQ(fake::gen::user_library_paths(), PATHS{"/lib"});
    EXPECT_EQ(fake::gen::user_ip_search_paths(), PATHS{"/ip"});
    EXPECT_EQ(fake::fio::asked().size(), 1U); // the file was read once
}

TEST_F(PREFERENCE_LOADING_TEST, search_path_that_was_taken_is_not_handed_over_again_for_the_other)
{
    write_preferences(both_paths);
    for (int time = 0; time < 3; ++time)
        load_with_failing(fake::gen::before_set_user_ip_search_paths);
    EXPECT_EQ(fake::gen::user_library_paths(), PATHS{"/lib"});
    cfg_get_user_ini_value(SHOW_MESSAGE_ID);
    EXPECT_EQ(fake::gen::user_library_paths(), PATHS{"/lib"});
    EXPECT_EQ(fake::gen::user_ip_search_paths(), PATHS{"/ip"});
}

TEST_F(PREFERENCE_LOADING_TEST, a_failing_version_service_leaves_the_search_paths_owed)
{
    write_preferences(both_paths);
    fake::ver::before_version(2, fail); // the first question is the lookup's own
    EXPECT_THROW(cfg_get_user_ini_value(SHOW_MESSAGE_ID), std::runtime_error);
    EXPECT_EQ(fake::gen::user_library_paths(), none);
    cfg_get_user_ini_value(SHOW_MESSAGE_ID);
    EXPECT_EQ(fake::gen::user_library_paths(), PATHS{"/lib"});
    EXPECT_EQ(fake::gen::user_ip_search_paths(), PATHS{"/ip"});
}

TEST_F(PREFERENCE_LOADING_TEST, assignment_comes_after_what_is_owed)
{
    write_preferences(both_paths);
    load_with_failing(fake::gen::before_set_user_library_paths);
    EXPECT_TRUE(cfg_set_user_ini_value(USER_LIBRARIES, "/assigned"));
    EXPECT_EQ(fake::gen::user_library_paths(), (PATHS{"/lib", "/assigned"}));
    EXPECT_EQ(fake::gen::user_ip_search_paths(), PATHS{"/ip"});
}

TEST_F(PREFERENCE_LOADING_TEST, what_is_owed_for_one_file_is_not_handed_over_for_the_next)
{
    write_preferences(both_paths);
    load_with_failing(fake::gen::before_set_user_library_paths);
    cfg_close_user_ini_file();
    std::filesystem::remove(file_path());
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on");
    cfg_get_user_ini_value(SHOW_MESSAGE_ID);
    EXPECT_EQ(fake::ver::version_calls(), 4); // one for each lookup, and one for the search path that failed
    EXPECT_EQ(fake::gen::user_library_paths(), none);
    EXPECT_EQ(fake::gen::user_ip_search_paths(), none);
}

TEST_F(PREFERENCE_LOADING_TEST, a_path_that_cannot_be_told_leaves_nothing_loaded)
{
    write_preferences(both_paths);
    fake::gen::before_user_profile_directory(1, fail);
    EXPECT_THROW(cfg_get_user_ini_value(SHOW_MESSAGE_ID), std::runtime_error);
    EXPECT_EQ(cfg_user_ini_records, nullptr);
    EXPECT_EQ(cfg_user_ini_sections_read, nullptr);
    EXPECT_EQ(cfg_get_user_ini_value(USER_LIBRARIES), "/lib");
    EXPECT_EQ(fake::gen::user_library_paths(), PATHS{"/lib"});
}

// Against what the general service promises, but not with a stack that overflows.
TEST_F(PREFERENCE_LOADING_TEST, host_that_asks_while_it_is_handed_search_paths_gets_an_answer)
{
    write_preferences(both_paths);
    std::string asked;
    fake::gen::before_set_user_library_paths(1, [&] { asked = cfg_get_user_ini_value(USER_IP_SEARCH_PATHS); });
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on");
    EXPECT_EQ(asked, "/ip");
    EXPECT_EQ(fake::gen::user_library_paths(), PATHS{"/lib"});
    EXPECT_EQ(fake::gen::user_ip_search_paths(), PATHS{"/ip"});
}

// --- Carried over by loading ---

TEST_F(PREFERENCE_LOADING_TEST, carried_over_search_path_that_was_not_taken_is_carried_over_at_the_next_use)
{
    write_preferences(both_paths_of_an_older_release);
    const RECORDS in_file = {{"General 23.3_pro", "USER_IP_SEARCH_PATHS", "/old/ip"},
                             {"General 23.3_pro", "USER_LIBRARIES", "/old/lib"}};
    load_with_failing(fake::gen::before_set_user_library_paths);
    EXPECT_EQ(records(), in_file) << "not carried over by half";
    cfg_get_user_ini_value(SHOW_MESSAGE_ID);
    // Each once for the assignment of the carried-over value, and once by the loading.
    EXPECT_EQ(fake::gen::user_library_paths(), (PATHS{"/old/lib", "/old/lib"}));
    EXPECT_EQ(fake::gen::user_ip_search_paths(), (PATHS{"/old/ip", "/old/ip"}));
    EXPECT_EQ(records().size(), 4U);
}

TEST_F(PREFERENCE_LOADING_TEST, saving_carries_over_what_is_owed_first)
{
    write_preferences(both_paths_of_an_older_release);
    load_with_failing(fake::gen::before_set_user_ip_search_paths); // when the other one is carried over already
    ASSERT_EQ(records().size(), 3U);
    EXPECT_TRUE(cfg_write_and_close_user_ini_file());
    EXPECT_EQ(preferences(), "\n[General 23.3_pro]\nUSER_IP_SEARCH_PATHS = /old/ip\nUSER_LIBRARIES = /old/lib\n"
                             "\n[General 23.4_pro]\nUSER_IP_SEARCH_PATHS = /old/ip\nUSER_LIBRARIES = /old/lib\n");
}

TEST_F(PREFERENCE_LOADING_TEST, saving_that_the_host_fails_leaves_file_and_preferences)
{
    write_preferences(both_paths);
    load_with_failing(fake::gen::before_set_user_library_paths);
    fake::gen::before_set_user_library_paths(1, fail);
    EXPECT_THROW(cfg_write_and_close_user_ini_file(), std::runtime_error);
    EXPECT_EQ(preferences(), both_paths);
    EXPECT_EQ(records().size(), 2U);
    EXPECT_TRUE(cfg_write_and_close_user_ini_file());
    EXPECT_EQ(cfg_user_ini_records, nullptr);
}

// --- Assignments ---

TEST_F(PREFERENCE_LOADING_TEST, assignment_of_search_paths_that_the_host_does_not_take_is_undone)
{
    struct ROW
    {
        const char* name;
        const char* file;
        const char* key;
        const char* before;
    };
    const ROW rows[] = {
        {"no record", "", "USER_LIBRARIES", ""},
        {"a record", "[General 23.4_pro]\nUSER_LIBRARIES = /lib\n", "USER_LIBRARIES", "/lib"},
        {"an empty record", "[General 23.4_pro]\nUSER_LIBRARIES =\n", "USER_LIBRARIES", ""},
        {"a record of another spelling", "[General 23.4_pro]\nuser_libraries = /lib\n", "user_libraries", "/lib"},
        {"no record of this spelling", "[General 23.4_pro]\nuser_libraries = /lib\n", "USER_LIBRARIES", ""},
    };
    for (const ROW& row : rows)
    {
        for (const bool cached : {false, true})
        {
            SCOPED_TRACE(std::string(row.name) + (cached ? ", cached" : ""));
            cfg_close_user_ini_file();
            write_preferences(row.file);
            cfg_read_user_ini_file();
            const RECORDS before = records();
            if (cached)
            {
                EXPECT_EQ(cfg_get_user_ini_value(row.key), row.before);
            }
            std::string seen;
            fake::gen::before_set_user_library_paths(1,
                                                     [&]
                                                     {
                                                         seen = cfg_get_user_ini_value(row.key);
                                                         fail();
                                                     });
            EXPECT_THROW(cfg_set_user_ini_value(row.key, "/assigned"), std::runtime_error);
            EXPECT_EQ(seen, "/assigned") << "stored when the host is told";
            EXPECT_EQ(records(), before);
            EXPECT_EQ(cfg_get_user_ini_value(row.key), row.before);
            EXPECT_TRUE(cfg_set_user_ini_value(row.key, "/assigned"));
            EXPECT_EQ(cfg_get_user_ini_value(row.key), "/assigned");
            EXPECT_EQ(fake::gen::user_library_paths().back(), "/assigned");
        }
    }
}
}
