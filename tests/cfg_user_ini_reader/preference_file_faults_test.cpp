// What failing calls, and a file that changes between the calls, do to the reading and the saving of the preference
// file. Permissions and full disks are tested in preference_faults_test.cpp.
#include <algorithm>
#include <filesystem>

#include "cfg_ini/cfg_ini.h"
#include "tests/cfg_user_ini_reader/preference_test.h"
#include "tests/support/every_fault.h"
#include "tests/support/failing_files.h"

namespace
{
// Longer than what a file stream reads or writes at a time.
const std::string long_value(20000, 'v');

#ifdef _LIBCPP_VERSION
// These file streams take a failing read for the end of the file: what was read of a line counts as the last line.
constexpr bool half_a_line_counts = true;
#else
constexpr bool half_a_line_counts = false;
#endif

class PREFERENCE_FILE_FAULTS_TEST : public PREFERENCE_TEST
{
protected:
    // As it is saved.
    const std::vector<std::string> lines = {
        "", "[General 23.4_pro]",  "HDL_PREFERENCE = VHDL", "USER_LIBRARIES = " + long_value,
        "", "[Messages 23.4_pro]", "SHOW_MESSAGE_ID = off"};
    const RECORDS in_file = {{"General 23.4_pro", "HDL_PREFERENCE", "VHDL"},
                             {"General 23.4_pro", "USER_LIBRARIES", long_value},
                             {"Messages 23.4_pro", "SHOW_MESSAGE_ID", "off"}};

    std::string text(std::size_t line_count) const
    {
        std::string bytes;
        for (std::size_t i = 0; i < line_count; ++i)
            bytes += lines[i] + "\n";
        return bytes;
    }

    std::string whole_text() const
    {
        return text(lines.size());
    }

    // Loaded from the whole file, which is then put out of the way: what a save writes is to be seen.
    void load_and_empty_the_file() const
    {
        write_preferences(whole_text());
        cfg_close_user_ini_file();
        cfg_read_user_ini_file();
        write_preferences("");
    }

    // Lookups, assignments and saving go on as if nothing had been.
    void expect_undamaged() const
    {
        EXPECT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "on"));
        EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on");
        EXPECT_TRUE(cfg_write_and_close_user_ini_file());
        EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on");
    }
};

// --- Reading ---

TEST_F(PREFERENCE_FILE_FAULTS_TEST, a_file_that_does_not_open_has_no_lines)
{
    write_preferences(whole_text());
    const long faults = for_every_fault(
        [&](long nth)
        {
            cfg_close_user_ini_file();
            const FILE_FAULT fault(FILE_CALL::OPEN, nth);
            cfg_read_user_ini_file();
            EXPECT_EQ(records(), fault.was_reached() ? RECORDS{} : in_file);
            return fault.was_reached();
        });
    EXPECT_EQ(faults, 1);
    expect_undamaged();
}

TEST_F(PREFERENCE_FILE_FAULTS_TEST, a_failing_read_leaves_the_lines_before_it)
{
    write_preferences(whole_text());
    const long faults = for_every_fault(
        [&](long nth)
        {
            cfg_close_user_ini_file();
            const FILE_FAULT fault(FILE_CALL::READ, nth);
            cfg_read_user_ini_file();
            // The first piece ends within the long line, and half a line is none. Later pieces end where they like.
            const std::size_t half_lines = half_a_line_counts ? 1 : 0;
            const std::size_t least = !fault.was_reached() ? 3 : nth == 1 ? 0 : 1 + half_lines;
            const std::size_t most = nth == 1 ? 0 : nth == 2 ? 1 + half_lines : 3;
            const std::size_t count = records().size();
            EXPECT_TRUE(least <= count && count <= most) << count;
            RECORDS expected(in_file.begin(), in_file.begin() + static_cast<std::ptrdiff_t>(count));
            if (half_a_line_counts && count == 2)
            {
                const std::string half_value = records().back().value;
                EXPECT_TRUE(!half_value.empty() && long_value.starts_with(half_value));
                expected.back().value = half_value;
            }
            EXPECT_EQ(records(), expected);
            EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), nth == 1 ? "Verilog" : "VHDL");
            return fault.was_reached();
        });
    EXPECT_GE(faults, 3); // the start, the rest, the end
    expect_undamaged();
}

TEST_F(PREFERENCE_FILE_FAULTS_TEST, a_failing_close_after_reading_is_not_told)
{
    write_preferences(whole_text());
    const FILE_FAULT fault(FILE_CALL::CLOSE, 1);
    cfg_read_user_ini_file();
    EXPECT_TRUE(fault.was_reached());
    EXPECT_EQ(records(), in_file);
}

TEST_F(PREFERENCE_FILE_FAULTS_TEST, questions_about_the_file_that_are_denied_make_it_missing)
{
    write_preferences(whole_text());
    fake::fio::deny_exists(1);
    EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), "Verilog");
    EXPECT_EQ(records(), RECORDS{});
    cfg_close_user_ini_file();
    EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), "VHDL");
}

TEST_F(PREFERENCE_FILE_FAULTS_TEST, a_named_directory_that_cannot_be_asked_about_is_not_used)
{
    write_preferences(whole_text());
    write_file(temporary.path("named/velmar2.ini"), "[General 23.4_pro]\nHDL_PREFERENCE = SystemVerilog\n");
    environment.set("VELMAR2_INI", temporary.path("named"));
    fake::fio::force_exists(temporary.path("named"), false);
    EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), "VHDL");
}

// --- A file that changes between the calls ---

