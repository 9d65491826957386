#include "cfg_ini/cfg_ini_reader/settings_files.h"

#include <filesystem>

#include "platform/mem/mem.h"
#include "tests/support/store_test.h"

using namespace zon_cfg;

namespace
{
using SETTINGS_FILES_TEST = STORE_TEST;

std::string main_path()
{
    return cfg_get_ini_file_path_name();
}

std::string regtest_path()
{
    return cfg_get_regtest_ini_file_path_name();
}

std::string appended_path()
{
    return cfg_get_appended_envrionment_ini_file_path_name();
}

// --- Discovery ---

class DISCOVERY_TEST : public STORE_TEST
{
protected:
    DISCOVERY_TEST()
    {
        std::filesystem::create_directories(temporary.path("named"));
        std::filesystem::create_directories(temporary.path("home/.kestrin.velmar"));
        environment.set("VELMAR_INI", temporary.path("named"));
        environment.set("HOME", temporary.path("home"));
    }

    // The directories of the search in order, each ending in "/", below the temporary one.
    const std::vector<std::string> candidates = {"cwd/",    "named/",      "home/", "home/.kestrin.velmar/",
                                                 "module/", "install/bin/"};

    std::vector<std::string> candidate_paths(const std::string& name) const
    {
        std::vector<std::string> paths;
        for (const std::string& candidate : candidates)
            paths.push_back(temporary.path(candidate + name));
        return paths;
    }
};

TEST_F(DISCOVERY_TEST, takes_the_first_candidate_that_exists_and_looks_no_further)
{
    for (const bool regtest : {false, true})
    {
        const std::vector<std::string> paths = candidate_paths(regtest ? "regtest.ini" : "velmar.ini");
        for (auto first = paths.rbegin(); first != paths.rend(); ++first)
        {
            write_file(*first, ""); // the ones behind it exist already
            fake::reset();
            fake::gen::set_module_path(temporary.path("module/"));
            fake::gen::set_velmar_path(temporary.path("install/"));
            EXPECT_EQ(cfg_get_default_ini_file(regtest), *first);
            const auto examined = static_cast<std::ptrdiff_t>(paths.rend() - first);
            EXPECT_EQ(fake::fio::asked(), std::vector<std::string>(paths.begin(), paths.begin() + examined));
        }
    }
}

TEST_F(DISCOVERY_TEST, finds_nothing_where_nothing_is)
{
    EXPECT_EQ(cfg_get_default_ini_file(false), "");
    EXPECT_EQ(fake::fio::asked(), candidate_paths("velmar.ini"));
    write_file(temporary.path("home/regtest.ini"), "");
    EXPECT_EQ(cfg_get_default_ini_file(false), "");
}

TEST_F(DISCOVERY_TEST, takes_the_main_file_name_from_the_product)
{
    fake::ver::set_product_filename("other");
    write_file(temporary.path("cwd/velmar.ini"), "");
    EXPECT_EQ(cfg_get_default_ini_file(false), "");
    write_file(temporary.path("cwd/other.ini"), "");
    EXPECT_EQ(cfg_get_default_ini_file(false), temporary.path("cwd/other.ini"));
    EXPECT_EQ(cfg_get_default_ini_file(true), "");
}

TEST_F(DISCOVERY_TEST, and_a_project_form_the_main_file_name_alike_of_every_product_name)
{
    struct
    {
        const char* product;
        const char* file;
    } const table[] = {
        {"velmar", "velmar.ini"},
        {"velmar.pro", "velmar.pro.ini"},
        {"velmar.pro.2", "velmar.pro.2.ini"},
        {"velmar.ini", "velmar.ini.ini"},
        {".velmar", ".velmar.ini"},
        {"velmar.", "velmar..ini"},
        {"velmar pro", "velmar pro.ini"},
        {"v", "v.ini"},
        {"", ".ini"},
    };
    for (const auto& row : table)
    {
        SCOPED_TRACE(row.product);
        fake::ver::set_product_filename(row.product);
        EXPECT_EQ(settings_file_name(false), row.file);
        EXPECT_EQ(settings_file_name(true), "regtest.ini");
        const std::string directory = temporary.path(std::string("products/") + row.file + ".d");
        write_file(directory + "/" + row.file, std::string("found=") + row.file + "\n");
        write_file(directory + "/regtest.ini", "regtest=found\n");
        environment.set("VELMAR_INI", directory);
        EXPECT_EQ(cfg_get_default_ini_file(false), directory + "/" + row.file);
        EXPECT_EQ(cfg_get_default_ini_file(true), directory + "/regtest.ini");
        environment.unset("VELMAR_INI");
        for (const char* const slash : {"", "/"})
        {
            cfg_close_ini_file();
            cfg_read_project_ini_file((directory + slash).c_str(), true);
            EXPECT_EQ(all_values(), (ASSIGNMENTS{{"found", row.file}, {"regtest", "found"}}));
        }
    }
}

TEST_F(DISCOVERY_TEST, puts_one_slash_behind_the_current_directory)
{
    fake::fio::set_current_directory("/");
    cfg_get_default_ini_file(false);
    EXPECT_EQ(fake::fio::asked().front(), "/velmar.ini");
    fake::fio::set_current_directory("/some/where/");
    fake::fio::force_exists("/some/where/velmar.ini", true);
    EXPECT_EQ(cfg_get_default_ini_file(false), "/some/where/velmar.ini");
}

TEST_F(DISCOVERY_TEST, takes_an_empty_current_directory_for_no_candidate)
{
    fake::fio::set_current_directory("");
    fake::fio::force_exists("/velmar.ini", true);
    fake::fio::force_exists("velmar.ini", true);
    EXPECT_EQ(cfg_get_default_ini_file(false), "");
    EXPECT_EQ(fake::fio::asked().front(), temporary.path("named/velmar.ini"));
}

TEST_F(DISCOVERY_TEST, takes_the_named_directory_as_it_stands)
{
    write_file(temporary.path("named/velmar.ini"), "");
    environment.set("VELMAR_INI", temporary.path("named") + "//");
    EXPECT_EQ(cfg_get_default_ini_file(false), temporary.path("named") + "//velmar.ini");
    const SCOPED_CURRENT_DIRECTORY elsewhere(temporary.path());
    environment.set("VELMAR_INI", "named");
    EXPECT_EQ(cfg_get_default_ini_file(false), "named/velmar.ini");
}

TEST_F(DISCOVERY_TEST, finds_nothing_where_a_file_is_named_instead_of_a_directory)
{
    write_file(temporary.path("named/velmar.ini"), "");
    environment.set("VELMAR_INI", temporary.path("named/velmar.ini"));
    EXPECT_EQ(cfg_get_default_ini_file(false), "");
}

TEST_F(DISCOVERY_TEST, passes_over_variables_that_are_not_set_or_empty)
{
    const std::vector<std::string> others = {temporary.path("cwd/velmar.ini"), temporary.path("module/velmar.ini"),
                                             temporary.path("install/bin/velmar.ini")};
    environment.unset("VELMAR_INI");
    environment.unset("HOME");
    cfg_get_default_ini_file(false);
    EXPECT_EQ(fake::fio::asked(), others);

    fake::reset();
    fake::gen::set_module_path(temporary.path("module/"));
    fake::gen::set_velmar_path(temporary.path("install/"));
    environment.set("VELMAR_INI", "");
    environment.set("HOME", "");
    cfg_get_default_ini_file(false);
    EXPECT_EQ(fake::fio::asked(), others);
}

TEST_F(DISCOVERY_TEST, puts_one_slash_behind_home)
{
    environment.unset("VELMAR_INI");
    environment.set("HOME", "/h/");
    cfg_get_default_ini_file(false);
    EXPECT_EQ(fake::fio::asked()[1], "/h/velmar.ini");
    EXPECT_EQ(fake::fio::asked()[2], "/h/.kestrin.velmar/velmar.ini");
}

TEST_F(DISCOVERY_TEST, uses_a_home_of_1024_characters)
{
    const std::string home = "/" + std::string(1023, 'h');
    environment.set("HOME", home);
    fake::fio::force_exists(home + "/velmar.ini", true);
    EXPECT_EQ(cfg_get_default_ini_file(false), home + "/velmar.ini");
    fake::fio::force_exists(home + "/velmar.ini", false);
    fake::fio::force_exists(home + "/.kestrin.velmar/velmar.ini", true);
    EXPECT_EQ(cfg_get_default_ini_file(false), home + "/.kestrin.velmar/velmar.ini");
}

TEST_F(DISCOVERY_TEST, skips_a_home_of_1025_characters)
{
    const std::string home = "/" + std::string(1024, 'h');
    environment.set("HOME", home);
    fake::fio::force_exists(home + "/velmar.ini", true);
    fake::fio::force_exists(home + "/.kestrin.velmar/velmar.ini", true);
    EXPECT_EQ(cfg_get_default_ini_file(false), "");
    EXPECT_EQ(fake::fio::asked().size(), 4U);
}

TEST_F(DISCOVERY_TEST, is_disabled_by_exactly_1)
{
    write_file(temporary.path("home/velmar.ini"), "");
    write_file(temporary.path("home/regtest.ini"), "");
    environment.set("VELMAR_INI_DISABLED", "1");
    EXPECT_EQ(cfg_get_default_ini_file(false), "");
    EXPECT_EQ(cfg_get_default_ini_file(true), "");
    for (const char* const other : {"", "0", "true", "yes", "on", "01", "1 ", " 1", "11"})
    {
        environment.set("VELMAR_INI_DISABLED", other);
        EXPECT_EQ(cfg_get_default_ini_file(false), temporary.path("home/velmar.ini")) << other;
        EXPECT_EQ(cfg_get_default_ini_file(true), temporary.path("home/regtest.ini")) << other;
    }
}

TEST_F(DISCOVERY_TEST, asks_the_same_questions_when_it_is_disabled)
{
    write_file(temporary.path("home/velmar.ini"), "");
    environment.set("VELMAR_INI_DISABLED", "1");
    EXPECT_EQ(cfg_get_default_ini_file(false), "");
    const std::vector<std::string> paths = candidate_paths("velmar.ini");
    EXPECT_EQ(fake::fio::asked(), std::vector<std::string>(paths.begin(), paths.begin() + 3)) << "up to home";
}

TEST_F(DISCOVERY_TEST, takes_no_lock_and_makes_no_store)
{
    cfg_get_default_ini_file(false);
    EXPECT_EQ(fake::thr::locks(), 0);
    EXPECT_FALSE(store_exists());
}

// --- Reading the main file ---

TEST_F(SETTINGS_FILES_TEST, the_main_file_makes_external_variables)
{
    read_main_file("a=1\n# comment\nb = two\n\nnonsense\n");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}, {"b", "two"}}));
    EXPECT_TRUE(cfg_ini_is_external("a"));
    EXPECT_TRUE(cfg_ini_is_external("b"));
    EXPECT_EQ(record_of("a")->access_count, 0U);
    EXPECT_EQ(main_path(), temporary.path("velmar.ini"));
}

