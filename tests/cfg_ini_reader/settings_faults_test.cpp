// What failing calls, and files that change between the calls, do to a reading of all settings sources.
#include <cerrno>
#include <filesystem>
#include <functional>

#include "cfg_ini/cfg_ini_reader/settings_lines.h"
#include "cfg_ini/cfg_settings_sources.h"
#include "tests/support/every_fault.h"
#include "tests/support/failing_files.h"
#include "tests/support/store_test.h"

using namespace zon_cfg;

namespace
{
// The reader takes 64 KiB at a time: the main file ends within the second piece, "long" runs from one into the other.
constexpr std::size_t piece = std::size_t{64} * 1024;
const std::string long_text(piece, 'x');

const ASSIGNMENTS everything = {{"first", "main"},    {"long", long_text}, {"last", "main"},  {"layers", "regtest"},
                                {"appended", "main"}, {"regtest", "yes"},  {"inline", "yes"}, {"only_appended", "yes"}};

// Everything but what the sources that were not read would have brought, or as they would not have changed it.
ASSIGNMENTS without(std::initializer_list<const char*> missing, ASSIGNMENTS instead = {})
{
    instead.insert(everything.begin(), everything.end());
    for (const char* const name : missing)
        instead.erase(name);
    return instead;
}

const ASSIGNMENTS no_main = without({"first", "long", "last", "appended"});
const ASSIGNMENTS no_appended = without({"only_appended"});
const ASSIGNMENTS no_regtest = without({"regtest"}, {{"layers", "appended"}});

class SETTINGS_FAULTS_TEST : public STORE_TEST
{
protected:
    SETTINGS_FAULTS_TEST()
    {
        write_file(main_file, main_text);
        write_file(appended_file, "layers=appended\nonly_appended=yes\n");
        write_file(temporary.path("project/regtest.ini"), "layers=regtest\nregtest=yes\n");
        environment.set("APPENDED_VELMAR_INI", appended_file);
        environment.set("VELMAR_INI_VARS", "inline=yes");
    }

    void read_everything() const
    {
        cfg_read_project_ini_file(project.c_str(), true);
    }

    // What a reading stores into which `action` comes just before the nth call of that kind.
    ASSIGNMENTS values_with(FILE_CALL call, long nth, const std::function<void()>& action) const
    {
        cfg_close_ini_file();
        const FILE_FAULT interruption(call, nth, action);
        read_everything();
        EXPECT_TRUE(interruption.was_reached());
        return all_values();
    }

    // The store goes on as if nothing had been, and the next reading brings everything.
    void expect_undamaged() const
    {
        EXPECT_EQ(fake::thr::depth(), 0);
        EXPECT_EQ(fake::mem::silencing_scopes(), 0);
        EXPECT_EQ(cfg_get_value("inline"), "yes") << "no file stands before the environment";
        cfg_set_value("layers", "set");
        EXPECT_EQ(cfg_get_value("layers"), "set");
        ASSIGNMENTS used;
        cfg_get_used_variable_value_map(&used);
        EXPECT_EQ(used, (ASSIGNMENTS{{"inline", "yes"}, {"layers", "set"}}));
        read_everything();
        EXPECT_EQ(all_values(), everything);
    }

