#include "cfg_ini/cfg_ini_reader/change_callbacks.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <type_traits>

#include "cfg_ini/cfg_ini_reader/store_primitives.h"
#include "tests/support/store_test.h"

using namespace zon_cfg;

namespace
{
using EVENTS = std::vector<std::string>;

class CHANGE_CALLBACKS_TEST : public STORE_TEST
{
protected:
    // Notes each notification, and then does what the test asks of it.
    class LISTENER : public CFG_INI_CALLBACK
    {
    public:
        LISTENER(const char* variable_name, std::string listener_label, EVENTS& event_list)
            : CFG_INI_CALLBACK(variable_name), label(std::move(listener_label)), events(event_list)
        {
        }

        void refresh() override
        {
            events.push_back(label + " refresh");
            if (on_refresh)
                on_refresh();
        }

        void reset_to_default() override
        {
            events.push_back(label + " reset");
            if (on_reset)
                on_reset();
        }

        std::function<void()> on_refresh;
        std::function<void()> on_reset;

    private:
        const std::string label;
        EVENTS& events;
    };

    EVENTS events;
};

struct HOST_FAILURE
{
};

void fail()
{
    throw HOST_FAILURE();
}

// --- Who is told ---

TEST_F(CHANGE_CALLBACKS_TEST, two_of_one_name_are_refreshed_in_construction_order)
{
    make_empty_store();
    auto first = std::make_unique<LISTENER>("x", "first", events);
    const LISTENER second("x", "second", events);
    cfg_set_value("x", "1");
    EXPECT_EQ(events, (EVENTS{"first refresh", "second refresh"}));

    first.reset();
    events.clear();
    cfg_set_value("x", "1");
    EXPECT_EQ(events, EVENTS{"second refresh"});
}

TEST_F(CHANGE_CALLBACKS_TEST, destroying_one_keeps_the_order_of_the_others)
{
    make_empty_store();
    const LISTENER first("x", "1", events);
    auto second = std::make_unique<LISTENER>("x", "2", events);
    const LISTENER third("x", "3", events);
    const LISTENER fourth("x", "4", events);
    second.reset();
    cfg_set_value("x", "1");
    EXPECT_EQ(events, (EVENTS{"1 refresh", "3 refresh", "4 refresh"}));
}

TEST_F(CHANGE_CALLBACKS_TEST, another_letter_case_changes_the_variable_and_notifies_nobody)
{
    make_empty_store();
    const LISTENER listener("x", "x", events);
    cfg_set_value("x", "1");
    events.clear();
    cfg_set_value("X", "2");
    EXPECT_EQ(events, EVENTS{});
    EXPECT_EQ(cfg_get_value("x"), "2");
}

TEST_F(CHANGE_CALLBACKS_TEST, a_name_with_a_zero_byte_in_it_is_another_name)
{
    make_empty_store();
    const LISTENER listener("x", "x", events);
    cfg_set_value(std::string("x\0y", 3), "2");
    EXPECT_EQ(events, EVENTS{});
    EXPECT_EQ(cfg_get_value("x"), "2");
}

TEST_F(CHANGE_CALLBACKS_TEST, other_names_are_not_told)
{
    make_empty_store();
    const LISTENER x("x", "x", events);
    const LISTENER y("y", "y", events);
    cfg_set_value("y", "1");
    cfg_set_value("z", "1");
    EXPECT_EQ(events, EVENTS{"y refresh"});
}

TEST_F(CHANGE_CALLBACKS_TEST, storing_the_same_text_twice_refreshes_twice)
{
    make_empty_store();
    const LISTENER listener("x", "x", events);
    cfg_set_value("x", "1");
    cfg_set_value("x", "1");
    EXPECT_EQ(events, (EVENTS{"x refresh", "x refresh"}));
}

TEST_F(CHANGE_CALLBACKS_TEST, every_way_of_storing_refreshes)
{
    make_empty_store();
    const LISTENER listener("x", "x", events);
    cfg_ini_insert_element("x", "1");
    EXPECT_EQ(events.size(), 1U);
    cfg_ini_insert_element_external_ini("x", "1");
    EXPECT_EQ(events.size(), 2U);
    cfg_process_ini_string("x=1;y=2;x=3", true);
    EXPECT_EQ(events.size(), 4U);
    cfg_set_int_value("x", 1);
    EXPECT_EQ(events.size(), 5U);
    cfg_set_on("x");
    EXPECT_EQ(events.size(), 6U);
    write_file(temporary.path("regtest.ini"), "x=1\ny=1\nx=2\n");
    cfg_read_regtest_ini_file(temporary.path("regtest.ini"));
    EXPECT_EQ(events.size(), 8U);
}

TEST_F(CHANGE_CALLBACKS_TEST, reading_first_resets_and_then_refreshes_for_each_source)
{
    make_empty_store();
    const LISTENER set("x", "x", events);
    write_file(temporary.path("appended.ini"), "x=2\n");
    environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
    environment.set("VELMAR_INI_VARS", "x=3");
    read_main_file("x=1\n");
    EXPECT_EQ(events, (EVENTS{"x reset", "x refresh", "x refresh", "x refresh"}));
}

TEST_F(CHANGE_CALLBACKS_TEST, the_first_reading_resets_nobody)
{
    const LISTENER listener("x", "x", events);
    write_file(temporary.path("cwd/velmar.ini"), "x=1\n");
    EXPECT_TRUE(cfg_is_on("x"));
    EXPECT_EQ(events, EVENTS{"x refresh"});
}

TEST_F(CHANGE_CALLBACKS_TEST, emptying_without_a_store_resets_nobody)
{
    const LISTENER listener("x", "x", events);
    cfg_close_ini_file();
    EXPECT_EQ(events, EVENTS{});
}

TEST_F(CHANGE_CALLBACKS_TEST, emptying_a_store_resets_everybody_also_names_never_set)
{
    make_empty_store();
    const LISTENER set("set", "set", events);
    const LISTENER never_set("never_set", "never_set", events);
    cfg_set_value("set", "1");
    events.clear();
    cfg_close_ini_file();
    std::sort(events.begin(), events.end()); // the names come in no fixed order
    EXPECT_EQ(events, (EVENTS{"never_set reset", "set reset"}));

    events.clear();
    cfg_close_ini_file();
    EXPECT_EQ(events, EVENTS{});
}

TEST_F(CHANGE_CALLBACKS_TEST, resets_of_one_name_come_in_construction_order)
{
    make_empty_store();
    const LISTENER first("x", "1", events);
    const LISTENER second("x", "2", events);
    const LISTENER third("x", "3", events);
    cfg_close_ini_file();
    EXPECT_EQ(events, (EVENTS{"1 reset", "2 reset", "3 reset"}));
}

TEST_F(CHANGE_CALLBACKS_TEST, registrations_outlive_the_store)
{
    make_empty_store();
    const LISTENER listener("x", "x", events);
    cfg_close_ini_file();
    cfg_set_value("x", "1");
    EXPECT_EQ(events, (EVENTS{"x reset", "x refresh"}));
}

TEST_F(CHANGE_CALLBACKS_TEST, the_base_class_does_nothing)
{
    make_empty_store();
    const CFG_INI_CALLBACK plain("x");
    cfg_set_value("x", "1");
    cfg_close_ini_file();
    EXPECT_FALSE(store_exists());
}

// --- The registry ---

TEST_F(CHANGE_CALLBACKS_TEST, the_registry_is_made_by_the_first_callback)
{
    EXPECT_IN_FRESH_PROCESS(EXPECT_EQ(s_ini_callbacks, nullptr); make_empty_store(); cfg_set_value("x", "1");
                            cfg_close_ini_file(); EXPECT_EQ(s_ini_callbacks, nullptr); {
                                const CFG_INI_CALLBACK callback("x");
                                EXPECT_NE(s_ini_callbacks, nullptr);
                            } EXPECT_NE(s_ini_callbacks, nullptr));
}

TEST_F(CHANGE_CALLBACKS_TEST, the_first_callback_makes_the_lock)
{
    EXPECT_IN_FRESH_PROCESS(const CFG_INI_CALLBACK callback("x"); EXPECT_EQ(fake::thr::creations(), 1);
                            EXPECT_EQ(fake::thr::locks(), 1); EXPECT_FALSE(store_exists()));
}

TEST_F(CHANGE_CALLBACKS_TEST, an_unregistered_name_keeps_an_empty_list)
{
    {
        const CFG_INI_CALLBACK callback("kept_list");
        EXPECT_EQ(s_ini_callbacks->at("kept_list").size(), 1U);
    }
    EXPECT_EQ(s_ini_callbacks->at("kept_list").size(), 0U);
}

TEST_F(CHANGE_CALLBACKS_TEST, destroying_one_whose_name_has_no_list_leaves_an_empty_list_and_nothing_else)
{
    const LISTENER other("x", "x", events);
    auto callback = std::make_unique<CFG_INI_CALLBACK>("no_list");
    s_ini_callbacks->erase("no_list");
    const std::size_t names = s_ini_callbacks->size();
    callback.reset();
    EXPECT_EQ(s_ini_callbacks->at("no_list").size(), 0U);
    EXPECT_EQ(s_ini_callbacks->size(), names + 1);
    EXPECT_EQ(s_ini_callbacks->at("x").size(), 1U);
}

TEST_F(CHANGE_CALLBACKS_TEST, destroying_removes_every_occurrence)
{
    const LISTENER other("x", "other", events);
    auto callback = std::make_unique<LISTENER>("x", "twice", events);
    s_ini_callbacks->at("x").insert(s_ini_callbacks->at("x").begin(), callback.get());
    make_empty_store();
    cfg_set_value("x", "1");
    EXPECT_EQ(events, (EVENTS{"twice refresh", "other refresh", "twice refresh"}));
    callback.reset();
    EXPECT_EQ(s_ini_callbacks->at("x").size(), 1U);
}

TEST_F(CHANGE_CALLBACKS_TEST, the_name_is_kept_as_a_pointer)
{
    char name[] = "before";
    auto callback = std::make_unique<CFG_INI_CALLBACK>(name);
    std::copy_n("behind", sizeof name, name);
    auto& list_of_before = s_ini_callbacks->at("before");
    EXPECT_EQ(list_of_before.size(), 1U);
    callback.reset(); // looks under the name as it now reads
    EXPECT_EQ(list_of_before.size(), 1U);
    EXPECT_EQ(s_ini_callbacks->count("behind"), 1U);
    list_of_before.clear();
}

TEST_F(CHANGE_CALLBACKS_TEST, destroying_through_the_base_class_unregisters)
{
    make_empty_store();
    std::unique_ptr<CFG_INI_CALLBACK> callback = std::make_unique<LISTENER>("x", "x", events);
    callback.reset();
    cfg_set_value("x", "1");
    EXPECT_EQ(events, EVENTS{});
}

TEST_F(CHANGE_CALLBACKS_TEST, registering_and_unregistering_take_the_lock_once)
{
    make_empty_store();
    const long locks = fake::thr::locks();
    {
        const CFG_INI_CALLBACK callback("x");
        EXPECT_EQ(fake::thr::locks(), locks + 1);
        EXPECT_EQ(fake::thr::depth(), 0);
    }
    EXPECT_EQ(fake::thr::locks(), locks + 2);
    EXPECT_EQ(fake::thr::depth(), 0);
    static_assert(std::is_nothrow_destructible_v<CFG_INI_CALLBACK>);
    static_assert(std::has_virtual_destructor_v<CFG_INI_CALLBACK>);
}

// --- What a notification sees and may do ---

TEST_F(CHANGE_CALLBACKS_TEST, refresh_sees_the_new_value_converted_with_the_lock_held)
{
    make_empty_store();
    LISTENER listener("x", "x", events);
    cfg_set_value("x", "1");
    EXPECT_TRUE(cfg_is_on("x"));
    cfg_ini_dirty = false;
    bool seen = false;
    listener.on_refresh = [&]
    {
        seen = true;
        EXPECT_EQ(fake::thr::depth(), 1);
        const CFG_INI_RECORD record = *record_of("x");
        EXPECT_EQ(record.value, "12");
        EXPECT_EQ(record.int_value, 12);
        EXPECT_TRUE(record.int_valid);
        EXPECT_FALSE(record.bool_valid);
        EXPECT_FALSE(record.had_valid_read);
        EXPECT_TRUE(record.external);
        EXPECT_FALSE(cfg_ini_dirty); // set only afterwards
    };
    cfg_ini_insert_element_external_ini("x", "12");
    EXPECT_TRUE(seen);
    EXPECT_TRUE(cfg_ini_dirty);
    EXPECT_EQ(fake::thr::depth(), 0);
}

TEST_F(CHANGE_CALLBACKS_TEST, refresh_may_read_variables_and_set_others)
{
    make_empty_store();
    LISTENER x("x", "x", events);
    const LISTENER y("y", "y", events);
    std::string read;
    x.on_refresh = [&]
    {
        read = cfg_get_value("x");
        cfg_set_value("y", "from x");
    };
    cfg_set_value("x", "1");
    EXPECT_EQ(read, "1");
    EXPECT_EQ(cfg_get_value("y"), "from x");
    EXPECT_EQ(events, (EVENTS{"x refresh", "y refresh"}));
    EXPECT_EQ(fake::thr::depth(), 0);
}

TEST_F(CHANGE_CALLBACKS_TEST, reset_sees_no_store_and_no_dirty_flag_yet)
{
    make_empty_store();
    LISTENER listener("x", "x", events);
    cfg_ini_dirty = false;
    listener.on_reset = [&]
    {
        EXPECT_FALSE(store_exists());
        EXPECT_FALSE(cfg_ini_dirty);
        EXPECT_EQ(fake::thr::depth(), 1);
    };
    cfg_close_ini_file();
    EXPECT_EQ(events, EVENTS{"x reset"});
    EXPECT_TRUE(cfg_ini_dirty);
}

TEST_F(CHANGE_CALLBACKS_TEST, a_read_during_reset_reads_the_settings_afresh)
{
    write_file(temporary.path("cwd/velmar.ini"), "y=default file\n");
    make_empty_store();
    cfg_set_value("y", "old");
    LISTENER listener("x", "x", events);
    std::string read;
    listener.on_reset = [&] { read = cfg_get_value("y"); };
    cfg_close_ini_file();
    EXPECT_EQ(read, "default file");
    EXPECT_EQ(events, EVENTS{"x reset"});
    EXPECT_EQ(cfg_get_value("y"), "default file");
}

TEST_F(CHANGE_CALLBACKS_TEST, the_store_that_a_read_during_reset_made_gives_way_to_the_file_being_read)
{
    write_file(temporary.path("cwd/velmar.ini"), "from_default=1\n");
    make_empty_store();
    LISTENER listener("x", "x", events);
    std::string read;
    listener.on_reset = [&] { read = cfg_get_value("from_default"); };
    read_main_file("from_main=1\n");
    EXPECT_EQ(read, "1");
    EXPECT_EQ(events, EVENTS{"x reset"});
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"from_main", "1"}}));
    EXPECT_EQ(fake::thr::depth(), 0);
}