TEST_F(SETTINGS_FILES_TEST, a_later_line_wins)
{
    read_main_file("a=1\na=2\n");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "2"}}));
    read_main_file("a=1\nA=2\n");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "2"}}));
}

TEST_F(SETTINGS_FILES_TEST, lines_of_every_kind_have_their_effect)
{
    read_main_file("x=y=z\nab\na=\n=5\n");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"x", "y=z"}, {"", "5"}}));
    EXPECT_EQ(cfg_get_value(""), "5");
}

TEST_F(SETTINGS_FILES_TEST, carriage_returns_belong_to_the_line_ends)
{
    read_main_file("a=1\r\nb=on\r\n\r\nc=\r\n");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}, {"b", "on"}, {"c", ""}}));
    EXPECT_TRUE(cfg_is_on("b"));
}

TEST_F(SETTINGS_FILES_TEST, a_last_line_without_newline_counts)
{
    read_main_file("a=1\nb=2");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}, {"b", "2"}}));
    read_main_file("a=1\nb");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}}));
}

TEST_F(SETTINGS_FILES_TEST, lines_may_be_of_any_length)
{
    // Around the sizes at which a reader's buffer might end, and far beyond them.
    for (const std::size_t length : {4093U, 4094U, 4095U, 65533U, 65534U, 65535U, 131070U, 1048576U})
    {
        const std::string value(length, 'v');
        read_main_file("a=" + value + "\nb=2\n");
        EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", value}, {"b", "2"}})) << length;
        read_main_file("b=2\na=" + value);
        EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", value}, {"b", "2"}})) << length;
    }
}

