// The list of the sources that the store was loaded from.
#include "cfg_ini/cfg_ini_reader/applied_sources.h"

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "cfg_ini/cfg_settings_sources.h"
#include "tests/support/store_test.h"

using namespace zon_cfg;

namespace
{
using TEXTS = std::vector<std::string>;

const char* name_of(CFG_SETTINGS_ROLE role)
{
    switch (role)
    {
    case CFG_SETTINGS_ROLE::MAIN_FILE:
        return "main";
    case CFG_SETTINGS_ROLE::APPENDED_FILE:
        return "appended";
    case CFG_SETTINGS_ROLE::INLINE_TEXT:
        return "inline";
    case CFG_SETTINGS_ROLE::REGTEST_FILE:
        return "regtest";
    case CFG_SETTINGS_ROLE::PROGRAM_TEXT:
        return "program";
    }
    return "?";
}

class ACTOR : public CFG_INI_CALLBACK
{
public:
    ACTOR(const char* variable, std::function<void()> action)
        : CFG_INI_CALLBACK(variable), on_refresh(std::move(action))
    {
    }

    void refresh() override
    {
        if (on_refresh)
            std::exchange(on_refresh, nullptr)();
    }

private:
    std::function<void()> on_refresh; // at the first time
};

class APPLIED_SOURCES_TEST : public STORE_TEST
{
protected:
    // Each as "role external? path or text", the path as in the temporary directory; with "..." behind what is not
    // whole.
    TEXTS listed() const
    {
        TEXTS texts;
        for (const CFG_SETTINGS_SOURCE& source : cfg_get_settings_sources().applied)
        {
            const bool in_temporary = source.path.starts_with(temporary.path());
            texts.push_back(std::string(name_of(source.role)) + (source.external ? " external " : " ") +
                            (in_temporary ? source.path.substr(temporary.path().size() + 1) : source.path) +
                            source.text + (source.whole ? "" : "..."));
        }
        return texts;
    }

    std::string file(const std::string& name, const std::string& bytes = "a=1\n") const
    {
        write_file(temporary.path(name), bytes);
        return temporary.path(name);
    }

