#include "cfg_ini/cfg_user_ini_reader/preference_catalogue.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/gen/gen.h"
#include "tests/cfg_user_ini_reader/expected_preferences.h"
#include "tests/cfg_user_ini_reader/letter_case.h"

using namespace zon_cfg;

namespace
{
constexpr int end_marker = 126;

CFG_USER_INI_ENUMS number(int value)
{
    return static_cast<CFG_USER_INI_ENUMS>(value);
}

// By number, with empty rows for the numbers that belong to no preference.
std::map<int, EXPECTED_PREFERENCE> every_number()
{
    std::map<int, EXPECTED_PREFERENCE> rows;
    for (int i = 0; i <= end_marker; ++i)
        rows[i] = {i, "", "", {}, "", "", ""};
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
        rows[preference.number] = preference;
    return rows;
}

// --- Columns ---

TEST(preference_catalogue, accessors_answer_for_every_number)
{
    ASSERT_EQ(expected_preferences().size(), 121U);
    for (const auto& [position, expected] : every_number())
    {
        SCOPED_TRACE(std::to_string(position) + " " + expected.key);
        EXPECT_EQ(cfg_get_name_from_enum(number(position)), expected.key);
        EXPECT_EQ(cfg_get_user_ini_ini_string(number(position)), expected.key);
        EXPECT_EQ(cfg_get_user_ini_registry_string(number(position)), expected.registry_name);
        EXPECT_EQ(cfg_get_user_ini_registry_branch_string(number(position)), expected.registry_branch);
        EXPECT_EQ(cfg_get_user_ini_registry_sub_branch_string(number(position)), "");
        EXPECT_EQ(cfg_get_user_ini_ini_desc(number(position)).empty(), expected.key.empty());
    }
}

TEST(preference_catalogue, columns_have_127_texts)
{
    for (const PREFERENCE_COLUMN* const column :
         {&cfg_user_ini_ini_names, &cfg_user_ini_ini_desc, &cfg_user_ini_registry_names,
          &cfg_user_ini_registry_branches, &cfg_user_ini_registry_sub_branches})
    {
        EXPECT_EQ(column->size(), 127U);
        EXPECT_EQ(std::ranges::count(*column, nullptr), 0);
        EXPECT_STREQ(column->back(), "");
    }
}

TEST(preference_catalogue, enumerators_are_the_keys)
{
    EXPECT_EQ(cfg_get_name_from_enum(DISPLAY_WARNING_MESSAGES), "DISPLAY_WARNING_MESSAGES");
    EXPECT_EQ(cfg_get_name_from_enum(PROMOTE_CRITCAL_WARNING_TO_ERROR_MESSAGE),
              "PROMOTE_CRITCAL_WARNING_TO_ERROR_MESSAGE");
    EXPECT_EQ(cfg_get_name_from_enum(AUTO_RECOMPILE_BEFORE_SIM), "AUTO_RECOMPILE_BEFORE_SIM");
    EXPECT_EQ(cfg_get_name_from_enum(DNI_COMPILATION_MODE_23_4), "DNI_COMPILATION_MODE_23_4");
    EXPECT_EQ(USER_LIBRARIES, 54);
    EXPECT_EQ(CFG_USER_INI_ENUMS_END, end_marker);
}

TEST(preference_catalogue, registry_names_stand_only_where_a_preference_lived_there)
{
    EXPECT_EQ(cfg_get_user_ini_registry_string(number(54)), "");
    EXPECT_EQ(cfg_get_user_ini_registry_string(number(0)), "Post warning messages");
}

TEST(preference_catalogue, registry_sub_branch_is_always_empty)
{
    for (int i = 0; i <= end_marker; ++i)
        EXPECT_EQ(cfg_get_user_ini_registry_sub_branch_string(number(i)), "") << i;
}

TEST(preference_catalogue, end_marker_has_no_name)
{
    EXPECT_EQ(cfg_get_name_from_enum(number(126)), "");
}

// --- Descriptions ---

TEST(preference_catalogue, descriptions_that_are_fixed_stand_word_for_word)
{
    const std::vector<std::pair<CFG_USER_INI_ENUMS, std::string>> fixed = {
        {COMPACT_REPORT_TABLE_FORMAT, "Displays tables in the Timing Analyzer report files in a vertical format, which "
                                      "allows you to more easily browse the report file in a text editor."},
        {SHOW_MESSAGE_ID, "Displays the numeric ID of the message after its type definition in parentheses."},
        {COMMAND_LINE_INTERNAL_ERROR_MESSAGE_COLOR,
         "Specifies foreground color for internal error messages when using the command line."},
        {DNI_COMPILATION_MODE_23_4, "This option is to set the compilation mode to DNI or classic."},
        {USER_LIBRARIES, "Allows you to specify the path name for a library you want to add to the Libraries list."},
        {USER_IP_SEARCH_PATHS, "Allows you to specify the path you want to add to the IP search paths list."}};
    for (const auto& [preference, text] : fixed)
        EXPECT_EQ(cfg_get_user_ini_ini_desc(preference), text);

    const std::string processors = cfg_get_user_ini_ini_desc(NUM_PARALLEL_PROCESSORS);
    EXPECT_TRUE(processors.starts_with(
        "Specifies the maximum number of processors allowed for use by excutables that support parallel processing. "
        "Set "
        "'All' to use all processors available, or a positive integer to specify any lesser number. "))
        << processors;
    EXPECT_NE(processors.find("four-processor machine"), std::string::npos) << processors;
}

TEST(preference_catalogue, each_description_is_a_paragraph_of_its_own)
{
    std::set<std::string> texts;
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
    {
        SCOPED_TRACE(preference.key);
        const std::string text = cfg_get_user_ini_ini_desc(number(preference.number));
        EXPECT_TRUE(texts.insert(text).second) << "stands twice: " << text;
        EXPECT_GE(std::ranges::count(text, ' '), 9) << text;
        EXPECT_TRUE(text.front() >= 'A' && text.front() <= 'Z') << text;
        EXPECT_EQ(text.back(), '.') << text;
        EXPECT_EQ(text.find_first_of("\n\t"), std::string::npos) << text;
        EXPECT_EQ(text.find("  "), std::string::npos) << text;
        EXPECT_EQ(std::ranges::count(text, '(') - std::ranges::count(text, ')'), 0) << text;
    }
}

// The CRC-32 that zip files use.
std::uint32_t checksum(std::string_view text)
{
    std::uint32_t sum = ~0U;
    for (const char c : text)
    {
        sum ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit)
            sum = sum >> 1 ^ ((sum & 1) != 0 ? 0xEDB88320U : 0);
    }
    return ~sum;
}