TEST_F(SETTINGS_FILES_TEST, a_file_of_many_lines_is_read_whole)
{
    std::string text;
    ASSIGNMENTS expected;
    for (int i = 0; i < 20000; ++i)
    {
        text += "variable_" + std::to_string(i) + " = " + std::to_string(i) + "\n";
        expected["variable_" + std::to_string(i)] = std::to_string(i);
    }
    read_main_file(text);
    EXPECT_EQ(all_values(), expected);
}

TEST_F(SETTINGS_FILES_TEST, an_empty_file_makes_an_empty_store)
{
    read_main_file("");
    EXPECT_TRUE(store_exists());
    EXPECT_TRUE(all_records().empty());
    EXPECT_EQ(main_path(), temporary.path("velmar.ini"));
}

TEST_F(SETTINGS_FILES_TEST, a_missing_file_and_an_empty_path_make_an_empty_store)
{
    read_main_file("a=1\n");
    cfg_read_ini_file(temporary.path("missing.ini"));
    EXPECT_TRUE(store_exists());
    EXPECT_TRUE(all_records().empty());
    read_main_file("a=1\n");
    cfg_read_ini_file("");
    EXPECT_TRUE(store_exists());
    EXPECT_TRUE(all_records().empty());
    EXPECT_EQ(main_path(), temporary.path("velmar.ini")); // as last opened
    EXPECT_TRUE(fake::err::reports().empty());
    EXPECT_TRUE(fake::mem::messages().empty());
}

TEST_F(SETTINGS_FILES_TEST, a_file_that_exists_but_does_not_open_is_passed_over)
{
    read_main_file("a=1\n");
    const std::string vanished = temporary.path("vanished.ini");
    fake::fio::force_exists(vanished, true); // removed between the question and the opening
    cfg_read_ini_file(vanished);
    EXPECT_TRUE(store_exists());
    EXPECT_TRUE(all_records().empty());
    EXPECT_EQ(main_path(), temporary.path("velmar.ini"));
}

TEST_F(SETTINGS_FILES_TEST, a_directory_gives_no_lines)
{
    const std::string directory = temporary.path("a_directory");
    std::filesystem::create_directory(directory);
    cfg_read_ini_file(directory);
    EXPECT_TRUE(store_exists());
    EXPECT_TRUE(all_records().empty());
    cfg_read_regtest_ini_file(directory);
    cfg_read_and_append_environment_ini_file(directory);
    EXPECT_TRUE(all_records().empty());
}

TEST_F(SETTINGS_FILES_TEST, a_new_reading_drops_what_the_program_set)
{
    read_main_file("a=1\n");
    cfg_set_value("a", "by the program");
    cfg_set_value("b", "by the program");
    cfg_read_ini_file(temporary.path("velmar.ini"));
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}}));
}

