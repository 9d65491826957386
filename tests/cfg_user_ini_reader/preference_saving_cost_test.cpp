// A save writes what the passes over the records would, for any records, and takes about as long for each.
#include <algorithm>
#include <random>

#include "cfg_ini/cfg_ini.h"
#include "tests/cfg_user_ini_reader/plain_preferences.h"
#include "tests/cfg_user_ini_reader/preference_test.h"
#include "tests/support/processor_time.h"

namespace
{
using namespace std::string_literals;
using PREFERENCE_SAVING_COST_TEST = PREFERENCE_TEST;

// --- The bytes ---

// Few short texts, many of which differ only in letter case or continue another one: sections then lie between each
// other's records, and pairs of section and name share keys.
class RANDOM_FILE
{
public:
    explicit RANDOM_FILE(unsigned int seed) : engine(seed) {}

    std::string text()
    {
        std::string bytes;
        for (auto sections = below(12); sections > 0; --sections)
        {
            bytes += "[" + word(1) + "]\n";
            for (auto lines = below(6); lines > 0; --lines)
                bytes += word(0) + " = " + word(0) + "\n";
        }
        return bytes;
    }

private:
    std::size_t below(std::size_t bound)
    {
        return engine() % bound;
    }

    std::string word(std::size_t shortest)
    {
        std::string characters;
        for (auto count = shortest + below(4); count > 0; --count)
            characters += "aAbB_z"s[below(6)];
        return characters;
    }

    std::mt19937 engine;
};

TEST_F(PREFERENCE_SAVING_COST_TEST, any_records_are_written_as_by_passes)
{
    RANDOM_FILE random(40);
    std::size_t merged = 0;
    for (int round = 0; round < 300; ++round)
    {
        const std::string text = random.text();
        write_preferences(text);
        cfg_close_user_ini_file();
        cfg_read_user_ini_file();
        ASSERT_TRUE(cfg_write_user_ini_file());
        const std::string expected = PLAIN_PREFERENCES(text, "23.4", {"23.4", "23.3", "23.2"}).saved();
        ASSERT_EQ(preferences(), expected) << text;
        for (const auto& [key, record] : *cfg_user_ini_records)
            ASSERT_FALSE(record->pending_write) << key;
        SECTIONS with_values;
        for (const RECORD& record : records())
        {
            if (!record.value.empty())
                with_values.insert(record.section);
        }
        const auto headers = static_cast<std::size_t>(std::ranges::count(expected, '['));
        merged += with_values.size() - headers;
    }
    EXPECT_GT(merged, 15U) << "the files hold what the test is about";
}

TEST_F(PREFERENCE_SAVING_COST_TEST, section_that_lies_between_the_records_of_another_follows_it)
{
    write_preferences("[A]\nA = 1\nZ = 2\n[AB]\nc = 3\n[a]\nA = 4\n[ab]\nc = 5\n");
    cfg_read_user_ini_file();
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "\n[A]\nA = 1\nZ = 2\nA = 4\n\n[AB]\nc = 3\nc = 5\n");
}

// Only a version service makes such a section: lines of a file end at their first zero byte.
TEST_F(PREFERENCE_SAVING_COST_TEST, sections_are_compared_up_to_a_zero_byte)
{
    fake::ver::set_version("\0a"s);
    ASSERT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "1"));
    fake::ver::set_version("\0b"s);
    ASSERT_TRUE(cfg_set_user_ini_value(WEB_BROWSER, "2"));
    EXPECT_TRUE(cfg_write_user_ini_file());
    EXPECT_EQ(preferences(), "\n[Internet Connectivity \0a_pro]\nWEB_BROWSER = 1\nWEB_BROWSER = 2\n"s);
}

// --- The cost ---

// Of the fastest of three saves of as many sections, each with one record and each in two spellings.
double seconds_to_save(std::size_t sections)
{
    cfg_read_user_ini_file();
    EXPECT_TRUE(cfg_user_ini_records->empty());
    for (std::size_t i = 0; i < sections / 2; ++i)
    {
        for (const char* const spelling : {"section ", "SECTION "})
        {
            const std::string section = spelling + std::to_string(i);
            cfg_user_ini_records->emplace(section + "k", new CFG_USER_VALUE_STRUCT{section, "k", "v"});
        }
    }
    const double least = least_processor_seconds([] { EXPECT_TRUE(cfg_write_user_ini_file()); });
    cfg_close_user_ini_file();
    return least;
}

TEST_F(PREFERENCE_SAVING_COST_TEST, ten_times_the_sections_take_about_ten_times_as_long)
{
    const auto seconds_for = [&](std::size_t sections)
    {
        write_preferences("");
        return seconds_to_save(sections);
    };
    const double ratio = ratio_of_seconds(seconds_for, 4'000, 40'000, 40);
    EXPECT_LT(ratio, 40) << "the square would be a hundred times as long";
}
}
