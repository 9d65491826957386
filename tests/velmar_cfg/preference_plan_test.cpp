// What a change of one preference makes of a file: refusals and what they blame as a table, and the new file beside the
// one that the library saves.
#include "tools/velmar-cfg/preferences/preference_plan.h"

#include <gmock/gmock.h>

#include "tests/support/isolated_test.h"
#include "tests/velmar_cfg/preference_files.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/preferences/preferences.h"

using namespace zon_cfg;

namespace
{
// How the plan ends: what it complains of, or the new file.
std::string outcome(const std::string& before, const PREFERENCE_CHANGE& change)
{
    try
    {
        check_preference_value(change);
        const PREFERENCE_PLAN plan = plan_preference_changes("FILE", before, {change});
        std::string text = plan.after;
        for (const std::string& other : plan.other_values)
            text += "other: " + other + "\n";
        for (const std::string& warning : plan.warnings)
            text += "warning: " + warning + "\n";
        return text + (plan.loses_values() ? "loses values\n" : "");
    }
    catch (const TOOL_ERROR& error)
    {
        return std::to_string(static_cast<int>(error.exit_code)) + " " + error.what();
    }
}

struct PLAN
{
    const char* title;
    std::string before;
    CFG_USER_INI_ENUMS number;
    std::optional<std::string> value;
    std::string outcome;
};

void PrintTo(const PLAN& row, std::ostream* stream)
{
    *stream << row.title;
}

class PREFERENCE_PLAN_TEST : public testing::TestWithParam<PLAN>
{
};

TEST_P(PREFERENCE_PLAN_TEST, ends_as)
{
    EXPECT_EQ(outcome(GetParam().before, {GetParam().number, GetParam().value}), GetParam().outcome);
}

constexpr const char* cannot_hold = "; leave out '[', line ends, and blanks or quotes at both ends";

INSTANTIATE_TEST_SUITE_P(
    values, PREFERENCE_PLAN_TEST,
    testing::Values(
        PLAN{"an empty value", "", HDL_PREFERENCE, "",
             "5 an empty value counts as none; velmar-cfg prefs reset HDL_PREFERENCE goes back to the default"},
        PLAN{"a value that is not allowed", "", SHOW_MESSAGE_ID, "1",
             "5 '1' is not allowed for SHOW_MESSAGE_ID; allowed: off, on"},
        PLAN{"a bracket", "", PROXY_SETTINGS, "a[b]",
             std::string("5 the file cannot hold this value: it would be read back as nothing") + cannot_hold},
        PLAN{"a blank at the end", "", PROXY_SETTINGS, "a ",
             std::string("5 the file cannot hold this value: it would be read back as 'a'") + cannot_hold},
        PLAN{"quotes", "", PROXY_SETTINGS, "\"a\"",
             std::string("5 the file cannot hold this value: it would be read back as 'a'") + cannot_hold},
        PLAN{"two lines", "", PROXY_SETTINGS, "a\nb",
             std::string("5 the file cannot hold this value: it would be read back as 'a'") + cannot_hold},
        PLAN{"a line end alone", "", PROXY_SETTINGS, "\n",
             std::string("5 the file cannot hold this value: it would be read back as nothing") + cannot_hold},
        PLAN{"a zero byte", "", PROXY_SETTINGS, std::string("a\0b", 3),
             std::string("5 the file cannot hold this value: it would be read back as 'a'") + cannot_hold},
        PLAN{"a quote at one end", "", PROXY_SETTINGS, "\"a",
             "\n[Internet Connectivity 23.4_pro]\nPROXY_SETTINGS = \"a\n"},
        PLAN{"a closing bracket", "", PROXY_SETTINGS, "a]",
             "\n[Internet Connectivity 23.4_pro]\nPROXY_SETTINGS = a]\n"}));

INSTANTIATE_TEST_SUITE_P(
    files, PREFERENCE_PLAN_TEST,
    testing::Values(
        PLAN{"what the file says already leaves every byte", "# c\n[General 23.4_pro]\nHDL_PREFERENCE=VHDL",
             HDL_PREFERENCE, "VHDL", "# c\n[General 23.4_pro]\nHDL_PREFERENCE=VHDL"},
        PLAN{"a default that holds already leaves every byte", "# c", HDL_PREFERENCE, {}, "# c"},
        PLAN{"an older release's value becomes the running one's", "[General 23.3_pro]\nHDL_PREFERENCE = VHDL\n",
             HDL_PREFERENCE, "VHDL",
             "\n[General 23.3_pro]\nHDL_PREFERENCE = VHDL\n\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n"},
        PLAN{"a line that loses its value", "k = v\n", HDL_PREFERENCE, "VHDL",
             "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\nloses values\n"},
        PLAN{"a line that loses none", "# k = v\n", HDL_PREFERENCE, "VHDL",
             "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n"},
        PLAN{"an older section that is spelt in two letter cases is to blame for itself",
             "[MESSAGES 23.3_pro]\nSHOW_MESSAGE_ID = off\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = on\n", HDL_PREFERENCE,
             "VHDL",
             "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n\n[MESSAGES 23.3_pro]\nSHOW_MESSAGE_ID = off\n"
             "SHOW_MESSAGE_ID = on\n\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = on\nloses values\n"},
        PLAN{"so it is where the change sets the same value",
             "[MESSAGES 23.3_pro]\nSHOW_MESSAGE_ID = off\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = on\n", SHOW_MESSAGE_ID,
             "on",
             "\n[MESSAGES 23.3_pro]\nSHOW_MESSAGE_ID = off\nSHOW_MESSAGE_ID = on\n\n[Messages 23.4_pro]\n"
             "SHOW_MESSAGE_ID = on\nloses values\n"},
        PLAN{"a section in another letter case that would take the running one's place",
             "# c\n[GENERAL 23.4_pro]\nx = y\n", HDL_PREFERENCE, "VHDL",
             "4 FILE:2: the section [GENERAL 23.4_pro] differs from [General 23.4_pro] in letter case only, and a save "
             "would write HDL_PREFERENCE below it, where no lookup finds it; rename that section"},
        PLAN{"a section in another letter case that would take effect",
             "[general 23.4_pro]\nCOMPACT_REPORT_TABLE_FORMAT = on\n", HDL_PREFERENCE, "VHDL",
             "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\nCOMPACT_REPORT_TABLE_FORMAT = on\n"
             "other: COMPACT_REPORT_TABLE_FORMAT from 'off' to 'on', as [General 23.4_pro] says, since line 1 is not "
             "kept as it is\nloses values\n"},
        PLAN{"an empty section that kept an older value away",
             "[Messages 23.4_pro]\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n", HDL_PREFERENCE, "VHDL",
             "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n"
             "other: SHOW_MESSAGE_ID from 'on' to 'off', as [Messages 23.3_pro] says, since line 1 is not kept as it "
             "is\n"
             "loses values\n"},
        PLAN{"an empty value that kept an older value away",
             "[Messages 23.4_pro]\nSHOW_MESSAGE_ID =\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n", HDL_PREFERENCE,
             "VHDL",
             "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n"
             "other: SHOW_MESSAGE_ID from 'on' to 'off', as [Messages 23.3_pro] says, since line 1 is not kept as it "
             "is\n"
             "loses values\n"},
        PLAN{"an older value that is not allowed any more", "[Messages 23.3_pro]\nSHOW_MESSAGE_ID = 1\n",
             SHOW_MESSAGE_PARTITION_ID, "on",
             "\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = 1\n\n[Messages 23.4_pro]\nSHOW_MESSAGE_PARTITION_ID = on\n"
             "warning: this also changes SHOW_MESSAGE_ID from '1' to 'on': the old value is an older "
             "release's and is no longer allowed\n"},
        PLAN{"a reset leaves the key out",
             "[General 23.4_pro]\nHDL_PREFERENCE = VHDL\nUSER_LIBRARIES = /x\n",
             HDL_PREFERENCE,
             {},
             "\n[General 23.4_pro]\nUSER_LIBRARIES = /x\n"},
        PLAN{"a reset writes the default over an older value",
             "[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n",
             SHOW_MESSAGE_ID,
             {},
             "\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = on\n"},
        PLAN{"a reset needs no default where the section stays",
             "[Cloud 23.4_pro]\nCLOUD_SERVER = a\nCLOUD_USER_ID = me\n[Cloud 23.3_pro]\nCLOUD_SERVER = b\n",
             CLOUD_SERVER,
             {},
             "\n[Cloud 23.3_pro]\nCLOUD_SERVER = b\n\n[Cloud 23.4_pro]\nCLOUD_USER_ID = me\n"},
        PLAN{"a reset without a default names the section that is in its way",
             "[Cloud 23.4_pro]\nCLOUD_SERVER = a\n[Cloud 23.3_pro]\nCLOUD_SERVER = b\n",
             CLOUD_SERVER,
             {},
             "4 FILE:3: the section [Cloud 23.3_pro] gives CLOUD_SERVER the value 'b', which its empty default cannot "
             "override; remove the value there"}));

// --- Several changes ---

constexpr const char* empty_section_first = "[Messages 23.4_pro]\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n";

TEST(PREFERENCE_PLANS, make_several_changes_at_once)
{
    const PREFERENCE_PLAN plan =
        plan_preference_changes("FILE", "[General 23.4_pro]\nHDL_PREFERENCE = VHDL\nUSER_LIBRARIES = /x\n",
                                {{HDL_PREFERENCE, {}}, {SHOW_MESSAGE_ID, "off"}, {USER_LIBRARIES, "/y"}});
    EXPECT_EQ(plan.after, "\n[General 23.4_pro]\nUSER_LIBRARIES = /y\n\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n");
    EXPECT_TRUE(plan.other_values.empty());
    EXPECT_FALSE(plan.loses_values());
}

TEST(PREFERENCE_PLANS, leave_a_value_that_may_stand_elsewhere_where_it_is)
{
    const std::string before = "# c\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n";
    const std::vector<PREFERENCE_CHANGE> changes = {{SHOW_MESSAGE_ID, "off", true}, {HDL_PREFERENCE, "Verilog", true}};
    EXPECT_EQ(plan_preference_changes("FILE", before, changes).after, before);
    EXPECT_NE(plan_preference_changes("FILE", before, {{SHOW_MESSAGE_ID, "off"}}).after, before);
    EXPECT_NE(plan_preference_changes("FILE", before, {{HDL_PREFERENCE, "Verilog"}}).after, before);
    EXPECT_NE(plan_preference_changes("FILE", before, {{SHOW_MESSAGE_ID, "OFF", true}}).after, before);
}

TEST(PREFERENCE_PLANS, write_such_a_value_where_it_would_go)
{
    const PREFERENCE_PLAN plan = plan_preference_changes(
        "FILE", empty_section_first, {{SHOW_MESSAGE_ID, "on", true}, {HDL_PREFERENCE, "VHDL", true}});
    EXPECT_EQ(plan.after,
              "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n\n[Messages 23.3_pro]\nSHOW_MESSAGE_ID = off\n\n"
              "[Messages 23.4_pro]\nSHOW_MESSAGE_ID = on\n");
    EXPECT_FALSE(plan.loses_values());
}

TEST(PREFERENCE_PLANS, name_other_preferences_that_change_and_none_that_are_to)
{
    EXPECT_EQ(plan_preference_changes("FILE", empty_section_first, {{HDL_PREFERENCE, "VHDL"}}).other_values.size(), 1U);
    EXPECT_TRUE(
        plan_preference_changes("FILE", empty_section_first, {{HDL_PREFERENCE, "VHDL"}, {SHOW_MESSAGE_ID, "off"}})
            .other_values.empty());
}

TEST(PREFERENCE_PLANS, make_no_change_where_one_cannot_be_made)
{
    EXPECT_THROW(plan_preference_changes("FILE", "[GENERAL 23.4_pro]\nx = y\n",
                                         {{SHOW_MESSAGE_ID, "off"}, {HDL_PREFERENCE, "VHDL"}}),
                 TOOL_ERROR);
}

// --- Beside the library ---

class PREFERENCE_PLAN_BESIDE_THE_LIBRARY : public ISOLATED_TEST
{
protected:
    ~PREFERENCE_PLAN_BESIDE_THE_LIBRARY() override
    {
        cfg_close_user_ini_file();
    }

