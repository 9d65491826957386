#include <algorithm>
#include <memory>
#include <optional>
#include <random>

#include "cfg_ini/cfg_ini.h"
#include "tests/cfg_user_ini_reader/expected_preferences.h"
#include "tests/cfg_user_ini_reader/letter_case.h"
#include "tests/cfg_user_ini_reader/plain_preferences.h"
#include "tests/cfg_user_ini_reader/preference_test.h"

namespace
{
using PREFERENCE_SEQUENCES_TEST = PREFERENCE_TEST;

CFG_USER_INI_ENUMS number(const EXPECTED_PREFERENCE& preference)
{
    return static_cast<CFG_USER_INI_ENUMS>(preference.number);
}

// A value that the preference takes and that is not its default.
std::string other_than_default(const EXPECTED_PREFERENCE& preference)
{
    if (preference.takes_any_text())
        return "/some where/" + std::to_string(preference.number);
    return preference.values.front() != preference.default_value ? preference.values.front() : preference.values.back();
}

// --- Every preference ---

TEST_F(PREFERENCE_SEQUENCES_TEST, every_preference_has_its_default_without_a_file)
{
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
    {
        SCOPED_TRACE(preference.key);
        EXPECT_EQ(cfg_get_user_ini_value(number(preference)), preference.default_value);
        EXPECT_EQ(cfg_get_user_ini_value(preference.key.c_str()), preference.default_value);
        EXPECT_EQ(cfg_get_user_ini_value(in_mixed_case(preference.key).c_str()), preference.default_value);
        EXPECT_EQ(cfg_does_ini_variable_have_value(number(preference), true), !preference.default_value.empty());
        EXPECT_FALSE(cfg_does_ini_variable_have_value(number(preference), false));
        const bool on = preference.default_value == "on" || preference.default_value == "1";
        const bool off = preference.default_value == "off" || preference.default_value == "0";
        EXPECT_EQ(cfg_user_ini_is_on(number(preference), true), !off);
        EXPECT_EQ(cfg_user_ini_is_on(number(preference), false), on);
    }
    EXPECT_EQ(records(), RECORDS{});
}

TEST_F(PREFERENCE_SEQUENCES_TEST, every_preference_is_read_from_its_section)
{
    std::string file;
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
        file +=
            "[" + preference.section + " 23.4_pro]\n" + preference.key + " = " + other_than_default(preference) + "\n";
    write_preferences(file);
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
    {
        EXPECT_EQ(cfg_get_user_ini_value(number(preference)), other_than_default(preference)) << preference.key;
        EXPECT_EQ(cfg_get_user_ini_value(preference.key.c_str()), other_than_default(preference)) << preference.key;
    }
}

TEST_F(PREFERENCE_SEQUENCES_TEST, every_allowed_value_is_taken_in_any_letter_case)
{
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
    {
        for (const std::string& value : preference.values)
        {
            for (const std::string& spelling : {value, in_swapped_case(value), in_mixed_case(value)})
            {
                SCOPED_TRACE(preference.key + " = " + spelling);
                EXPECT_TRUE(cfg_set_user_ini_value(number(preference), spelling));
                EXPECT_EQ(cfg_get_user_ini_value_internal(preference.key.c_str(), false), spelling);
                EXPECT_TRUE(cfg_set_user_ini_value(in_swapped_case(preference.key).c_str(), spelling.c_str()));
            }
        }
    }
    EXPECT_EQ(records().size(), 2 * expected_preferences().size());
}

TEST_F(PREFERENCE_SEQUENCES_TEST, every_neighbour_of_an_allowed_value_is_refused)
{
    const std::vector<std::string> neighbours = {
        "",           "2",         "-1",        "16",       "00",     "01",       "1 ",   " 1",
        "3.0",        "o",         "of",        "offf",     "onn",    " on",      "on ",  "on\n",
        "no",         "yes",       "true",      "false",    "Purple", "Bright",   "Gray", "White ",
        "Bright Red", "Brightred", "Dark_Grey", "defaults", "VHDL2",  "Veri log", "vcdx", "all"};
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
    {
        if (preference.takes_any_text())
            continue;
        ASSERT_TRUE(cfg_set_user_ini_value(number(preference), preference.values.back()));
        for (const std::string& value : neighbours)
        {
            SCOPED_TRACE(preference.key + " = " + value);
            const bool allowed = std::ranges::count(preference.values, value) != 0;
            const std::string before = cfg_get_user_ini_value(number(preference));
            EXPECT_EQ(cfg_set_user_ini_value(number(preference), value), allowed);
            EXPECT_EQ(cfg_set_user_ini_value(preference.key.c_str(), value.c_str()), allowed);
            EXPECT_EQ(cfg_get_user_ini_value(number(preference)), allowed ? value : before);
        }
    }
}

TEST_F(PREFERENCE_SEQUENCES_TEST, every_preference_that_takes_any_text_takes_the_neighbours_too)
{
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
    {
        if (!preference.takes_any_text())
            continue;
        for (const std::string value : {"", "2", " on", "on ", "16", "Purple", "=", "[", "\""})
        {
            EXPECT_TRUE(cfg_set_user_ini_value(number(preference), value)) << preference.key << " = " << value;
            EXPECT_EQ(cfg_get_user_ini_value_internal(preference.key.c_str(), false), value) << preference.key;
        }
    }
}

TEST_F(PREFERENCE_SEQUENCES_TEST, every_preference_survives_a_save)
{
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
        ASSERT_TRUE(cfg_set_user_ini_value(number(preference), other_than_default(preference))) << preference.key;
    ASSERT_TRUE(cfg_write_and_close_user_ini_file());
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
        EXPECT_EQ(cfg_get_user_ini_value(number(preference)), other_than_default(preference)) << preference.key;
    EXPECT_EQ(records().size(), expected_preferences().size());
}

TEST_F(PREFERENCE_SEQUENCES_TEST, every_preference_is_carried_over_from_an_older_release)
{
    fake::ver::set_version("23.2");
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
        ASSERT_TRUE(cfg_set_user_ini_value(number(preference), other_than_default(preference))) << preference.key;
    ASSERT_TRUE(cfg_write_and_close_user_ini_file());

    fake::ver::set_version("23.4");
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
        EXPECT_EQ(cfg_get_user_ini_value(number(preference)), other_than_default(preference)) << preference.key;
    ASSERT_TRUE(cfg_write_and_close_user_ini_file());
    cfg_read_user_ini_file();
    EXPECT_EQ(records().size(), 2 * expected_preferences().size());
}

// --- A user's years ---

TEST_F(PREFERENCE_SEQUENCES_TEST, file_kept_over_three_releases)
{
    write_preferences("[Messages]\n"
                      "Post warning messages = on\n"
                      "[General]\n"
                      "Generate HTML report file = \"1\"\n"
                      "Auto Recompile = off\n");

    fake::ver::set_version("23.2");
    EXPECT_TRUE(cfg_user_ini_is_on(DISPLAY_WARNING_MESSAGES, false));
    EXPECT_TRUE(cfg_set_user_ini_value(USER_LIBRARIES, "/opt/lib"));
    ASSERT_TRUE(cfg_write_and_close_user_ini_file());
    EXPECT_EQ(preferences(), "\n[General 23.2_pro]\n"
                             "USER_LIBRARIES = /opt/lib\n"
                             "\n[General]\n"
                             "AUTO_RECOMPILE_BEFORE_SIM = off\n"
                             "GENERATE_HTML_REPORT_FILES = 1\n"
                             "\n[Messages 23.2_pro]\n"
                             "DISPLAY_WARNING_MESSAGES = on\n"
                             "\n[Messages]\n"
                             "DISPLAY_WARNING_MESSAGES = on\n");

    // The General section of 23.2 stands in the file now, so the oldest one no longer counts for that release.
    EXPECT_FALSE(cfg_user_ini_is_on(GENERATE_HTML_REPORT_FILES, false));
    EXPECT_EQ(fake::gen::user_library_paths().back(), "/opt/lib");
    cfg_close_user_ini_file();

    fake::ver::set_version("23.4");
    EXPECT_TRUE(cfg_user_ini_is_on(GENERATE_HTML_REPORT_FILES, false)); // from the oldest section
    EXPECT_EQ(cfg_get_user_ini_value(USER_LIBRARIES), "/opt/lib");      // from 23.2
    EXPECT_TRUE(cfg_set_user_ini_off(DISPLAY_COMMAND_LINE_MESSAGES_IN_COLOR));
    EXPECT_TRUE(cfg_user_ini_is_on(DISPLAY_WARNING_MESSAGES, false)); // still carried over: nothing was read since
    ASSERT_TRUE(cfg_write_and_close_user_ini_file());
    EXPECT_EQ(preferences(), "\n[General 23.2_pro]\n"
                             "USER_LIBRARIES = /opt/lib\n"
                             "\n[General 23.4_pro]\n"
                             "GENERATE_HTML_REPORT_FILES = 1\n"
                             "USER_LIBRARIES = /opt/lib\n"
                             "\n[General]\n"
                             "AUTO_RECOMPILE_BEFORE_SIM = off\n"
                             "GENERATE_HTML_REPORT_FILES = 1\n"
                             "\n[Messages 23.2_pro]\n"
                             "DISPLAY_WARNING_MESSAGES = on\n"
                             "\n[Messages 23.4_pro]\n"
                             "DISPLAY_COMMAND_LINE_MESSAGES_IN_COLOR = off\n"
                             "DISPLAY_WARNING_MESSAGES = on\n"
                             "\n[Messages]\n"
                             "DISPLAY_WARNING_MESSAGES = on\n");
}

TEST_F(PREFERENCE_SEQUENCES_TEST, unsaved_assignments_are_lost_saved_ones_are_not)
{
    ASSERT_TRUE(cfg_set_user_ini_value(HDL_PREFERENCE, "VHDL"));
    ASSERT_TRUE(cfg_write_user_ini_file());
    ASSERT_TRUE(cfg_set_user_ini_value(HDL_PREFERENCE, "KHDL"));
    cfg_close_user_ini_file();
    EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), "VHDL");
    ASSERT_TRUE(cfg_set_user_ini_value(HDL_PREFERENCE, "KHDL"));
    ASSERT_TRUE(cfg_write_and_close_user_ini_file());
    EXPECT_EQ(cfg_get_user_ini_value(HDL_PREFERENCE), "KHDL");
}