    // Every application ended before the next began.
    static void expect_one_after_the_other()
    {
        std::uint64_t moment = 0;
        for (const CFG_SETTINGS_SOURCE& source : cfg_get_settings_sources().applied)
        {
            EXPECT_LT(moment, source.beginning);
            EXPECT_LT(source.beginning, source.end);
            moment = source.end;
        }
    }
};

// --- What is listed ---

TEST_F(APPLIED_SOURCES_TEST, nothing_is_listed_and_nothing_loaded_without_a_store)
{
    file("cwd/velmar.ini");
    const CFG_SETTINGS_SOURCES sources = cfg_get_settings_sources();
    EXPECT_TRUE(sources.applied.empty());
    EXPECT_EQ(sources.lost_until, 0U);
    EXPECT_TRUE(sources.empty_variables.empty());
    EXPECT_FALSE(store_exists());
}

TEST_F(APPLIED_SOURCES_TEST, every_role_is_listed_in_the_order_in_which_it_is_applied)
{
    file("project/velmar.ini");
    file("project/regtest.ini");
    environment.set("APPENDED_VELMAR_INI", file("appended.ini"));
    environment.set("VELMAR_INI_VARS", "a=2;b=3");
    cfg_read_project_ini_file(temporary.path("project").c_str(), true);
    cfg_process_ini_string("c=4", false);
    cfg_process_ini_string("c=5", true);
    cfg_read_and_append_environment_ini_file(file("own.ini"));
    cfg_set_value("a", "no source");
    EXPECT_EQ(listed(),
              (TEXTS{"main external project/velmar.ini", "appended appended.ini", "inline external a=2;b=3",
                     "regtest project/regtest.ini", "program external c=4", "program c=5", "appended own.ini"}));
    expect_one_after_the_other();
    EXPECT_EQ(cfg_get_settings_sources().lost_until, 0U);
}

TEST_F(APPLIED_SOURCES_TEST, a_file_is_identified_by_what_the_system_says_of_it)
{
    const std::string path = file("main.ini", "a = 12\n");
    cfg_read_ini_file(path);
    struct stat status = {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    const CFG_SETTINGS_SOURCE source = cfg_get_settings_sources().applied.at(0);
    EXPECT_EQ(source.path, path);
    EXPECT_EQ(source.device, status.st_dev);
    EXPECT_EQ(source.inode, status.st_ino);
    EXPECT_EQ(source.mode, status.st_mode);
    EXPECT_EQ(source.size, 7U);
    EXPECT_EQ(source.modified_seconds, status.st_mtim.tv_sec);
    EXPECT_EQ(source.modified_nanoseconds, status.st_mtim.tv_nsec);
    EXPECT_EQ(source.text, "");
}

TEST_F(APPLIED_SOURCES_TEST, a_file_from_a_date_beyond_32_bits_is_read)
{
    const std::string path = file("main.ini", "a = 12\n");
    const struct timespec in_2100[] = {{4'102'444'800, 0}, {4'102'444'800, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), in_2100, 0), 0);
    cfg_read_ini_file(path);
    EXPECT_EQ(cfg_get_int_value("a", 0), 12);
    EXPECT_EQ(cfg_get_settings_sources().applied.at(0).modified_seconds, 4'102'444'800);
}

TEST_F(APPLIED_SOURCES_TEST, a_relative_path_is_made_absolute_with_the_directory_of_its_load)
{
    file("cwd/velmar.ini");
    file("elsewhere/more.ini");
    cfg_read_ini_file("velmar.ini");
    std::filesystem::current_path(temporary.path("elsewhere"));
    cfg_read_regtest_ini_file("./more.ini");
    cfg_read_and_append_environment_ini_file("../cwd/velmar.ini");
    EXPECT_EQ(listed(), (TEXTS{"main external cwd/velmar.ini", "regtest elsewhere/./more.ini",
                               "appended elsewhere/../cwd/velmar.ini"}));
}

TEST_F(APPLIED_SOURCES_TEST, slashes_join_a_relative_path_to_any_current_directory)
{
    file("cwd/velmar.ini");
    struct ROW
    {
        const char* current;
        const char* expected;
    };
    for (const auto& [current, expected] :
         {ROW{"/", "/velmar.ini"}, ROW{"/a/b", "/a/b/velmar.ini"}, ROW{"/a/", "/a/velmar.ini"}, ROW{"", "velmar.ini"}})
    {
        fake::fio::set_current_directory(current);
        cfg_read_ini_file("velmar.ini");
        EXPECT_EQ(cfg_get_settings_sources().applied.at(0).path, expected) << "in '" << current << "'";
    }
}

TEST_F(APPLIED_SOURCES_TEST, what_does_not_exist_or_does_not_open_is_not_listed)
{
    environment.set("APPENDED_VELMAR_INI", temporary.path("missing.ini"));
    environment.set("VELMAR_INI_VARS", "");
    cfg_read_ini_file(temporary.path("missing.ini"));
    cfg_read_regtest_ini_file(temporary.path("missing.ini"));
    std::filesystem::create_symlink(temporary.path("loop"), temporary.path("loop"));
    cfg_read_regtest_ini_file(temporary.path("loop"));
    EXPECT_EQ(listed(), TEXTS{});
}

TEST_F(APPLIED_SOURCES_TEST, a_directory_is_listed_as_what_it_is)
{
    cfg_read_ini_file(temporary.path("cwd"));
    EXPECT_EQ(listed(), TEXTS{"main external cwd..."}) << "reading it fails";
    EXPECT_TRUE(S_ISDIR(cfg_get_settings_sources().applied.at(0).mode));
}

TEST_F(APPLIED_SOURCES_TEST, a_pipe_is_listed_as_what_it_is)
{
    make_empty_store();
    const std::string path = temporary.path("pipe.ini");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::thread writer([&path] { write_file(path, "a=1\n"); });
    cfg_read_regtest_ini_file(path);
    writer.join();
    EXPECT_EQ(listed(), TEXTS{"regtest pipe.ini"});
    EXPECT_TRUE(S_ISFIFO(cfg_get_settings_sources().applied.at(0).mode));
}

TEST_F(APPLIED_SOURCES_TEST, an_empty_file_is_listed)
{
    cfg_read_ini_file(file("velmar.ini", ""));
    EXPECT_EQ(listed(), TEXTS{"main external velmar.ini"});
}

TEST_F(APPLIED_SOURCES_TEST, a_text_may_hold_any_byte)
{
    make_empty_store();
    const std::string text("a=\0\xff;", 5);
    cfg_process_ini_string(text, true);
    EXPECT_EQ(cfg_get_settings_sources().applied.at(0).text, text);
}

TEST_F(APPLIED_SOURCES_TEST, a_callback_may_change_the_text_that_is_applied)
{
    make_empty_store();
    std::string text = "a=1;b=2";
    const ACTOR actor("a", [&] { text = "c=3;d=4;e=5;f=6;g=7;h=8;i=9"; });
    cfg_process_ini_string(text, true);
    EXPECT_EQ(listed(), TEXTS{"program a=1;b=2"});
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}, {"b", "2"}}));
}

