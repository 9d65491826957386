// What permissions and disks may do to the preference file.
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <sys/resource.h>
#include <unistd.h>

#include "cfg_ini/cfg_ini.h"
#include "tests/cfg_user_ini_reader/preference_test.h"

namespace
{
constexpr uid_t nobody = 65534;

class PREFERENCE_FAULTS_TEST : public PREFERENCE_TEST
{
protected:
    // Runs the statements in a child process; as a user whom permissions stop, even if the tests run as root. The test
    // fails when the child's expectations do.
    void as_ordinary_user(const std::function<void()>& statements)
    {
        const bool is_root = geteuid() == 0;
        if (is_root)
            give_everything_to(nobody);
        GTEST_FLAG_SET(death_test_style, "fast");
        EXPECT_EXIT(
            {
                if (is_root && (setgid(nobody) != 0 || setuid(nobody) != 0))
                    std::_Exit(2);
                statements();
                std::fflush(nullptr);
                std::_Exit(HasFailure() ? 1 : 0);
            },
            testing::ExitedWithCode(0), "");
    }

private:
    void give_everything_to(uid_t user) const
    {
        ASSERT_EQ(chown(temporary.path().c_str(), user, user), 0);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(temporary.path()))
            ASSERT_EQ(lchown(entry.path().c_str(), user, user), 0) << entry.path();
    }
};

void expect_nothing_read()
{
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on"); // the default
    EXPECT_EQ(cfg_get_user_ini_value(USER_LIBRARIES), "");
    ASSERT_NE(cfg_user_ini_records, nullptr);
    EXPECT_TRUE(cfg_user_ini_records->empty());
    EXPECT_TRUE(cfg_user_ini_sections_read->empty());
}

// --- Reading ---

TEST_F(PREFERENCE_FAULTS_TEST, unreadable_file_gives_no_lines)
{
    write_preferences("[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n[General 23.4_pro]\nUSER_LIBRARIES = /lib\n");
    ASSERT_EQ(chmod(file_path().c_str(), 0), 0);
    as_ordinary_user(
        []
        {
            expect_nothing_read();
            EXPECT_EQ(fake::gen::user_library_paths(), std::vector<std::string>{});
        });
}

TEST_F(PREFERENCE_FAULTS_TEST, file_in_a_directory_that_may_not_be_entered_is_missing)
{
    write_preferences("[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n");
    ASSERT_EQ(chmod(temporary.path("home").c_str(), 0), 0);
    as_ordinary_user(expect_nothing_read);
    ASSERT_EQ(chmod(temporary.path("home").c_str(), 0700), 0);
}

TEST_F(PREFERENCE_FAULTS_TEST, directory_in_the_files_place_gives_no_lines)
{
    std::filesystem::create_directory(file_path());
    expect_nothing_read();
    EXPECT_EQ(fake::ver::version_calls(), 4); // two for these lookups, two for the search paths after the reading
}

TEST_F(PREFERENCE_FAULTS_TEST, link_to_nothing_and_link_to_itself_are_missing_files)
{
    std::filesystem::create_symlink("missing", file_path());
    expect_nothing_read();
    cfg_close_user_ini_file();
    std::filesystem::remove(file_path());
    std::filesystem::create_symlink("velmar2.ini", file_path());
    expect_nothing_read();
}

TEST_F(PREFERENCE_FAULTS_TEST, file_that_is_removed_before_it_is_opened_gives_no_lines)
{
    write_preferences("[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n");
    fake::fio::before_exists(1, [&] { std::filesystem::remove(file_path()); });
    fake::fio::force_exists(file_path(), true);
    expect_nothing_read();
}

// --- Saving ---

TEST_F(PREFERENCE_FAULTS_TEST, read_only_file_fails_the_save_and_keeps_its_bytes)
{
    write_preferences("[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n");
    ASSERT_EQ(chmod(file_path().c_str(), 0400), 0);
    as_ordinary_user(
        []
        {
            EXPECT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "on"));
            EXPECT_FALSE(cfg_write_user_ini_file());
            EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on");
        });
    EXPECT_EQ(preferences(), "[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n");
}

TEST_F(PREFERENCE_FAULTS_TEST, unreadable_file_can_be_written_over)
{
    write_preferences("[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n[Other]\nk = 1\n");
    ASSERT_EQ(chmod(file_path().c_str(), 0200), 0);
    as_ordinary_user(
        []
        {
            EXPECT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "on"));
            EXPECT_TRUE(cfg_write_user_ini_file());
        });
    ASSERT_EQ(chmod(file_path().c_str(), 0600), 0);
    EXPECT_EQ(preferences(), "\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = on\n");
}

TEST_F(PREFERENCE_FAULTS_TEST, unwritable_directory_stops_a_new_file_only)
{
    ASSERT_EQ(chmod(temporary.path("home").c_str(), 0500), 0);
    as_ordinary_user(
        []
        {
            EXPECT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "off"));
            EXPECT_FALSE(cfg_write_user_ini_file());
        });
    EXPECT_FALSE(std::filesystem::exists(file_path()));

    ASSERT_EQ(chmod(temporary.path("home").c_str(), 0700), 0);
    write_preferences("");
    ASSERT_EQ(chmod(temporary.path("home").c_str(), 0500), 0);
    as_ordinary_user(
        []
        {
            EXPECT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "off"));
            EXPECT_TRUE(cfg_write_user_ini_file()); // written in place
        });
    EXPECT_EQ(preferences(), "\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n");
    ASSERT_EQ(chmod(temporary.path("home").c_str(), 0700), 0);
}

TEST_F(PREFERENCE_FAULTS_TEST, directory_in_the_files_place_fails_the_save)
{
    std::filesystem::create_directory(file_path());
    EXPECT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "off"));
    EXPECT_FALSE(cfg_write_user_ini_file());
    EXPECT_FALSE(cfg_write_and_close_user_ini_file());
    EXPECT_EQ(cfg_user_ini_records, nullptr);
}

TEST_F(PREFERENCE_FAULTS_TEST, full_device_is_not_noticed)
{
    ASSERT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "off"));
    std::filesystem::create_symlink("/dev/full", file_path());
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
    EXPECT_FALSE(cfg_user_ini_records->begin()->second->pending_write);

    std::filesystem::remove(file_path());
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n");
}

TEST_F(PREFERENCE_FAULTS_TEST, disk_that_fills_up_leaves_a_shortened_file)
{
    const std::string whole =
        "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n";
    write_preferences(whole);
    const rlim_t limit = 30;
    as_ordinary_user(
        [&]
        {
            EXPECT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "on"));
            std::signal(SIGXFSZ, SIG_IGN);
            const struct rlimit size = {limit, limit};
            ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &size), 0);
            EXPECT_TRUE(cfg_write_user_ini_file());
        });
    EXPECT_EQ(preferences(), whole.substr(0, limit));
}

TEST_F(PREFERENCE_FAULTS_TEST, link_to_nothing_is_written_through)
{
    std::filesystem::create_symlink("real.ini", file_path());
    ASSERT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "off"));
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_TRUE(std::filesystem::is_symlink(file_path()));
    EXPECT_EQ(read_file(temporary.path("home/real.ini")), "\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n");
}
}
