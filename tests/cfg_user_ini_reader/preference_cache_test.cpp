// What the cache answers must be what a search, and the plainly written rules, answer.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_user_ini_reader/preference_catalogue.h"
#include "cfg_ini/cfg_user_ini_reader/preference_writing.h"
#include "tests/cfg_user_ini_reader/plain_preferences.h"
#include "tests/cfg_user_ini_reader/preference_test.h"

using zon_cfg::find_preference;

namespace
{
class PREFERENCE_CACHE_TEST : public PREFERENCE_TEST
{
};

const std::vector<std::string> names = {"SHOW_MESSAGE_ID", "show_message_id",    "USER_LIBRARIES",
                                        "HDL_PREFERENCE",  "USE_64BIT",          "PROXY_SETTINGS",
                                        "PROXY_USER1",     "Proxy_User1",        "COMPACT_REPORT_TABLE_FORMAT",
                                        "CLOUD_SERVER",    "NO_SUCH_PREFERENCE", "RTL_ANALYSIS_FLOW"};
const std::vector<std::string> values = {"on",      "ON",   "off",     "1",        "0", "",
                                         "Verilog", "vhdl", "default", "/opt/lib", "2"};
const std::vector<std::string> sections = {
    "Messages 23.4_pro", "Messages 23.3_pro", "General 23.4_pro",  "General 23.2_pro",
    "General",           "Messages",          "Cloud 23.3_pro",    "Internet Connectivity 23.3_pro",
    "General 23.3_pro",  "General 24.1_pro",  "Messages 24.1_pro", "Internet Connectivity"};
}

TEST_F(PREFERENCE_CACHE_TEST, random_files_and_calls_answer_as_the_plain_store_does)
{
    std::mt19937 random(6);
    const auto pick = [&random](const std::vector<std::string>& from) { return from[random() % from.size()]; };
    for (int round = 0; round < 20; ++round)
    {
        const std::string running = round % 2 == 0 ? "23.4" : "24.1";
        fake::ver::set_version(running);
        cfg_close_user_ini_file();
        std::string text;
        for (auto section = random() % 6; section > 0; --section)
        {
            const std::string header = pick(sections);
            text += "[" + header + "]\n";
            for (auto line = 1 + random() % 4; line > 0; --line)
            {
                text += pick(names);
                text += " = " + pick(values) + "\n";
            }
        }
        write_preferences(text);
        PLAIN_PREFERENCES plain(text, running, {"23.4", "23.3", "23.2"});
        for (int call = 0; call < 60; ++call)
        {
            const std::string name = pick(names);
            const CFG_USER_INI_ENUMS number = find_preference(name.c_str());
            const bool by_number = cfg_get_name_from_enum(number) == name;
            if (random() % 3 == 0)
            {
                const std::string value = pick(values);
                ASSERT_EQ(by_number ? cfg_set_user_ini_value(number, value)
                                    : cfg_set_user_ini_value(name.c_str(), value.c_str()),
                          plain.assign(name, value))
                    << name << " = " << value << " over\n"
                    << text;
            }
            else
            {
                ASSERT_EQ(by_number ? cfg_get_user_ini_value(number) : cfg_get_user_ini_value(name.c_str()),
                          plain.value(name, true))
                    << name << " over\n"
                    << text;
            }
        }
    }
}

TEST_F(PREFERENCE_CACHE_TEST, a_file_read_again_is_not_answered_from_the_cache)
{
    write_preferences("[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n");
    fake::ver::set_version("23.4");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
    cfg_close_user_ini_file();
    write_preferences("[Messages 23.4_pro]\nSHOW_MESSAGE_PARTITION_ID = on\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on"); // the default
    cfg_close_user_ini_file();
    write_preferences("[Messages 23.4_pro]\nSHOW_MESSAGE_ID = OFF\n");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "OFF");
}