// --- Emptying ---

TEST_F(APPLIED_SOURCES_TEST, emptying_and_loading_clear_the_list)
{
    cfg_read_ini_file(file("one.ini"));
    cfg_read_regtest_ini_file(file("more.ini"));
    cfg_close_ini_file();
    EXPECT_EQ(listed(), TEXTS{});
    make_empty_store();
    EXPECT_EQ(listed(), TEXTS{});
    cfg_read_ini_file(file("two.ini"));
    EXPECT_EQ(listed(), TEXTS{"main external two.ini"});
    cfg_read_ini_file(file("one.ini"));
    EXPECT_EQ(listed(), TEXTS{"main external one.ini"});
}

TEST_F(APPLIED_SOURCES_TEST, what_a_callback_reads_while_the_store_is_replaced_is_not_listed)
{
    class READER : public CFG_INI_CALLBACK
    {
    public:
        READER() : CFG_INI_CALLBACK("x") {}
        void reset_to_default() override
        {
            cfg_get_value("x"); // loads the default file
        }
    };
    file("cwd/velmar.ini");
    make_empty_store();
    const READER reader;
    cfg_read_ini_file(file("own.ini"));
    EXPECT_EQ(listed(), TEXTS{"main external own.ini"});
}

// --- Applied again ---

TEST_F(APPLIED_SOURCES_TEST, an_equal_source_moves_to_where_it_was_applied_last)
{
    make_empty_store();
    const std::string one = file("one.ini");
    const std::string two = file("two.ini");
    for (const std::string& each : {one, two, one})
        cfg_read_regtest_ini_file(each);
    cfg_process_ini_string("a=1", true);
    cfg_process_ini_string("a=2", true);
    cfg_process_ini_string("a=1", true);
    EXPECT_EQ(listed(), (TEXTS{"regtest two.ini", "regtest one.ini", "program a=2", "program a=1"}));
    expect_one_after_the_other();
}

TEST_F(APPLIED_SOURCES_TEST, sources_that_differ_in_anything_are_listed_each)
{
    make_empty_store();
    const std::string one = file("one.ini");
    std::filesystem::create_hard_link(one, temporary.path("link.ini"));
    cfg_read_regtest_ini_file(one);
    cfg_read_regtest_ini_file(temporary.path("link.ini"));
    cfg_read_and_append_environment_ini_file(one);
    cfg_process_ini_string("a=1", true);
    cfg_process_ini_string("a=1", false);
    EXPECT_EQ(listed(), (TEXTS{"regtest one.ini", "regtest link.ini", "appended one.ini", "program a=1",
                               "program external a=1"}));
}