TEST_F(SETTINGS_FILES_TEST, a_new_reading_drops_counts_and_marks)
{
    read_main_file("a=1\n");
    cfg_is_on("a");
    cfg_is_on("a");
    read_main_file("a=1\n");
    EXPECT_EQ(record_of("a")->access_count, 0U);
    EXPECT_FALSE(record_of("a")->had_valid_read);
}

TEST_F(SETTINGS_FILES_TEST, reading_sets_the_dirty_flag)
{
    make_empty_store();
    cfg_ini_dirty = false;
    cfg_read_ini_file("");
    EXPECT_TRUE(cfg_ini_dirty);
}

TEST_F(SETTINGS_FILES_TEST, reading_without_a_path_and_the_default_reading_search)
{
    write_file(temporary.path("cwd/velmar.ini"), "a=1\n");
    cfg_read_ini_file();
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}}));
    EXPECT_EQ(main_path(), temporary.path("cwd/velmar.ini"));
    write_file(temporary.path("cwd/velmar.ini"), "a=2\n");
    cfg_read_default_ini_file();
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "2"}}));
}

TEST_F(SETTINGS_FILES_TEST, a_first_use_reads_the_default_file)
{
    write_file(temporary.path("cwd/velmar.ini"), "a=1\n");
    EXPECT_EQ(cfg_get_value("a"), "1");
    EXPECT_EQ(main_path(), temporary.path("cwd/velmar.ini"));
}

TEST_F(SETTINGS_FILES_TEST, messages_are_silenced_to_the_end_of_the_reading)
{
    class READER : public CFG_INI_CALLBACK
    {
    public:
        using CFG_INI_CALLBACK::CFG_INI_CALLBACK;
        void refresh() override
        {
            cfg_get_value_as<double>("text");
        }
    };
    const READER main_file("main_file");
    const READER appended("appended");
    const READER inline_text("inline_text");
    write_file(temporary.path("appended.ini"), "appended=1\n");
    environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
    environment.set("VELMAR_INI_VARS", "inline_text=1");
    read_main_file("text=no number\nmain_file=1\n");

    const std::string message = "Couldn't parse ini setting text=(no number) as a floating point value";
    const fake::mem::MESSAGE silenced = {"CFG_INI", message, true};
    EXPECT_EQ(fake::mem::messages(), (std::vector<fake::mem::MESSAGE>{silenced, silenced, silenced}));
    EXPECT_EQ(fake::mem::silencing_scopes(), 0);
    cfg_get_value_as<double>("text");
    EXPECT_FALSE(fake::mem::messages().back().silenced);
}

TEST_F(SETTINGS_FILES_TEST, the_module_is_registered_with_the_memory_layer)
{
    EXPECT_TRUE(MEM_INITIALIZER::is_registered("CFG_INI"));
}

// --- Locks ---

TEST_F(SETTINGS_FILES_TEST, the_lock_is_held_from_the_emptying_to_the_end_of_the_main_file)
{
    class OBSERVER : public CFG_INI_CALLBACK
    {
    public:
        using CFG_INI_CALLBACK::CFG_INI_CALLBACK;
        void refresh() override
        {
            depths.push_back(fake::thr::depth());
        }
        void reset_to_default() override
        {
            depths.push_back(fake::thr::depth());
        }
        std::vector<int> depths;
    };
    make_empty_store();
    OBSERVER observer("x");
    write_file(temporary.path("appended.ini"), "x=2\n");
    environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
    environment.set("VELMAR_INI_VARS", "x=3");
    int depth_at_appended_file = -1;
    fake::fio::before_exists(2, [&] { depth_at_appended_file = fake::thr::depth(); });
    read_main_file("x=1\n");
    // Emptying and main file within the reading's lock; appended file and inline text each under its own.
    EXPECT_EQ(observer.depths, (std::vector<int>{2, 2, 1, 1}));
    EXPECT_EQ(depth_at_appended_file, 0);
    EXPECT_EQ(fake::thr::depth(), 0);
}

TEST_F(SETTINGS_FILES_TEST, applying_on_top_holds_no_lock_across_the_file)
{
    make_empty_store();
    write_file(temporary.path("regtest.ini"), "a=1\n");
    int depth_at_file = -1;
    fake::fio::before_exists(1, [&] { depth_at_file = fake::thr::depth(); });
    cfg_read_regtest_ini_file(temporary.path("regtest.ini"));
    EXPECT_EQ(depth_at_file, 0);
    EXPECT_EQ(fake::thr::depth(), 0);
}

// --- Layers ---

TEST_F(SETTINGS_FILES_TEST, layers_overwrite_each_other_in_their_order)
{
    write_file(temporary.path("project/velmar.ini"), "main=m\nappended=m\ninline=m\nregtest=m\nset=m\n");
    write_file(temporary.path("appended.ini"), "appended=a\ninline=a\nregtest=a\nset=a\n");
    environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
    environment.set("VELMAR_INI_VARS", "inline=i;regtest=i;set=i");
    write_file(temporary.path("project/regtest.ini"), "regtest=r\nset=r\n");
    cfg_read_project_ini_file(temporary.path("project").c_str(), true);
    cfg_set_value("set", "s");
    EXPECT_EQ(all_values(),
              (ASSIGNMENTS{{"main", "m"}, {"appended", "a"}, {"inline", "i"}, {"regtest", "r"}, {"set", "s"}}));
}