TEST_F(PREFERENCE_FILE_FAULTS_TEST, a_file_that_vanishes_before_it_is_opened_has_no_lines)
{
    write_preferences(whole_text());
    const FILE_FAULT moment(FILE_CALL::OPEN, 1, [&] { std::filesystem::remove(file_path()); });
    cfg_read_user_ini_file();
    EXPECT_TRUE(moment.was_reached());
    EXPECT_EQ(records(), RECORDS{});
    EXPECT_EQ(sections_read(), SECTIONS{});
}

TEST_F(PREFERENCE_FILE_FAULTS_TEST, a_directory_in_the_files_place_has_no_lines)
{
    write_preferences(whole_text());
    const FILE_FAULT moment(FILE_CALL::OPEN, 1,
                            [&]
                            {
                                std::filesystem::remove(file_path());
                                std::filesystem::create_directory(file_path());
                            });
    cfg_read_user_ini_file();
    EXPECT_TRUE(moment.was_reached());
    EXPECT_EQ(records(), RECORDS{});
}

TEST_F(PREFERENCE_FILE_FAULTS_TEST, a_file_that_shrinks_ends_where_it_ends)
{
    write_preferences(whole_text());
    const FILE_FAULT moment(FILE_CALL::READ, 1, [&] { std::filesystem::resize_file(file_path(), text(3).size()); });
    cfg_read_user_ini_file();
    EXPECT_TRUE(moment.was_reached());
    EXPECT_EQ(records(), RECORDS(in_file.begin(), in_file.begin() + 1));
}

TEST_F(PREFERENCE_FILE_FAULTS_TEST, a_file_that_is_replaced_once_it_is_open_is_read_as_it_was)
{
    write_preferences(whole_text());
    write_file(temporary.path("home/new"), "[General 23.4_pro]\nHDL_PREFERENCE = SystemVerilog\n");
    const FILE_FAULT moment(FILE_CALL::READ, 1,
                            [&] { std::filesystem::rename(temporary.path("home/new"), file_path()); });
    cfg_read_user_ini_file();
    EXPECT_TRUE(moment.was_reached());
    EXPECT_EQ(records(), in_file);
}

TEST_F(PREFERENCE_FILE_FAULTS_TEST, a_file_that_vanishes_between_reading_and_saving_is_made_again)
{
    load_and_empty_the_file();
    std::filesystem::remove(file_path());
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), whole_text());
}

TEST_F(PREFERENCE_FILE_FAULTS_TEST, a_directory_that_vanishes_fails_the_save)
{
    load_and_empty_the_file();
    std::filesystem::remove_all(temporary.path("home"));
    EXPECT_FALSE(cfg_write_user_ini_file());
    EXPECT_EQ(records(), in_file);
    std::filesystem::create_directory(temporary.path("home"));
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), whole_text());
}

// --- Saving ---

TEST_F(PREFERENCE_FILE_FAULTS_TEST, a_save_whose_file_does_not_open_says_so_and_touches_nothing)
{
    const long faults = for_every_fault(
        [&](long nth)
        {
            load_and_empty_the_file();
            bool reached = false;
            {
                const FILE_FAULT fault(FILE_CALL::OPEN, nth);
                const bool opened = cfg_write_user_ini_file();
                reached = fault.was_reached();
                EXPECT_EQ(opened, !reached);
            }
            EXPECT_EQ(preferences(), reached ? "" : whole_text());
            EXPECT_EQ(records(), in_file);
            return reached;
        });
    EXPECT_EQ(faults, 1);
    expect_undamaged();
}

TEST_F(PREFERENCE_FILE_FAULTS_TEST, a_failing_write_leaves_the_lines_before_it_and_is_not_told)
{
    std::size_t lines_before = 0;
    const long faults = for_every_fault(
        [&](long nth)
        {
            load_and_empty_the_file();
            const FILE_FAULT fault(FILE_CALL::WRITE, nth, FAULT_LASTS::FROM_THEN_ON);
            EXPECT_TRUE(cfg_write_user_ini_file());
            const std::string written = preferences();
            const auto line_count = static_cast<std::size_t>(std::ranges::count(written, '\n'));
            EXPECT_EQ(written.substr(0, text(line_count).size()), text(line_count)) << "a start of the whole file";
            EXPECT_EQ(line_count == lines.size(), !fault.was_reached());
            EXPECT_GE(line_count, lines_before);
            lines_before = line_count;
            EXPECT_EQ(records(), in_file) << "the store stays as it is";
            return fault.was_reached();
        });
    EXPECT_GE(faults, static_cast<long>(lines.size())) << "each line is written by itself";
    EXPECT_EQ(preferences(), whole_text()) << "the last try got through";
    expect_undamaged();
}

TEST_F(PREFERENCE_FILE_FAULTS_TEST, a_failing_close_after_saving_is_not_told)
{
    load_and_empty_the_file();
    {
        const FILE_FAULT fault(FILE_CALL::CLOSE, 1);
        EXPECT_TRUE(cfg_write_user_ini_file());
        EXPECT_TRUE(fault.was_reached());
    }
    EXPECT_EQ(preferences(), whole_text());
}

TEST_F(PREFERENCE_FILE_FAULTS_TEST, a_failing_save_and_close_closes)
{
    load_and_empty_the_file();
    {
        const FILE_FAULT fault(FILE_CALL::OPEN, 1);
        EXPECT_FALSE(cfg_write_and_close_user_ini_file());
    }
    EXPECT_EQ(cfg_user_ini_records, nullptr);
    EXPECT_EQ(cfg_user_ini_sections_read, nullptr);
}
}
