// Why a preference has its value: what becomes of each line as a table, and beside the library, which answers otherwise
// only where a line that is said to count is changed.
#include "tools/velmar-cfg/preferences/preference_explanation.h"

#include <gmock/gmock.h>

#include "platform/ver/ver.h"
#include "tests/support/isolated_test.h"
#include "tests/velmar_cfg/preference_files.h"
#include "tools/velmar-cfg/preferences/preference_lines.h"

using namespace zon_cfg;

namespace
{
INPUT_FILE file_of(const std::string& bytes)
{
    INPUT_FILE file;
    file.path = "FILE";
    file.bytes = bytes;
    return file;
}

PREFERENCE_EXPLANATION explained(const std::string& bytes, CFG_USER_INI_ENUMS number)
{
    const INPUT_FILE file = file_of(bytes);
    SECRETS secrets;
    return explain_preference(&file, number, secrets);
}

// "2 counts; 4 duplicate of 2": each line, in the file's order.
std::string outcome(const PREFERENCE_EXPLANATION& explanation)
{
    std::string text;
    for (const EXPLAINED_PREFERENCE_LINE& line : explanation.lines)
    {
        const char* const word = fate_word(line.fate);
        text += (text.empty() ? "" : "; ") + std::to_string(line.number) + (line.counts() ? " counts" : "") +
                (word == nullptr ? "" : std::string(" ") + word) +
                (line.other_line == 0 ? "" : " of " + std::to_string(line.other_line)) + (line.old_name ? " old" : "");
    }
    return text;
}

struct EXPLAINED
{
    const char* title;
    CFG_USER_INI_ENUMS number;
    std::string file;
    const char* outcome;
    const char* value;
};

void PrintTo(const EXPLAINED& row, std::ostream* stream)
{
    *stream << row.title;
}

class PREFERENCE_EXPLANATION_TEST : public testing::TestWithParam<EXPLAINED>
{
};

TEST_P(PREFERENCE_EXPLANATION_TEST, says_what_becomes_of_each_line)
{
    const PREFERENCE_EXPLANATION explanation = explained(GetParam().file, GetParam().number);
    EXPECT_EQ(outcome(explanation), GetParam().outcome);
    EXPECT_EQ(explanation.preference.value, GetParam().value);
    EXPECT_EQ(explanation.path, "FILE");
}

INSTANTIATE_TEST_SUITE_P(
    lines, PREFERENCE_EXPLANATION_TEST,
    testing::Values(
        EXPLAINED{"no line", HDL_PREFERENCE, "[General 23.4_pro]\nUSER_LIBRARIES = /x\n", "", "Verilog"},
        EXPLAINED{"the running release's", HDL_PREFERENCE, "[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n", "2 counts",
                  "VHDL"},
        EXPLAINED{"the running release's before all others", HDL_PREFERENCE,
                  "[General]\nHDL_PREFERENCE = KHDL\n[General 23.3_pro]\nHDL_PREFERENCE = KHDL\n[General 23.4_pro]\n"
                  "HDL_PREFERENCE = VHDL\n",
                  "2 running-release of 5; 4 running-release of 5; 6 counts", "VHDL"},
        EXPLAINED{"the running release's section without the key", HDL_PREFERENCE,
                  "[General 23.3_pro]\nHDL_PREFERENCE = KHDL\n[General 23.4_pro]\n[General]\nHDL_PREFERENCE = KHDL\n"
                  "[General 23.4_pro]\n",
                  "2 running-release of 3; 5 running-release of 3", "Verilog"},
        EXPLAINED{"an empty value of the running release", HDL_PREFERENCE,
                  "[General 23.4_pro]\nHDL_PREFERENCE =\n[General 23.3_pro]\nHDL_PREFERENCE = KHDL\n",
                  "2 empty-value; 4 running-release of 1", "Verilog"},
        EXPLAINED{"the newest of the older releases, whatever stands first", HDL_PREFERENCE,
                  "[General]\nHDL_PREFERENCE = KHDL\n[General 22.4_pro]\nHDL_PREFERENCE = KHDL\n[General 23.3_pro]\n"
                  "HDL_PREFERENCE = VHDL\n",
                  "2 other-release-first of 6; 4 other-release-first of 6; 6 counts", "VHDL"},
        EXPLAINED{"an empty value of an older release", HDL_PREFERENCE,
                  "[General 23.3_pro]\nHDL_PREFERENCE =\n[General 22.4_pro]\nHDL_PREFERENCE = KHDL\n[General]\n"
                  "HDL_PREFERENCE = VHDL\n",
                  "2 empty-value; 4 other-release-first of 2; 6 counts", "VHDL"},
        EXPLAINED{"nothing but empty values", HDL_PREFERENCE,
                  "[General 23.3_pro]\nHDL_PREFERENCE =\n[General]\nHDL_PREFERENCE = \n",
                  "2 empty-value; 4 empty-value", "Verilog"},
        EXPLAINED{"a second line of the same section", HDL_PREFERENCE,
                  "[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n[X]\n[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n",
                  "2 counts; 5 duplicate of 2", "VHDL"},
        EXPLAINED{"a second line of a section that is not looked into", HDL_PREFERENCE,
                  "[X]\nHDL_PREFERENCE = VHDL\nHDL_PREFERENCE = KHDL\n", "2 wrong-section; 3 wrong-section", "Verilog"},
        EXPLAINED{"an old name behind the present one", SOUND_WHEN_PROCESS_DONE,
                  "[General 23.4_pro]\nSOUND_WHEN_PROCESS_DONE = on\nBeep when process done = off\n",
                  "2 counts; 3 duplicate of 2 old", "on"},
        EXPLAINED{"an old name before the present one, in another letter case", SOUND_WHEN_PROCESS_DONE,
                  "[General 23.4_pro]\nBEEP when process done = off\nSOUND_WHEN_PROCESS_DONE = on\n",
                  "2 counts old; 3 duplicate of 2", "off"},
        EXPLAINED{"another letter case of the key", HDL_PREFERENCE,
                  "[General 23.4_pro]\nhdl_preference = VHDL\n[General 23.3_pro]\nHdl_Preference = VHDL\n",
                  "2 letter-case; 4 letter-case", "Verilog"},
        EXPLAINED{"other sections", HDL_PREFERENCE,
                  "[GENERAL 23.4_pro]\nHDL_PREFERENCE = VHDL\n[General 1.0_pro]\nHDL_PREFERENCE = VHDL\n"
                  "[Messages 23.4_pro]\nHDL_PREFERENCE = VHDL\n[Generally]\nHDL_PREFERENCE = VHDL\n",
                  "2 section-letter-case; 4 unknown-release; 6 wrong-section; 8 wrong-section", "Verilog"},
        EXPLAINED{"no section", HDL_PREFERENCE, "HDL_PREFERENCE = VHDL\n[] \nHDL_PREFERENCE = VHDL\n",
                  "1 before-section; 3 below-empty-header", "Verilog"},
        EXPLAINED{"comments", HDL_PREFERENCE,
                  "# hdl_preference = VHDL\n[General 23.4_pro]\n;HDL_PREFERENCE = VHDL\n# HDL_PREFERENCE\n",
                  "1 no-comment; 3 no-comment", "Verilog"},
        EXPLAINED{"a bracket", PROXY_SETTINGS,
                  "PROXY_SETTINGS = [::1]\n[Internet Connectivity 23.4_pro]\nPROXY_SETTINGS = [open\n"
                  "PROXY_SETTINGS = a\n[X] PROXY_SETTINGS = b\n",
                  "1 bracket-in-value; 3 bracket-in-value; 4 counts", "a"},
        EXPLAINED{"a value that is not allowed", SHOW_MESSAGE_ID, "[Messages 23.4_pro]\nSHOW_MESSAGE_ID = 1\n",
                  "2 counts not-allowed", "1"},
        EXPLAINED{"section and key run together in another way", HDL_PREFERENCE,
                  "[General 23.4_proHDL]\n_PREFERENCE = VHDL\n[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n",
                  "2 counts; 4 duplicate of 2", "VHDL"},
        EXPLAINED{"so without the running release's section", HDL_PREFERENCE,
                  "[General 23.4_proHDL]\n_PREFERENCE =\n[General 23.3_pro]\nHDL_PREFERENCE = KHDL\n",
                  "2 empty-value; 4 running-release of 2", "Verilog"},
        EXPLAINED{"so without any section", HDL_PREFERENCE, "[] \nGeneral 23.4_proHDL_PREFERENCE = VHDL\n", "",
                  "Verilog"},
        EXPLAINED{"another key", HDL_PREFERENCE, "[General 23.4_pro]\nMANAGED_FLOW_HDL_PREFERENCE = VHDL\n", "",
                  "Verilog"}));

TEST(PREFERENCE_EXPLANATIONS, show_names_and_values_as_they_stand_there)
{
    const std::vector<EXPLAINED_PREFERENCE_LINE> lines =
        explained("# x\n Beep when process done = \" a = b \" \r\n[a]\nSOUND_WHEN_PROCESS_DONE = x [y]\n",
                  SOUND_WHEN_PROCESS_DONE)
            .lines;
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].name, "Beep when process done");
    EXPECT_EQ(lines[0].value, "a = b");
    EXPECT_EQ(lines[0].section, std::nullopt);
    EXPECT_EQ(lines[1].name, "SOUND_WHEN_PROCESS_DONE");
    EXPECT_EQ(lines[1].value, "x [y]");
    EXPECT_EQ(lines[1].section, "a");
}

