// What callbacks and other threads may do while settings are being loaded.
#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <thread>

#include "tests/support/store_test.h"

namespace
{
class ACTOR : public CFG_INI_CALLBACK
{
public:
    using CFG_INI_CALLBACK::CFG_INI_CALLBACK;

    void refresh() override
    {
        if (on_refresh)
            on_refresh();
    }

    void reset_to_default() override
    {
        if (on_reset)
            on_reset();
    }

    std::function<void()> on_refresh;
    std::function<void()> on_reset;
};

// --- Callbacks that change what the caller handed in ---

class CALLER_TEXT_TEST : public STORE_TEST
{
protected:
    CALLER_TEXT_TEST()
    {
        for (const std::string name : {"one", "two"})
        {
            write_file(temporary.path(name + "/velmar.ini"), "x=1\nmain=" + name + "\n");
            write_file(temporary.path(name + "/regtest.ini"), "x=2\nregtest=" + name + "\n");
        }
        make_empty_store(); // so that somebody is reset
    }

    ACTOR actor{"x"};
    const ASSIGNMENTS all_of_one = {{"x", "2"}, {"main", "one"}, {"regtest", "one"}};
};

TEST_F(CALLER_TEXT_TEST, a_project_directory_may_change_at_each_notification)
{
    const std::string one = temporary.path("one");
    const std::string two = temporary.path("two");
    for (std::function<void()> ACTOR::*const moment : {&ACTOR::on_reset, &ACTOR::on_refresh})
    {
        std::string directory = one;
        actor.*moment = [&] { std::copy(two.begin(), two.end(), directory.begin()); };
        cfg_read_project_ini_file(directory.c_str(), true);
        EXPECT_EQ(directory, two);
        EXPECT_EQ(all_values(), all_of_one);
        actor.*moment = nullptr;
    }
}

TEST_F(CALLER_TEXT_TEST, a_project_directory_may_be_freed_at_each_notification)
{
    const std::string one = temporary.path("one");
    for (std::function<void()> ACTOR::*const moment : {&ACTOR::on_reset, &ACTOR::on_refresh})
    {
        auto directory = std::make_unique<std::string>(one);
        actor.*moment = [&]
        {
            if (directory != nullptr)
                std::fill(directory->begin(), directory->end(), '?'); // seen also where freed memory keeps its bytes
            directory.reset();
        };
        cfg_read_project_ini_file(directory->c_str(), true);
        EXPECT_EQ(directory, nullptr);
        EXPECT_EQ(all_values(), all_of_one);
        actor.*moment = nullptr;
    }
}

TEST_F(CALLER_TEXT_TEST, a_path_may_change_at_each_notification)
{
    const std::string one = temporary.path("one/velmar.ini");
    const std::string two = temporary.path("two/velmar.ini");
    struct
    {
        const char* name;
        void (*read)(const std::string&);
        char* (*path_name)();
    } const table[] = {
        {"main", cfg_read_ini_file, cfg_get_ini_file_path_name},
        {"regression-test", cfg_read_regtest_ini_file, cfg_get_regtest_ini_file_path_name},
        {"appended", cfg_read_and_append_environment_ini_file, cfg_get_appended_envrionment_ini_file_path_name},
    };
    for (const auto& row : table)
    {
        for (std::function<void()> ACTOR::*const moment : {&ACTOR::on_reset, &ACTOR::on_refresh})
        {
            std::string path = one;
            actor.*moment = [&] { path = two; };
            row.read(path);
            EXPECT_EQ(cfg_get_value("main"), "one") << row.name;
            EXPECT_EQ(row.path_name(), one);
            actor.*moment = nullptr;
        }
    }
}

TEST_F(CALLER_TEXT_TEST, an_inline_text_may_change_at_each_notification)
{
    const std::string items = "x=1;a_name_that_is_stored_after_x=1;x=3;b=2";
    std::string text = items;
    actor.on_refresh = [&] { text.assign(text.size(), ';'); };
    cfg_process_ini_string(text, true);
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"x", "3"}, {"a_name_that_is_stored_after_x", "1"}, {"b", "2"}}));
}

