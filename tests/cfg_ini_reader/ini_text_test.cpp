#include "cfg_ini/cfg_ini_reader/ini_text.h"

#include "tests/support/store_test.h"

using namespace zon_cfg;

namespace
{
// --- The comment of a settings line ---

struct CUT
{
    std::string line;
    std::string rest;
};

void PrintTo(const CUT& row, std::ostream* out)
{
    *out << testing::PrintToString(row.line);
}

class COMMENT_TEST : public testing::TestWithParam<CUT>
{
};

TEST_P(COMMENT_TEST, is_cut_off)
{
    std::string line = GetParam().line;
    cfg_remove_commented_portion(&line);
    EXPECT_EQ(line, GetParam().rest);
}

INSTANTIATE_TEST_SUITE_P(semicolon_and_hash, COMMENT_TEST,
                         testing::Values(CUT{"", ""}, CUT{"a=1", "a=1"}, CUT{"a=1;b", "a=1"}, CUT{"a=1#b", "a=1"},
                                         CUT{"a=1 ; b # c", "a=1 "}, CUT{"a=1 # b ; c", "a=1 "}, CUT{";a=1", ""},
                                         CUT{"#", ""}, CUT{"a#b=1", "a"}, CUT{"a=1;", "a=1"}, CUT{"a=1;;;", "a=1"}));

INSTANTIATE_TEST_SUITE_P(quotes, COMMENT_TEST,
                         testing::Values(CUT{"a=\"x;y\";z", "a=\"x;y\""}, CUT{"a=\"x#y\"#z", "a=\"x#y\""},
                                         CUT{"a=\"x;y", "a=\"x;y"},           // an unclosed quote reaches to the end
                                         CUT{"a=\"\";x", "a=\"\""},           // closed at once
                                         CUT{"a=\"x\"y\";z", "a=\"x\"y\";z"}, // the third quote opens again
                                         CUT{"a=1;\"", "a=1"}, CUT{"a=\"1\" # \"x\"", "a=\"1\" "},
                                         CUT{"\"#\"=1#", "\"#\"=1"}, CUT{"a='x;y'", "a='x"}, // no other kind of quote
                                         CUT{"a=\\\";x\"", "a=\\\";x\""})); // a backslash escapes nothing

INSTANTIATE_TEST_SUITE_P(slashes, COMMENT_TEST,
                         testing::Values(CUT{"//a=1", ""}, CUT{" // a=1", " "}, CUT{"a // b = 1", "a "},
                                         CUT{"a//", "a"}, CUT{"a", "a"}, CUT{"a=dir//sub", "a=dir//sub"},
                                         CUT{"a=//sub", "a=//sub"}, CUT{"=//", "=//"}, CUT{"a/=/b", "a/=/b"},
                                         CUT{"a/b=1", "a/b=1"}, CUT{"a///b=1", "a"}, CUT{"a//b=c//d", "a"},
                                         CUT{"a=http://x;y", "a=http://x"},
                                         CUT{"a;b=//c", "a"},        // cut at the semicolon first
                                         CUT{"a//;b", "a"},          // and then at the slashes that are left
                                         CUT{"\"a//b\"=1", "\"a"})); // quotes do not protect slashes

// --- White space in a name ---

class NAME_TEST : public testing::TestWithParam<CUT>
{
};

TEST_P(NAME_TEST, loses_all_its_white_space)
{
    std::string name = GetParam().line;
    cfg_trim_string(&name);
    EXPECT_EQ(name, GetParam().rest);
}

INSTANTIATE_TEST_SUITE_P(, NAME_TEST,
                         testing::Values(CUT{"", ""}, CUT{"a", "a"}, CUT{"max fanout", "maxfanout"}, CUT{" a ", "a"},
                                         CUT{" \t\n\v\f\r", ""}, CUT{"\ta\vb\fc\rd\ne", "abcde"}, CUT{"  x  y  ", "xy"},
                                         CUT{"\xC3\x89\xA0\x85\xFF", "\xC3\x89\xA0\x85\xFF"},
                                         CUT{std::string(" \0 a", 4), std::string("\0a", 2)}));

using TRIM_STRING_TEST = STORE_TEST;

TEST_F(TRIM_STRING_TEST, reports_a_null_pointer)
{
    cfg_trim_string(nullptr);
    EXPECT_EQ(fake::err::reports(),
              (std::vector<fake::err::REPORT>{{"str != NULL", "CFG_INI", "cfg_ini/cfg_ini_reader", 228}}));
}

TEST_F(TRIM_STRING_TEST, lets_the_reporter_throw)
{
    fake::err::throw_from_now_on();
    EXPECT_THROW(cfg_trim_string(nullptr), fake::err::REPORTED);
}

// --- A line of a settings file ---

struct STORED
{
    std::string text;
    ASSIGNMENTS values;
};

void PrintTo(const STORED& row, std::ostream* out)
{
    *out << testing::PrintToString(row.text);
}

class SETTINGS_LINE_TEST : public STORE_TEST, public testing::WithParamInterface<STORED>
{
};

TEST_P(SETTINGS_LINE_TEST, stores_at_most_one_assignment)
{
    read_main_file(GetParam().text);
    EXPECT_EQ(all_values(), GetParam().values);
}

TEST_P(SETTINGS_LINE_TEST, means_the_same_in_the_files_laid_over_the_main_one)
{
    write_file(temporary.path("over.ini"), GetParam().text + "\n");
    make_empty_store();
    cfg_read_regtest_ini_file(temporary.path("over.ini"));
    EXPECT_EQ(all_values(), GetParam().values);

    make_empty_store();
    cfg_read_and_append_environment_ini_file(temporary.path("over.ini"));
    EXPECT_EQ(all_values(), GetParam().values);
}

INSTANTIATE_TEST_SUITE_P(comments, SETTINGS_LINE_TEST,
                         testing::Values(STORED{"max_fanout = 12 # twelve", {{"max_fanout", "12"}}},
                                         STORED{"# a=1", {}}, STORED{"// a=1", {}},
                                         STORED{"a=dir//sub", {{"a", "dir//sub"}}}, STORED{"a // b = 1", {}},
                                         STORED{"a=\"x;y\";z", {{"a", "\"x;y\""}}}, STORED{"a=1;b=2", {{"a", "1"}}},
                                         STORED{"a=1:b=2", {{"a", "1:b=2"}}}, STORED{"ab=#", {{"ab", ""}}},
                                         STORED{"ab#=1", {}}, STORED{"\"a=1", {{"\"a", "1"}}},
                                         STORED{"a/ /=1", {{"a//", "1"}}}));

INSTANTIATE_TEST_SUITE_P(
    names_and_values, SETTINGS_LINE_TEST,
    testing::Values(STORED{"my var = on", {{"myvar", "on"}}}, STORED{"x=y=z", {{"x", "y=z"}}},
                    STORED{"\t a\t b \t=\v 1 \t 2 \f", {{"ab", "1 \t 2"}}}, STORED{"a= ", {{"a", ""}}},
                    STORED{"ab=", {{"ab", ""}}}, STORED{" = 5", {{"", "5"}}}, STORED{"===", {{"", "=="}}},
                    STORED{"a=\" b \"", {{"a", "\" b \""}}}, STORED{"\xC3\x89=\xC3\xA9", {{"\xC3\x89", "\xC3\xA9"}}},
                    STORED{"a=\xA0x", {{"a", "\xA0x"}}}, STORED{"just a text", {}}, STORED{"   ", {}}));

INSTANTIATE_TEST_SUITE_P(shortest, SETTINGS_LINE_TEST,
                         testing::Values(STORED{"", {}}, STORED{"a", {}}, STORED{"=", {}}, STORED{"ab", {}},
                                         STORED{"a=", {}}, STORED{"a=1", {{"a", "1"}}}, STORED{"=5", {{"", "5"}}},
                                         STORED{"==", {{"", "="}}}, STORED{"= ", {{"", ""}}}, STORED{" =", {}},
                                         STORED{"=5;", {{"", "5"}}}));

INSTANTIATE_TEST_SUITE_P(carriage_returns, SETTINGS_LINE_TEST,
                         testing::Values(STORED{"a=1\r", {{"a", "1"}}},
                                         STORED{"a=\r",
                                                {{"a", ""}}}, // three characters, the carriage return among them
                                         STORED{"ab\r", {}}, STORED{"\r", {}}, STORED{"a=1 ; x\r", {{"a", "1"}}},
                                         STORED{"a\r=1", {{"a", "1"}}}, STORED{"a=1\r\r", {{"a", "1"}}}));

INSTANTIATE_TEST_SUITE_P(embedded_zero, SETTINGS_LINE_TEST,
                         testing::Values(STORED{std::string("a=x\0y", 5), {{"a", std::string("x\0y", 3)}}},
                                         STORED{std::string("a\0b=1", 5), {{std::string("a\0b", 3), "1"}}},
                                         STORED{std::string("\0\0\0", 3), {}}));

// --- The separator of an inline text ---

TEST(INLINE_SEPARATOR_TEST, is_the_first_colon_or_semicolon)
{
    struct
    {
        const char* text;
        char separator;
    } const rows[] = {{"", ';'},      {"a=1", ';'},           {":", ':'},     {";", ';'}, {"a:b;c", ':'},
                      {"a;b:c", ';'}, {"a=c:\\dir;r=2", ':'}, {"\";\":", ';'}};
    for (const auto& [text, separator] : rows)
        EXPECT_EQ(cfg_find_separator_in_ini_string(text), separator) << text;
}

// --- An inline text ---

class INLINE_TEXT_TEST : public STORE_TEST, public testing::WithParamInterface<STORED>
{
};

TEST_P(INLINE_TEXT_TEST, stores_its_well_formed_items)
{
    make_empty_store();
    cfg_process_ini_string(GetParam().text, true);
    EXPECT_EQ(all_values(), GetParam().values);
    for (const auto& [name, record] : all_records())
        EXPECT_FALSE(record.external) << name;
}

TEST_P(INLINE_TEXT_TEST, stores_the_same_as_external)
{
    make_empty_store();
    cfg_process_ini_string(GetParam().text, false);
    EXPECT_EQ(all_values(), GetParam().values);
    for (const auto& [name, record] : all_records())
        EXPECT_TRUE(record.external) << name;
}

INSTANTIATE_TEST_SUITE_P(separators, INLINE_TEXT_TEST,
                         testing::Values(STORED{"a=1;b=2", {{"a", "1"}, {"b", "2"}}},
                                         STORED{"a=1:b=2", {{"a", "1"}, {"b", "2"}}},
                                         STORED{"p=x;y:z=1", {{"p", "x"}, {"y:z", "1"}}},
                                         STORED{"q=c:\\dir;r=2", {{"q", "c"}, {"\\dir;r", "2"}}},
                                         STORED{"a=1", {{"a", "1"}}}, STORED{"a=1;", {{"a", "1"}}},
                                         STORED{";a=1", {{"a", "1"}}}, STORED{";;a=1;;b=2;;", {{"a", "1"}, {"b", "2"}}},
                                         STORED{"a=1;b=2:c=3", {{"a", "1"}, {"b", "2:c=3"}}}));

INSTANTIATE_TEST_SUITE_P(skipped, INLINE_TEXT_TEST,
                         testing::Values(STORED{"", {}}, STORED{"a=", {}}, STORED{"=1", {}}, STORED{" ", {}},
                                         STORED{";;", {}}, STORED{"=", {}}, STORED{"a", {}}, STORED{" = ", {}},
                                         STORED{"a= ", {}}, STORED{" =1", {}}, STORED{"a=;b=2", {{"b", "2"}}},
                                         STORED{"x;b=2", {{"b", "2"}}}, STORED{"=1;b=2", {{"b", "2"}}}));

INSTANTIATE_TEST_SUITE_P(blanks_and_plain_characters, INLINE_TEXT_TEST,
                         testing::Values(STORED{"a = 1 ", {{"a", "1"}}},
                                         STORED{" a = 1 ; b = 2 ", {{"a", "1"}, {"b", "2"}}},
                                         STORED{"my var=on", {{"my var", "on"}}}, STORED{"a=1 2", {{"a", "1 2"}}},
                                         STORED{"\ta=\t1", {{"\ta", "\t1"}}}, // only blanks are removed
                                         STORED{"a=\t", {{"a", "\t"}}}, STORED{"a=#1//x\"", {{"a", "#1//x\""}}},
                                         STORED{"a=\"x;y\"", {{"a", "\"x"}}}, // quotes protect nothing
                                         STORED{"//a=1", {{"//a", "1"}}}, STORED{"a=b=c", {{"a", "b=c"}}},
                                         STORED{"a==", {{"a", "="}}}));

INSTANTIATE_TEST_SUITE_P(later_items_win, INLINE_TEXT_TEST,
                         testing::Values(STORED{"a=1;a=2", {{"a", "2"}}},
                                         STORED{"a=1;A=2;b=3", {{"a", "2"}, {"b", "3"}}}));

TEST(INLINE_WALK_TEST, tells_of_each_item_how_it_stands_and_what_becomes_of_it)
{
    struct ITEM
    {
        const char* text;
        INLINE_ITEM kind;
    };
    const ITEM items[] = {{" a = 1 ", INLINE_ITEM::ASSIGNMENT}, {"bb", INLINE_ITEM::NO_EQUALS_SIGN},
                          {"", INLINE_ITEM::NO_EQUALS_SIGN},    {" =3", INLINE_ITEM::EMPTY_NAME},
                          {"d= ", INLINE_ITEM::EMPTY_VALUE},    {"=", INLINE_ITEM::EMPTY_NAME},
                          {"e=5:f", INLINE_ITEM::ASSIGNMENT}};
    const std::string text = " a = 1 ;bb;; =3;d= ;=;e=5:f";
    INLINE_TEXT walk(text);
    EXPECT_EQ(walk.item(), "");
    INLINE_ITEM kind{};
    std::string name;
    std::string value;
    for (const ITEM& item : items)
    {
        ASSERT_TRUE(walk.next(kind, name, value)) << item.text;
        EXPECT_EQ(walk.item(), item.text);
        EXPECT_EQ(kind, item.kind) << item.text;
    }
    EXPECT_EQ(name, "e");
    EXPECT_EQ(value, "5:f");
    EXPECT_FALSE(walk.next(kind, name, value));
}
}
