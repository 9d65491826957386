// Where values came from, worked out from the sources of a real store.
#include "cfg_run_report/value_origins.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <sys/stat.h>
#include <utility>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"
#include "tests/support/faked_test.h"

namespace
{
class VALUE_ORIGINS_TEST : public FAKED_TEST
{
protected:
    ~VALUE_ORIGINS_TEST() override
    {
        cfg_close_ini_file();
    }

    std::string file(const std::string& name, const std::string& bytes) const
    {
        write_file(temporary.path(name), bytes);
        return temporary.path(name);
    }

    static std::string as_text(const ORIGIN_PLACE& place)
    {
        static const char* const roles[] = {"main", "appended", "inline", "regtest", "text"};
        const CFG_SETTINGS_SOURCE source = cfg_get_settings_sources().applied.at(place.source);
        return std::string(roles[static_cast<int>(source.role)]) +
               (place.position != 0 ? ":" + std::to_string(place.position) : "");
    }

    static std::string as_text(const VALUE_ORIGIN& origin)
    {
        static const char* const kinds[] = {"", "program", "unset", "unknown"};
        std::string text = kinds[static_cast<int>(origin.kind)];
        if (origin.place)
            text += (text.empty() ? "" : " ") + as_text(*origin.place);
        for (const ORIGIN_PLACE& place : origin.perhaps)
            text += ", perhaps " + as_text(place);
        for (const OTHER_ASSIGNMENT& other : origin.overridden)
            text += ", not " + as_text(other.place) + "=" + other.value;
        return text;
    }

    // Of the variable's present value.
    static std::string origin_of(const std::string& name)
    {
        const VALUE_ORIGINS origins(cfg_get_settings_sources());
        return as_text(origins.origin_of(name, cfg_get_value(name), cfg_ini_is_external(name)));
    }