TEST_F(CHANGE_CALLBACKS_TEST, a_set_during_reset_does_not_outlive_the_reading)
{
    make_empty_store();
    LISTENER listener("x", "x", events);
    listener.on_reset = [] { cfg_set_value("y", "set while reset"); };
    read_main_file("from_main=1\n");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"from_main", "1"}}));
}

TEST_F(CHANGE_CALLBACKS_TEST, the_store_is_emptied_when_the_process_ends)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            make_empty_store();
            auto* const listener = new LISTENER("x", "x", events); // outlives everything, as some hosts' objects do
            listener->on_reset = [] { std::fputs("told at exit\n", stderr); };
            std::exit(0);
        },
        testing::ExitedWithCode(0), "told at exit");
}

TEST_F(CHANGE_CALLBACKS_TEST, a_read_during_the_last_reset_leaks_nothing)
{
    EXPECT_IN_FRESH_PROCESS(make_empty_store(); auto* const listener = new LISTENER("x", "x", events);
                            listener->on_reset = []
                            { cfg_set_value("y", "a text that is too long to be kept in place"); });
}

// --- Failures ---

TEST_F(CHANGE_CALLBACKS_TEST, a_null_name_throws_with_the_lock_held_and_registers_nothing)
{
    const LISTENER other("x", "x", events); // there is a registry
    const std::size_t names = s_ini_callbacks->size();
    try
    {
        const CFG_INI_CALLBACK callback(nullptr);
        FAIL() << "no exception";
    }
    catch (const std::logic_error& error)
    {
        EXPECT_EQ(error.what(), message_of_null_text);
    }
    EXPECT_EQ(release_lock(), 1);
    EXPECT_EQ(s_ini_callbacks->size(), names);
}

