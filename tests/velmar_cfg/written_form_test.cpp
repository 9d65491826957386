// What a person most probably meant, told from the form of a text alone.
#include "tools/velmar-cfg/lint/written_form.h"

#include <gmock/gmock.h>

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

struct ASSIGNMENT_FORM
{
    const char* text;
    std::size_t kept_length;
    std::vector<std::string_view> parts; // indentation, name, equals sign, value, rest
};

void PrintTo(const ASSIGNMENT_FORM& row, std::ostream* stream)
{
    *stream << "'" << row.text << "'";
}

class TAKEN_APART : public testing::TestWithParam<ASSIGNMENT_FORM>
{
};

TEST_P(TAKEN_APART, the_parts_are_the_text)
{
    const WRITTEN_ASSIGNMENT written = taken_apart(GetParam().text, GetParam().kept_length);
    EXPECT_EQ(written.put_together(), GetParam().text);
    EXPECT_EQ((std::vector{written.indentation, written.name, written.equals, written.value, written.rest}),
              GetParam().parts);
}

INSTANTIATE_TEST_SUITE_P(table, TAKEN_APART,
                         testing::Values(ASSIGNMENT_FORM{"a=1", 3, {"", "a", "=", "1", ""}},
                                         ASSIGNMENT_FORM{" \ta b = c d ", 12, {" \t", "a b", " = ", "c d", " "}},
                                         ASSIGNMENT_FORM{"a =\t1 # n\r", 6, {"", "a", " =\t", "1", " # n\r"}},
                                         ASSIGNMENT_FORM{"a == 1", 6, {"", "a", " =", "= 1", ""}},
                                         ASSIGNMENT_FORM{"a = # n", 4, {"", "a", " =", "", " # n"}},
                                         ASSIGNMENT_FORM{" = 5", 4, {" ", "", "= ", "5", ""}},
                                         ASSIGNMENT_FORM{"=", 1, {"", "", "=", "", ""}}));

struct NAME_FORM
{
    const char* written;
    std::string_view core;
    std::string_view operator_sign;
    bool exported;
    bool quoted;
};

void PrintTo(const NAME_FORM& row, std::ostream* stream)
{
    *stream << "'" << row.written << "'";
}

class WRITTEN_NAMES : public testing::TestWithParam<NAME_FORM>
{
};

TEST_P(WRITTEN_NAMES, are_told_from_what_stands_around_them)
{
    const WRITTEN_NAME name = name_as_written(GetParam().written);
    EXPECT_EQ(name.core, GetParam().core);
    EXPECT_EQ(name.operator_sign, GetParam().operator_sign);
    EXPECT_EQ(name.exported, GetParam().exported);
    EXPECT_EQ(name.quoted, GetParam().quoted);
}

INSTANTIATE_TEST_SUITE_P(
    table, WRITTEN_NAMES,
    testing::Values(NAME_FORM{"a", "a", "", false, false}, NAME_FORM{"a.b-c", "a.b-c", "", false, false},
                    NAME_FORM{"a:", "a", ":", false, false}, NAME_FORM{"a ::", "a", "::", false, false},
                    NAME_FORM{"a +", "a", "+", false, false}, NAME_FORM{"a?", "a", "?", false, false},
                    NAME_FORM{"a -", "a", "-", false, false}, NAME_FORM{"a |", "a", "|", false, false},
                    NAME_FORM{"a >", "a", ">", false, false}, NAME_FORM{"a !", "a", "!", false, false},
                    NAME_FORM{":", "", ":", false, false}, NAME_FORM{"\"a\"", "a", "", false, true},
                    NAME_FORM{"' a b '", "a b", "", false, true}, NAME_FORM{"\"\"", "\"\"", "", false, false},
                    NAME_FORM{"\"a", "\"a", "", false, false}, NAME_FORM{"\"a\" :", "a", ":", false, true},
                    NAME_FORM{"export a", "a", "", true, false}, NAME_FORM{"set\t'a'", "a", "", true, true},
                    NAME_FORM{"export", "export", "", false, false},
                    NAME_FORM{"exported", "exported", "", false, false},
                    NAME_FORM{"settings a", "settings a", "", false, false}));