TEST(PREFERENCE_EXPLANATIONS, of_no_file_have_no_lines)
{
    SECRETS secrets;
    const PREFERENCE_EXPLANATION explanation = explain_preference(nullptr, HDL_PREFERENCE, secrets);
    EXPECT_EQ(explanation.path, "");
    EXPECT_TRUE(explanation.lines.empty());
    EXPECT_EQ(explanation.preference.value, "Verilog");
    EXPECT_EQ(explanation.preference.line, 0U);
}

TEST(PREFERENCE_EXPLANATIONS, have_a_word_and_a_sentence_for_each_fate)
{
    std::set<std::string> words;
    const PREFERENCE preference = PREFERENCES("").look_up(HDL_PREFERENCE);
    const int all = static_cast<int>(LINE_FATE::OTHER_RELEASE_FIRST);
    for (int fate = static_cast<int>(LINE_FATE::COUNTS) + 1; fate <= all; ++fate)
    {
        EXPLAINED_PREFERENCE_LINE line;
        line.fate = static_cast<LINE_FATE>(fate);
        EXPECT_TRUE(words.insert(fate_word(line.fate)).second) << fate;
        EXPECT_TRUE(words.insert(fate_as_text(line, preference)).second) << fate;
    }
    EXPECT_EQ(fate_word(LINE_FATE::COUNTS), nullptr);
    EXPECT_EQ(fate_as_text({}, preference), "");
}