TEST_F(SETTINGS_FILES_TEST, a_main_variable_that_the_appended_file_sets_again_stays_external)
{
    write_file(temporary.path("appended.ini"), "both=a\nonly_appended=a\n");
    environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
    read_main_file("both=m\n");
    EXPECT_EQ(cfg_get_value("both"), "a");
    EXPECT_TRUE(cfg_ini_is_external("both"));
}

TEST_F(SETTINGS_FILES_TEST, a_variable_that_only_the_appended_file_sets_is_not_external)
{
    write_file(temporary.path("appended.ini"), "only_appended=a\n");
    environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
    read_main_file("");
    EXPECT_EQ(cfg_get_value("only_appended"), "a");
    EXPECT_FALSE(cfg_ini_is_external("only_appended"));
    EXPECT_EQ(appended_path(), temporary.path("appended.ini"));
}

TEST_F(SETTINGS_FILES_TEST, a_variable_that_the_inline_text_sets_is_external)
{
    write_file(temporary.path("appended.ini"), "b=a\n");
    environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
    environment.set("VELMAR_INI_VARS", "a=1;b=2");
    read_main_file("");
    EXPECT_TRUE(cfg_ini_is_external("a"));
    EXPECT_TRUE(cfg_ini_is_external("b"));
    EXPECT_EQ(cfg_get_value("b"), "2");
}

TEST_F(SETTINGS_FILES_TEST, a_variable_that_the_regression_test_file_sets_keeps_its_mark)
{
    write_file(temporary.path("regtest.ini"), "both=r\nonly_regtest=r\n");
    read_main_file("both=m\n");
    cfg_read_regtest_ini_file(temporary.path("regtest.ini"));
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"both", "r"}, {"only_regtest", "r"}}));
    EXPECT_TRUE(cfg_ini_is_external("both"));
    EXPECT_FALSE(cfg_ini_is_external("only_regtest"));
    EXPECT_EQ(regtest_path(), temporary.path("regtest.ini"));
}

TEST_F(SETTINGS_FILES_TEST, the_environments_sources_apply_also_when_the_search_is_disabled)
{
    write_file(temporary.path("cwd/velmar.ini"), "a=m\nb=m\nc=m\n");
    write_file(temporary.path("appended.ini"), "b=a\n");
    environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
    environment.set("VELMAR_INI_VARS", "c=i");
    environment.set("VELMAR_INI_DISABLED", "1");
    cfg_read_ini_file();
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"b", "a"}, {"c", "i"}}));
    environment.set("VELMAR_INI_DISABLED", "true");
    cfg_read_ini_file();
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "m"}, {"b", "a"}, {"c", "i"}}));
}

TEST_F(SETTINGS_FILES_TEST, the_environments_sources_apply_also_when_the_main_file_is_missing)
{
    write_file(temporary.path("appended.ini"), "b=a\n");
    environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
    environment.set("VELMAR_INI_VARS", "c=i");
    cfg_read_ini_file(temporary.path("missing.ini"));
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"b", "a"}, {"c", "i"}}));
}

TEST_F(SETTINGS_FILES_TEST, empty_environment_variables_are_as_good_as_none)
{
    environment.set("APPENDED_VELMAR_INI", "");
    environment.set("VELMAR_INI_VARS", "");
    read_main_file("a=1\n");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}}));
    EXPECT_EQ(fake::fio::asked(), std::vector<std::string>{temporary.path("velmar.ini")});
}

TEST_F(SETTINGS_FILES_TEST, a_missing_appended_file_is_passed_over)
{
    environment.set("APPENDED_VELMAR_INI", temporary.path("missing.ini"));
    read_main_file("a=1\n");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}}));
    EXPECT_TRUE(fake::err::reports().empty());
}

TEST_F(SETTINGS_FILES_TEST, a_relative_appended_path_starts_at_the_current_directory)
{
    write_file(temporary.path("cwd/appended.ini"), "a=1\n");
    environment.set("APPENDED_VELMAR_INI", "appended.ini");
    cfg_read_ini_file("");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}}));
    EXPECT_EQ(appended_path(), "appended.ini");
}

// --- Regression-test and appended files by themselves ---

TEST_F(SETTINGS_FILES_TEST, applying_on_top_keeps_what_is_there_and_applies_no_environment_source)
{
    read_main_file("a=m\nb=m\n");
    cfg_set_value("c", "s");
    write_file(temporary.path("over.ini"), "b=o\n");
    write_file(temporary.path("appended.ini"), "d=a\n");
    environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
    environment.set("VELMAR_INI_VARS", "e=i");
    cfg_read_regtest_ini_file(temporary.path("over.ini"));
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "m"}, {"b", "o"}, {"c", "s"}}));
    write_file(temporary.path("over.ini"), "b=p\n");
    cfg_read_and_append_environment_ini_file(temporary.path("over.ini"));
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "m"}, {"b", "p"}, {"c", "s"}}));
}

