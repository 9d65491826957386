// What the store allocates, and what it leaves behind when there is no more memory.
#include <functional>
#include <latch>
#include <memory_resource>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "cfg_ini/cfg_ini_reader/change_callbacks.h"
#include "cfg_ini/cfg_ini_reader/store_primitives.h"
#include "cfg_ini/cfg_settings_sources.h"
#include "tests/support/failing_memory.h"
#include "tests/support/store_test.h"

using namespace zon_cfg;

namespace
{
const std::string long_name = "a_name_that_is_too_long_to_be_kept_within_a_string_object";
const std::string other_name = "another_name_that_is_too_long_to_be_kept_within_a_string_object";
const std::string long_value = "a value that is too long to be kept within a string object";

class STORE_MEMORY_TEST : public STORE_TEST
{
protected:
    // Every record is whole: no entry without one, and each cache as its text says.
    static void expect_whole_records()
    {
        const STORE_LOCK lock;
        if (!store_exists())
            return;
        for (const auto& [name, record] : *cfg_ini_file.load())
        {
            ASSERT_NE(record, nullptr) << name;
            EXPECT_TRUE(record->value.empty() || record->value == long_value || record->value == "12") << record->value;
            EXPECT_EQ(record->int_valid, record->value == "12") << record->value;
        }
    }

    // After each failure the lock is free, messages are not silenced, and the records are whole.
    static void fail_at_every_allocation(const std::function<void()>& prepare, const std::function<void()>& action,
                                         const std::function<void()>& check,
                                         WITHOUT_MEMORY expected = WITHOUT_MEMORY::THROWS)
    {
        ::fail_at_every_allocation(
            prepare, action,
            [&](bool)
            {
                EXPECT_EQ(fake::thr::depth(), 0);
                EXPECT_EQ(fake::mem::silencing_scopes(), 0);
                expect_whole_records();
                check();
            },
            expected);
    }
};

// --- What a lookup allocates ---

TEST_F(STORE_MEMORY_TEST, a_typed_read_of_an_existing_variable_allocates_nothing)
{
    make_empty_store();
    cfg_set_value(long_name, "1");
    const char* const characters = long_name.c_str();
    bool found = false;
    cfg_is_on(long_name, false); // whatever is made once is made now

    const ALLOCATION_COUNT allocations;
    cfg_is_on(long_name, false);
    cfg_is_on(characters, false);
    cfg_is_on(long_name);
    cfg_is_on(characters);
    cfg_get_int_value(long_name, 0);
    cfg_get_int_value(characters, 0);
    cfg_get_uint_value(long_name, 0);
    cfg_get_uint_value(characters, 0);
    cfg_get_value_as<bool>(long_name);
    cfg_get_value_as<bool>(characters);
    cfg_get_value_as<int>(long_name);
    cfg_get_value_as<int>(characters);
    cfg_ini_read_boolean(long_name, &found);
    cfg_ini_read_int(long_name, &found);
    cfg_ini_read_uint(long_name, &found);
    cfg_dyn_is_on(characters, false);
    cfg_ini_is_external(long_name);
    EXPECT_EQ(allocations.since_start(), 0);
}

TEST_F(STORE_MEMORY_TEST, reads_by_position_allocate_nothing)
{
    make_empty_store();
    cfg_set_on(CFG_INI_VAR_HCNU_FORCE_DISABLE_REVERSIBLE_NAMES);
    const ALLOCATION_COUNT allocations;
    cfg_is_on(CFG_INI_VAR_HCNU_FORCE_DISABLE_REVERSIBLE_NAMES);
    cfg_get_int_value(CFG_INI_VAR_HCNU_FORCE_DISABLE_REVERSIBLE_NAMES);
    EXPECT_EQ(allocations.since_start(), 0);
}

TEST_F(STORE_MEMORY_TEST, answered_questions_allocate_nothing)
{
    cfg_is_vexe_mode();
    cfg_jtag_auto_config();
    cfg_check_debug_ini_values(nullptr, nullptr, nullptr);
    const ALLOCATION_COUNT allocations;
    cfg_is_vexe_mode();
    cfg_jtag_auto_config();
    cfg_check_debug_ini_values(nullptr, nullptr, nullptr);
    EXPECT_EQ(allocations.since_start(), 0);
}

TEST_F(STORE_MEMORY_TEST, emptying_gives_everything_back)
{
    make_empty_store(); // what the fakes record takes its memory now
    cfg_close_ini_file();
    const long before = live_allocations();
    make_empty_store();
    cfg_set_value(long_name, long_value);
    cfg_get_value(other_name);
    {
        const STORE_LOCK lock;
        auto record = std::make_unique<CFG_INI_RECORD>();
        record->value = long_value;
        cfg_ini_insert_record("taken over", record.release());
    }
    EXPECT_GT(live_allocations(), before);
    cfg_close_ini_file();
    EXPECT_EQ(live_allocations(), before);
}

// --- The host's default memory resource ---

// Stands for the host's default resource, and counts what is asked of it.
class WATCHED_DEFAULT : public std::pmr::memory_resource
{
public:
    WATCHED_DEFAULT() : before(std::pmr::set_default_resource(this)) {}
    ~WATCHED_DEFAULT() override
    {
        std::pmr::set_default_resource(before);
    }
    WATCHED_DEFAULT(const WATCHED_DEFAULT&) = delete;
    WATCHED_DEFAULT& operator=(const WATCHED_DEFAULT&) = delete;