    const std::string project = temporary.path("project");
    const std::string main_file = temporary.path("project/velmar.ini");
    const std::string appended_file = temporary.path("appended.ini");
    const std::string main_text = "first=main\nlong=" + long_text + "\nlast=main\nlayers=main\nappended=main\n";
};

// --- Calls that fail ---

struct FAILING_CALL
{
    const char* name;
    FILE_CALL call;
    std::vector<int> errors;         // of that call and those after it
    std::vector<ASSIGNMENTS> values; // with the first call failing so, the second, and so on
};

TEST_F(SETTINGS_FAULTS_TEST, a_call_that_fails_costs_what_it_was_to_bring_and_nothing_else)
{
    const std::vector<ASSIGNMENTS> everything_each_time(7, everything);
    // A first piece of the main file; the rest, and half a line with it; the end. Then the appended and the
    // regression-test file: all of it, and the end.
    const std::vector<ASSIGNMENTS> ended_by_read = {
        no_main, without({"long", "last", "appended"}), everything, no_appended, everything, no_regtest, everything};
    const FAILING_CALL table[] = {
        {"open", FILE_CALL::OPEN, {EIO}, {no_main, no_appended, no_regtest}},
        {"open, interrupted", FILE_CALL::OPEN, {EINTR, EINTR, EINTR}, {everything, everything, everything}},
        {"size", FILE_CALL::SIZE, {EIO}, {everything, everything, everything}},
        {"read", FILE_CALL::READ, {EIO}, everything_each_time},
        {"read, interrupted", FILE_CALL::READ, {EINTR, EINTR, EINTR}, everything_each_time},
        {"read, interrupted and then failing", FILE_CALL::READ, {EINTR, EIO, EINTR}, everything_each_time},
        {"read, twice", FILE_CALL::READ, {EIO, EIO}, ended_by_read},
        {"read, twice with interruptions", FILE_CALL::READ, {EINTR, EIO, EINTR, EIO}, ended_by_read},
        {"close", FILE_CALL::CLOSE, {EIO}, {everything, everything, everything}},
        {"close, interrupted", FILE_CALL::CLOSE, {EINTR}, {everything, everything, everything}},
    };
    for (const FAILING_CALL& row : table)
    {
        SCOPED_TRACE(row.name);
        const auto attempt = [&](long nth)
        {
            cfg_close_ini_file();
            const auto fault = std::make_unique<FILE_FAULT>(row.call, nth, row.errors);
            read_everything();
            const bool reached = fault->was_reached();
            const bool expected = static_cast<std::size_t>(nth) <= row.values.size();
            EXPECT_EQ(reached, expected);
            EXPECT_EQ(all_values(), expected ? row.values[static_cast<std::size_t>(nth) - 1] : everything);
            return reached;
        };
        for_every_fault(attempt);
        expect_undamaged();
    }
}

TEST_F(SETTINGS_FAULTS_TEST, a_read_that_fails_every_second_time_brings_everything)
{
    cfg_close_ini_file();
    const FILE_FAULT fault(FILE_CALL::READ, 1, {EIO, 0, EIO, 0, EIO, 0, EIO, 0, EIO, 0, EIO, 0, EIO});
    read_everything();
    EXPECT_EQ(all_values(), everything);
}

TEST_F(SETTINGS_FAULTS_TEST, a_file_that_was_ended_by_failures_is_not_read_any_more)
{
    const std::string other = temporary.path("other.ini");
    write_file(other, "a=1\n");
    SETTINGS_LINES lines(other);
    std::string_view line;
    const FILE_FAULT fault(FILE_CALL::READ, 1, {EIO, EIO});
    EXPECT_FALSE(lines.next(line));
    EXPECT_FALSE(lines.next(line)) << "the next read would succeed";
}

TEST_F(SETTINGS_FAULTS_TEST, a_close_is_not_repeated)
{
    const std::string other = temporary.path("other.ini");
    write_file(other, "a=1\n");
    make_empty_store();
    const FILE_FAULT fault(FILE_CALL::CLOSE, 1, {EINTR});
    cfg_read_regtest_ini_file(other);
    EXPECT_EQ(fault.calls_seen(), 1) << "another thread may have opened a file in the meantime";
}

TEST_F(SETTINGS_FAULTS_TEST, every_question_for_a_file_may_be_denied)
{
    // Each file is asked for when it is chosen and again before it is opened.
    const ASSIGNMENTS values[] = {no_main, no_main, no_appended, no_appended, no_regtest, no_regtest, everything};
    const auto attempt = [&](long nth)
    {
        cfg_close_ini_file();
        const std::size_t asked_before = fake::fio::asked().size();
        fake::fio::deny_exists(static_cast<int>(nth));
        read_everything();
        fake::fio::deny_exists(0);
        EXPECT_EQ(all_values(), values[nth - 1]);
        return asked_before + static_cast<std::size_t>(nth) <= fake::fio::asked().size();
    };
    EXPECT_EQ(for_every_fault(attempt), 6);
    expect_undamaged();
}

TEST_F(SETTINGS_FAULTS_TEST, a_path_is_remembered_only_if_its_file_opened)
{
    read_everything();
    const std::string other = temporary.path("other.ini");
    write_file(other, "a=1\n");
    {
        const FILE_FAULT fault(FILE_CALL::OPEN, 1);
        cfg_read_ini_file(other);
    }
    EXPECT_EQ(cfg_get_ini_file_path_name(), main_file);
    cfg_read_ini_file(other);
    EXPECT_EQ(cfg_get_ini_file_path_name(), other);
}

TEST_F(SETTINGS_FAULTS_TEST, a_last_line_without_newline_counts_unless_the_file_was_ended_by_failures)
{
    const std::string other = temporary.path("other.ini");
    write_file(other, "a=1\nb=2");
    // The first call reads all bytes, the second finds the end.
    struct
    {
        long nth;
        std::vector<int> errors;
        ASSIGNMENTS expected;
    } const table[] = {
        {1, {EIO}, {{"a", "1"}, {"b", "2"}}},
        {1, {EINTR}, {{"a", "1"}, {"b", "2"}}},
        {1, {EIO, EIO}, {}},
        {2, {EIO}, {{"a", "1"}, {"b", "2"}}},
        {2, {EINTR}, {{"a", "1"}, {"b", "2"}}},
        {2, {EIO, EIO}, {{"a", "1"}}},
        {3, {EIO, EIO}, {{"a", "1"}, {"b", "2"}}},
    };
    environment.unset("APPENDED_VELMAR_INI");
    environment.unset("VELMAR_INI_VARS");
    for (const auto& row : table)
    {
        const FILE_FAULT fault(FILE_CALL::READ, row.nth, row.errors);
        cfg_read_ini_file(other);
        EXPECT_EQ(all_values(), row.expected) << row.nth << ", " << row.errors.size() << " errors";
    }
}

TEST_F(SETTINGS_FAULTS_TEST, a_first_lookup_answers_whatever_fails)
{
    environment.set("VELMAR_INI", project);
    for (const FILE_CALL call : {FILE_CALL::OPEN, FILE_CALL::READ, FILE_CALL::CLOSE})
    {
        const long faults = for_every_fault(
            [&](long nth)
            {
                cfg_close_ini_file();
                const FILE_FAULT fault(call, nth);
                EXPECT_EQ(cfg_get_value("inline"), "yes");
                EXPECT_EQ(cfg_get_int_value("unknown", 7), 7);
                EXPECT_EQ(fake::thr::depth(), 0);
                return fault.was_reached();
            });
        EXPECT_GE(faults, 2); // two files
    }
}

// --- Files that change between the calls ---

TEST_F(SETTINGS_FAULTS_TEST, a_file_that_vanishes_before_it_is_opened_gives_no_lines)
{
    EXPECT_EQ(values_with(FILE_CALL::OPEN, 1, [&] { std::filesystem::remove(main_file); }), no_main);
    write_file(main_file, main_text);
    expect_undamaged();
}

TEST_F(SETTINGS_FAULTS_TEST, a_file_that_vanishes_once_it_is_open_is_read_to_its_end)
{
    EXPECT_EQ(values_with(FILE_CALL::READ, 1, [&] { std::filesystem::remove(main_file); }), everything);
}

TEST_F(SETTINGS_FAULTS_TEST, a_directory_in_the_files_place_gives_no_lines)
{
    const auto exchange = [&]
    {
        std::filesystem::remove(main_file);
        std::filesystem::create_directory(main_file);
    };
    EXPECT_EQ(values_with(FILE_CALL::OPEN, 1, exchange), no_main);
    EXPECT_EQ(cfg_get_ini_file_path_name(), main_file) << "a directory opens";
}

TEST_F(SETTINGS_FAULTS_TEST, a_file_that_shrinks_ends_where_it_ends)
{
    EXPECT_EQ(values_with(FILE_CALL::READ, 1, [&] { std::filesystem::resize_file(main_file, 0); }), no_main);
    write_file(main_file, main_text);
    // Cut within the line that the first piece holds the start of: the line ends there.
    const std::size_t before_long = std::string("first=main\nlong=").size();
    EXPECT_EQ(values_with(FILE_CALL::READ, 2, [&] { std::filesystem::resize_file(main_file, piece + 5); }),
              without({"last", "appended"}, {{"long", std::string(piece + 5 - before_long, 'x')}}));
    write_file(main_file, main_text);
    EXPECT_EQ(values_with(FILE_CALL::READ, 2, [&] { std::filesystem::resize_file(main_file, 0); }),
              without({"last", "appended"}, {{"long", std::string(piece - before_long, 'x')}}));
}

TEST_F(SETTINGS_FAULTS_TEST, a_file_that_grows_while_it_is_read_is_read_to_its_new_end)
{
    ASSIGNMENTS with_more = everything;
    with_more["more"] = "1";
    EXPECT_EQ(values_with(FILE_CALL::READ, 2, [&] { write_file(main_file, main_text + "more=1\n"); }), with_more);
}

TEST_F(SETTINGS_FAULTS_TEST, another_file_put_in_the_place_is_read_as_a_whole_or_not_at_all)
{
    const auto exchange = [&]
    {
        write_file(temporary.path("new"), "first=new\n");
        std::filesystem::rename(temporary.path("new"), main_file);
    };
    EXPECT_EQ(values_with(FILE_CALL::OPEN, 1, exchange), without({"long", "last", "appended"}, {{"first", "new"}}));
    write_file(main_file, main_text);
    EXPECT_EQ(values_with(FILE_CALL::READ, 2, exchange), everything);
}

TEST_F(SETTINGS_FAULTS_TEST, a_current_directory_that_vanished_is_no_candidate)
{
    environment.set("VELMAR_INI", project);
    std::filesystem::create_directory(temporary.path("gone"));
    std::filesystem::current_path(temporary.path("gone"));
    std::filesystem::remove(temporary.path("gone"));
    EXPECT_EQ(cfg_get_value("first"), "main");
}

// --- The list of sources ---

std::vector<CFG_SETTINGS_SOURCE> sources_after(const std::string& path)
{
    cfg_read_ini_file(path);
    return cfg_get_settings_sources().applied;
}

TEST_F(SETTINGS_FAULTS_TEST, a_file_that_vanishes_before_it_is_opened_is_no_source)
{
    const FILE_FAULT vanishing(FILE_CALL::OPEN, 1, [this] { std::filesystem::remove(main_file); });
    environment.unset("APPENDED_VELMAR_INI");
    environment.unset("VELMAR_INI_VARS");
    EXPECT_TRUE(sources_after(main_file).empty());
    EXPECT_TRUE(vanishing.was_reached());
}

TEST_F(SETTINGS_FAULTS_TEST, a_file_whose_reads_fail_is_a_source_that_is_not_whole)
{
    const FILE_FAULT failing(FILE_CALL::READ, 1, std::vector<int>{EIO, EIO});
    const std::vector<CFG_SETTINGS_SOURCE> sources = sources_after(main_file);
    ASSERT_FALSE(sources.empty());
    EXPECT_EQ(sources[0].path, main_file);
    EXPECT_FALSE(sources[0].whole);
    EXPECT_GT(sources[0].end, sources[0].beginning);
}

TEST_F(SETTINGS_FAULTS_TEST, a_file_that_the_system_says_nothing_of_is_a_source_without_identity)
{
    const FILE_FAULT failing(FILE_CALL::SIZE, 1, std::vector<int>{EIO});
    const std::vector<CFG_SETTINGS_SOURCE> sources = sources_after(main_file);
    ASSERT_FALSE(sources.empty());
    EXPECT_EQ(sources[0].path, main_file);
    EXPECT_TRUE(sources[0].whole);
    EXPECT_EQ(sources[0].inode, 0U);
    EXPECT_EQ(sources[0].mode, 0U);
    EXPECT_EQ(sources[0].modified_seconds, 0);
}

// --- A file that does not open, by itself ---

TEST_F(SETTINGS_FAULTS_TEST, the_lines_of_a_file_that_did_not_open_are_none)
{
    SETTINGS_LINES lines(temporary.path("missing"));
    EXPECT_FALSE(lines.opened());
    EXPECT_EQ(lines.status().st_size, 0);
    std::string_view line;
    EXPECT_FALSE(lines.next(line));
}
}