TEST_F(PREFERENCE_SEQUENCES_TEST, emptied_value_leaves_the_file_and_yields_the_default)
{
    ASSERT_TRUE(cfg_set_user_ini_value(NUM_PARALLEL_PROCESSORS, "3"));
    ASSERT_TRUE(cfg_set_user_ini_value(RECENT_PROJECTS, "p"));
    ASSERT_TRUE(cfg_write_user_ini_file());
    ASSERT_TRUE(cfg_set_user_ini_value(NUM_PARALLEL_PROCESSORS, ""));
    EXPECT_EQ(cfg_get_user_ini_value(NUM_PARALLEL_PROCESSORS), "All");
    ASSERT_TRUE(cfg_write_and_close_user_ini_file());
    EXPECT_EQ(preferences(), "\n[General 23.4_pro]\nRECENT_PROJECTS = p\n");
    EXPECT_EQ(cfg_get_user_ini_value(NUM_PARALLEL_PROCESSORS), "All");
}

// --- Any sequence ---

// Draws what a user, several releases of the tool and an editor may do to one file, and compares each answer with that
// of the plainly written store.
class RANDOM_SEQUENCE
{
public:
    explicit RANDOM_SEQUENCE(unsigned int seed) : engine(seed)
    {
        for (int i = 0; i < 8; ++i)
            pool.push_back(one_of(expected_preferences()));
    }

