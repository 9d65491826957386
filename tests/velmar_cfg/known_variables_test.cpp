// The small tables of the settings: known variables, the library's rules as the tool asks for them, typed readings, and
// the environment that matters.
#include "tools/velmar-cfg/settings/known_variables.h"

#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>

#include "tests/support/isolated_test.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/library_rules.h"
#include "tools/velmar-cfg/settings/typed_readings.h"
#include "tools/velmar-cfg/settings/variable_name.h"

using namespace std::string_literals;

namespace
{
using testing::ElementsAre;

// --- Known variables ---

TEST(KNOWN_VARIABLES, are_the_catalogues_and_the_librarys_own)
{
    struct ROW
    {
        const char* name;
        KNOWN_VARIABLE::KIND kind;
        const char* default_text;
    };
    using KIND = KNOWN_VARIABLE::KIND;
    const ROW rows[] = {
        {"msg_sqlite", KIND::SWITCH, "on"},       {"zanth_flow", KIND::SWITCH, "on"},
        {"jtag_auto_config", KIND::SWITCH, ""},   {"msg_debug_per_subsystem", KIND::SWITCH, ""},
        {"debug_msg_level", KIND::INTEGER, ""},   {"cfg_min_accessed_to_report", KIND::INTEGER, ""},
        {"cfg_max_to_report", KIND::INTEGER, ""},
    };
    for (const ROW& row : rows)
    {
        const KNOWN_VARIABLE* const known = find_known_variable(row.name);
        ASSERT_NE(known, nullptr) << row.name;
        EXPECT_EQ(known->name, row.name);
        EXPECT_EQ(known->kind, row.kind) << row.name;
        EXPECT_EQ(known->default_text, row.default_text) << row.name;
    }
    EXPECT_EQ(known_variables().size(), 30U + 8U + 3U);
    EXPECT_EQ(known_variables().front().default_text.empty(), false); // the catalogue's come first
    EXPECT_EQ(known_variables().back().kind, KIND::INTEGER);
}

TEST(KNOWN_VARIABLES, are_found_in_any_letter_case_and_by_no_other_name)
{
    const KNOWN_VARIABLE* const known = find_known_variable("msg_sqlite");
    for (const std::string& name : {"MSG_SQLITE"s, "Msg_Sqlite"s, "msg_sqlite\0more"s})
        EXPECT_EQ(find_known_variable(name), known) << name;
    for (const char* const name : {"", "msg_sqlit", "msg_sqlite ", " msg_sqlite", "msg-sqlite", "msg_sqlitee"})
        EXPECT_EQ(find_known_variable(name), nullptr) << name;
}

TEST(KNOWN_VARIABLES, have_each_name_once)
{
    VARIABLE_NAMES names;
    ASSERT_EQ(known_variable_names().size(), known_variables().size());
    for (std::size_t i = 0; i < known_variables().size(); ++i)
    {
        EXPECT_EQ(known_variable_names()[i], known_variables()[i].name);
        EXPECT_TRUE(names.insert(known_variables()[i].name).second) << known_variables()[i].name;
        EXPECT_EQ(find_known_variable(known_variables()[i].name), &known_variables()[i]);
    }
}

// --- Names in tables ---

TEST(NAME_TABLES, compare_names_as_the_store_does)
{
    const std::pair<std::string, std::string> equal[] = {
        {"a", "A"}, {"", ""}, {"a\0b"s, "A\0c"s}, {"a\0b"s, "a"}, {"\0x"s, ""}};
    for (const auto& [a, b] : equal)
    {
        EXPECT_TRUE(same_name(a, b)) << a;
        EXPECT_EQ(NAME_HASH()(a), NAME_HASH()(b)) << a;
        EXPECT_TRUE(NAME_EQUAL()(a, b)) << a;
        EXPECT_EQ(hash_of_name(a), NAME_HASH()(a));
    }
    const std::pair<std::string, std::string> different[] = {{"a", "b"},       {"a", "aa"},   {"@", "`"}, {"[", "{"},
                                                             {"\xc4", "\xe4"}, {"a b", "ab"}, {"a", ""}};
    for (const auto& [a, b] : different)
        EXPECT_FALSE(same_name(a, b)) << a << " and " << b;
    BY_VARIABLE_NAME<int> table;
    table["Fan"] = 1;
    table["FAN"] = 2;
    EXPECT_EQ(table.size(), 1U);
    EXPECT_EQ(table.begin()->first, "Fan");
    EXPECT_EQ(table.at("fan"), 2);
}

// --- Lines and items ---

TEST(LIBRARY_RULES, take_lines_apart)
{
    struct ROW
    {
        std::string line;
        OUTCOME outcome;
        const char* name;
        const char* value;
        std::size_t length_without_comment;
    };
    const ROW rows[] = {
        {"a=1", OUTCOME::STORED, "a", "1", 3},
        {" a b = x y ; z", OUTCOME::STORED, "ab", "x y", 11},
        {"a=\"x;y\"#z", OUTCOME::STORED, "a", "\"x;y\"", 7},
        {"a=x//y", OUTCOME::STORED, "a", "x//y", 6},
        {"a=x/y", OUTCOME::STORED, "a", "x/y", 5},
        {"//a=x", OUTCOME::NO_EQUALS_SIGN, "", "", 0},
        {"a//b=x", OUTCOME::NO_EQUALS_SIGN, "", "", 1},
        {"a=", OUTCOME::TOO_SHORT, "", "", 2},
        {"=5", OUTCOME::STORED, "", "5", 2},
        {"abc", OUTCOME::NO_EQUALS_SIGN, "", "", 3},
        {"", OUTCOME::TOO_SHORT, "", "", 0},
    };
    for (const ROW& row : rows)
    {
        LINE_PARTS parts;
        EXPECT_EQ(outcome_of_line(row.line, parts), row.outcome) << row.line;
        if (row.outcome == OUTCOME::STORED)
        {
            EXPECT_EQ(parts.name, row.name) << row.line;
            EXPECT_EQ(parts.value, row.value) << row.line;
        }
        EXPECT_EQ(length_without_comment(row.line), row.length_without_comment) << row.line;
    }
}

TEST(LIBRARY_RULES, find_the_separator_of_items)
{
    for (const auto& [text, separator] :
         {std::pair("", ';'), {"a=1", ';'}, {"a=1;b:c", ';'}, {"a=1:b;c", ':'}, {":", ':'}})
        EXPECT_EQ(separator_of_items(text), separator) << text;
}

TEST(LIBRARY_RULES, convert_texts)
{
    EXPECT_EQ(as_boolean("On"), true);
    EXPECT_EQ(as_boolean("0"), false);
    EXPECT_EQ(as_boolean("yes"), std::nullopt);
    EXPECT_EQ(as_boolean(""), std::nullopt);
    EXPECT_EQ(as_integer("-2147483648"), std::numeric_limits<int>::min());
    EXPECT_EQ(as_integer("0"), 0);
    EXPECT_EQ(as_integer("2147483648"), std::nullopt);
    EXPECT_EQ(as_integer(" 1"), std::nullopt);
    EXPECT_EQ(as_unsigned("4294967295"), 4294967295U);
    EXPECT_EQ(as_unsigned("0"), 0U);
    EXPECT_EQ(as_unsigned("-0"), std::nullopt);
    bool whole = false;
    EXPECT_EQ(as_floating("2.5", &whole), 2.5);
    EXPECT_TRUE(whole);
    EXPECT_EQ(as_floating("2.5x", &whole), 2.5);
    EXPECT_FALSE(whole);
}

// --- Readings ---

TEST(READINGS_OF_TEXTS, are_those_of_every_reader)
{
    struct ROW
    {
        std::string text;
        const char* json;
    };
    const ROW rows[] = {
        {"", R"({"bool":null,"int":null,"uint":null,"double":null,"double_whole":false})"},
        {"1", R"({"bool":true,"int":1,"uint":1,"double":1.0,"double_whole":true})"},
        {"0", R"({"bool":false,"int":0,"uint":0,"double":0.0,"double_whole":true})"},
        {"off", R"({"bool":false,"int":null,"uint":null,"double":0.0,"double_whole":false})"},
        {"-7", R"({"bool":null,"int":-7,"uint":null,"double":-7.0,"double_whole":true})"},
        {"3000000000", R"({"bool":null,"int":null,"uint":3000000000,"double":3000000000.0,"double_whole":true})"},
        {"2.5ms", R"({"bool":null,"int":null,"uint":null,"double":2.5,"double_whole":false})"},
        {"1e999", R"({"bool":null,"int":null,"uint":null,"double":"inf","double_whole":true})"},
        {"1\0002"s, R"({"bool":true,"int":1,"uint":1,"double":1.0,"double_whole":true})"},
    };
    for (const ROW& row : rows)
    {
        TEXT_SINK sink;
        JSON_WRITER out(sink);
        write_json(out, read_typed(row.text));
        out.finish();
        EXPECT_EQ(nlohmann::ordered_json::parse(sink.text).dump(), row.json) << row.text;
    }
}

TEST(READINGS_OF_TEXTS, are_none_where_a_part_is_hidden)
{
    const std::string mark = mark_of({"", "", false});
    for (const std::string& text : {mark, "1" + mark, mark + "1"})
        EXPECT_TRUE(same_readings(read_typed(text), TYPED_READINGS())) << text;
}

TEST(READINGS_OF_TEXTS, are_the_same_only_when_each_is)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const TYPED_READINGS base{true, 1, 1U, 1.0, true};
    EXPECT_TRUE(same_readings(base, base));
    const TYPED_READINGS others[] = {
        {false, 1, 1U, 1.0, true}, {std::nullopt, 1, 1U, 1.0, true},
        {true, 2, 1U, 1.0, true},  {true, std::nullopt, 1U, 1.0, true},
        {true, 1, 2U, 1.0, true},  {true, 1, std::nullopt, 1.0, true},
        {true, 1, 1U, 1.5, true},  {true, 1, 1U, std::nullopt, true},
        {true, 1, 1U, 1.0, false}, {true, 1, 1U, nan, true},
        {true, 1, 1U, inf, true},
    };
    for (const TYPED_READINGS& other : others)
    {
        EXPECT_FALSE(same_readings(base, other));
        EXPECT_FALSE(same_readings(other, base));
        EXPECT_TRUE(same_readings(other, other));
    }
    const auto of_number = [](double number) {
        return TYPED_READINGS{std::nullopt, std::nullopt, std::nullopt, number, true};
    };
    EXPECT_TRUE(same_readings(of_number(0.0), of_number(-0.0)));
    EXPECT_FALSE(same_readings(of_number(inf), of_number(-inf)));
    EXPECT_FALSE(same_readings(of_number(nan), of_number(std::copysign(nan, -1))));
    EXPECT_FALSE(same_readings(of_number(nan), of_number(inf)));
}

