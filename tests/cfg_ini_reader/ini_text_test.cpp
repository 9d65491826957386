#include "cfg_ini/cfg_ini_reader/ini_text.h"

#include <ctime>
#include <functional>
#include <limits>

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

TEST_F(TRIM_STRING_TEST, follows_the_current_locale)
{
    const std::string visible = "!\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqr"
                                "stuvwxyz{|}~";
    const CUT rows[] = {{"a\xA0z", "az"},
                        {"\xA0", ""},
                        {" \xA0\tname\xA0\xE4\xA0", "name\xE4"},
                        {visible, visible},
                        {"\xA0" + visible + " ", visible},
                        {"a_name_longer_than_a_block\xA0", "a_name_longer_than_a_block"}};
    for (const CUT& row : rows)
    {
        std::string name = row.line;
        {
            const SCOPED_WHITE_A0_LOCALE locale;
            cfg_trim_string(&name);
        }
        EXPECT_EQ(name, row.rest) << testing::PrintToString(row.line);
    }
    const SCOPED_POINT_LOCALE locale;
    std::string kept = "a\xA0z";
    cfg_trim_string(&kept);
    EXPECT_EQ(kept, "a\xA0z");
}

TEST_F(TRIM_STRING_TEST, names_in_a_file_follow_the_current_locale_and_values_do_not)
{
    const SCOPED_WHITE_A0_LOCALE locale;
    read_main_file("a\xA0z = \xA0x\xA0\n");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"az", "\xA0x\xA0"}}));
}

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
                                         STORED{"==", {{"", "="}}}, STORED{"= ", {}}, STORED{"=\t", {}},
                                         STORED{"=;", {}}, STORED{"=#", {}}, STORED{"=\r", {}},
                                         STORED{"=\"", {{"", "\""}}}, STORED{"=/", {{"", "/"}}}, STORED{" =", {}},
                                         STORED{"//", {}}, STORED{"\"=", {}}, STORED{"=  ", {{"", ""}}},
                                         STORED{"=;;", {{"", ""}}}, STORED{"=5;", {{"", "5"}}}));

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

// Neither begins a value: a comment does not, and white space is trimmed off.
const std::string no_value_alone = ";# \t\n\v\f\r";

TEST(SHORT_LINE_TEST, an_equals_sign_and_a_character_of_a_value_set_the_empty_name)
{
    for (int c = 0; c < 256; ++c)
    {
        const std::string line{'=', static_cast<char>(c)};
        std::string name = "untouched";
        std::string value = "untouched";
        const SETTINGS_LINE kind = parse_settings_line(line, name, value);
        if (no_value_alone.find(line[1]) != std::string::npos)
        {
            EXPECT_EQ(kind, SETTINGS_LINE::TOO_SHORT) << "= and " << c;
            EXPECT_EQ(name + value, "untoucheduntouched") << "= and " << c;
            continue;
        }
        EXPECT_EQ(kind, SETTINGS_LINE::ASSIGNMENT) << "= and " << c;
        EXPECT_EQ(name, "") << "= and " << c;
        EXPECT_EQ(value, line.substr(1)) << "= and " << c;
    }
}

TEST(SHORT_LINE_TEST, no_other_line_of_two_characters_sets_anything)
{
    std::string name;
    std::string value;
    for (int first = 0; first < 256; ++first)
    {
        for (int second = 0; second < 256 && first != '='; ++second)
        {
            const std::string line{static_cast<char>(first), static_cast<char>(second)};
            ASSERT_EQ(parse_settings_line(line, name, value), SETTINGS_LINE::TOO_SHORT) << first << " and " << second;
        }
    }
}

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

// --- Long texts ---

// A text made of a start, many middles and an end.
struct LONG_TEXT
{
    const char* about;
    std::string start;
    std::string middle;
    std::string end;

    std::string of_size(std::size_t size) const
    {
        std::string text = start;
        while (text.size() < size)
            text += middle;
        return text + end;
    }
};

void PrintTo(const LONG_TEXT& row, std::ostream* out)
{
    *out << row.about;
}