TEST_F(PREFERENCE_CACHE_TEST, another_running_release_is_not_answered_from_the_cache)
{
    write_preferences("[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n[Messages 24.1_pro]\nSHOW_MESSAGE_ID = ON\n");
    const std::string long_release(40, '9');
    fake::ver::set_all_versions({});
    fake::ver::set_version("23.4");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
    fake::ver::set_version("24.1");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "ON");
    fake::ver::set_version(long_release);
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on"); // the default
    EXPECT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "Off"));
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "Off");
    fake::ver::set_version("23.4");
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
}

TEST_F(PREFERENCE_CACHE_TEST, releases_that_differ_in_one_character_are_told_apart)
{
    const std::vector<std::string> releases = {"23.4", "33.4", "24.4", "23:4", "23.5", "23.40", "23.", ""};
    std::string text;
    for (const std::string& release : releases)
        text += "[Vantrel " + release + "_pro]\nVANTREL2_USER_ID = user of '" + release + "'\n";
    write_preferences(text);
    for (const std::string& first : releases)
    {
        for (const std::string& second : releases)
        {
            fake::ver::set_version(first);
            EXPECT_EQ(cfg_get_user_ini_value(VANTREL2_USER_ID), "user of '" + first + "'");
            fake::ver::set_version(second);
            EXPECT_EQ(cfg_get_user_ini_value(VANTREL2_USER_ID), "user of '" + second + "'") << "after " << first;
        }
    }
}

// Of every length that is compared in another way: a release, and each that differs from it in one character.
TEST_F(PREFERENCE_CACHE_TEST, releases_of_any_length_that_differ_in_one_character_are_told_apart)
{
    std::vector<std::vector<std::string>> families;
    std::string text;
    for (std::size_t length = 1; length <= 12; ++length)
    {
        std::vector<std::string>& family = families.emplace_back(1, std::string(length, '7'));
        for (std::size_t at = 0; at < length; ++at)
            family.emplace_back(length, '7')[at] = '8';
        for (const std::string& release : family)
            text += "[Vantrel " + release + "_pro]\nVANTREL2_USER_ID = user of " + release + "\n";
    }
    write_preferences(text);
    for (const std::vector<std::string>& family : families)
    {
        // What is left of an earlier release behind the one cached is then what stands behind this one's name.
        fake::ver::set_version(std::string(20, '\0'));
        cfg_get_user_ini_value(VANTREL2_USER_ID);
        for (const std::string& release : family)
        {
            fake::ver::set_version(family.front());
            EXPECT_EQ(cfg_get_user_ini_value(VANTREL2_USER_ID), "user of " + family.front());
            fake::ver::set_version(release);
            EXPECT_EQ(cfg_get_user_ini_value(VANTREL2_USER_ID), "user of " + release);
        }
    }
}

TEST_F(PREFERENCE_CACHE_TEST, a_release_of_any_length_keeps_its_records)
{
    for (std::size_t length = 36; length >= 28; --length)
    {
        const std::string release(length, '9');
        fake::ver::set_version(release);
        cfg_close_user_ini_file();
        write_preferences("[Vantrel " + release + "_pro]\nVANTREL2_USER_ID = ana\n");
        EXPECT_EQ(cfg_get_user_ini_value(VANTREL2_USER_ID), "ana");
        EXPECT_EQ(cfg_get_user_ini_value(VANTREL2_USER_ID), "ana");
        EXPECT_TRUE(cfg_set_user_ini_value(VANTREL2_USER_ID, "ben"));
        EXPECT_EQ(cfg_get_user_ini_value(VANTREL2_USER_ID), "ben");
    }
}

TEST_F(PREFERENCE_CACHE_TEST, a_release_that_begins_like_a_long_one_is_told_apart)
{
    fake::ver::set_all_versions({});
    std::string text;
    for (std::size_t length = 28; length <= 40; ++length)
        text += "[Vantrel " + std::string(length, '9') + "_pro]\nVANTREL2_USER_ID = " + std::to_string(length) + "\n";
    write_preferences(text);
    for (std::size_t length = 28; length < 40; ++length)
    {
        fake::ver::set_version(std::string(40, '9'));
        EXPECT_EQ(cfg_get_user_ini_value(VANTREL2_USER_ID), "40");
        fake::ver::set_version(std::string(length, '9'));
        EXPECT_EQ(cfg_get_user_ini_value(VANTREL2_USER_ID), std::to_string(length));
    }
}

