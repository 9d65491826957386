// Preferences as a file of their own, and found in any file: texts as tables, and beside the library, which answers
// from a dump, and from the file into which a dump was loaded, as from the file that was dumped.
#include "tools/velmar-cfg/preferences/preference_transfer.h"

#include <gmock/gmock.h>

#include "tests/support/isolated_test.h"
#include "tests/velmar_cfg/preference_files.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/preferences/preference_plan.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"

using namespace zon_cfg;

namespace
{
PREFERENCE_DUMP dump_of(const PREFERENCES& preferences, bool only_changed)
{
    return dump_preferences([&preferences](CFG_USER_INI_ENUMS number) { return preferences.look_up(number); },
                            only_changed);
}

using testing::ElementsAre;
using testing::HasSubstr;

// --- Dumps ---

struct DUMPED
{
    const char* title;
    std::string file;
    std::string text; // with only what has changed
};

void PrintTo(const DUMPED& row, std::ostream* stream)
{
    *stream << row.title;
}

class PREFERENCE_DUMP_TEST : public testing::TestWithParam<DUMPED>
{
};

TEST_P(PREFERENCE_DUMP_TEST, is_a_file_of_the_running_release)
{
    const PREFERENCE_DUMP dump = dump_of(PREFERENCES(GetParam().file), true);
    EXPECT_EQ(dump.text, GetParam().text);
    EXPECT_THAT(dump.masked, testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    files, PREFERENCE_DUMP_TEST,
    testing::Values(
        DUMPED{"nothing", "", ""}, DUMPED{"the default", "[General 23.4_pro]\nHDL_PREFERENCE = Verilog\n", ""},
        DUMPED{"the default in another letter case", "[General 23.4_pro]\nHDL_PREFERENCE = VERILOG\n",
               "\n[General 23.4_pro]\nHDL_PREFERENCE = VERILOG\n"},
        DUMPED{"values of several releases, in the order of a save",
               "[Messages]\nSHOW_MESSAGE_ID = off\n[General 23.3_pro]\nUSER_LIBRARIES = /a b\nHDL_PREFERENCE = VHDL\n",
               "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\nUSER_LIBRARIES = /a b\n\n[Messages 23.4_pro]\n"
               "SHOW_MESSAGE_ID = off\n"},
        DUMPED{"what no lookup finds", "[General 23.4_pro]\nhdl_preference = VHDL\nUNKNOWN = 1\n", ""},
        DUMPED{"an old name", "[General 23.4_pro]\nBeep when process done = off\n",
               "\n[General 23.4_pro]\nSOUND_WHEN_PROCESS_DONE = off\n"},
        DUMPED{"a value that is not allowed", "[Messages 23.4_pro]\nSHOW_MESSAGE_ID = 1\n",
               "\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = 1\n"},
        DUMPED{"quotes that the reader takes off", "[General 23.4_pro]\nUSER_LIBRARIES = \" /x \"\n",
               "\n[General 23.4_pro]\nUSER_LIBRARIES = /x\n"},
        DUMPED{"quotes that it leaves", "[General 23.4_pro]\nUSER_LIBRARIES = \"\" /x\"\"\n",
               "\n[General 23.4_pro]\nUSER_LIBRARIES = \"\" /x\"\"\n"},
        DUMPED{"two quotes and one", "[General 23.4_pro]\nUSER_LIBRARIES = \"\"\n[Cloud 23.4_pro]\nCLOUD_SERVER = \"\n",
               "\n[Cloud 23.4_pro]\nCLOUD_SERVER = \"\n\n[General 23.4_pro]\nUSER_LIBRARIES = \"\"\n"}));

TEST(PREFERENCE_DUMPS, hold_the_defaults_too)
{
    const std::string text = dump_of(PREFERENCES("[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n"), false).text;
    EXPECT_THAT(text, HasSubstr("\nHDL_PREFERENCE = VHDL\n"));
    EXPECT_THAT(text, HasSubstr("\n[Messages 23.4_pro]\n"));
    EXPECT_THAT(text, HasSubstr("\nSHOW_MESSAGE_ID = on\n"));
    EXPECT_EQ(text.find("CLOUD_SERVER"), std::string::npos) << "there is nothing that could be written";
}

TEST(PREFERENCE_DUMPS, leave_out_what_is_masked)
{
    SECRETS secrets;
    const std::string text =
        "[Cloud 23.4_pro]\nCLOUD_TOKEN = hush-hush\nCLOUD_SERVER = http://h/?token=hush-hush\nCLOUD_USER_ID = me\n";
    const PREFERENCE_DUMP dump = dump_of(PREFERENCES(hide_in_preference_text(text, secrets).value()), true);
    EXPECT_THAT(dump.masked, testing::UnorderedElementsAre("CLOUD_TOKEN", "CLOUD_SERVER"));
    EXPECT_THAT(dump.text, HasSubstr("# CLOUD_TOKEN is left out, since its value is masked\n"));
    EXPECT_THAT(dump.text, testing::EndsWith("\n\n[Cloud 23.4_pro]\nCLOUD_USER_ID = me\n"));
    EXPECT_EQ(dump.text.find("hush"), std::string::npos);
    const GIVEN_PREFERENCES given = preferences_given_by(dump.text);
    EXPECT_EQ(given.known.size(), 1U) << "a comment is no value";
    EXPECT_TRUE(given.unknown.empty());
}

// --- What a file gives ---

// "3 KEY=VALUE" of each, then "5 NAME?" of each that is unknown.
std::string as_text(const GIVEN_PREFERENCES& given)
{
    std::string text;
    for (const GIVEN_PREFERENCE& preference : given.known)
        text += std::to_string(preference.line) + " " + cfg_get_user_ini_ini_string(preference.number) + "=" +
                preference.value + "\n";
    for (const UNKNOWN_PREFERENCE& preference : given.unknown)
        text += std::to_string(preference.line) + " " + preference.name + "?\n";
    return text;
}

struct GIVEN
{
    const char* title;
    std::string file;
    const char* given;
};

void PrintTo(const GIVEN& row, std::ostream* stream)
{
    *stream << row.title;
}

class GIVEN_PREFERENCES_TEST : public testing::TestWithParam<GIVEN>
{
};

TEST_P(GIVEN_PREFERENCES_TEST, are_those_that_a_load_would_answer)
{
    EXPECT_EQ(as_text(preferences_given_by(GetParam().file)), GetParam().given);
}

INSTANTIATE_TEST_SUITE_P(
    files, GIVEN_PREFERENCES_TEST,
    testing::Values(
        GIVEN{"nothing", "", ""},
        GIVEN{"the running release's, the default too", "[General 23.4_pro]\nHDL_PREFERENCE = Verilog\n",
              "2 HDL_PREFERENCE=Verilog\n"},
        GIVEN{"an older release's", "[General 23.3_pro]\nHDL_PREFERENCE = VHDL\n[General]\nUSER_LIBRARIES = /x\n",
              "4 USER_LIBRARIES=/x\n2 HDL_PREFERENCE=VHDL\n"},
        GIVEN{"no older release's beside the running one's",
              "[General 23.3_pro]\nHDL_PREFERENCE = VHDL\n[General 23.4_pro]\nUSER_LIBRARIES = /x\n",
              "4 USER_LIBRARIES=/x\n"},
        GIVEN{"an empty value", "[General 23.4_pro]\nHDL_PREFERENCE =\nNONE =\n", ""},
        GIVEN{"a value that is not allowed", "[Messages 23.4_pro]\nSHOW_MESSAGE_ID = 1\n", "2 SHOW_MESSAGE_ID=1\n"},
        GIVEN{"another letter case", "[General 23.4_pro]\nhdl_preference = VHDL\n", ""},
        GIVEN{"an unknown key", "[General 23.4_pro]\nHDL_PREF = VHDL\n", "2 HDL_PREF?\n"},
        GIVEN{"one of an older release", "[General 22.4_pro]\nOLD = 1\n[General]\nOLDER = 1\n", "2 OLD?\n4 OLDER?\n"},
        GIVEN{"one of an older release that nobody asks",
              "[General 22.4_pro]\nOLD = 1\n[General]\nOLDER = 1\n[General 23.4_pro]\n", ""},
        GIVEN{"one in a section that nobody asks", "[Mine]\nMY = 1\n[General 1.0_pro]\nOLD = 1\n", ""},
        GIVEN{"comments", "[General 23.4_pro]\n# a = b\n;c = d\n", ""},
        GIVEN{"no section", "HDL_PREFERENCE = VHDL\nX = 1\n", ""}));

// --- Beside the library ---

class PREFERENCE_TRANSFER_BESIDE_THE_LIBRARY : public ISOLATED_TEST
{
protected:
    PREFERENCE_TRANSFER_BESIDE_THE_LIBRARY()
    {
        write_file("user/velmar2.ini", "");
        environment.set("VELMAR2_INI", temporary.path("cwd/user"));
    }

    ~PREFERENCE_TRANSFER_BESIDE_THE_LIBRARY() override
    {
        cfg_close_user_ini_file();
    }

    static std::vector<std::string> answers(const std::string& bytes)
    {
        write_file("user/velmar2.ini", bytes);
        cfg_close_user_ini_file();
        std::vector<std::string> all;
        for (const CFG_USER_INI_ENUMS number : all_preference_numbers())
            all.push_back(cfg_get_user_ini_value(number));
        cfg_close_user_ini_file();
        return all;
    }
};

std::vector<PREFERENCE_CHANGE> changes_of(const std::string& bytes)
{
    std::vector<PREFERENCE_CHANGE> changes;
    for (const GIVEN_PREFERENCE& preference : preferences_given_by(bytes).known)
        changes.push_back({preference.number, preference.value, true});
    return changes;
}

bool is_refused(const std::vector<PREFERENCE_CHANGE>& changes)
{
    try
    {
        for (const PREFERENCE_CHANGE& change : changes)
            check_preference_value(change);
        return false;
    }
    catch (const TOOL_ERROR&)
    {
        return true;
    }
}

// The generated files have few keys in few sections; these have values of all keys in all known ones.
std::string generated_values(SETTINGS_GENERATOR& generate)
{
    std::string text;
    const std::vector<CFG_USER_INI_ENUMS> numbers = all_preference_numbers();
    for (std::size_t i = generate.below(40); i > 0; --i)
    {
        const CFG_USER_INI_ENUMS number = numbers[generate.below(numbers.size())];
        const std::string section = preference_triples(number).front().section;
        std::vector<std::string> allowed = allowed_preference_values(number);
        if (allowed.empty())
            allowed = {"x", "\"a b\"", "0", "/a;b", "\"", "\"\"", "a=b", "#", "7"};
        // One after the other: compilers evaluate the operands of a sum in different orders.
        const std::string release = generate.pick({" 23.4_pro", " 23.4_pro", " 23.3_pro", " 22.4_pro", ""});
        const std::string value = generate.pick(allowed);
        text += "[" + section + release + "]\n" + cfg_get_user_ini_ini_string(number) + " = " + value + "\n";
    }
    return text;
}

TEST_F(PREFERENCE_TRANSFER_BESIDE_THE_LIBRARY, keeps_every_answer)
{
    int loaded = 0;
    int refused = 0;
    for (unsigned int seed = 1; loaded < 1000; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        ASSERT_LT(seed, 4000U);
        SETTINGS_GENERATOR generate(seed);
        const std::string bytes = seed % 2 == 0 ? generated_values(generate) : generated_preference_file(generate);
        const std::vector<std::string> expected = answers(bytes);
        const bool only_changed = seed % 4 < 2;
        const std::string dump = dump_of(PREFERENCES(bytes), only_changed).text;
        ASSERT_EQ(answers(dump), expected) << bytes;

        const std::vector<PREFERENCE_CHANGE> changes = changes_of(dump);
        if (is_refused(changes))
        {
            // Only for a value that no save keeps or the catalogue does not allow.
            ASSERT_TRUE(is_refused(changes_of(bytes))) << bytes;
            ++refused;
            continue;
        }
        const PREFERENCE_PLAN plan = plan_preference_changes("FILE", "", changes);
        ASSERT_EQ(answers(plan.after), expected) << bytes;
        ASSERT_FALSE(plan.loses_values());
        ASSERT_EQ(plan_preference_changes("FILE", bytes, changes).after, bytes) << "where it came from";
        ++loaded;
    }
    EXPECT_GT(refused, 20) << "only " << refused;
}

// Into a file with answers of its own, which it keeps where the loaded one gives none.
TEST_F(PREFERENCE_TRANSFER_BESIDE_THE_LIBRARY, changes_what_the_file_gives_and_nothing_else)
{
    int changed = 0;
    for (unsigned int seed = 1; seed <= 150; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        SETTINGS_GENERATOR generate(seed);
        const std::vector<PREFERENCE_CHANGE> changes = changes_of(generated_values(generate));
        const std::string before = generated_preference_file(generate);
        if (is_refused(changes))
            continue;
        PREFERENCE_PLAN plan;
        try
        {
            plan = plan_preference_changes("FILE", before, changes);
        }
        catch (const TOOL_ERROR& error)
        {
            ASSERT_THAT(error.what(), HasSubstr("in letter case only"));
            continue;
        }
        std::vector<std::string> expected = answers(before);
        const std::vector<CFG_USER_INI_ENUMS> numbers = all_preference_numbers();
        for (const PREFERENCE_CHANGE& change : changes)
            expected[static_cast<std::size_t>(std::ranges::find(numbers, change.number) - numbers.begin())] =
                change.value.value();
        if (plan.other_values.empty() && plan.warnings.empty())
        {
            ASSERT_EQ(answers(plan.after), expected) << before;
            changed += plan.after == before ? 0 : 1;
        }
        else
            ASSERT_NE(answers(plan.after), expected);
    }
    EXPECT_GT(changed, 50);
}
}