    std::size_t below(std::size_t bound)
    {
        return engine() % bound;
    }

    template <typename T>
    const T& one_of(const std::vector<T>& choices)
    {
        return choices[below(choices.size())];
    }

    const EXPECTED_PREFERENCE& preference()
    {
        return one_of(pool);
    }

    // Mostly a key, now and then in another letter case, an old name, or none at all.
    std::string name(const std::string& key)
    {
        switch (below(8))
        {
        case 0:
            return in_mixed_case(key);
        case 1:
            return one_of(expected_old_names()).second;
        case 2:
            return one_of(std::vector<std::string>{"", "unknown", key + "x", "# " + key});
        default:
            return key;
        }
    }

    std::string value(const EXPECTED_PREFERENCE& preference)
    {
        static const std::vector<std::string> texts = {"",     "on",    "OFF", "0",    "16",  " blanks ",  "\"quoted\"",
                                                       "\"\"", "a = b", "[x]", "KHDL", "Red", "99 bottles"};
        return below(2) == 0 ? one_of(preference.values) : one_of(texts);
    }

    std::string line()
    {
        static const std::vector<std::string> releases = {" 23.4_pro", " 23.3_pro", " 23.2_pro", " 22.1_pro", ""};
        const EXPECTED_PREFERENCE& about = preference();
        switch (below(10))
        {
        case 0:
            return "[" + about.section + one_of(releases) + "]";
        case 1:
            return "[" + in_mixed_case(about.section) + one_of(releases) + "]\r";
        case 2:
            return one_of(std::vector<std::string>{"", "x", "a=", "; comment", "[open", "[] ", "[]", "text [a] text"});
        case 3:
        case 4:
            return name(about.key) + " = " + value(about); // in whatever section comes before
        default:
            return "[" + about.section + one_of(releases) + "]\n" + name(about.key) + " = " + value(about);
        }
    }