TEST_F(PREFERENCE_CACHE_TEST, an_assignment_for_a_release_of_any_length_is_seen_by_others)
{
    for (std::size_t length = 28; length <= 40; ++length)
    {
        const std::string other(length, '9');
        cfg_close_user_ini_file();
        write_preferences("[Messages " + other + "_pro]\nSHOW_MESSAGE_ID =\n");
        fake::ver::set_all_versions({other});
        fake::ver::set_version("23.4");
        EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on"); // the default: an empty value is none
        fake::ver::set_version(other);
        EXPECT_TRUE(cfg_set_user_ini_value(SHOW_MESSAGE_ID, "off"));
        fake::ver::set_version("23.4");
        EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off") << "carried over from a release of " << length;
    }
}

TEST_F(PREFERENCE_CACHE_TEST, another_list_of_known_releases_is_not_answered_from_the_cache)
{
    write_preferences("[Messages 23.2_pro]\nSHOW_MESSAGE_ID = off\n");
    fake::ver::set_version("23.4");
    fake::ver::set_all_versions({"23.4", "23.3"});
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on"); // the default
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on");
    fake::ver::set_all_versions({"23.4", "23.2"});
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
}

TEST_F(PREFERENCE_CACHE_TEST, a_refused_older_value_is_carried_over_each_time)
{
    write_preferences("[Messages 23.3_pro]\nSHOW_MESSAGE_ID = maybe\n");
    fake::ver::set_version("23.4");
    fake::ver::set_all_versions({"23.4", "23.3"});
    for (int time = 0; time < 3; ++time)
        EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "maybe");
}

TEST_F(PREFERENCE_CACHE_TEST, a_record_that_comes_with_an_assignment_is_found)
{
    write_preferences("");
    fake::ver::set_version("23.4");
    fake::ver::set_all_versions({"23.4", "23.3"});
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on"); // the default
    EXPECT_TRUE(cfg_set_user_ini_value("show_message_id", "off"));
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "on"); // a record of another spelling
    EXPECT_TRUE(cfg_set_user_ini_value("SHOW_MESSAGE_ID", "off"));
    EXPECT_EQ(cfg_get_user_ini_value(SHOW_MESSAGE_ID), "off");
}

// More keys than a search for one of any release walks over.
TEST_F(PREFERENCE_CACHE_TEST, a_section_of_many_keys_is_searched_as_one_of_few)
{
    for (const int keys : {998, 999, 1000, 1001, 5000})
    {
        SCOPED_TRACE(keys);
        std::string text = "[General 22.1_pro]\n";
        for (int key = 0; key < keys; ++key)
            text += "A" + std::to_string(key) + " = 1\n";
        cfg_close_user_ini_file();
        write_preferences(text + "[General 23.3_pro]\nUSER_LIBRARIES = /lib\n[General]\nRECENT_PROJECTS = p\n");
        fake::ver::set_all_versions({"23.4", "23.3"});
        for (int time = 0; time < 3; ++time)
        {
            EXPECT_EQ(cfg_get_user_ini_value(USER_LIBRARIES), "/lib");
            EXPECT_EQ(cfg_get_user_ini_value(RECENT_PROJECTS), "p");
            EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), "Verilog");
        }
        EXPECT_TRUE(cfg_set_user_ini_value(HDL_PREFERENCE, "VHDL"));
        EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), "VHDL");
    }
}

TEST_F(PREFERENCE_CACHE_TEST, a_record_of_an_unknown_release_is_found_once_the_release_is_known)
{
    write_preferences("[General 22.1_pro]\nHDL_PREFERENCE = VHDL\n[General]\nUSER_LIBRARIES =\n");
    for (int time = 0; time < 2; ++time)
    {
        EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), "Verilog");
        EXPECT_EQ(cfg_get_user_ini_value(USER_LIBRARIES), "");
    }
    fake::ver::set_all_versions({"23.4", "22.1"});
    EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), "VHDL");
    EXPECT_EQ(records().size(), 4U);
}
