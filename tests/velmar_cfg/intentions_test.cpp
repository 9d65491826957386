// The text that a person meant to write, told for single lines, items and names.
#include "tools/velmar-cfg/lint/intentions.h"

#include <gtest/gtest.h>

#include "tests/support/processor_time.h"
#include "tests/velmar_cfg/suggestions.h"

namespace
{
constexpr std::size_t npos = std::string_view::npos;

TEST(CARRIAGE_RETURNS, divide_what_is_kept_or_hide_an_assignment)
{
    struct ROW
    {
        const char* line;
        std::size_t at;
    };
    const ROW rows[] = {
        {"", npos},          {"\r", npos},         {"a=1", npos},
        {"a=1\r", npos},     {"\ra=1", npos},      {"\r\ra=1 \r\t\r", npos},
        {"a=1\rb", 3},       {"a\rb", 1},          {" \ta=1\rb", 5},
        {"a=1\r\rb", 3},     {"# a\rb", npos},     {"# a\r# b=1", npos},
        {"# a\rb=1", 3},     {" # a\rb\rc=1", 4},  {"# a\rb =", 3},
        {"# a\rb=", npos},   {"# a\rb c=1", npos}, {"a=1 # x\ry", npos},
        {"a=1 # x\ry=2", 7}, {"a=1 \r# b", npos},  {"a=\"x # y\rz", 8},
    };
    for (const ROW& row : rows)
        EXPECT_EQ(dividing_carriage_return(row.line), row.at) << row.line;
}

TEST(SLASHES, look_like_a_comment_behind_white_space_within_a_value)
{
    struct ROW
    {
        const char* kept;
        std::size_t value_offset;
        std::size_t at;
    };
    const ROW rows[] = {
        {"a = x // y", 4, 6},   {"a = x\t//", 4, 6},      {"a = x //", 4, 6},        {"a = // y", 4, npos},
        {"a =  // y", 5, npos}, {"a = //x // y", 4, 8},   {"a = x//y", 4, npos},     {"a = x// y // z", 4, 10},
        {"a = x /// y", 4, 6},  {"a = x / / y", 4, npos}, {"a = http://x", 4, npos}, {"a =", 3, npos},
        {"a //b = x", 8, npos},
    };
    for (const ROW& row : rows)
        EXPECT_EQ(slashes_in_value(row.kept, row.value_offset), row.at) << row.kept;
}

// Beside a file that assigns to "Max_Fanout".
class MEANT : public testing::Test
{
protected:
    const LAYERS layers = {layer_of(LAYER_KIND::MAIN_FILE, "Max_Fanout = 1\n")};
    const NAMESAKES namesakes = NAMESAKES(layers);
    const INTENTIONS intentions = INTENTIONS(namesakes);
};

TEST_F(MEANT, names_are_spelt_as_elsewhere)
{
    for (const auto& [name, spelt] : {std::pair("max_fanout", "Max_Fanout"),
                                      {"MAX_FANOUT", "Max_Fanout"},
                                      {"max_fanuot", "max_fanuot"},
                                      {"MSG_SQLITE", "msg_sqlite"},
                                      {"msg_sqlit", "msg_sqlite"},
                                      {"other", "other"},
                                      {"", ""}})
        EXPECT_EQ(intentions.spelt(name), spelt);
    EXPECT_EQ(*nearest_known_name("Msg_Sqlit"), "msg_sqlite");
    EXPECT_EQ(nearest_known_name("max_fanout"), nullptr);
    EXPECT_EQ(nearest_known_name("ms"), nullptr);
}

struct LINE
{
    std::string line;
    std::optional<std::string> meant; // nothing where a person must decide
};

const std::optional<std::string> undecided = std::nullopt;

TEST_F(MEANT, lines_that_assign)
{
    const LINE rows[] = {
        {"a = 1", "a = 1"},
        {" \ta=1 ; x\r", " \ta=1 ; x\r"},
        {"max fanout = 1", "Max_Fanout = 1"},
        {"a b c d = 1", "a_b_c_d = 1"},
        {"a b c d e = 1", undecided},
        {"a.b c-d = 1", "a.b_c-d = 1"},
        {"a b( = 1", undecided},
        {"'a(b' = 1", undecided},
        {"=5", undecided},
        {" = 5", undecided},
        {"a(b = 1", "a(b = 1"},
        {"' x ' = 1", "x = 1"},
        {"export a b=1", "a_b=1"},
        {"set \"a\" ?= 1", "a = 1"},
        {"a +== 1", undecided},
        {"a := = 1", "a = 1"},
        {"a=== b", "a = b"},
        {"a=\t1", "a=\t1"},
        {"a\xc2\xa0"
         "b = 1",
         "a_b = 1"},
        {"\xc2\xa0"
         "a\xc2\xa0\xc2\xa0"
         "b\xc2\xa0=1",
         "a_b=1"},
        // Comments.
        {"a = on#x", "a = on #x"},
        {"a = 7# x", "a = 7 # x"},
        {"a = word# x", "a = word # x"},
        {"a = word#", "a = word#"},
        {"a = word#x", "a = word#x"},
        {"a = # x", "a = # x"},
        {"a =# x", "a =# x"},
        {"a = 1;x", "a = 1;x"},
        {"a = 1 // x", "a = 1 # x"},
        {"a = 1\t //x // y # z\r", "a = 1\t #x // y # z\r"},
        {"a = \"x\" // y", "a = x # y"},
        {"a = \"x // y\"", undecided},
        {"a=1 // x ; b=2", "a=1 // x\nb=2"},
        // Several.
        {"\ta=1;b=2 ; c = yes\r", "\ta=1\r\n\tb=2\r\n\tc = on\r"},
        {"a=1 ;note", "a=1 ;note"},
        {"g=1 h=fast,", "g=1\nh=fast,"},
        {"g=1, h = yes, k = no", "g=1\nh = on\nk = off"},
        {" g=1 msg_sqlit=yes # x", " g=1\n msg_sqlite=on # x"},
    };
    for (const LINE& row : rows)
        EXPECT_EQ(intentions.of_line(row.line, false), row.meant) << row.line;
}

TEST_F(MEANT, lines_that_assign_nothing)
{
    const LINE rows[] = {
        {"", ""},
        {" \r", " \r"},
        {"# x", "# x"},
        {" ;", " ;"},
        {"// a", "// a"},
        {"a=", "a ="},
        {" =", undecided},
        {"=", undecided},
        {"a # b = 1", undecided},
        {"# b = 1", "# b = 1"},
        {"words", "# words"},
        {"\t two words ; x\r", "\t # two words ; x\r"},
        {"[s]", "# [s]"},
        // Known variables are no words of a comment.
        {"msg_sqlite", undecided},
        {"MSG_sqlite yes", "msg_sqlite = on"},
        {"  msg_sqlite\ton # x\r", "  msg_sqlite = on # x\r"},
        {"msg_sqlite on off", undecided},
        {"msg_sqlit on", "msg_sqlite = on"},
        // As other formats have it.
        {"name: value", "name = value"},
        {" \"name\": yes, # x\r", " name = on # x\r"},
        {"name:\tvalue", "name = value"},
        {"name:value", "# name:value"},
        {"name:", "# name:"},
        {"name: two words", "# name: two words"},
        {"name: 'two words'", "name = two words"},
        {"name: 1 ,", "name = 1"},
        {"two names: 1", "# two names: 1"},
        {"1name: 1", "# 1name: 1"},
        {"_name: 1", "_name = 1"},
        {": 1", "# : 1"},
        {"name: # x", "# name: # x"},
        {"http://x y", "# http://x y"},
    };
    for (const LINE& row : rows)
        EXPECT_EQ(intentions.of_line(row.line, false), row.meant) << row.line;
}

TEST_F(MEANT, lines_that_a_carriage_return_divides_or_a_mark_begins)
{
    const std::string mark = "\xef\xbb\xbf";
    EXPECT_EQ(intentions.of_line(mark + "a == 1", true), "a = 1");
    EXPECT_EQ(intentions.of_line(mark + "[s]", true), "# [s]");
    EXPECT_EQ(intentions.of_line(mark + "a = 1", false), mark + "a = 1"); // a name like any other
    EXPECT_EQ(intentions.of_line(mark + "a=1\rb=2", true), "a=1\nb=2");
    EXPECT_EQ(intentions.of_line("a=1\rb=yes\r", false), "a=1\nb=on\r");
    EXPECT_EQ(intentions.of_line("a=1\r\r[s]\rpath += x", false), "a=1\n\n# [s]\npath += x");
    EXPECT_EQ(intentions.of_line("\ra=1\rb", false), "\na=1\n# b");
}

// Each ";" may begin an assignment, which is looked for behind it.
TEST_F(MEANT, lines_with_a_hundred_comment_signs_and_no_more)
{
    const std::string line = "a == 1 ";
    EXPECT_EQ(intentions.of_line(line + std::string(100, ';'), false), "a = 1 " + std::string(100, ';'));
    EXPECT_EQ(intentions.of_line(line + std::string(101, ';'), false), undecided);
}

TEST_F(MEANT, items)
{
    struct ROW
    {
        const char* item;
        char separator;
        std::optional<std::string> meant;
    };
    const ROW rows[] = {
        {"a=1", ';', "a=1"},
        {" a = 1 ", ';', "a = 1"},
        {"a\t=\n1", ';', "a=1"},
        {"a =\t1", ';', "a=1"},
        {"max fanout=1", ';', "Max_Fanout=1"},
        {"a:=1", ';', "a = 1"},
        {"a+=1", ';', undecided},
        {"a b c d e=1", ';', undecided},
        {"a=1:b=2", ';', "a=1;b=2"},
        {"a=1;b=2", ':', "a=1:b=2"},
        {"a=x:y:b=2", ';', "a=x:y;b=2"},
        {"a=x:y", ';', "a=x:y"},
        {"a=1:b", ';', "a=1:b"},
        {"a=1;", ':', "a=1"},
        {"a;b=1", ':', undecided},
        {"g=1 h=yes", ';', "g=1;h=on"},
        {"g=1 h=2 k=3", ':', "g=1:h=2:k=3"},
        {"a=1:b+=2", ';', "a=1:b+=2"},
        {"", ';', ""},
    };
    for (const ROW& row : rows)
        EXPECT_EQ(intentions.of_item(row.item, row.separator), row.meant) << row.item;
}

// Each sign of the other separator may begin an item, and none of these does.
TEST(ITEMS, take_four_times_as_long_for_four_times_the_length)
{
    const LAYERS layers = {layer_of(LAYER_KIND::INLINE_TEXT, "a=1")};
    const NAMESAKES namesakes(layers);
    const INTENTIONS intentions(namesakes);
    for (const std::string piece : {":b=1", ":b", ":b c =1", ": "})
    {
        const auto seconds_for = [&](std::size_t count)
        {
            std::string item = "a=1";
            for (std::size_t i = 0; i < count; ++i)
                item += piece;
            return least_processor_seconds([&] { EXPECT_TRUE(intentions.of_item(item, ';')); });
        };
        EXPECT_LT(ratio_of_seconds(seconds_for, 2'000, 8'000, 9), 9)
            << piece << ": the square would take sixteen times as long";
    }
}
}