// Users read these texts in preference dialogs. Whoever changes one renews its sum.
TEST(preference_catalogue, no_description_changes_by_accident)
{
    ASSERT_EQ(checksum("123456789"), 0xCBF43926U) << "the check value of this sum";
    // clang-format off
    const std::map<int, std::uint32_t> sums = {
        {0, 0x0FEF572D}, {1, 0x381939B1}, {2, 0x3DC8B80F}, {3, 0x6FEA8BA7}, {4, 0xF5FA450E},
        {5, 0xFDF0D89B}, {6, 0xE82A5360}, {7, 0x573AAA74}, {8, 0xF5EDF83D}, {9, 0xB12B575C},
        {10, 0x68D8003A}, {11, 0x43C2B2BF}, {12, 0xC7B6E5B1}, {13, 0x288B738A}, {14, 0xDBCC24FF},
        {15, 0x7895032A}, {16, 0xCBB1AAA0}, {17, 0x58C7528C}, {18, 0x788458DD}, {19, 0x361CC306},
        {20, 0x874AC165}, {21, 0xD7D0A61D}, {22, 0xBB561106}, {23, 0xDB534506}, {24, 0xE6CDD4AB},
        {25, 0xFBC23804}, {26, 0xC1DEDBBA}, {27, 0x1540B829}, {28, 0xEDAFBF8E}, {29, 0x0289BEF5},
        {30, 0x7ED9CB5D}, {31, 0xCDAFA681}, {32, 0xF0ADDD66}, {33, 0x6C44B95C}, {34, 0x411D74B4},
        {35, 0xBB1D41D5}, {36, 0x2815B3C1}, {37, 0xB87B903B}, {38, 0x35155209}, {43, 0x41834F3F},
        {44, 0x21F6AF76}, {45, 0xBE4E7D3D}, {46, 0x31E35047}, {47, 0xF5EB377C}, {48, 0x6D9A6E13},
        {49, 0x03DD356F}, {50, 0xF5F4CB9F}, {51, 0xE2D125C0}, {52, 0x2B59D9B6}, {53, 0xE122D397},
        {54, 0x0F602E4A}, {55, 0x0493AD25}, {56, 0x6413F2BB}, {57, 0x9E4A4C59}, {58, 0x2481CB81},
        {59, 0xC6F47034}, {60, 0x6DFA1BB1}, {61, 0x9B222446}, {62, 0xF1FB0229}, {63, 0x18E79FC1},
        {64, 0xDC48D3C0}, {65, 0x1A6A55FB}, {66, 0x0C2C0EF6}, {67, 0x241F15F3}, {68, 0xD9F2A841},
        {69, 0xF038C3DF}, {70, 0x915BD5B1}, {71, 0x0E3E1CB1}, {72, 0x2B2FD9D2}, {74, 0x1752C049},
        {75, 0x11F72A16}, {76, 0x3B3262FF}, {77, 0x089B2354}, {78, 0xD19005B8}, {79, 0xFA0E215B},
        {80, 0x74719F4F}, {81, 0x9ABEE64A}, {82, 0x766F02D4}, {83, 0xBC4B1AFC}, {84, 0x9615DEC4},
        {85, 0x853B4E2A}, {86, 0xDF9DA14F}, {87, 0x6083AF24}, {88, 0x607D6691}, {89, 0xB90E9AE8},
        {90, 0xCC3E52A7}, {91, 0x00DE4929}, {92, 0x300892C8}, {93, 0x82FBFAEA}, {94, 0xE736FA7C},
        {95, 0xFF546D90}, {96, 0x767C0998}, {97, 0x2D4DF4A0}, {98, 0x35E7D465}, {99, 0x0F10438B},
        {100, 0x8E4A81E7}, {101, 0x6A5B905B}, {102, 0x2D9EAB85}, {103, 0xDC2471B6}, {104, 0xC3C310D8},
        {105, 0xDDF2A16B}, {106, 0x6E239E68}, {107, 0x18DAD5C2}, {108, 0x49718882}, {109, 0x00A2CA84},
        {110, 0xA44A0229}, {111, 0xC7EA0949}, {112, 0xAD7DCE5D}, {113, 0x9AFE1EE0}, {114, 0x7B1101A3},
        {115, 0xC4F498B7}, {116, 0xBD844E9E}, {117, 0xDE3020F4}, {118, 0x96A5D3DF}, {119, 0x076284ED},
        {120, 0x72BC1D35}, {121, 0xCD09FBED}, {122, 0x94D57ABA}, {123, 0x2E828121}, {124, 0xD4552FC0},
        {125, 0x24C33CE1}};
    // clang-format on
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
    {
        const std::string text = cfg_get_user_ini_ini_desc(number(preference.number));
        EXPECT_EQ(checksum(text), sums.at(preference.number)) << preference.key << ": " << text;
    }
}