TEST_F(APPLIED_SOURCES_TEST, a_file_that_changed_between_two_applications_is_listed_twice)
{
    make_empty_store();
    const std::string path = file("one.ini");
    const auto time = std::filesystem::last_write_time(path);
    struct CHANGE
    {
        const char* what;
        std::function<void()> change;
    };
    const CHANGE changes[] = {
        {"size", [&] { file("one.ini", "a=12\n"), std::filesystem::last_write_time(path, time); }},
        {"seconds", [&] { std::filesystem::last_write_time(path, time + std::chrono::seconds(1)); }},
        {"nanoseconds", [&] { std::filesystem::last_write_time(path, time + std::chrono::nanoseconds(1)); }},
        {"permissions", [&] { std::filesystem::permissions(path, std::filesystem::perms(0600)); }},
        {"inode",
         [&]
         {
             std::filesystem::copy_file(path, temporary.path("copy"));
             std::filesystem::last_write_time(temporary.path("copy"), std::filesystem::last_write_time(path));
             std::filesystem::rename(temporary.path("copy"), path);
         }},
    };
    std::size_t versions = 1;
    for (const auto& [what, change] : changes)
    {
        cfg_read_regtest_ini_file(path);
        change();
        cfg_read_regtest_ini_file(path);
        EXPECT_EQ(listed().size(), ++versions) << what;
    }
}

// --- Limits ---

TEST_F(APPLIED_SOURCES_TEST, the_last_256_extra_files_are_kept_and_the_main_file_always)
{
    cfg_read_ini_file(file("velmar.ini"));
    const auto apply = [this](int number) { cfg_read_regtest_ini_file(file(std::to_string(number) + ".ini")); };
    for (int i = 0; i < 256; ++i)
        apply(i);
    EXPECT_EQ(listed().size(), 257U);
    EXPECT_EQ(cfg_get_settings_sources().lost_until, 0U);
    const std::uint64_t end_of_first = cfg_get_settings_sources().applied.at(1).end;
    apply(256);
    EXPECT_EQ(listed().size(), 257U);
    EXPECT_EQ(listed().at(0), "main external velmar.ini");
    EXPECT_EQ(listed().at(1), "regtest 1.ini");
    EXPECT_EQ(listed().back(), "regtest 256.ini");
    EXPECT_EQ(cfg_get_settings_sources().lost_until, end_of_first);
}

TEST_F(APPLIED_SOURCES_TEST, the_last_64_texts_of_the_program_are_kept_and_none_counts_as_lost)
{
    environment.set("VELMAR_INI_VARS", "a=1");
    make_empty_store();
    for (int i = 0; i < 65; ++i)
        cfg_process_ini_string("n=" + std::to_string(i), true);
    EXPECT_EQ(listed().size(), 65U);
    EXPECT_EQ(listed().at(0), "inline external a=1") << "no text of the program";
    EXPECT_EQ(listed().at(1), "program n=1");
    EXPECT_EQ(cfg_get_settings_sources().lost_until, 0U);
}

TEST_F(APPLIED_SOURCES_TEST, no_more_than_256_kib_of_the_programs_texts_are_kept)
{
    make_empty_store();
    const std::string half = "a=" + std::string(std::size_t{128} * 1024 - 2, 'x');
    cfg_process_ini_string(half, true);
    cfg_process_ini_string(half, false);
    EXPECT_EQ(listed().size(), 2U);
    cfg_process_ini_string("b=1", true);
    EXPECT_EQ(listed(), (TEXTS{"program external " + half, "program b=1"}));
    cfg_process_ini_string(half + half, true);
    EXPECT_EQ(listed(), TEXTS{"program " + half + half}) << "as much as is kept";
    cfg_process_ini_string(half + half + "x", true);
    EXPECT_EQ(listed(), TEXTS{"program " + half + half}) << "too much";
    EXPECT_EQ(cfg_get_settings_sources().lost_until, 0U);
}