TEST_F(SETTINGS_FILES_TEST, a_missing_file_changes_nothing_when_applied_on_top)
{
    read_main_file("a=1\n");
    cfg_ini_dirty = false;
    cfg_read_regtest_ini_file(temporary.path("missing.ini"));
    cfg_read_and_append_environment_ini_file(temporary.path("missing.ini"));
    cfg_read_regtest_ini_file("");
    cfg_read_and_append_environment_ini_file("");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}}));
    EXPECT_FALSE(cfg_ini_dirty);
    EXPECT_TRUE(fake::err::reports().empty());
}

TEST_F(SETTINGS_FILES_TEST, a_regression_test_file_without_a_store_brings_the_first_reading)
{
    write_file(temporary.path("cwd/velmar.ini"), "a=m\nb=m\n");
    write_file(temporary.path("regtest.ini"), "b=r\n");
    cfg_read_regtest_ini_file(temporary.path("regtest.ini"));
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "m"}, {"b", "r"}}));
}

TEST_F(SETTINGS_FILES_TEST, a_regression_test_file_without_assignments_brings_no_reading)
{
    write_file(temporary.path("regtest.ini"), "# nothing\n");
    cfg_read_regtest_ini_file(temporary.path("regtest.ini"));
    EXPECT_FALSE(store_exists());
    EXPECT_EQ(regtest_path(), temporary.path("regtest.ini"));
    cfg_read_regtest_ini_file(temporary.path("missing.ini"));
    EXPECT_FALSE(store_exists());
}

const fake::err::REPORT no_store_report = {"cfg_ini_file", "CFG_INI", "cfg_ini/cfg_ini_reader", 1172};

TEST_F(SETTINGS_FILES_TEST, an_appended_file_without_a_store_is_reported_and_not_read)
{
    write_file(temporary.path("appended.ini"), "a=1\n");
    cfg_read_and_append_environment_ini_file(temporary.path("appended.ini"));
    EXPECT_EQ(fake::err::reports(), std::vector<fake::err::REPORT>{no_store_report});
    EXPECT_FALSE(store_exists());
    EXPECT_TRUE(fake::fio::asked().empty());
}

TEST_F(SETTINGS_FILES_TEST, a_missing_appended_file_without_a_store_is_reported_too)
{
    cfg_read_and_append_environment_ini_file(temporary.path("missing.ini"));
    EXPECT_EQ(fake::err::reports(), std::vector<fake::err::REPORT>{no_store_report});
    fake::err::throw_from_now_on();
    EXPECT_THROW(cfg_read_and_append_environment_ini_file(""), fake::err::REPORTED);
    EXPECT_EQ(fake::thr::depth(), 0);
}

// --- Projects ---

class PROJECT_TEST : public STORE_TEST
{
protected:
    void read_project(const std::string& directory, bool regtest = false)
    {
        cfg_read_project_ini_file(directory.c_str(), regtest);
    }
};

TEST_F(PROJECT_TEST, its_own_file_goes_before_the_default_one)
{
    write_file(temporary.path("project/velmar.ini"), "a=project\n");
    write_file(temporary.path("cwd/velmar.ini"), "a=default\nb=default\n");
    for (const char* const directory : {"project", "project/"})
    {
        cfg_close_ini_file();
        read_project(temporary.path(directory));
        EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "project"}})) << directory;
        EXPECT_EQ(main_path(), temporary.path("project/velmar.ini"));
    }
}

TEST_F(PROJECT_TEST, without_its_own_file_the_default_one_is_read)
{
    std::filesystem::create_directory(temporary.path("project"));
    write_file(temporary.path("cwd/velmar.ini"), "a=default\n");
    read_project(temporary.path("project"));
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "default"}}));
    read_project(temporary.path("no such project"));
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "default"}}));
}

TEST_F(PROJECT_TEST, an_empty_directory_is_the_current_one)
{
    write_file(temporary.path("cwd/velmar.ini"), "a=here\n");
    read_project("");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "here"}}));
}

TEST_F(PROJECT_TEST, the_product_names_its_file)
{
    fake::ver::set_product_filename("other");
    write_file(temporary.path("project/velmar.ini"), "a=1\n");
    write_file(temporary.path("project/other.ini"), "b=1\n");
    read_project(temporary.path("project"));
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"b", "1"}}));
}

TEST_F(PROJECT_TEST, disabling_the_search_does_not_stop_its_own_files)
{
    environment.set("VELMAR_INI_DISABLED", "1");
    write_file(temporary.path("project/velmar.ini"), "a=project\nb=project\n");
    write_file(temporary.path("project/regtest.ini"), "b=regtest\n");
    read_project(temporary.path("project"), true);
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "project"}, {"b", "regtest"}}));
}

TEST_F(PROJECT_TEST, disabling_the_search_stops_the_default_files)
{
    environment.set("VELMAR_INI_DISABLED", "1");
    write_file(temporary.path("cwd/velmar.ini"), "a=default\n");
    write_file(temporary.path("cwd/regtest.ini"), "a=default\n");
    read_project(temporary.path("project"), true);
    EXPECT_TRUE(all_records().empty());
}