TEST_F(CHANGE_CALLBACKS_TEST, after_a_failed_registration_the_owner_of_the_lock_can_go_on)
{
    make_empty_store();
    EXPECT_THROW(const CFG_INI_CALLBACK callback(nullptr), std::logic_error);
    {
        const LISTENER listener("x", "x", events);
        cfg_set_value("x", "1");
        read_main_file("x=2\n");
        EXPECT_EQ(events, (EVENTS{"x refresh", "x reset", "x refresh"}));
        EXPECT_EQ(cfg_get_value("x"), "2");
    }
    cfg_set_value("x", "3");
    EXPECT_EQ(events.size(), 3U);
    EXPECT_EQ(release_lock(), 1) << "each later use released its own";
}

TEST_F(CHANGE_CALLBACKS_TEST, a_failed_registration_within_a_notification_leaves_only_its_own_lock_held)
{
    make_empty_store();
    LISTENER listener("x", "x", events);
    listener.on_refresh = [] { EXPECT_THROW(const CFG_INI_CALLBACK callback(nullptr), std::logic_error); };
    cfg_set_value("x", "1");
    EXPECT_EQ(release_lock(), 1);
    listener.on_refresh = [] { const CFG_INI_CALLBACK callback(nullptr); };
    EXPECT_THROW(cfg_set_value("x", "1"), std::logic_error);
    EXPECT_EQ(release_lock(), 2);
}