// --- During a load ---

TEST_F(APPLIED_SOURCES_TEST, a_source_that_is_being_applied_is_listed_as_not_yet_whole)
{
    TEXTS meanwhile;
    std::uint64_t end = 1;
    const ACTOR actor("a",
                      [&]
                      {
                          meanwhile = listed();
                          end = cfg_get_settings_sources().applied.at(0).end;
                      });
    cfg_read_ini_file(file("velmar.ini"));
    EXPECT_EQ(meanwhile, TEXTS{"main external velmar.ini..."});
    EXPECT_EQ(end, 0U);
}

TEST_F(APPLIED_SOURCES_TEST, a_source_that_a_callback_applies_lies_within_the_other)
{
    file("inner.ini", "b=1\n");
    const ACTOR actor("a", [this] { cfg_read_regtest_ini_file(temporary.path("inner.ini")); });
    cfg_read_ini_file(file("velmar.ini"));
    const std::vector<CFG_SETTINGS_SOURCE> applied = cfg_get_settings_sources().applied;
    EXPECT_EQ(listed(), (TEXTS{"main external velmar.ini", "regtest inner.ini"}));
    EXPECT_LT(applied.at(0).beginning, applied.at(1).beginning);
    EXPECT_LT(applied.at(1).beginning, applied.at(1).end);
    EXPECT_LT(applied.at(1).end, applied.at(0).end);
}

TEST_F(APPLIED_SOURCES_TEST, a_file_that_a_callback_applies_within_itself_is_listed_twice)
{
    make_empty_store();
    const ACTOR actor("a", [this] { cfg_read_regtest_ini_file(temporary.path("self.ini")); });
    cfg_read_regtest_ini_file(file("self.ini"));
    EXPECT_EQ(listed(), (TEXTS{"regtest self.ini", "regtest self.ini"}));
}

TEST_F(APPLIED_SOURCES_TEST, a_load_that_an_exception_ends_leaves_a_source_that_is_never_whole)
{
    make_empty_store();
    {
        const ACTOR actor("a", [] { throw std::runtime_error("no"); });
        EXPECT_THROW(cfg_read_regtest_ini_file(file("one.ini")), std::runtime_error);
        release_lock();
    }
    EXPECT_EQ(listed(), TEXTS{"regtest one.ini..."});
    cfg_read_regtest_ini_file(temporary.path("one.ini"));
    EXPECT_EQ(listed(), (TEXTS{"regtest one.ini...", "regtest one.ini"}));
}

TEST_F(APPLIED_SOURCES_TEST, an_equal_source_that_is_cut_short_the_next_time_is_no_longer_whole)
{
    make_empty_store();
    cfg_read_regtest_ini_file(file("one.ini"));
    const ACTOR actor("a", [] { throw std::runtime_error("no"); });
    EXPECT_THROW(cfg_read_regtest_ini_file(temporary.path("one.ini")), std::runtime_error);
    release_lock();
    EXPECT_EQ(listed(), TEXTS{"regtest one.ini..."});
    EXPECT_EQ(cfg_get_settings_sources().applied.at(0).end, 0U);
}

TEST_F(APPLIED_SOURCES_TEST, a_layer_of_the_host_that_loads_the_settings_first_comes_behind_them)
{
    file("cwd/velmar.ini", "main=1\n");
    for (const bool is_text : {true, false})
    {
        cfg_close_ini_file();
        if (is_text)
            cfg_process_ini_string("a=1", true);
        else
            cfg_read_regtest_ini_file(file("one.ini"));
        EXPECT_EQ(listed(), (TEXTS{"main external cwd/velmar.ini", is_text ? "program a=1" : "regtest one.ini"}));
        expect_one_after_the_other();
    }
}