// --- Environment ---

class ENVIRONMENT_THAT_MATTERS : public ISOLATED_TEST
{
};

TEST_F(ENVIRONMENT_THAT_MATTERS, has_each_variable_in_its_order)
{
    environment.set("HOME", "/home/ana");
    environment.set("VELMAR_INI_VARS", "");
    environment.set("VELMAR2_INI", "/x?token=abc");
    SECRETS secrets;
    std::vector<std::string> texts;
    for (const ENVIRONMENT_VARIABLE& variable : environment_that_matters(secrets))
        texts.push_back(variable.name + (variable.value ? "=" + *variable.value : ""));
    EXPECT_THAT(texts, ElementsAre("VELMAR_INI", "HOME=/home/ana", "VELMAR_INI_DISABLED", "APPENDED_VELMAR_INI",
                                   "VELMAR_INI_VARS=", "VELMAR2_INI=/x?token=" + secrets.mark("abc")));
}

TEST_F(ENVIRONMENT_THAT_MATTERS, hides_the_secrets_of_the_inline_text_once)
{
    SECRETS secrets;
    ENVIRONMENT_VARIABLE variable{"VELMAR_INI_VARS", "a=1;token=abc"};
    hide_in_environment(variable, secrets);
    EXPECT_EQ(with_hidden_parts_named(*variable.value), "a=1;token=\\(masked)");
    const ENVIRONMENT_VARIABLE once = variable;
    hide_in_environment(variable, secrets);
    EXPECT_EQ(variable, once);
    for (const ENVIRONMENT_VARIABLE& other :
         {ENVIRONMENT_VARIABLE{"VELMAR_INI_VARS", "a=1;b=2"}, ENVIRONMENT_VARIABLE{"VELMAR_INI_VARS", std::nullopt},
          ENVIRONMENT_VARIABLE{"HOME", "/home/token"}})
    {
        ENVIRONMENT_VARIABLE changed = other;
        hide_in_environment(changed, secrets);
        EXPECT_EQ(changed, other) << other.name;
    }
    for (const char* const name : {"VELMAR_INI", "HOME", "VELMAR_INI_DISABLED", "APPENDED_VELMAR_INI", "VELMAR2_INI"})
    {
        ENVIRONMENT_VARIABLE meant_for_another{name, "token=abc"};
        hide_in_environment(meant_for_another, secrets);
        EXPECT_EQ(with_hidden_parts_named(*meant_for_another.value), "token=\\(masked)") << name;
    }
}

