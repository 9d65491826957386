#include "cfg_ini/cfg_user_ini_reader/preference_catalogue.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
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