// What stands before the emptying is gone, what stands behind is in the new store: its source overlaps all of it.
TEST_F(APPLIED_SOURCES_TEST, a_source_during_which_the_store_is_made_anew_is_listed_in_the_new_one)
{
    make_empty_store();
    file("cwd/velmar.ini", "main=1\n");
    // Stands for another thread between two lines.
    const ACTOR actor("a", [] { cfg_read_default_ini_file(); });
    cfg_read_regtest_ini_file(file("one.ini", "a=1\nb=2\n"));
    EXPECT_EQ(listed(), (TEXTS{"regtest one.ini...", "main external cwd/velmar.ini"}));
    const std::vector<CFG_SETTINGS_SOURCE> applied = cfg_get_settings_sources().applied;
    EXPECT_LT(applied.at(0).beginning, applied.at(1).beginning);
    EXPECT_LT(applied.at(1).end, applied.at(0).end);
}

// The next assignment of the text loads the settings, and what follows goes on top of them.
TEST_F(APPLIED_SOURCES_TEST, a_text_during_which_the_store_is_emptied_is_not_whole)
{
    file("cwd/velmar.ini", "main=1\n");
    {
        const ACTOR actor("a", [] { cfg_close_ini_file(); });
        cfg_process_ini_string("a=1;b=2", true);
    }
    EXPECT_EQ(listed(), (TEXTS{"main external cwd/velmar.ini", "program a=1;b=2..."}));
    EXPECT_EQ(cfg_get_value("a"), "");
    EXPECT_EQ(cfg_get_value("b"), "2");
    expect_one_after_the_other();

    cfg_process_ini_string("a=1;b=2", true);
    EXPECT_EQ(listed(), (TEXTS{"main external cwd/velmar.ini", "program a=1;b=2"}));
}

TEST_F(APPLIED_SOURCES_TEST, a_layer_that_ends_because_the_store_was_emptied_is_not_listed)
{
    environment.set("VELMAR_INI_VARS", "a=1;b=2");
    const ACTOR actor("a", [] { cfg_close_ini_file(); });
    make_empty_store();
    EXPECT_EQ(listed(), TEXTS{});
    EXPECT_FALSE(store_exists());
}

// --- The variables without a text ---

TEST_F(APPLIED_SOURCES_TEST, variables_with_an_empty_text_are_named_as_first_spelt)
{
    read_main_file("Set = 1\nempty =\nemptied = 1\n");
    cfg_is_on("Asked_Once", false);
    cfg_is_on("asked_once", false);
    cfg_set_value("emptied", "");
    cfg_is_on("set_late", false);
    cfg_set_value("set_late", "on");
    TEXTS names = cfg_get_settings_sources().empty_variables;
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (TEXTS{"Asked_Once", "emptied", "empty"}));
    EXPECT_EQ(record_of("asked_once")->access_count, 1U) << "asking counts nothing";
}

TEST_F(APPLIED_SOURCES_TEST, another_thread_sees_whole_sources_while_files_are_applied)
{
    make_empty_store();
    const std::string one = file("one.ini");
    const std::string two = file("two.ini");
    std::thread applier(
        [&]
        {
            for (int i = 0; i < 200; ++i)
                cfg_read_regtest_ini_file(i % 2 == 0 ? one : two);
        });
    for (int i = 0; i < 200; ++i)
    {
        const std::vector<CFG_SETTINGS_SOURCE> applied = cfg_get_settings_sources().applied;
        EXPECT_LE(applied.size(), 2U);
        for (const CFG_SETTINGS_SOURCE& source : applied)
        {
            EXPECT_TRUE(source.path == one || source.path == two) << source.path;
            EXPECT_EQ(source.whole, source.end != 0);
            EXPECT_TRUE(source.end == 0 || source.end > source.beginning);
        }
    }
    applier.join();
    EXPECT_EQ(listed(), (TEXTS{"regtest one.ini", "regtest two.ini"}));
}
}