    int calls = 0;

private:
    void* do_allocate(std::size_t size, std::size_t alignment) override
    {
        ++calls;
        return before->allocate(size, alignment);
    }
    void do_deallocate(void* memory, std::size_t size, std::size_t alignment) override
    {
        ++calls;
        before->deallocate(memory, size, alignment);
    }
    bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override
    {
        return this == &other;
    }

    std::pmr::memory_resource* const before;
};

void store_some(const std::string& prefix)
{
    for (int i = 0; i < 500; ++i)
    {
        cfg_set_value(long_name + prefix + std::to_string(i), long_value);
        cfg_get_value(other_name + prefix + std::to_string(i));
    }
}

TEST_F(STORE_MEMORY_TEST, nothing_is_asked_of_the_hosts_default_resource)
{
    write_file(temporary.path("velmar.ini"), long_name + " = " + long_value + "\n");
    write_file(temporary.path("regtest.ini"), other_name + " = 12\n");
    const WATCHED_DEFAULT resource;
    cfg_read_ini_file(temporary.path("velmar.ini"));
    cfg_read_regtest_ini_file(temporary.path("regtest.ini"));
    cfg_process_ini_string(long_name + "=12", false);
    store_some("");
    std::vector<std::pair<std::string, std::string>> ranks;
    cfg_get_most_accessed(&ranks);
    ASSIGNMENTS used;
    cfg_get_used_variable_value_map(&used);
    cfg_check_debug_ini_values(nullptr, nullptr, nullptr);
    const CFG_INI_CALLBACK callback(long_name.c_str());
    cfg_close_ini_file();
    EXPECT_EQ(resource.calls, 0);
}

TEST_F(STORE_MEMORY_TEST, a_host_whose_default_resource_refuses_is_answered)
{
    std::pmr::memory_resource* const before = std::pmr::set_default_resource(std::pmr::null_memory_resource());
    EXPECT_NO_THROW(make_empty_store(); store_some(""));
    std::pmr::set_default_resource(before);
    EXPECT_EQ(cfg_get_value(long_name + "7"), long_value);
}

TEST_F(STORE_MEMORY_TEST, a_store_outlives_the_hosts_scoped_default_resource)
{
    make_empty_store();
    {
        std::pmr::monotonic_buffer_resource scoped;
        std::pmr::memory_resource* const before = std::pmr::set_default_resource(&scoped);
        store_some("inside");
        cfg_close_ini_file();
        make_empty_store();
        store_some("inside");
        std::pmr::set_default_resource(before);
    }
    store_some("outside");
    EXPECT_EQ(cfg_get_value(long_name + "inside7"), long_value);
    EXPECT_EQ(cfg_get_value(long_name + "outside7"), long_value);
    EXPECT_EQ(all_records().size(), 2000U);
}

TEST_F(STORE_MEMORY_TEST, a_host_exits_whose_default_resource_is_a_static_pool)
{
    // Destroyed before the store is: it is made later than the library's own static objects.
    const auto use_a_static_pool = []
    {
        static std::pmr::unsynchronized_pool_resource pool(std::pmr::new_delete_resource());
        std::pmr::set_default_resource(&pool);
        make_empty_store();
        store_some("");
    };
    EXPECT_IN_FRESH_PROCESS(use_a_static_pool());
}

// --- Files that are applied again and again ---

// The fakes are to forget what they recorded: it takes memory, too.
void apply_again(const std::string& path)
{
    cfg_read_regtest_ini_file(path);
    fake::reset();
}

std::string file_of_names(int number)
{
    std::string text;
    for (int i = 0; i < number; ++i)
        text += "variable_of_a_name_that_is_not_short_" + std::to_string(i) + " = 12\n";
    return text;
}

TEST_F(STORE_MEMORY_TEST, files_of_known_names_that_are_applied_again_add_nothing)
{
    make_empty_store();
    const std::string small = temporary.path("10.ini");
    const std::string middle = temporary.path("200.ini");
    const std::string large = temporary.path("3000.ini");
    write_file(small, file_of_names(10));
    write_file(middle, file_of_names(200));
    write_file(large, file_of_names(3000));
    for (const std::string& each : {small, middle, large})
        apply_again(each);
    const long bytes = live_bytes();
    const std::size_t buckets = cfg_ini_file.load()->bucket_count();
    for (int time = 0; time < 1'000; ++time)
    {
        apply_again(middle);
        if (time % 100 == 0)
        {
            apply_again(small);
            apply_again(large);
        }
    }
    EXPECT_EQ(live_bytes(), bytes);
    EXPECT_EQ(cfg_ini_file.load()->bucket_count(), buckets);
}

TEST_F(STORE_MEMORY_TEST, a_long_file_that_is_applied_again_adds_nothing)
{
    const std::string path = temporary.path("20000.ini");
    write_file(path, file_of_names(20'000));
    cfg_read_ini_file(path);
    apply_again(path);
    const long bytes = live_bytes();
    for (int time = 0; time < 10; ++time)
        apply_again(path);
    EXPECT_EQ(live_bytes(), bytes);
}

TEST_F(STORE_MEMORY_TEST, different_sources_that_are_applied_one_after_the_other_take_no_more_and_more_memory)
{
    make_empty_store();
    const std::string path = temporary.path("changing.ini");
    const auto apply = [&path](int number)
    {
        // A file of another size each time, and another text.
        write_file(path, "variable = 12\n" + std::string(static_cast<std::size_t>(number), '#'));
        apply_again(path);
        cfg_process_ini_string("another = " + std::to_string(100'000 + number), true);
        fake::reset();
    };
    for (int number = 0; number < 300; ++number)
        apply(number);
    // Not the bytes: the heap may hand out larger pieces than it was asked for.
    const long allocations = live_allocations();
    for (int number = 300; number < 1'000; ++number)
        apply(number);
    EXPECT_EQ(live_allocations(), allocations);
}

TEST_F(STORE_MEMORY_TEST, the_same_text_that_is_applied_again_adds_nothing)
{
    make_empty_store();
    const auto apply = []
    {
        cfg_process_ini_string("one = 12; two = 12; three = 12; four = 12", false);
        fake::reset();
    };
    apply();
    const long bytes = live_bytes();
    for (int time = 0; time < 10'000; ++time)
        apply();
    EXPECT_EQ(live_bytes(), bytes);
}

TEST_F(STORE_MEMORY_TEST, arrays_of_buckets_come_back_when_the_table_grows)
{
    make_empty_store();
    cfg_set_value(long_name, long_value);
    const STORE_LOCK lock;
    CFG_INI_TABLE& table = *cfg_ini_file.load();
    table.rehash(1'000);
    const long bytes = live_bytes();
    for (int time = 0; time < 10; ++time)
    {
        table.rehash(10'000);
        EXPECT_GT(live_bytes(), bytes);
        table.rehash(1'000);
        EXPECT_EQ(live_bytes(), bytes);
    }
}

// --- No more memory ---

TEST_F(STORE_MEMORY_TEST, a_failed_read_of_an_unknown_name_leaves_no_half_made_record)
{
    const auto no_record_or_an_empty_one = []
    {
        const auto record = record_of(long_name);
        EXPECT_TRUE(!record || record->access_count == 0);
    };
    fail_at_every_allocation(
        make_empty_store,
        []
        {
            bool found = true;
            try
            {
                cfg_ini_read_boolean(long_name, &found);
            }
            catch (const std::bad_alloc&)
            {
                EXPECT_FALSE(found) << "also where nothing could be read";
                throw;
            }
            EXPECT_FALSE(found);
        },
        no_record_or_an_empty_one);
    fail_at_every_allocation(
        make_empty_store, [] { cfg_get_int_value(long_name.c_str(), 0); }, no_record_or_an_empty_one);
    fail_at_every_allocation(
        make_empty_store, [] { cfg_get_value(long_name); }, no_record_or_an_empty_one);
    fail_at_every_allocation(
        make_empty_store, [] { cfg_get_value_as<double>(long_name); }, no_record_or_an_empty_one);
    EXPECT_TRUE(record_of(long_name));
}

TEST_F(STORE_MEMORY_TEST, a_table_that_cannot_grow_keeps_what_it_has)
{
    // Entries and records come in pieces of several: some of these names find a piece used up.
    ASSIGNMENTS before;
    for (int i = 0; i < 40; ++i)
    {
        const std::string name = long_name + std::to_string(i);
        const auto prepare = [&]
        {
            make_empty_store();
            for (const auto& [earlier, value] : before)
                cfg_set_value(earlier, value);
        };
        bool stored = false;
        const auto action = [&]
        {
            stored = false;
            cfg_set_value(name, "12");
            stored = true;
        };
        const auto expect_the_earlier_ones = [&]
        {
            ASSIGNMENTS now = all_values();
            if (stored)
                EXPECT_EQ(now.erase(name), 1U);
            else
                now.erase(name); // a record may be there, an empty one
            EXPECT_EQ(now, before);
        };
        fail_at_every_allocation(prepare, action, expect_the_earlier_ones);
        before[name] = "12";
    }
}

TEST_F(STORE_MEMORY_TEST, a_failed_text_read_leaves_the_record_as_it_was)
{
    const auto prepare = []
    {
        make_empty_store();
        cfg_set_value(long_name, long_value);
    };
    fail_at_every_allocation(
        prepare, [] { cfg_get_value(long_name); }, [] { EXPECT_EQ(record_of(long_name)->value, long_value); });
}

TEST_F(STORE_MEMORY_TEST, a_failed_store_leaves_no_half_made_record)
{
    for (auto* const store : {cfg_ini_insert_element, cfg_ini_insert_element_external_ini})
    {
        fail_at_every_allocation(
            make_empty_store, [&] { store(long_name, long_value); }, [] {});
        EXPECT_EQ(record_of(long_name)->value, long_value);
    }
}

TEST_F(STORE_MEMORY_TEST, a_failed_store_leaves_an_existing_record_as_it_was)
{
    class COUNTER : public CFG_INI_CALLBACK
    {
    public:
        using CFG_INI_CALLBACK::CFG_INI_CALLBACK;
        void refresh() override
        {
            ++refreshes;
        }
        int refreshes = 0;
    };
    COUNTER counter(long_name.c_str());
    bool stored = false;
    const auto prepare = [&]
    {
        make_empty_store();
        cfg_set_value(long_name, "12");
        counter.refreshes = 0;
        cfg_ini_dirty = false;
        stored = false;
    };
    const auto action = [&]
    {
        cfg_ini_insert_element(long_name, long_value);
        stored = true;
    };
    const auto check = [&]
    {
        EXPECT_EQ(record_of(long_name)->value, stored ? long_value : "12");
        EXPECT_EQ(counter.refreshes, stored ? 1 : 0);
        EXPECT_EQ(cfg_ini_dirty, stored);
    };
    fail_at_every_allocation(prepare, action, check);
}

TEST_F(STORE_MEMORY_TEST, a_failed_inline_text_leaves_whole_records)
{
    const std::string text = long_name + "=" + long_value + ";" + other_name + "=12";
    fail_at_every_allocation(
        make_empty_store, [&] { cfg_process_ini_string(text, false); }, [] {}, WITHOUT_MEMORY::THROWS_OR_GOES_ON);
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{long_name, long_value}, {other_name, "12"}}));
}

TEST_F(STORE_MEMORY_TEST, a_failed_reading_leaves_whole_records_and_can_be_repeated)
{
    write_file(temporary.path("velmar.ini"), long_name + " = " + long_value + "\n" + other_name + " = 12\n");
    write_file(temporary.path("appended.ini"), "appended_variable_of_a_long_name = 12\n");
    environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
    environment.set("VELMAR_INI_VARS", "inline_variable_of_a_long_name=12");
    const std::string path = temporary.path("velmar.ini");
    fail_at_every_allocation(
        cfg_close_ini_file, [&] { cfg_read_ini_file(path); }, [] {}, WITHOUT_MEMORY::THROWS_OR_GOES_ON);
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{long_name, long_value},
                                         {other_name, "12"},
                                         {"appended_variable_of_a_long_name", "12"},
                                         {"inline_variable_of_a_long_name", "12"}}));
}

TEST_F(STORE_MEMORY_TEST, a_failed_project_reading_leaves_whole_records_and_can_be_repeated)
{
    write_file(temporary.path("project/velmar.ini"), long_name + " = 12\n");
    write_file(temporary.path("project/regtest.ini"), long_name + " = " + long_value + "\n");
    const std::string project = temporary.path("project");
    fail_at_every_allocation(
        cfg_close_ini_file, [&] { cfg_read_project_ini_file(project.c_str(), true); }, [] {},
        WITHOUT_MEMORY::THROWS_OR_GOES_ON);
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{long_name, long_value}}));
}

TEST_F(STORE_MEMORY_TEST, a_failed_first_use_leaves_whole_records_and_can_be_repeated)
{
    write_file(temporary.path("cwd/velmar.ini"), long_name + " = 12\n");
    int answer = 0;
    fail_at_every_allocation(
        cfg_close_ini_file, [&] { answer = cfg_get_int_value(long_name, 0); }, [] {},
        WITHOUT_MEMORY::THROWS_OR_GOES_ON);
    EXPECT_EQ(answer, 12);
}

// The note alone is lost, and that is told.
TEST_F(STORE_MEMORY_TEST, a_load_goes_on_without_memory_to_note_its_sources)
{
    write_file(temporary.path("project/velmar.ini"), "main = 12\n");
    write_file(temporary.path("project/regtest.ini"), "regtest = 12\n");
    write_file(temporary.path("cwd/a file with a long relative path.ini"), "appended = 12\n");
    environment.set("APPENDED_VELMAR_INI", "a file with a long relative path.ini");
    environment.set("VELMAR_INI_VARS", "inline_variable_of_a_long_name=12");
    const std::string project = temporary.path("project");
    bool whole = false;
    bool one_missed = false;
    fail_at_every_allocation(
        [&]
        {
            cfg_close_ini_file();
            whole = false;
        },
        [&]
        {
            cfg_read_project_ini_file(project.c_str(), true);
            whole = true;
        },
        [&]
        {
            if (!whole)
                return;
            EXPECT_EQ(all_values().size(), 4U);
            const CFG_SETTINGS_SOURCES sources = cfg_get_settings_sources();
            EXPECT_TRUE(sources.applied.size() == 4 || (sources.applied.size() == 3 && sources.lost_until != 0));
            for (const CFG_SETTINGS_SOURCE& source : sources.applied)
                EXPECT_TRUE(source.whole);
            one_missed = one_missed || sources.applied.size() == 3;
        },
        WITHOUT_MEMORY::THROWS_OR_GOES_ON);
    EXPECT_TRUE(one_missed);
    EXPECT_EQ(cfg_get_settings_sources().lost_until, 0U) << "the last load had memory enough";
}

TEST_F(STORE_MEMORY_TEST, sources_that_are_asked_for_without_memory_release_the_lock)
{
    const auto prepare = [this]
    {
        write_file(temporary.path("velmar.ini"), "a = 12\n");
        cfg_read_ini_file(temporary.path("velmar.ini"));
        cfg_get_value(long_name);
    };
    fail_at_every_allocation(
        prepare, [] { cfg_get_settings_sources(); }, [] {});
}

TEST_F(STORE_MEMORY_TEST, failed_reports_release_the_lock)
{
    const auto prepare = []
    {
        make_empty_store();
        cfg_ini_insert_element_external_ini(long_name, long_value);
        cfg_get_value(long_name);
    };
    fail_at_every_allocation(
        prepare,
        []
        {
            std::vector<std::pair<std::string, std::string>> ranks;
            cfg_get_most_accessed(&ranks);
        },
        [] {});
    fail_at_every_allocation(
        prepare,
        []
        {
            std::string name;
            std::string value;
            cfg_get_single_most_accessed_ini(name, value);
        },
        [] {});
    fail_at_every_allocation(
        prepare,
        []
        {
            ASSIGNMENTS map;
            cfg_get_used_variable_value_map(&map);
            cfg_get_external_variable_value_map(&map);
        },
        [] {});
}

TEST_F(STORE_MEMORY_TEST, failed_debug_settings_are_read_again)
{
    const auto level_now = []
    {
        int level = 0;
        cfg_check_debug_ini_values(nullptr, nullptr, &level);
        return level;
    };
    const auto prepare = [&]
    {
        make_empty_store();
        cfg_set_value("debug_msg_level", "7");
        EXPECT_EQ(level_now(), 7); // what a question that read nothing would answer
        make_empty_store();
        cfg_set_value("debug_msg_level", "12");
    };
    fail_at_every_allocation(
        prepare, [&] { level_now(); }, [&] { EXPECT_EQ(level_now(), 12); });
}

TEST_F(STORE_MEMORY_TEST, a_failed_registration_leaves_the_lock_held_and_registers_nothing)
{
    const CFG_INI_CALLBACK other("other");
    bool failed = true;
    for (long nth = 1; failed; ++nth)
    {
        s_ini_callbacks->erase(long_name);
        std::optional<CFG_INI_CALLBACK> callback;
        {
            const FAILING_ALLOCATION failing(nth);
            try
            {
                callback.emplace(long_name.c_str());
            }
            catch (const std::bad_alloc&)
            {
            }
            failed = failing.has_failed();
        }
        EXPECT_EQ(release_lock(), failed ? 1 : 0);
        const auto list = s_ini_callbacks->find(long_name);
        EXPECT_TRUE(list == s_ini_callbacks->end() || list->second.empty() || callback);
    }
}

// --- The catalogue's map ---

// A thread that stops in the middle of building it is one that a forked child does not have.
void call_for_the_map_in_a_child_while_a_thread_builds_it()
{
    alarm(60); // whoever waits for ever is ended
    std::latch building(1);
    std::latch forked(1);
    const void* seen_by_thread = nullptr;
    std::thread builder(
        [&]
        {
            const ACTION_AT_ALLOCATION stop(10,
                                            [&]
                                            {
                                                building.count_down();
                                                forked.wait();
                                            });
            seen_by_thread = &cfg_ini_get_string_to_id_map();
        });
    building.wait();
    const pid_t child = fork();
    if (child == 0)
    {
        alarm(20);
        _exit(cfg_ini_get_string_to_id_map().size() == 30 ? 0 : 1);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the child waited for ever";

    // The builder is late: it gets the map that is there.
    const void* const seen = &cfg_ini_get_string_to_id_map();
    forked.count_down();
    builder.join();
    EXPECT_EQ(seen_by_thread, seen);
    EXPECT_EQ(&cfg_ini_get_string_to_id_map(), seen);
}

TEST_F(STORE_MEMORY_TEST, a_forked_child_gets_the_catalogues_map_whoever_builds_it)
{
    EXPECT_IN_FRESH_PROCESS(call_for_the_map_in_a_child_while_a_thread_builds_it());
}

TEST_F(STORE_MEMORY_TEST, the_catalogues_map_is_built_at_the_next_call_when_memory_fails)
{
    EXPECT_IN_FRESH_PROCESS(fail_at_every_allocation([] {}, [] { cfg_ini_get_string_to_id_map(); }, [] {});
                            EXPECT_EQ(cfg_ini_get_string_to_id_map().size(), 30U));
}
}
