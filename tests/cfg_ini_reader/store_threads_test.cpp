// The store used by several threads, over the plain platform services: nothing but the store itself orders the threads,
// so that the thread sanitizer sees what hosts would see.
#include <atomic>
#include <set>
#include <thread>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_primitives.h"
#include "tests/support/isolated_test.h"
#include "tests/support/threads.h"

using namespace zon_cfg;

namespace
{
using VALUES = std::map<std::string, std::string>;

class STORE_THREADS_TEST : public ISOLATED_TEST
{
protected:
    STORE_THREADS_TEST()
    {
        cfg_close_ini_file();
    }

    ~STORE_THREADS_TEST() override
    {
        cfg_close_ini_file();
    }

    // One setting from each source.
    void write_layers()
    {
        write_file(temporary.path("cwd/velmar.ini"), "main=1\nappended=1\ninline=1\n");
        write_file(temporary.path("appended.ini"), "appended=2\ninline=2\n");
        environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
        environment.set("VELMAR_INI_VARS", "inline=3");
    }
};

std::uint64_t access_count(const std::string& name)
{
    const STORE_LOCK lock;
    const CFG_INI_RECORD* const record = cfg_ini_get_record(name);
    return record != nullptr ? record->access_count : 0;
}

// Counts its notifications; plain numbers, for the store's lock orders them.
class COUNTER : public CFG_INI_CALLBACK
{
public:
    using CFG_INI_CALLBACK::CFG_INI_CALLBACK;
    void refresh() override
    {
        ++refreshes;
    }
    void reset_to_default() override
    {
        ++resets;
    }
    int refreshes = 0;
    int resets = 0;
};

constexpr int thread_count = 4;

// Callbacks that come and go while other threads notify are of the plain base class: an object of a derived class is
// not yet, or no longer, one when its base part registers and unregisters it, so hosts keep notifications away then.

// --- The first use ---

// Each thread begins with another kind of call; every lookup must see all layers, and every stored value must last.
void use_for_the_first_time(int index)
{
    const std::string own = "own_" + std::to_string(index);
    switch (index % 4)
    {
    case 0:
        EXPECT_EQ(cfg_get_int_value("inline", -1), 3);
        break;
    case 1:
        cfg_set_value(own, "set");
        break;
    case 2:
        cfg_process_ini_string(own + "=set", true);
        break;
    default:
        cfg_check_debug_ini_values(nullptr, nullptr, nullptr);
        break;
    }
    EXPECT_EQ(cfg_get_int_value("main", -1), 1);
    EXPECT_EQ(cfg_get_int_value("appended", -1), 2);
    EXPECT_EQ(cfg_get_int_value("inline", -1), 3);
    cfg_set_value(own, "set");
}

void expect_own_values()
{
    for (int i = 0; i < thread_count; ++i)
        EXPECT_EQ(cfg_get_value("own_" + std::to_string(i)), "set");
}

TEST_F(STORE_THREADS_TEST, a_raced_first_use_of_the_process_gives_everybody_the_layered_answer)
{
    write_layers();
    // The search starts anew in the child, whose current directory is its own.
    environment.set("VELMAR_INI", temporary.path("cwd"));
    EXPECT_IN_FRESH_PROCESS(run_together(thread_count, use_for_the_first_time); expect_own_values());
}

TEST_F(STORE_THREADS_TEST, a_raced_first_use_reads_the_settings_once_and_loses_no_store)
{
    write_layers();
    const COUNTER main("main");
    const COUNTER inline_text("inline");
    constexpr int rounds = 60;
    for (int round = 1; round <= rounds; ++round)
    {
        run_together(thread_count, use_for_the_first_time);
        expect_own_values();
        EXPECT_EQ(main.refreshes, round);
        EXPECT_EQ(inline_text.refreshes, 3 * round);
        cfg_close_ini_file();
        EXPECT_EQ(main.resets, round);
    }
}

// None of a class of its own: the others' stores and emptyings would tell it before it is constructed.
TEST_F(STORE_THREADS_TEST, callbacks_may_be_registered_in_a_raced_first_use)
{
    EXPECT_IN_FRESH_PROCESS(run_together(thread_count,
                                         [](int index)
                                         {
                                             const CFG_INI_CALLBACK callback("x");
                                             if (index % 2 == 0)
                                                 cfg_close_ini_file();
                                             cfg_set_value("x", "1");
                                             EXPECT_FALSE(cfg_ini_is_external("x"));
                                         }));
}

TEST_F(STORE_THREADS_TEST, the_catalogues_map_is_built_once_by_racing_callers)
{
    EXPECT_IN_FRESH_PROCESS(std::atomic<const void*> seen[thread_count];
                            run_together(thread_count,
                                         [&](int index)
                                         {
                                             const auto& map = cfg_ini_get_string_to_id_map();
                                             EXPECT_EQ(map.size(), 30U);
                                             EXPECT_EQ(map.at("msg_sqlite"), CFG_INI_VAR_MSG_SQLITE);
                                             EXPECT_TRUE(cfg_get_ini_var_enum_from_string("zanth_flow"));
                                             seen[index] = &map;
                                         });
                            for (const auto& map
                                 : seen) EXPECT_EQ(map.load(), seen[0].load()));
}

TEST_F(STORE_THREADS_TEST, racing_first_questions_agree)
{
    write_file(temporary.path("home/velmar.ini"),
               "disable_vexe_cmd_mode=on\njtag_server_mode=on\nenable_benchmarking_mode=on\n");
    environment.set("HOME", temporary.path("home"));
    EXPECT_IN_FRESH_PROCESS(run_together(thread_count,
                                         [](int)
                                         {
                                             for (int i = 0; i < 3; ++i)
                                             {
                                                 EXPECT_TRUE(cfg_is_vexe_mode());
                                                 EXPECT_FALSE(cfg_is_vexe_cmd_mode());
                                                 EXPECT_TRUE(cfg_is_vexe_rpt_mode());
                                                 EXPECT_FALSE(cfg_jtag_auto_config());
                                                 EXPECT_TRUE(cfg_is_jtag_server_mode());
                                                 EXPECT_TRUE(cfg_is_benchmarking_mode());
                                             }
                                         }));
}

TEST_F(STORE_THREADS_TEST, a_mode_is_computed_once_by_racing_callers)
{
    EXPECT_IN_FRESH_PROCESS(cfg_set_on("disable_vexe_mode");
                            run_together(thread_count, [](int) { EXPECT_FALSE(cfg_is_vexe_mode()); });
                            EXPECT_EQ(access_count("disable_vexe_mode"), 1U));
}

TEST_F(STORE_THREADS_TEST, a_callback_may_ask_for_a_mode_that_another_thread_is_asking_for)
{
    class ASKER : public CFG_INI_CALLBACK
    {
    public:
        using CFG_INI_CALLBACK::CFG_INI_CALLBACK;
        void refresh() override
        {
            EXPECT_TRUE(cfg_is_vexe_mode());
        }
    };
    EXPECT_IN_FRESH_PROCESS(const ASKER asker("x"); run_together(2,
                                                                 [](int index)
                                                                 {
                                                                     if (index == 0)
                                                                         EXPECT_TRUE(cfg_is_vexe_mode());
                                                                     else
                                                                         cfg_set_value("x", "1");
                                                                 }));
}

TEST_F(STORE_THREADS_TEST, forcing_modes_off_is_seen_by_the_others)
{
    EXPECT_IN_FRESH_PROCESS(run_together(thread_count,
                                         [](int index)
                                         {
                                             if (index == 0)
                                             {
                                                 cfg_force_vexe_mode_off();
                                                 cfg_vexe_ini_applied();
                                             }
                                             while (cfg_is_vexe_mode() || cfg_is_vexe_cmd_mode() ||
                                                    !cfg_is_vexe_ini_applied())
                                                 std::this_thread::yield();
                                         }));
}

// --- Counting, storing, notifying ---

TEST_F(STORE_THREADS_TEST, no_access_is_lost)
{
    constexpr int reads = 2000;
    cfg_set_value("a", "1");
    run_together(thread_count,
                 [](int index)
                 {
                     for (int i = 0; i < reads; ++i)
                     {
                         if (index % 2 == 0)
                             EXPECT_TRUE(cfg_is_on("a", false));
                         else
                             EXPECT_EQ(cfg_get_value("A"), "1");
                     }
                 });
    EXPECT_EQ(access_count("a"), std::uint64_t{thread_count} * reads);
    std::string name;
    std::string value;
    EXPECT_EQ(cfg_get_single_most_accessed_ini(name, value), std::uint64_t{thread_count} * reads);
}

TEST_F(STORE_THREADS_TEST, one_of_the_racing_reads_of_an_unknown_name_creates_its_record)
{
    for (int round = 0; round < 50; ++round)
    {
        const std::string name = "unknown_" + std::to_string(round);
        run_together(thread_count, [&](int) { cfg_get_int_value(name, 0); });
        EXPECT_EQ(access_count(name), std::uint64_t{thread_count} - 1);
    }
}

TEST_F(STORE_THREADS_TEST, no_store_and_no_notification_is_lost)
{
    constexpr int stores = 500;
    const COUNTER shared("shared");
    run_together(thread_count,
                 [](int index)
                 {
                     const std::string own = "own_" + std::to_string(index) + "_";
                     for (int i = 0; i < stores; ++i)
                     {
                         cfg_set_int_value("shared", i);
                         cfg_set_int_value(own + std::to_string(i), i);
                     }
                 });
    EXPECT_EQ(shared.refreshes, thread_count * stores);
    for (int index = 0; index < thread_count; ++index)
    {
        for (int i = 0; i < stores; ++i)
            EXPECT_EQ(cfg_get_int_value("own_" + std::to_string(index) + "_" + std::to_string(i), -1), i);
    }
}

TEST_F(STORE_THREADS_TEST, a_value_and_its_conversions_change_together)
{
    cfg_set_value("a", "1");
    run_while({[]
               {
                   // Both texts are booleans; a mixture of the two would not be.
                   EXPECT_TRUE(cfg_get_value_as<bool>("a").has_value());
               },
               []
               {
                   const std::string value = cfg_get_value("a");
                   EXPECT_TRUE(value == "1" || value == "off") << value;
               }},
              []
              {
                  for (int i = 0; i < 2000; ++i)
                      cfg_set_value("a", i % 2 == 0 ? "off" : "1");
              });
}

TEST_F(STORE_THREADS_TEST, callbacks_come_and_go_while_others_are_notified)
{
    const COUNTER staying("x");
    int stores = 0;
    run_while({[] { const CFG_INI_CALLBACK passing("x"); }, [] { const CFG_INI_CALLBACK passing("another"); },
               [] { cfg_set_value("another", "1"); }},
              [&]
              {
                  for (; stores < 1000; ++stores)
                      cfg_set_value("x", "1");
              });
    EXPECT_EQ(staying.refreshes, stores);
}

TEST_F(STORE_THREADS_TEST, the_debug_settings_never_miss_the_last_store)
{
    run_while({[] { cfg_check_debug_ini_values(nullptr, nullptr, nullptr); },
               [] { cfg_check_debug_ini_values(nullptr, nullptr, nullptr); }},
              []
              {
                  for (int i = 0; i < 1000; ++i)
                  {
                      cfg_set_int_value("debug_msg_level", i);
                      int level = -1;
                      cfg_check_debug_ini_values(nullptr, nullptr, &level);
                      EXPECT_EQ(level, i);
                  }
              });
}

// --- Emptying and rereading ---

TEST_F(STORE_THREADS_TEST, everything_goes_on_while_another_thread_empties_and_rereads)
{
    write_layers();
    const std::string main_file = temporary.path("cwd/velmar.ini");
    const std::string project = temporary.path("cwd");
    const std::string appended_file = temporary.path("appended.ini");
    write_file(temporary.path("cwd/regtest.ini"), "regtest=4\n");
    const COUNTER counter("main");
    run_while({[]
               {
                   EXPECT_EQ(cfg_get_int_value("main", -1), 1);
                   EXPECT_TRUE(cfg_is_on("main"));
                   EXPECT_EQ(cfg_get_value_as<double>("main"), 1.0);
                   EXPECT_EQ(cfg_get_value("main"), "1");
                   EXPECT_GT(cfg_get_int_value("inline", -1), 0);
                   cfg_get_value("unknown");
               },
               []
               {
                   cfg_set_value("stored", "a text that is too long to be kept in place");
                   cfg_process_ini_string("stored=1;other=2", false);
                   cfg_ini_is_external("main");
                   cfg_set_on(CFG_INI_VAR_MSG_SQLITE);
                   EXPECT_TRUE(cfg_is_on(CFG_INI_VAR_MSG_SQLITE));
               },
               []
               {
                   std::vector<std::pair<std::string, std::string>> ranks;
                   cfg_get_most_accessed(&ranks);
                   VALUES map;
                   cfg_get_used_variable_value_map(&map);
                   cfg_get_external_variable_value_map(&map);
                   std::string name;
                   std::string value;
                   cfg_get_single_most_accessed_ini(name, value);
               },
               []
               {
                   EXPECT_TRUE(cfg_is_vexe_mode());
                   EXPECT_FALSE(cfg_jtag_auto_config());
                   EXPECT_FALSE(cfg_is_jtag_server_mode());
                   EXPECT_FALSE(cfg_is_benchmarking_mode());
                   int level = 0;
                   cfg_check_debug_ini_values(nullptr, nullptr, &level);
                   EXPECT_EQ(level, 2);
                   const CFG_INI_CALLBACK passing("stored");
               }},
              [&]
              {
                  for (int i = 0; i < 150; ++i)
                  {
                      cfg_close_ini_file();
                      cfg_read_ini_file();
                      cfg_read_ini_file(main_file);
                      cfg_read_and_append_environment_ini_file(appended_file);
                      cfg_read_project_ini_file(project.c_str(), true);
                      EXPECT_STREQ(cfg_get_ini_file_path_name(), main_file.c_str());
                  }
              });
}

TEST_F(STORE_THREADS_TEST, a_reader_sees_the_old_store_or_the_whole_main_file)
{
    constexpr int variables = 200;
    const auto text_of_version = [](const std::string& version)
    {
        std::string text;
        for (int i = 0; i < variables; ++i)
            text += "variable_" + std::to_string(i) + "=" + version + "\n";
        return text;
    };
    const std::string old_file = temporary.path("old.ini");
    const std::string new_file = temporary.path("new.ini");
    write_file(old_file, text_of_version("old"));
    write_file(new_file, text_of_version("new"));
    cfg_read_ini_file(old_file);

    const auto expect_one_version = []
    {
        std::set<std::string> versions;
        const STORE_LOCK lock;
        ASSERT_NE(cfg_ini_file.load(), nullptr);
        EXPECT_EQ(cfg_ini_file.load()->size(), std::size_t{variables});
        for (const auto& [name, record] : *cfg_ini_file.load())
            versions.insert(record->value);
        EXPECT_EQ(versions.size(), 1U);
    };
    const auto expect_some_version = []
    {
        EXPECT_NE(cfg_get_value("variable_0"), "");
        EXPECT_NE(cfg_get_value("variable_" + std::to_string(variables - 1)), "");
    };
    // A report does not wait for a store that is not there: between the emptying and the new file it has nothing.
    const auto expect_one_version_or_nothing_reported = []
    {
        VALUES map;
        cfg_get_external_variable_value_map(&map);
        EXPECT_TRUE(map.empty() || map.size() == std::size_t{variables}) << map.size();
        std::set<std::string> versions;
        for (const auto& [name, value] : map)
            versions.insert(value);
        EXPECT_LE(versions.size(), 1U);
    };
    run_while({expect_one_version, expect_some_version, expect_one_version_or_nothing_reported},
              [&]
              {
                  for (int i = 0; i < 100; ++i)
                      cfg_read_ini_file(i % 2 == 0 ? new_file : old_file);
              });
}

TEST_F(STORE_THREADS_TEST, two_threads_may_apply_files_on_top)
{
    write_file(temporary.path("one.ini"), "one=1\nboth=1\n");
    write_file(temporary.path("two.ini"), "two=2\nboth=2\n");
    cfg_read_ini_file("");
    const std::string paths[] = {temporary.path("one.ini"), temporary.path("two.ini")};
    run_together(2,
                 [&](int index)
                 {
                     for (int i = 0; i < 200; ++i)
                     {
                         cfg_read_regtest_ini_file(paths[index]);
                         cfg_read_and_append_environment_ini_file(paths[index]);
                     }
                 });
    EXPECT_EQ(cfg_get_value("one"), "1");
    EXPECT_EQ(cfg_get_value("two"), "2");
    const std::string last = cfg_get_regtest_ini_file_path_name();
    EXPECT_TRUE(last == paths[0] || last == paths[1]) << last;
}

TEST_F(STORE_THREADS_TEST, several_threads_may_reread)
{
    write_layers();
    const std::string main_file = temporary.path("cwd/velmar.ini");
    run_together(thread_count,
                 [&](int index)
                 {
                     for (int i = 0; i < 50; ++i)
                     {
                         if (index == 0)
                             cfg_read_project_ini_file(temporary.path("cwd").c_str(), false);
                         else if (index == 1)
                             cfg_read_ini_file(main_file);
                         EXPECT_EQ(cfg_get_int_value("main", -1), 1);
                     }
                 });
    EXPECT_EQ(cfg_get_int_value("inline", -1), 3);
}

TEST_F(STORE_THREADS_TEST, a_load_beside_an_emptying_reports_nothing)
{
    write_layers();
    write_file(temporary.path("cwd/regtest.ini"), "regtest=4\n");
    const std::string main_file = temporary.path("cwd/velmar.ini");
    const std::string project = temporary.path("cwd");
    testing::internal::CaptureStderr(); // where internal errors are reported
    run_while({cfg_close_ini_file, [] { EXPECT_EQ(cfg_get_int_value("main", -1), 1); }},
              [&]
              {
                  for (int i = 0; i < 500; ++i)
                  {
                      cfg_read_ini_file(main_file);
                      cfg_read_project_ini_file(project.c_str(), true);
                  }
              });
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(cfg_get_int_value("inline", -1), 3);
}

TEST_F(STORE_THREADS_TEST, a_reset_may_read_while_others_look_up)
{
    class READER : public CFG_INI_CALLBACK
    {
    public:
        using CFG_INI_CALLBACK::CFG_INI_CALLBACK;
        void reset_to_default() override
        {
            EXPECT_EQ(cfg_get_int_value("main", -1), 1);
        }
    };
    write_layers();
    const READER reader("main");
    run_while({[] { EXPECT_EQ(cfg_get_int_value("main", -1), 1); }, [] { cfg_set_value("stored", "x"); }},
              []
              {
                  for (int i = 0; i < 150; ++i)
                  {
                      cfg_close_ini_file();
                      cfg_read_ini_file();
                  }
              });
}
}