TEST_F(CALLER_TEXT_TEST, the_environments_assignments_may_change_at_each_notification)
{
    environment.set("VELMAR_INI_VARS", "x=1;a=1;b=2");
    actor.on_refresh = [&]
    {
        char* const assignments = std::getenv("VELMAR_INI_VARS");
        std::fill_n(assignments, std::string_view(assignments).size(), ';');
        environment.set("VELMAR_INI_VARS", "c=3");
    };
    cfg_read_ini_file("");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"x", "1"}, {"a", "1"}, {"b", "2"}}));
}

// A relative path is the text that it is; which file it names is asked whenever the file is needed.
TEST_F(CALLER_TEXT_TEST, the_current_directory_may_change_at_each_notification)
{
    for (const std::string there : {"here", "there"})
    {
        write_file(temporary.path(there + "/project/velmar.ini"), "x=1\nmain=" + there + "\n");
        write_file(temporary.path(there + "/project/regtest.ini"), "regtest=" + there + "\n");
    }
    struct
    {
        std::function<void()> ACTOR::*moment;
        ASSIGNMENTS expected;
    } const table[] = {
        {&ACTOR::on_reset, {{"x", "1"}, {"main", "there"}, {"regtest", "there"}}},
        {&ACTOR::on_refresh, {{"x", "1"}, {"main", "here"}, {"regtest", "there"}}},
    };
    for (const auto& row : table)
    {
        const SCOPED_CURRENT_DIRECTORY here(temporary.path("here"));
        actor.*row.moment = [&] { std::filesystem::current_path(temporary.path("there")); };
        cfg_read_project_ini_file("project", true);
        EXPECT_EQ(all_values(), row.expected);
        EXPECT_STREQ(cfg_get_ini_file_path_name(), "project/velmar.ini");
        EXPECT_STREQ(cfg_get_regtest_ini_file_path_name(), "project/regtest.ini");
        actor.*row.moment = nullptr;
    }
}

// --- Failures after callbacks ran ---

TEST_F(CALLER_TEXT_TEST, a_failure_that_is_no_callbacks_releases_the_lock_though_callbacks_ran_before)
{
    write_file(temporary.path("main.ini"), "x=1\ny=2\n");
    int notifications = 0;
    actor.on_refresh = [&] { ++notifications; };
    actor.on_reset = actor.on_refresh;
    // The lock is taken for the load, the emptying, the path, and each line.
    fake::thr::before_lock(5, fake::out_of_memory);
    EXPECT_THROW(cfg_read_ini_file(temporary.path("main.ini")), std::bad_alloc);
    EXPECT_EQ(notifications, 2);
    EXPECT_EQ(fake::thr::depth(), 0);
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"x", "1"}}));
}

// --- What callbacks see ---

TEST_F(CALLER_TEXT_TEST, a_path_is_remembered_before_the_first_line_is_stored)
{
    write_file(temporary.path("main.ini"), "x=1\n");
    write_file(temporary.path("appended.ini"), "x=1\n");
    environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
    std::vector<std::string> seen;
    char* (*path_name)() = nullptr;
    actor.on_refresh = [&] { seen.emplace_back(path_name()); };

    path_name = cfg_get_ini_file_path_name;
    cfg_read_ini_file(temporary.path("main.ini"));
    EXPECT_EQ(seen.front(), temporary.path("main.ini"));
    path_name = cfg_get_appended_envrionment_ini_file_path_name;
    cfg_read_ini_file("");
    EXPECT_EQ(seen.back(), temporary.path("appended.ini"));
    path_name = cfg_get_regtest_ini_file_path_name;
    cfg_read_regtest_ini_file(temporary.path("one/regtest.ini"));
    EXPECT_EQ(seen.back(), temporary.path("one/regtest.ini"));
}

TEST_F(CALLER_TEXT_TEST, nothing_is_found_of_a_store_that_a_reset_made_for_itself)
{
    write_file(temporary.path("cwd/velmar.ini"), "y=default\n");
    std::string during;
    actor.on_reset = [&] { during = cfg_get_value("y"); }; // and so its record is in the name cache
    cfg_read_ini_file(temporary.path("one/velmar.ini"));
    EXPECT_EQ(during, "default");
    EXPECT_EQ(cfg_get_value("y"), "");
    actor.on_reset = [&] { during = cfg_get_value("main"); };
    cfg_read_ini_file(temporary.path("two/velmar.ini"));
    EXPECT_EQ(during, "");
    EXPECT_EQ(cfg_get_value("main"), "two");
}