    // What a program leaves that looks everything up, makes the change and saves.
    static std::string saved_by_library(const std::string& bytes, const PREFERENCE_CHANGE& change)
    {
        write_file("user/velmar2.ini", bytes);
        cfg_close_user_ini_file();
        for (const CFG_USER_INI_ENUMS number : all_preference_numbers())
            cfg_get_user_ini_value(number);
        const std::string key = cfg_get_user_ini_ini_string(change.number);
        const auto current = cfg_user_ini_records->find(cfg_get_section_for_name(key.c_str(), nullptr, true) + key);
        if (change.value)
            EXPECT_TRUE(cfg_set_user_ini_value(change.number, *change.value));
        else if (current != cfg_user_ini_records->end())
            current->second->value.clear();
        EXPECT_TRUE(cfg_write_and_close_user_ini_file());
        return read_file("user/velmar2.ini");
    }
};

TEST_F(PREFERENCE_PLAN_BESIDE_THE_LIBRARY, saves_the_same_bytes)
{
    environment.set("VELMAR2_INI", temporary.path("cwd/user"));
    write_file("user/velmar2.ini", "");
    const std::vector<PREFERENCE_CHANGE> changes = {{HDL_PREFERENCE, "VHDL"},
                                                    {HDL_PREFERENCE, {}},
                                                    {SHOW_MESSAGE_ID, "off"},
                                                    {DISPLAY_WARNING_MESSAGES, "1"},
                                                    {DISPLAY_WARNING_MESSAGES, {}}};
    int made = 0;
    int answered = 0;
    for (unsigned int seed = 1; seed <= 400; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        SETTINGS_GENERATOR generate(seed);
        const std::string before = generated_preference_file(generate);
        const PREFERENCE_CHANGE& change = changes[generate.below(changes.size())];
        std::string after;
        try
        {
            after = plan_preference_changes("FILE", before, {change}).after;
        }
        catch (const TOOL_ERROR&)
        {
            continue;
        }
        if (after == before)
            continue;
        ++made;
        // The new file answers as was asked for; a reset may have written the default.
        const std::string wanted = change.value.value_or(default_preference_value(change.number));
        ASSERT_EQ(PREFERENCES(after).look_up(change.number).value, wanted);
        const std::string saved = saved_by_library(before, change);
        if (!change.value && after != saved)
        {
            ASSERT_NE(PREFERENCES(saved).look_up(change.number).value, wanted);
            ++answered;
        }
        else
            ASSERT_EQ(after, saved) << before;
    }
    EXPECT_GT(made, 200);
    EXPECT_LT(answered, made / 10);
}
}