    std::string file()
    {
        std::string bytes;
        for (std::size_t lines = below(40); lines > 0; --lines)
            bytes += line() + "\n";
        return bytes;
    }

private:
    std::mt19937 engine;
    std::vector<EXPECTED_PREFERENCE> pool; // few, so that what happens to one meets what happened to it before
};

class PREFERENCE_RANDOM_TEST : public PREFERENCE_TEST, public testing::WithParamInterface<unsigned int>
{
protected:
    PLAIN_PREFERENCES& plain()
    {
        if (!plain_store)
            plain_store = std::make_unique<PLAIN_PREFERENCES>(preferences(), version, releases);
        return *plain_store;
    }

    void step(RANDOM_SEQUENCE& random)
    {
        const EXPECTED_PREFERENCE& preference = random.preference();
        const std::string name = random.name(preference.key);
        const std::string value = random.value(preference);
        switch (random.below(10))
        {
        case 0:
            EXPECT_TRUE(cfg_write_user_ini_file());
            if (plain_store)
            {
                EXPECT_EQ(preferences(), plain().saved());
            }
            break;
        case 1:
            cfg_close_user_ini_file();
            plain_store.reset();
            write_preferences(random.below(2) == 0 ? preferences() : random.file());
            version = random.one_of(releases);
            fake::ver::set_version(version);
            break;
        case 2:
        case 3:
            EXPECT_EQ(cfg_set_user_ini_value(number(preference), value), plain().assign(preference.key, value))
                << preference.key << " = " << value;
            break;
        case 4:
            EXPECT_EQ(cfg_set_user_ini_value(name.c_str(), value.c_str()), plain().assign(name, value))
                << name << " = " << value;
            break;
        case 5:
            EXPECT_EQ(cfg_get_user_ini_value(name.c_str()), plain().value(name, true)) << name;
            break;
        case 6:
            EXPECT_EQ(cfg_does_ini_variable_have_value(number(preference), false),
                      !plain().value(preference.key, false).empty())
                << preference.key;
            break;
        default:
            EXPECT_EQ(cfg_get_user_ini_value(number(preference)), plain().value(preference.key, true))
                << preference.key;
        }
    }

private:
    std::vector<std::string> releases = {"23.4", "23.3", "23.2"};
    std::string version = "23.4";
    std::unique_ptr<PLAIN_PREFERENCES> plain_store; // exists while the library's store is loaded
};

TEST_P(PREFERENCE_RANDOM_TEST, goes_as_written_out_plainly)
{
    RANDOM_SEQUENCE random(GetParam());
    write_preferences(random.file());
    for (int i = 0; i < 400 && !HasFailure(); ++i)
    {
        SCOPED_TRACE("step " + std::to_string(i));
        step(random);
    }
}

INSTANTIATE_TEST_SUITE_P(seeds, PREFERENCE_RANDOM_TEST, testing::Range(1U, 21U));
}