TEST_F(PROJECT_TEST, its_regression_test_file_is_read_only_when_asked_for)
{
    write_file(temporary.path("project/velmar.ini"), "a=project\nb=project\n");
    write_file(temporary.path("project/regtest.ini"), "b=regtest\nc=regtest\n");
    read_project(temporary.path("project"), false);
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "project"}, {"b", "project"}}));
    read_project(temporary.path("project"), true);
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "project"}, {"b", "regtest"}, {"c", "regtest"}}));
    EXPECT_EQ(regtest_path(), temporary.path("project/regtest.ini"));
}

TEST_F(PROJECT_TEST, its_regression_test_file_overrides_the_default_main_file)
{
    write_file(temporary.path("project/regtest.ini"), "b=regtest\n");
    write_file(temporary.path("cwd/regtest.ini"), "b=wrong\n");
    write_file(temporary.path("cwd/velmar.ini"), "a=default\nb=default\n");
    read_project(temporary.path("project"), true);
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "default"}, {"b", "regtest"}}));
}

TEST_F(PROJECT_TEST, without_its_own_regression_test_file_the_default_one_is_read)
{
    write_file(temporary.path("project/velmar.ini"), "a=project\n");
    write_file(temporary.path("cwd/regtest.ini"), "a=regtest\n");
    read_project(temporary.path("project"), true);
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "regtest"}}));
    EXPECT_EQ(regtest_path(), temporary.path("cwd/regtest.ini"));
}

TEST_F(PROJECT_TEST, without_any_regression_test_file_the_main_file_stands)
{
    write_file(temporary.path("project/velmar.ini"), "a=project\n");
    read_project(temporary.path("project"), true);
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "project"}}));
}

TEST_F(PROJECT_TEST, rereads_everything)
{
    write_file(temporary.path("project/velmar.ini"), "a=project\n");
    read_main_file("b=main\n");
    cfg_set_value("c", "set");
    read_project(temporary.path("project"));
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "project"}}));
}

TEST_F(PROJECT_TEST, a_null_directory_is_reported_and_nothing_is_read)
{
    write_file(temporary.path("cwd/velmar.ini"), "a=default\n");
    cfg_read_project_ini_file(nullptr, true);
    EXPECT_EQ(fake::err::reports(),
              (std::vector<fake::err::REPORT>{{"proj_dirpath != NULL", "CFG_INI", "cfg_ini/cfg_ini_reader", 1309}}));
    EXPECT_FALSE(store_exists());
    EXPECT_TRUE(fake::fio::asked().empty());
    fake::err::throw_from_now_on();
    EXPECT_THROW(cfg_read_project_ini_file(nullptr, false), fake::err::REPORTED);
    EXPECT_FALSE(store_exists());
}

// --- Path buffers ---

TEST_F(SETTINGS_FILES_TEST, the_paths_are_empty_before_the_first_reading)
{
    EXPECT_IN_FRESH_PROCESS(EXPECT_EQ(main_path(), ""); EXPECT_EQ(regtest_path(), ""); EXPECT_EQ(appended_path(), "");
                            make_empty_store(); EXPECT_EQ(main_path(), ""));
}

TEST_F(SETTINGS_FILES_TEST, the_paths_outlive_the_store_and_later_missing_files)
{
    write_file(temporary.path("regtest.ini"), "");
    write_file(temporary.path("appended.ini"), "");
    read_main_file("a=1\n");
    cfg_read_regtest_ini_file(temporary.path("regtest.ini"));
    cfg_read_and_append_environment_ini_file(temporary.path("appended.ini"));
    const auto expect_paths = [this]
    {
        EXPECT_EQ(main_path(), temporary.path("velmar.ini"));
        EXPECT_EQ(regtest_path(), temporary.path("regtest.ini"));
        EXPECT_EQ(appended_path(), temporary.path("appended.ini"));
    };
    cfg_close_ini_file();
    expect_paths();
    cfg_read_ini_file(temporary.path("missing.ini"));
    cfg_read_regtest_ini_file(temporary.path("missing.ini"));
    cfg_read_and_append_environment_ini_file(temporary.path("missing.ini"));
    expect_paths();
}

TEST_F(SETTINGS_FILES_TEST, a_shorter_path_replaces_a_longer_one_whole)
{
    write_file(temporary.path("a_rather_long_name.ini"), "");
    cfg_read_ini_file(temporary.path("a_rather_long_name.ini"));
    write_file(temporary.path("cwd/s.ini"), "");
    cfg_read_ini_file("s.ini");
    EXPECT_EQ(main_path(), "s.ini");
}

TEST_F(SETTINGS_FILES_TEST, the_getters_give_the_buffers)
{
    EXPECT_EQ(cfg_get_ini_file_path_name(), cfg_current_velmar_ini_path_name);
    EXPECT_EQ(cfg_get_regtest_ini_file_path_name(), cfg_current_regtest_ini_path_name);
    EXPECT_EQ(cfg_get_appended_envrionment_ini_file_path_name(), cfg_current_appended_environment_ini_path_name);
    EXPECT_EQ(sizeof cfg_current_velmar_ini_path_name, 1025U);
    EXPECT_EQ(sizeof cfg_current_regtest_ini_path_name, 1025U);
    EXPECT_EQ(sizeof cfg_current_appended_environment_ini_path_name, 1025U);
}