// --- Another thread that empties the store between two layers, or within one ---

class EMPTIED_TEST : public STORE_TEST
{
protected:
    EMPTIED_TEST()
    {
        write_file(temporary.path("cwd/velmar.ini"), "main=1\n");
        write_file(temporary.path("cwd/regtest.ini"), "regtest_a=1\nregtest_b=2\n");
        write_file(appended_file, "appended_a=1\nappended_b=2\n");
    }

    void set_environments_sources()
    {
        environment.set("APPENDED_VELMAR_INI", appended_file);
        environment.set("VELMAR_INI_VARS", "inline_a=1;inline_b=2");
    }

    static void empty_by_another_thread()
    {
        std::thread(cfg_close_ini_file).join();
    }

    // Runs `action` with a store, which another thread empties just before the nth question for a file; if the calling
    // thread holds no lock then. Whether it did.
    static bool emptied_before_exists(int nth, const std::function<void()>& action)
    {
        return emptied(fake::fio::before_exists, nth, action);
    }

    // The same, just before the nth time that the lock is taken.
    static bool emptied_before_lock(int nth, const std::function<void()>& action)
    {
        return emptied(fake::thr::before_lock, nth, action);
    }

    const std::string appended_file = temporary.path("appended.ini");

private:
    static bool emptied(void (*arm)(int, fake::HOOK), int nth, const std::function<void()>& action)
    {
        cfg_read_ini_file("");
        bool done = false;
        arm(nth,
            [&]
            {
                done = fake::thr::depth() == 0;
                if (done)
                    empty_by_another_thread();
            });
        action();
        arm(0, nullptr);
        return done;
    }
};

struct LAYER_CASE
{
    const char* name;
    int question; // the one for a file after which the layer is applied
    bool store_afterwards;
    ASSIGNMENTS values;
};

TEST_F(EMPTIED_TEST, a_layer_that_the_library_applies_ends_without_a_report)
{
    // Questions: the project's main file when it is chosen and when it is opened; the same for the appended and for the
    // regression-test file.
    const ASSIGNMENTS nothing;
    const LAYER_CASE table[] = {
        {"main file, chosen but not yet read",
         1,
         true,
         {{"main", "1"},
          {"appended_a", "1"},
          {"appended_b", "2"},
          {"inline_a", "1"},
          {"inline_b", "2"},
          {"regtest_a", "1"},
          {"regtest_b", "2"}}},
        {"appended file, to be chosen", 3, false, nothing},
        {"appended file, to be opened", 4, false, nothing},
        {"regression-test file, to be chosen", 5, false, nothing},
        {"regression-test file, to be opened", 6, false, nothing},
    };
    for (const LAYER_CASE& row : table)
    {
        SCOPED_TRACE(row.name);
        const std::string project = temporary.path("cwd");
        const auto load = [&]
        {
            set_environments_sources();
            cfg_read_project_ini_file(project.c_str(), true);
        };
        EXPECT_TRUE(emptied_before_exists(row.question, load));
        EXPECT_TRUE(fake::err::reports().empty());
        EXPECT_EQ(store_exists(), row.store_afterwards);
        EXPECT_EQ(all_values(), row.values);
        EXPECT_EQ(cfg_get_value("inline_b"), "2") << "the next use loads";
        environment.unset("APPENDED_VELMAR_INI");
        environment.unset("VELMAR_INI_VARS");
    }
}

TEST_F(EMPTIED_TEST, a_load_may_lose_its_store_at_every_moment)
{
    const std::string project = temporary.path("cwd");
    int moments = 0;
    for (int nth = 1; nth <= 60; ++nth)
    {
        SCOPED_TRACE(nth);
        environment.unset("APPENDED_VELMAR_INI");
        environment.unset("VELMAR_INI_VARS");
        const auto load = [&]
        {
            set_environments_sources();
            cfg_read_project_ini_file(project.c_str(), true);
        };
        const bool emptied = emptied_before_lock(nth, load);
        moments += emptied ? 1 : 0;
        EXPECT_TRUE(fake::err::reports().empty());
        EXPECT_EQ(fake::thr::depth(), 0);
        // Before the emptying of its own the load loses nothing; afterwards it ends at its next assignment.
        EXPECT_EQ(store_exists(), !emptied || nth == 1);
        EXPECT_EQ(cfg_get_value("main"), "1");
        EXPECT_EQ(cfg_get_value("inline_b"), "2");
    }
    EXPECT_EQ(moments, 1 + 4 + 4 + 4) << "the load; of each layer the beginning, two assignments and the end";
}