// The processor time of this thread that the quickest of some calls took.
double quickest_seconds(const std::function<void()>& action)
{
    const auto now = []
    {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    double quickest = std::numeric_limits<double>::max();
    for (int time = 0; time < 3; ++time)
    {
        const double start = now();
        action();
        quickest = std::min(quickest, now() - start);
    }
    return quickest;
}

// Four times the text takes about four times as long, and not sixteen times. A busy machine may need some attempts.
void expect_linear(const LONG_TEXT& row, const std::function<void(const std::string&)>& action)
{
    const std::string text = row.of_size(std::size_t{32} << 10);
    const std::string longer = row.of_size(std::size_t{128} << 10);
    double ratio = 0;
    for (int attempt = 0; attempt < 5; ++attempt)
    {
        ratio = quickest_seconds([&] { action(longer); }) / quickest_seconds([&] { action(text); });
        if (ratio < 9)
            return;
    }
    ADD_FAILURE() << "four times the text takes " << ratio << " times as long";
}

class LONG_INLINE_TEXT_TEST : public testing::TestWithParam<LONG_TEXT>
{
};

TEST_P(LONG_INLINE_TEXT_TEST, takes_linear_time)
{
    expect_linear(GetParam(),
                  [](const std::string& text)
                  {
                      INLINE_TEXT walk(text);
                      INLINE_ITEM kind{};
                      std::string name;
                      std::string value;
                      while (walk.next(kind, name, value))
                      {
                      }
                  });
}

INSTANTIATE_TEST_SUITE_P(
    , LONG_INLINE_TEXT_TEST,
    testing::Values(LONG_TEXT{"semicolons", "", ";", ""}, LONG_TEXT{"colons", "", ":", ""},
                    LONG_TEXT{"no separator", "", "a", ""}, LONG_TEXT{"names alone", "", "a;", ""},
                    LONG_TEXT{"an assignment at the end", "", ";", "a=1"},
                    LONG_TEXT{"an assignment at the start", "a=1", ";", ""},
                    LONG_TEXT{"the separator at the start alone", ":", ";", ""},
                    LONG_TEXT{"the separator at the end alone", "", "a", ";"}, LONG_TEXT{"equals signs", "", "=", ""},
                    LONG_TEXT{"equals signs alone", "", "=;", ""}, LONG_TEXT{"assignments", "", "a=1;", ""},
                    LONG_TEXT{"blanks", "", " ", ""}, LONG_TEXT{"blanks before a name", "", " ", "a=1"},
                    LONG_TEXT{"blanks behind a value", "a=1", " ", ""}, LONG_TEXT{"blank items", "", " ;", ""}));

class LONG_SETTINGS_LINE_TEST : public testing::TestWithParam<LONG_TEXT>
{
};

TEST_P(LONG_SETTINGS_LINE_TEST, takes_linear_time)
{
    expect_linear(GetParam(),
                  [](const std::string& line)
                  {
                      LINE_ASSIGNMENT assignment;
                      parse_settings_line(line, assignment);
                      std::string rest = line;
                      cfg_remove_commented_portion(&rest);
                      cfg_trim_string(&rest);
                  });
}

INSTANTIATE_TEST_SUITE_P(
    , LONG_SETTINGS_LINE_TEST,
    testing::Values(LONG_TEXT{"a value", "a=", "x", ""}, LONG_TEXT{"a name", "", "x", "=1"},
                    LONG_TEXT{"no equals sign", "", "x", ""}, LONG_TEXT{"quotes", "", "\"", "=1"},
                    LONG_TEXT{"quotes in a value", "a=", "\"", ""}, LONG_TEXT{"comments in quotes", "a=\"", ";#", ""},
                    LONG_TEXT{"single slashes", "", "/ ", "=1"}, LONG_TEXT{"slashes in a value", "a=", "/", ""},
                    LONG_TEXT{"equals signs", "", "=", ""}, LONG_TEXT{"blanks", "", " ", ""},
                    LONG_TEXT{"blanks around all", "", " ", " = 1 "},
                    LONG_TEXT{"blanks behind a value", "a=1", " ", ""}, LONG_TEXT{"blanks in a name", "", "a ", "=1"},
                    LONG_TEXT{"vertical tabs", "", "\v", "=\v"},
                    LONG_TEXT{"vertical tabs before a value", "a=", "\v", "1"},
                    LONG_TEXT{"high bytes in a name", "", "\xE4", "=1"},
                    LONG_TEXT{"zero bytes", "", std::string(1, '\0'), "=1"}));
}