// --- Sources ---

TEST_F(ENVIRONMENT_THAT_MATTERS, names_the_sources_of_the_settings)
{
    EXPECT_EQ(settings_file_of("", false), "");
    EXPECT_EQ(named_appended_file(), "");
    EXPECT_EQ(appended_file(), "");
    EXPECT_EQ(inline_text(), nullptr);
    write_file("velmar.ini", "");
    write_file("regtest.ini", "");
    write_file("cpu/velmar.ini", "");
    EXPECT_EQ(settings_file_of("", false), temporary.path("cwd/velmar.ini"));
    EXPECT_EQ(settings_file_of("", true), temporary.path("cwd/regtest.ini"));
    EXPECT_EQ(settings_file_of("cpu", false), "cpu/velmar.ini");
    EXPECT_EQ(settings_file_of("cpu", true), temporary.path("cwd/regtest.ini"));
    environment.set("APPENDED_VELMAR_INI", "more.ini");
    EXPECT_EQ(named_appended_file(), "more.ini");
    EXPECT_EQ(appended_file(), "");
    write_file("more.ini", "");
    EXPECT_EQ(appended_file(), "more.ini");
    environment.set("VELMAR_INI_VARS", "a=1");
    EXPECT_STREQ(inline_text(), "a=1");
    environment.set("VELMAR_INI_VARS", "");
    EXPECT_EQ(inline_text(), nullptr);
}
}