// --- Beside the library ---

class PREFERENCE_EXPLANATION_BESIDE_THE_LIBRARY : public ISOLATED_TEST
{
protected:
    PREFERENCE_EXPLANATION_BESIDE_THE_LIBRARY()
    {
        write_file("user/velmar2.ini", "");
        environment.set("VELMAR2_INI", temporary.path("cwd/user"));
    }

    ~PREFERENCE_EXPLANATION_BESIDE_THE_LIBRARY() override
    {
        cfg_close_user_ini_file();
    }

    static std::string answer_of_library(const std::vector<std::string>& lines, CFG_USER_INI_ENUMS number)
    {
        std::string bytes;
        for (const std::string& line : lines)
            bytes += line + "\n";
        write_file("user/velmar2.ini", bytes);
        cfg_close_user_ini_file();
        return cfg_get_user_ini_value(number);
    }
};

std::vector<std::string> lines_of(std::string_view bytes)
{
    std::vector<std::string> lines;
    for_each_preference_line(bytes, [&lines](std::size_t, std::string_view text, const PREFERENCE_LINE&,
                                             const std::string&) { lines.emplace_back(text); });
    return lines;
}

// Lines about two keys, in sections where they are looked for and in others.
std::string generated_lines(SETTINGS_GENERATOR& generate)
{
    static const std::vector<std::string> sections = {
        "General 23.3_pro", "General 23.3_pro", "General 22.4_pro",  "General", "General",
        "general 23.3_pro", "General 1.0_pro",  "Messages 23.3_pro", "",        "General 23.3_proHDL"};
    static const std::vector<std::string> keys = {
        "HDL_PREFERENCE", "HDL_PREFERENCE",  "HDL_PREFERENCE",          "hdl_preference",        "_PREFERENCE",
        "UNKNOWN",        "#HDL_PREFERENCE", "SOUND_WHEN_PROCESS_DONE", "Beep when process done"};
    static const std::vector<std::string> values = {"VHDL", "KHDL", "on", "", "\"off\"", "x", "[x]"};
    std::string text;
    for (std::size_t i = generate.below(10); i > 0; --i)
        text += generate.below(3) == 0 ? "[" + generate.pick(sections) + "] \n"
                                       : generate.one_of_each({keys, {" = "}, values, {"\n"}});
    return generate.below(4) == 0 ? text + "[General 23.4_pro]\n" + generate.pick(keys) + " = VHDL\n" : text;
}