TEST(OPERATORS, that_only_assign)
{
    for (const char* const sign : {"", ":", "::", "?", ":?"})
        EXPECT_TRUE(only_assigns(sign)) << sign;
    for (const char* const sign : {"+", "-", "!", ":+", "<", "|", "&", "~", "^", "*", "%"})
        EXPECT_FALSE(only_assigns(sign)) << sign;
}

TEST(QUOTES, enclose_a_value_whole_or_not_at_all)
{
    EXPECT_EQ(between_quotes("\"x y\""), "x y");
    EXPECT_EQ(between_quotes("'x'"), "x");
    EXPECT_EQ(between_quotes("\"it's\""), "it's");
    EXPECT_EQ(between_quotes("\"\""), "");
    for (const char* const value : {"x", "", "\"", "'", "\"x'", "\"x\" y", "\"x\" \"y\"", "'it's'", "xx"})
        EXPECT_EQ(between_quotes(value), std::nullopt) << value;
}

TEST(SCALARS, are_booleans_and_numbers)
{
    for (const char* const value : {"on", "OFF", "true", "0", "1", "yes", "Disabled", "12", "-1", "+5", "2.5", ".5",
                                    "1e3", "1e999", "0x10", "0XfF"})
        EXPECT_TRUE(is_scalar(value)) << value;
    for (const char* const value : {"", "fast", "onn", "-", "+", ".", "e3", "1.2.3", "12ms", "0x", "0xg", "--1", "+-1",
                                    "inf", "nan", "-inf", "1 2"})
        EXPECT_FALSE(is_scalar(value)) << value;
}

TEST(COMMAS, end_scalars_only)
{
    EXPECT_EQ(without_comma("on,"), "on");
    EXPECT_EQ(without_comma("12 ,"), "12");
    EXPECT_EQ(without_comma("1;"), "1");
    EXPECT_EQ(without_comma("'yes',"), "'yes'");
    for (const char* const value : {"", ",", "on", "fast,", "1,,", "1, 2", ",1"})
        EXPECT_EQ(without_comma(value), std::nullopt) << value;
}

TEST(BOOLEANS, of_other_formats)
{
    for (const char* const value : {"yes", "YES", "enable", "Enabled"})
        EXPECT_EQ(boolean_meant_by(value), "on") << value;
    for (const char* const value : {"no", "No", "disable", "disabled"})
        EXPECT_EQ(boolean_meant_by(value), "off") << value;
    for (const char* const value : {"", "on", "1", "y", "yes ", "yess", "none", "enabling"})
        EXPECT_EQ(boolean_meant_by(value), std::nullopt) << value;
}

TEST(INTEGERS, of_other_formats)
{
    EXPECT_EQ(hexadecimal_meant_by("0x10"), "16");
    EXPECT_EQ(hexadecimal_meant_by("0XFFFFFFFF"), "4294967295");
    for (const char* const value : {"", "0", "0x", "x10", "10", "0x1g", "0x100000000", "-0x10", "0x-1"})
        EXPECT_EQ(hexadecimal_meant_by(value), std::nullopt) << value;

    EXPECT_EQ(integer_meant_by("0x7fffffff"), "2147483647");
    EXPECT_EQ(integer_meant_by("+5"), "5");
    EXPECT_EQ(integer_meant_by("-2.0"), "-2");
    EXPECT_EQ(integer_meant_by("1e3"), "1000");
    EXPECT_EQ(integer_meant_by("2147483647.0"), "2147483647");
    EXPECT_EQ(integer_meant_by("-2147483648.0"), "-2147483648");
    for (const char* const value : {"", "high", "2.5", "2147483648.0", "-2147483649.0", "1e999", "5 s", "nan"})
        EXPECT_EQ(integer_meant_by(value), std::nullopt) << value;
}