class LONG_PATH_TEST : public STORE_TEST
{
protected:
    // A path of so many characters to an empty file.
    std::string path_of_length(std::size_t length) const
    {
        std::string path = temporary.path("f.ini");
        while (path.size() < length) // "/./" is a way to be longer without being elsewhere
            path.insert(temporary.path().size(), length - path.size() == 1 ? "/" : "/.");
        return path;
    }
};

TEST_F(LONG_PATH_TEST, is_cut_after_1024_characters)
{
    write_file(temporary.path("f.ini"), "a=1\n");
    make_empty_store();
    for (const std::size_t length : {1023U, 1024U, 1025U, 1500U})
    {
        const std::string path = path_of_length(length);
        ASSERT_EQ(path.size(), length);
        const std::string expected = path.substr(0, 1024);
        cfg_read_ini_file(path);
        EXPECT_EQ(cfg_get_value("a"), "1") << "read all the same";
        cfg_read_regtest_ini_file(path);
        cfg_read_and_append_environment_ini_file(path);
        EXPECT_EQ(main_path(), expected);
        EXPECT_EQ(regtest_path(), expected);
        EXPECT_EQ(appended_path(), expected);
    }
}

TEST_F(SETTINGS_FILES_TEST, a_path_ends_at_its_first_zero_byte)
{
    const std::string path = temporary.path("velmar.ini");
    write_file(path, "a=1\n");
    const std::string with_more = path + std::string("\0more", 5);
    cfg_read_ini_file(with_more);
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}}));
    EXPECT_EQ(main_path(), path);
    cfg_read_regtest_ini_file(with_more);
    cfg_read_and_append_environment_ini_file(with_more);
    EXPECT_EQ(regtest_path(), path);
    EXPECT_EQ(appended_path(), path);
}

// --- Emptying ---

TEST_F(SETTINGS_FILES_TEST, emptying_without_a_store_sets_the_dirty_flag)
{
    make_empty_store();
    cfg_close_ini_file();
    cfg_ini_dirty = false;
    cfg_close_ini_file();
    EXPECT_TRUE(cfg_ini_dirty);
    EXPECT_FALSE(store_exists());
    EXPECT_EQ(fake::thr::depth(), 0);
}

TEST_F(SETTINGS_FILES_TEST, emptying_a_store_sets_the_dirty_flag)
{
    make_empty_store();
    cfg_ini_dirty = false;
    cfg_close_ini_file();
    EXPECT_TRUE(cfg_ini_dirty);
    EXPECT_FALSE(store_exists());
}

TEST_F(SETTINGS_FILES_TEST, emptying_may_be_the_first_use)
{
    EXPECT_IN_FRESH_PROCESS(cfg_ini_dirty = false; cfg_close_ini_file(); EXPECT_TRUE(cfg_ini_dirty);
                            EXPECT_FALSE(store_exists()); EXPECT_EQ(fake::thr::creations(), 1);
                            EXPECT_EQ(fake::thr::depth(), 0));
}

TEST_F(SETTINGS_FILES_TEST, callbacks_of_the_last_emptying_may_emit_messages)
{
    class MESSENGER : public CFG_INI_CALLBACK
    {
    public:
        using CFG_INI_CALLBACK::CFG_INI_CALLBACK;
        void reset_to_default() override
        {
            std::fputs(MEM_INITIALIZER::is_registered("CFG_INI") ? "registered" : "not registered", stderr);
        }
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            make_empty_store();
            static MESSENGER* const messenger = new MESSENGER("x"); // outlives the library
            EXPECT_NE(messenger, nullptr);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^registered");
}

// --- Services that fail ---

TEST_F(SETTINGS_FILES_TEST, a_failure_before_the_main_file_passes_through_and_releases_the_lock)
{
    make_empty_store();
    fake::fio::before_exists(1, fake::out_of_memory);
    EXPECT_THROW(read_main_file("a=1\n"), std::bad_alloc);
    EXPECT_EQ(fake::thr::depth(), 0);
    EXPECT_EQ(fake::mem::silencing_scopes(), 0);
    EXPECT_TRUE(store_exists());
    EXPECT_TRUE(all_records().empty());
}

TEST_F(SETTINGS_FILES_TEST, a_failure_in_the_search_leaves_no_store)
{
    write_file(temporary.path("cwd/velmar.ini"), "a=1\n");
    fake::fio::before_current_directory(1, fake::out_of_memory);
    EXPECT_THROW(cfg_get_value("a"), std::bad_alloc);
    EXPECT_EQ(fake::thr::depth(), 0);
    EXPECT_FALSE(store_exists());
    EXPECT_EQ(cfg_get_value("a"), "1"); // the next use tries again
}

TEST_F(SETTINGS_FILES_TEST, a_question_that_fails_once_hides_that_candidate_only)
{
    write_file(temporary.path("cwd/velmar.ini"), "a=cwd\n");
    write_file(temporary.path("module/velmar.ini"), "a=module\n");
    fake::fio::deny_exists(1);
    EXPECT_EQ(cfg_get_default_ini_file(false), temporary.path("module/velmar.ini"));
}
}