TEST_F(EMPTIED_TEST, a_layer_that_the_host_applies_goes_on_and_loads_first)
{
    struct
    {
        const char* name;
        std::function<void()> apply;
        const char* last;
        int moments;
    } const table[] = {
        {"regression-test file", [&] { cfg_read_regtest_ini_file(temporary.path("cwd/regtest.ini")); }, "regtest_b", 4},
        {"appended file", [&] { cfg_read_and_append_environment_ini_file(appended_file); }, "appended_b", 4},
        {"inline text", [] { cfg_process_ini_string("inline_a=1;inline_b=2", true); }, "inline_b", 4},
    };
    for (const auto& row : table)
    {
        SCOPED_TRACE(row.name);
        int moments = 0;
        for (int nth = 1; emptied_before_lock(nth, row.apply); ++nth)
        {
            EXPECT_TRUE(fake::err::reports().empty());
            if (++moments == row.moments)
            {
                EXPECT_FALSE(store_exists()) << "behind the last assignment";
                continue;
            }
            EXPECT_TRUE(store_exists());
            const ASSIGNMENTS values = all_values();
            EXPECT_EQ(values.count("main"), 1U) << "loaded before the next assignment";
            ASSERT_EQ(values.count(row.last), 1U) << "not lost";
            EXPECT_EQ(values.at(row.last), "2");
        }
        EXPECT_EQ(moments, row.moments);
    }
}

TEST_F(EMPTIED_TEST, an_appended_file_that_the_host_applies_without_a_store_is_reported_still)
{
    cfg_read_and_append_environment_ini_file(appended_file);
    EXPECT_EQ(fake::err::reports().size(), 1U);
}

// --- The first load ---

TEST_F(EMPTIED_TEST, the_first_load_holds_the_lock_over_all_its_layers_and_none_before)
{
    set_environments_sources();
    // The search finds the main file; that is opened within the load's and the main file's hold; the appended file is
    // chosen and opened within the load's.
    const int depths[] = {0, 2, 1, 1};
    for (int nth = 1; nth <= 4; ++nth)
    {
        cfg_close_ini_file();
        int depth = -1;
        fake::fio::before_exists(nth, [&] { depth = fake::thr::depth(); });
        EXPECT_EQ(cfg_get_value("inline_b"), "2");
        EXPECT_EQ(depth, depths[nth - 1]) << nth;
    }
    EXPECT_EQ(fake::thr::depth(), 0);
}

TEST_F(EMPTIED_TEST, no_layer_of_the_first_load_overrides_what_another_thread_stores_meanwhile)
{
    set_environments_sources();
    ACTOR actor("main");
    std::thread other;
    // Begins to store while the main file is being read, and can store only once all layers are there.
    actor.on_refresh = [&]
    {
        actor.on_refresh = nullptr;
        other = std::thread([] { cfg_set_value("inline_b", "by the other thread"); });
    };
    EXPECT_EQ(cfg_get_value("main"), "1");
    other.join();
    EXPECT_EQ(cfg_get_value("inline_b"), "by the other thread");
}

TEST_F(EMPTIED_TEST, a_layer_that_found_no_store_ends_though_another_thread_makes_one_meanwhile)
{
    write_file(temporary.path("project/velmar.ini"), "main=1\n");
    write_file(temporary.path("project/regtest.ini"), "first=1\nsecond=1\nthird=1\n");
    ACTOR actor("first");
    // Before the second assignment the store goes; before a third one would take the lock, there is another store.
    actor.on_refresh = []
    {
        fake::thr::before_lock(1,
                               []
                               {
                                   cfg_close_ini_file();
                                   fake::thr::before_lock(1, [] { cfg_read_ini_file(std::string()); });
                               });
    };
    cfg_read_project_ini_file(temporary.path("project").c_str(), true);
    EXPECT_EQ(cfg_get_value("third"), "");
}
}