// --- Tables of pairs and triples ---

TEST(preference_catalogue, defaults_stand_by_number)
{
    ASSERT_EQ(cfg_user_ini_name_default_values.size(), 127U);
    for (const auto& [position, expected] : every_number())
    {
        SCOPED_TRACE(std::to_string(position) + " " + expected.key);
        const auto& [name, default_value] = cfg_user_ini_name_default_values[static_cast<std::size_t>(position)];
        EXPECT_EQ(name, expected.key);
        EXPECT_EQ(default_value, expected.default_value);
    }
}

TEST(preference_catalogue, some_preferences_have_a_default_and_some_none)
{
    const auto default_of = [](CFG_USER_INI_ENUMS preference)
    { return cfg_user_ini_name_default_values[preference_position(preference)].second; };
    EXPECT_STREQ(default_of(PGMW_OVERWRITE_START_UP_DELAY_US), "20000");
    EXPECT_STREQ(default_of(NUM_PARALLEL_PROCESSORS), "All");
    EXPECT_STREQ(default_of(HDL_PREFERENCE), "Verilog");
    EXPECT_STREQ(default_of(COMMAND_LINE_WARNING_MESSAGE_COLOR), "");
}

TEST(preference_catalogue, old_names_stand_in_the_order_of_their_trial)
{
    std::vector<std::pair<std::string, std::string>> expected = expected_old_names();
    expected.emplace_back("", "");
    EXPECT_EQ(expected.size(), 19U);
    const std::vector<std::pair<std::string, std::string>> actual(cfg_user_ini_name_old_name_table.begin(),
                                                                  cfg_user_ini_name_old_name_table.end());
    EXPECT_EQ(actual, expected);
}