TEST_F(CHANGE_CALLBACKS_TEST, nothing_counts_as_failed_that_did_not)
{
    const int notifications = notifications_under_way;
    make_empty_store();
    LISTENER listener("x", "x", events);
    cfg_set_value("x", "1");
    cfg_close_ini_file();
    EXPECT_EQ(events.size(), 2U);
    EXPECT_EQ(notifications_under_way, notifications);
    make_empty_store();
    listener.on_refresh = fail;
    EXPECT_THROW(cfg_set_value("x", "1"), HOST_FAILURE);
    EXPECT_EQ(notifications_under_way, notifications + 1);
    EXPECT_EQ(release_lock(), 1);
}

TEST_F(CHANGE_CALLBACKS_TEST, a_callback_without_a_registry_goes_quietly)
{
    CFG_INI_CALLBACK_REGISTRY* registry = nullptr;
    {
        const CFG_INI_CALLBACK callback("x");
        std::swap(s_ini_callbacks, registry);
        cfg_set_value("x", "1"); // nobody to tell
        cfg_close_ini_file();
    }
    EXPECT_EQ(s_ini_callbacks, nullptr);
    std::swap(s_ini_callbacks, registry);
    s_ini_callbacks->erase("x");
}

TEST_F(CHANGE_CALLBACKS_TEST, an_exception_from_refresh_leaves_the_lock_held_and_the_value_stored)
{
    make_empty_store();
    LISTENER first("x", "first", events);
    const LISTENER second("x", "second", events);
    first.on_refresh = fail;
    cfg_ini_dirty = false;
    EXPECT_THROW(cfg_set_value("x", "1"), HOST_FAILURE);
    EXPECT_EQ(release_lock(), 1);
    EXPECT_EQ(events, EVENTS{"first refresh"}); // nobody after it is told
    EXPECT_FALSE(cfg_ini_dirty);
    EXPECT_EQ(record_of("x")->value, "1");
}