TEST(ASSIGNMENTS_IN_A_VALUE, are_told_where_the_value_is_a_scalar)
{
    EXPECT_THAT(assignments_in_value("1 h=2"), ElementsAre("1", "h=2"));
    EXPECT_THAT(assignments_in_value("on, h = off, k=3"), ElementsAre("on", "h = off", "k=3"));
    EXPECT_THAT(assignments_in_value("1\th=x y=z"), ElementsAre("1", "h=x", "y=z"));
    EXPECT_THAT(assignments_in_value("fast MSG_SQLITE=on"), ElementsAre("fast", "MSG_SQLITE=on"));
    for (const char* const value : {"", "1", "1 2", "1 h", "1 h=", "1 =2", "1 h=2 k", "1 h=a=b", "fast h=2", "1 2h=3",
                                    "1 -h=2", "1 h.x=2", "-DX=1 -DY=2", "a=1 b=2"})
        EXPECT_THAT(assignments_in_value(value), IsEmpty()) << value;
}

TEST(MEANT_VALUES, are_those_that_readers_of_the_variable_take)
{
    const KNOWN_VARIABLE* const a_switch = find_known_variable("msg_sqlite");
    const KNOWN_VARIABLE* const a_number = find_known_variable("debug_msg_level");
    ASSERT_NE(a_switch, nullptr);
    ASSERT_NE(a_number, nullptr);
    struct ROW
    {
        const char* written;
        const char* of_switch;
        const char* of_number;
        const char* of_unknown;
    };
    for (const auto& [written, of_switch, of_number, of_unknown] :
         {ROW{"on", "on", "on", "on"}, ROW{"yes", "on", "yes", "on"}, ROW{"'No',", "off", "No", "off"},
          ROW{"0x10", "0x10", "16", "16"}, ROW{"+5", "+5", "5", "+5"}, ROW{"007", "007", "007", "007"},
          ROW{"\"x y\"", "x y", "x y", "x y"}, ROW{"\"x;y\"", "\"x;y\"", "\"x;y\"", "\"x;y\""},
          ROW{"\"#1\"", "\"#1\"", "\"#1\"", "\"#1\""}, ROW{"'x //y'", "'x //y'", "'x //y'", "'x //y'"},
          ROW{"'x//y'", "x//y", "x//y", "x//y"}, ROW{"' x'", "' x'", "' x'", "' x'"}, ROW{"''", "", "", ""},
          ROW{"fast,", "fast,", "fast,", "fast,"}, ROW{"99999999999", "99999999999", "99999999999", "99999999999"}})
    {
        EXPECT_EQ(value_meant_by(written, a_switch), of_switch) << written;
        EXPECT_EQ(value_meant_by(written, a_number), of_number) << written;
        EXPECT_EQ(value_meant_by(written, nullptr), of_unknown) << written;
    }
}

TEST(WORDS, have_white_space_between_them)
{
    EXPECT_THAT(words_of(" a\tb \r\n c"), ElementsAre("a", "b", "c"));
    EXPECT_THAT(words_of(" \t"), IsEmpty());
    EXPECT_EQ(without_outer_white("\v a b\f"), "a b");
    EXPECT_EQ(without_outer_white(" "), "");
}

TEST(FORMS, of_names_assignments_and_separators)
{
    EXPECT_TRUE(looks_like_a_name("a_1"));
    for (const char* const text : {"", "a b", "a.b", "\xc3\xa9"})
        EXPECT_FALSE(looks_like_a_name(text)) << text;
    for (const char* const text :
         {" a = 1 # x", "a= ", "a =", " a=", "a=#", "a=;b=1", "\ta\v=1", "a==", "9=1", "ab=", "a=\r"})
        EXPECT_TRUE(looks_like_an_assignment(text)) << text;
    for (const char* const text :
         {"", "a", "a=", "was a = 1", "# a=1", "=12", "=", " = 1", "a;b=1", "a:=1", "abc", "a#=1"})
        EXPECT_FALSE(looks_like_an_assignment(text)) << text;
    EXPECT_TRUE(mixes_separators("a:b;c"));
    EXPECT_TRUE(mixes_separators(";:"));
    EXPECT_FALSE(mixes_separators("a:b"));
    EXPECT_FALSE(mixes_separators("a;b"));
}
}