// Without a line, the library answers as before unless the line counts, or has an empty value or a header in it, which
// may have kept others from being asked.
TEST_F(PREFERENCE_EXPLANATION_BESIDE_THE_LIBRARY, names_the_line_that_decides_and_no_other)
{
    constexpr CFG_USER_INI_ENUMS numbers[] = {HDL_PREFERENCE, SOUND_WHEN_PROCESS_DONE};
    int counted = 0;
    int others = 0;
    for (unsigned int seed = 1; seed <= 600; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        SETTINGS_GENERATOR generate(seed);
        const std::string bytes = seed % 5 == 0 ? generated_preference_file(generate) : generated_lines(generate);
        const std::vector<std::string> lines = lines_of(bytes);
        for (const CFG_USER_INI_ENUMS number : numbers)
        {
            const PREFERENCE_EXPLANATION explanation = explained(bytes, number);
            const std::string answer = answer_of_library(lines, number);
            ASSERT_EQ(explanation.preference.value, answer);
            std::size_t counts = 0;
            for (const EXPLAINED_PREFERENCE_LINE& line : explanation.lines)
            {
                std::vector<std::string> changed = lines;
                std::string& text = changed[line.number - 1];
                if (line.counts())
                {
                    ++counts;
                    ASSERT_EQ(line.value, answer);
                    text = text.substr(0, text.find('=')) + "= another";
                    ASSERT_EQ(answer_of_library(changed, number), "another") << bytes;
                }
                else if (line.fate != LINE_FATE::EMPTY_VALUE && line.fate != LINE_FATE::TAKEN_FOR_HEADER)
                {
                    text.clear();
                    ASSERT_EQ(answer_of_library(changed, number), answer) << line.number << "\n" << bytes;
                    ++others;
                }
            }
            ASSERT_EQ(counts, explanation.preference.origin.section.empty() ? 0U : 1U) << bytes;
            counted += static_cast<int>(counts);
        }
    }
    EXPECT_GT(counted, 100);
    EXPECT_GT(others, 300);
}
}