TEST_F(CHANGE_CALLBACKS_TEST, an_exception_from_refresh_ends_an_inline_text)
{
    make_empty_store();
    LISTENER listener("x", "x", events);
    listener.on_refresh = fail;
    EXPECT_THROW(cfg_process_ini_string("a=1;x=2;b=3", true), HOST_FAILURE);
    EXPECT_EQ(release_lock(), 1);
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}, {"x", "2"}}));
}

TEST_F(CHANGE_CALLBACKS_TEST, an_exception_from_refresh_while_a_main_file_is_read_leaves_both_locks_held)
{
    LISTENER listener("x", "x", events);
    listener.on_refresh = fail;
    EXPECT_THROW(read_main_file("a=1\nx=2\nb=3\n"), HOST_FAILURE);
    EXPECT_EQ(fake::mem::silencing_scopes(), 0);
    EXPECT_EQ(release_lock(), 2); // the reading's and the line's
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}, {"x", "2"}}));
}

TEST_F(CHANGE_CALLBACKS_TEST, an_exception_from_refresh_during_a_first_use_leaves_both_locks_held)
{
    write_file(temporary.path("cwd/velmar.ini"), "x=1\n");
    LISTENER listener("x", "x", events);
    listener.on_refresh = fail;
    EXPECT_THROW(cfg_is_on("x"), HOST_FAILURE);
    EXPECT_EQ(release_lock(), 2);
}