    static std::string state_of(std::size_t source)
    {
        return source_state_name(VALUE_ORIGINS(cfg_get_settings_sources()).state(source));
    }
};

// --- The assignment that won ---

TEST_F(VALUE_ORIGINS_TEST, the_last_assignment_of_all_layers_gives_the_value)
{
    environment.set("APPENDED_VELMAR_INI", file("appended.ini", "b=2\n"));
    environment.set("VELMAR_INI_VARS", "none;c=3;c = 4");
    file("project/velmar.ini", "a=1\nb=1\n# c=1\nc=1\nA = 2\nd=1\n");
    file("project/regtest.ini", "\n\nd=9");
    cfg_read_project_ini_file(temporary.path("project").c_str(), true);
    EXPECT_EQ(origin_of("a"), "main:5, not main:1=1");
    EXPECT_EQ(origin_of("B"), "appended:1, not main:2=1");
    EXPECT_EQ(origin_of("c"), "inline:3, not main:4=1, not inline:2=3");
    EXPECT_EQ(origin_of("d"), "regtest:3, not main:6=1");
    EXPECT_EQ(origin_of("e"), "unset");
}

TEST_F(VALUE_ORIGINS_TEST, lines_are_read_by_the_librarys_rules)
{
    struct ROW
    {
        const char* bytes;
        const char* name;
        const char* expected;
    };
    const ROW rows[] = {
        {"a=1 ; a=2\n", "a", "main:1"},
        {"max fanout = 12\n", "maxfanout", "main:1"},
        {"=5", "", "main:1"},
        {"a=\na= \n", "a", "main:2"},
        {"\"a;b=1\nc=\"x;y\"", "c", "main:2"},
        {"//a=1\na=http://h#p\n", "a", "main:2"},
        {"a=1\r\n\r\n", "a", "main:1"},
        {"\n\n\na=1", "a", "main:4"},
        {"a=", "a", "unset"},
        {"", "a", "unset"},
    };
    for (const auto& [bytes, name, expected] : rows)
    {
        cfg_read_ini_file(file("main.ini", bytes));
        EXPECT_EQ(origin_of(name), expected) << bytes;
    }
}

TEST_F(VALUE_ORIGINS_TEST, a_variable_that_is_set_to_the_empty_text_has_an_origin)
{
    cfg_read_ini_file(file("main.ini", "a=1\na =\n"));
    EXPECT_EQ(origin_of("a"), "main:2, not main:1=1");
}

// --- The program ---

TEST_F(VALUE_ORIGINS_TEST, any_other_value_is_the_programs)
{
    cfg_read_ini_file(file("main.ini", "a=1\na=2\nb=1\nc=1\n"));
    cfg_set_value("a", "1"); // what lost
    cfg_set_value("b", "1"); // what won
    cfg_set_value("c", "");
    cfg_set_value("d", "4");
    EXPECT_EQ(origin_of("a"), "program, not main:1=1, not main:2=2");
    EXPECT_EQ(origin_of("b"), "main:3");
    EXPECT_EQ(origin_of("c"), "program, not main:4=1");
    EXPECT_EQ(origin_of("d"), "program");
}

TEST_F(VALUE_ORIGINS_TEST, a_text_that_the_program_applied_is_the_programs)
{
    cfg_read_ini_file(file("main.ini", "a=1\n"));
    cfg_process_ini_string("x;a=2", true);
    EXPECT_EQ(origin_of("a"), "program text:2, not main:1=1");
    cfg_read_regtest_ini_file(file("own.ini", "a=3\n"));
    EXPECT_EQ(origin_of("a"), "regtest:1, not main:1=1, not text:2=2");
}

TEST_F(VALUE_ORIGINS_TEST, a_value_that_is_not_known_has_no_origin)
{
    cfg_read_ini_file(file("main.ini", "a=1\n"));
    const VALUE_ORIGINS origins(cfg_get_settings_sources());
    EXPECT_EQ(as_text(origins.origin_of("a", std::nullopt, true)), "unknown, not main:1=1");
    EXPECT_EQ(as_text(origins.origin_of("b", std::nullopt, false)), "unknown");
}

// --- Sources that cannot be read again ---

TEST_F(VALUE_ORIGINS_TEST, only_a_file_that_is_what_it_was_gives_lines)
{
    struct ROW
    {
        const char* change;
        std::function<void(const std::string& path)> make;
        const char* state;
    };
    const ROW rows[] = {
        {"none", [](const std::string&) {}, "same"},
        {"other bytes of the same size",
         [](const std::string& path)
         {
             write_file(path, "b=1\n");
             std::filesystem::last_write_time(path,
                                              std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
         },
         "changed"},
        {"another size with the same time",
         [](const std::string& path)
         {
             const auto time = std::filesystem::last_write_time(path);
             write_file(path, "a=1\nb=1\n");
             std::filesystem::last_write_time(path, time);
         },
         "changed"},
        {"another file",
         [](const std::string& path)
         {
             const auto time = std::filesystem::last_write_time(path);
             write_file(path + ".new", "a=2\n");
             std::filesystem::last_write_time(path + ".new", time);
             std::filesystem::rename(path + ".new", path);
         },
         "changed"},
        {"a pipe in its place",
         [](const std::string& path)
         {
             std::filesystem::remove(path);
             ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
         },
         "changed"},
        {"removed", [](const std::string& path) { std::filesystem::remove(path); }, "gone"},
        {"its directory is a file now",
         [](const std::string& path)
         {
             const std::filesystem::path directory = std::filesystem::path(path).parent_path();
             std::filesystem::remove_all(directory);
             write_file(directory, "");
         },
         "gone"},
        {"a loop of links",
         [](const std::string& path)
         {
             std::filesystem::remove(path);
             std::filesystem::create_symlink(path, path);
         },
         "unreadable"},
    };
    for (const auto& [change, make, state] : rows)
    {
        SCOPED_TRACE(change);
        std::filesystem::remove_all(temporary.path("directory"));
        const std::string path = file("directory/main.ini", "a=1\n");
        cfg_read_ini_file(path);
        make(path);
        EXPECT_EQ(state_of(0), state);
        EXPECT_EQ(origin_of("a"), std::string(state) == "same" ? "main:1" : "unknown, perhaps main");
        EXPECT_EQ(origin_of("x"), "unset");
    }
}

TEST_F(VALUE_ORIGINS_TEST, a_relative_path_that_could_not_be_made_absolute_is_not_followed)
{
    file("cwd/velmar.ini", "a=1\n");
    fake::fio::set_current_directory("");
    cfg_read_ini_file("velmar.ini");
    EXPECT_EQ(state_of(0), "unreadable");
}

TEST_F(VALUE_ORIGINS_TEST, the_current_directory_may_have_changed)
{
    file("cwd/velmar.ini", "a=1\n");
    file("elsewhere/velmar.ini", "\na=1\n");
    cfg_read_ini_file("velmar.ini");
    std::filesystem::current_path(temporary.path("elsewhere"));
    EXPECT_EQ(origin_of("a"), "main:1");
}

TEST_F(VALUE_ORIGINS_TEST, a_directory_assigns_nothing_and_a_device_may_have)
{
    environment.set("APPENDED_VELMAR_INI", temporary.path("cwd"));
    cfg_read_ini_file(file("main.ini", "a=1\n"));
    EXPECT_EQ(state_of(1), "directory");
    EXPECT_EQ(origin_of("a"), "main:1");
    cfg_read_regtest_ini_file("/dev/null");
    EXPECT_EQ(state_of(2), "no file");
    EXPECT_EQ(origin_of("a"), "unknown, perhaps regtest, perhaps main:1");
}

TEST_F(VALUE_ORIGINS_TEST, what_was_applied_in_part_may_have_assigned)
{
    class THROWING : public CFG_INI_CALLBACK
    {
    public:
        THROWING() : CFG_INI_CALLBACK("b") {}
        void refresh() override
        {
            throw std::runtime_error("no");
        }
    };
    cfg_read_ini_file(file("main.ini", "a=1\n"));
    {
        const THROWING throwing;
        EXPECT_THROW(cfg_read_regtest_ini_file(file("part.ini", "b=1\na=2\n")), std::runtime_error);
        EXPECT_THROW(cfg_process_ini_string("b=1;a=2", true), std::runtime_error);
    }
    EXPECT_EQ(state_of(1), "partly applied");
    EXPECT_EQ(state_of(2), "partly applied");
    EXPECT_EQ(origin_of("a"), "unknown, perhaps regtest, perhaps text, perhaps main:1");
    while (fake::thr::depth() > 0)
        thr_mutex_unlock(cfg_ini_mutex.load());
}

// As by another thread between two lines.
TEST_F(VALUE_ORIGINS_TEST, what_was_applied_before_a_reload_gives_no_line)
{
    class RELOADING : public CFG_INI_CALLBACK
    {
    public:
        explicit RELOADING(std::string path) : CFG_INI_CALLBACK("b"), main(std::move(path)) {}
        void refresh() override
        {
            cfg_read_ini_file(main);
        }

    private:
        const std::string main;
    };
    cfg_read_ini_file(file("main.ini", "a=1\n"));
    {
        const RELOADING reloading(temporary.path("main.ini"));
        cfg_read_regtest_ini_file(file("part.ini", "a=2\nb=1\nc=3\n"));
    }
    EXPECT_EQ(cfg_get_value("a"), "1");
    EXPECT_EQ(cfg_get_value("b"), "");
    EXPECT_EQ(cfg_get_value("c"), "3");
    EXPECT_EQ(state_of(0), "partly applied");
    EXPECT_EQ(origin_of("c"), "unknown, perhaps regtest");
}

// --- What an unread source can have done ---

TEST_F(VALUE_ORIGINS_TEST, a_later_assignment_overrides_whatever_an_unread_source_said)
{
    cfg_read_ini_file(file("main.ini", "a=1\nb=1\n"));
    cfg_read_regtest_ini_file(file("gone.ini", "a=2\nb=2\nc=2\n"));
    cfg_read_regtest_ini_file(file("last.ini", "a=3\n"));
    std::filesystem::remove(temporary.path("gone.ini"));
    EXPECT_EQ(origin_of("a"), "regtest:1, not main:1=1");
    EXPECT_EQ(origin_of("b"), "unknown, perhaps regtest, not main:2=1");
    EXPECT_EQ(origin_of("c"), "unknown, perhaps regtest");
    cfg_set_value("a", "program");
    EXPECT_EQ(origin_of("a"), "program, not main:1=1, not regtest:1=3");
    cfg_set_value("b", "1");
    EXPECT_EQ(origin_of("b"), "unknown, perhaps regtest, perhaps main:2") << "either may have said so";
}

TEST_F(VALUE_ORIGINS_TEST, an_unread_source_that_would_have_marked_a_variable_has_not_assigned_to_what_lacks_the_mark)
{
    environment.set("APPENDED_VELMAR_INI", file("appended.ini", "a=2\n"));
    cfg_read_ini_file(file("main.ini", "b=1\n"));
    cfg_set_value("c", "3");
    std::filesystem::remove(temporary.path("main.ini"));
    EXPECT_EQ(origin_of("a"), "appended:1");
    EXPECT_EQ(origin_of("b"), "unknown, perhaps main");
    EXPECT_EQ(origin_of("c"), "program");
}

TEST_F(VALUE_ORIGINS_TEST, sources_that_the_list_lacks_may_have_assigned_before_the_others)
{
    cfg_read_ini_file(file("main.ini", "a=1\n"));
    for (int i = 0; i < 257; ++i)
        cfg_read_regtest_ini_file(file(std::to_string(i) + ".ini", "n=" + std::to_string(i) + "\n"));
    const VALUE_ORIGINS origins(cfg_get_settings_sources());
    EXPECT_FALSE(origins.are_complete());
    EXPECT_EQ(origin_of("a"), "unknown, perhaps main:1");
    EXPECT_TRUE(origin_of("n").starts_with("regtest:1, not regtest:1=1, "));
    cfg_set_value("n", "program");
    EXPECT_TRUE(origin_of("n").starts_with("program, "));
    cfg_set_value("b", "program");
    EXPECT_EQ(origin_of("b"), "unknown");
}

// --- Sources that overlap ---

class APPLIER : public CFG_INI_CALLBACK
{
public:
    APPLIER(const char* variable, std::string applied) : CFG_INI_CALLBACK(variable), path(std::move(applied)) {}
    void refresh() override
    {
        if (!std::exchange(done, true))
            cfg_read_regtest_ini_file(path);
    }

private:
    const std::string path;
    bool done = false;
};

TEST_F(VALUE_ORIGINS_TEST, of_two_that_overlap_the_one_that_gave_the_value_is_the_origin)
{
    const APPLIER applier("middle", file("inner.ini", "before=2\nbehind=2\nsame=1\n"));
    cfg_read_ini_file(file("main.ini", "before=1\nmiddle=1\nbehind=1\nsame=1\n"));
    EXPECT_EQ(origin_of("before"), "regtest:1, not main:1=1");
    EXPECT_EQ(origin_of("behind"), "main:3, not regtest:2=2");
    EXPECT_EQ(origin_of("same"), "unknown, perhaps main:4, perhaps regtest:3");
    cfg_set_value("same", "2");
    EXPECT_EQ(origin_of("same"), "program, not main:4=1, not regtest:3=1");
}
}