TEST(preference_catalogue, triples_stand_in_order_and_end_with_an_empty_one)
{
    std::vector<std::vector<std::string>> expected;
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
    {
        for (const std::string& value : preference.values)
            expected.push_back({preference.key, preference.section, value});
    }
    expected.push_back({"", "", ""});

    std::vector<std::vector<std::string>> actual;
    for (const PREFERENCE_TRIPLE& triple : cfg_user_ini_enum_section_value_table)
        actual.push_back({triple.name, triple.section, triple.value});
    EXPECT_EQ(actual, expected);
}

// --- Finding ---

TEST(preference_catalogue, keys_are_found_in_any_letter_case)
{
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
    {
        EXPECT_EQ(find_preference(preference.key.c_str()), number(preference.number)) << preference.key;
        for (const std::string& spelling : {in_swapped_case(preference.key), in_mixed_case(preference.key)})
            EXPECT_EQ(find_preference(spelling.c_str()), number(preference.number)) << spelling;
    }
}

TEST(preference_catalogue, texts_beside_the_keys_are_not_found)
{
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
    {
        const std::string& key = preference.key;
        for (const std::string& text : {key + "_", "_" + key, " " + key, key + " ", key.substr(1), key + key})
            EXPECT_EQ(find_preference(text.c_str()), CFG_USER_INI_ENUMS_END) << text;
    }
    for (const char* const text : {"", " ", "USER", "Post warning messages", "GENERATE_HTML_REPORT_FILE",
                                   "PROMOTE_CRITICAL_WARNING_TO_ERROR_MESSAGE", "USER-LIBRARIES", "USER\x7fLIBRARIES"})
        EXPECT_EQ(find_preference(text), CFG_USER_INI_ENUMS_END) << text;
}

TEST(preference_catalogue, numbers_without_preference_have_no_triples)
{
    for (const int position : {39, 40, 41, 42, 73, 126})
    {
        EXPECT_TRUE(preference_triples(number(position)).empty()) << position;
        EXPECT_EQ(find_fitting_triple(number(position), nullptr), nullptr) << position;
        EXPECT_EQ(find_fitting_triple(number(position), ""), nullptr) << position;
    }
}

// The walk that the index stands for.
const PREFERENCE_TRIPLE* first_fitting_by_walk(const char* name, const char* value)
{
    for (const PREFERENCE_TRIPLE* triple = cfg_user_ini_enum_section_value_table.data(); *triple->name != '\0';
         ++triple)
    {
        if (gen_stricmp(triple->name, name) == 0 &&
            (value == nullptr || *triple->value == '\0' || gen_stricmp(triple->value, value) == 0))
            return triple;
    }
    return nullptr;
}

TEST(preference_catalogue, the_index_finds_the_triple_that_a_walk_finds)
{
    std::set<std::string> values = {"",    " ",    "2",   "16",     "-1",      "00", " on",
                                    "on ", "true", "yes", "Purple", "Bright_", "any"};
    for (const PREFERENCE_TRIPLE& triple : cfg_user_ini_enum_section_value_table)
    {
        values.insert(triple.value);
        values.insert(in_swapped_case(triple.value));
    }
    for (const EXPECTED_PREFERENCE& preference : expected_preferences())
    {
        const CFG_USER_INI_ENUMS position = number(preference.number);
        EXPECT_EQ(find_fitting_triple(position, nullptr), first_fitting_by_walk(preference.key.c_str(), nullptr))
            << preference.key;
        for (const std::string& value : values)
            EXPECT_EQ(find_fitting_triple(position, value.c_str()),
                      first_fitting_by_walk(preference.key.c_str(), value.c_str()))
                << preference.key << " = " << value;
    }
}

TEST(preference_catalogue, the_first_of_equal_triples_is_the_one_found)
{
    const PREFERENCE_TRIPLE* const first = find_fitting_triple(COMPACT_REPORT_TABLE_FORMAT, nullptr);
    ASSERT_NE(first, nullptr);
    EXPECT_STREQ(first->value, "1");
    EXPECT_EQ(first, preference_triples(COMPACT_REPORT_TABLE_FORMAT).data());
}
}