TEST_F(CHANGE_CALLBACKS_TEST, an_exception_from_refresh_while_a_file_is_applied_on_top_leaves_the_lines_lock_held)
{
    make_empty_store();
    LISTENER listener("x", "x", events);
    listener.on_refresh = fail;
    write_file(temporary.path("regtest.ini"), "x=1\n");
    EXPECT_THROW(cfg_read_regtest_ini_file(temporary.path("regtest.ini")), HOST_FAILURE);
    EXPECT_EQ(release_lock(), 1);
}

TEST_F(CHANGE_CALLBACKS_TEST, an_exception_from_reset_leaves_the_lock_held_and_the_store_empty)
{
    make_empty_store();
    LISTENER first("x", "first", events);
    const LISTENER second("x", "second", events);
    first.on_reset = fail;
    cfg_ini_dirty = false;
    EXPECT_THROW(cfg_close_ini_file(), HOST_FAILURE);
    EXPECT_EQ(release_lock(), 1);
    EXPECT_EQ(events, EVENTS{"first reset"});
    EXPECT_FALSE(cfg_ini_dirty);
    EXPECT_FALSE(store_exists());
}

TEST_F(CHANGE_CALLBACKS_TEST, an_exception_from_reset_while_a_main_file_is_read_leaves_both_locks_held)
{
    make_empty_store();
    LISTENER listener("x", "x", events);
    listener.on_reset = fail;
    EXPECT_THROW(read_main_file("a=1\n"), HOST_FAILURE);
    EXPECT_EQ(release_lock(), 2);
    EXPECT_FALSE(store_exists());
}

TEST_F(CHANGE_CALLBACKS_TEST, an_exception_that_a_callback_catches_leaves_only_the_inner_lock_held)
{
    make_empty_store();
    LISTENER outer("outer", "outer", events);
    LISTENER inner("inner", "inner", events);
    inner.on_refresh = fail;
    outer.on_refresh = [] { EXPECT_THROW(cfg_set_value("inner", "1"), HOST_FAILURE); };
    cfg_ini_dirty = false;
    cfg_set_value("outer", "1");
    EXPECT_TRUE(cfg_ini_dirty);
    EXPECT_EQ(release_lock(), 1);
}

TEST_F(CHANGE_CALLBACKS_TEST, after_an_exception_the_owner_of_the_lock_can_go_on)
{
    make_empty_store();
    LISTENER listener("x", "x", events);
    listener.on_refresh = fail;
    EXPECT_THROW(cfg_set_value("x", "1"), HOST_FAILURE);
    listener.on_refresh = nullptr;
    cfg_set_value("x", "2");
    EXPECT_EQ(cfg_get_value("x"), "2");
    read_main_file("a=1\n");
    EXPECT_EQ(release_lock(), 1); // each later use has released its own
}
}
