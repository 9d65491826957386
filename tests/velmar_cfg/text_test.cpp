// Texts for messages: what reaches a terminal, and what is cut short.
#include "tools/velmar-cfg/base/text.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>

#include "tools/velmar-cfg/base/json_writer.h"

namespace
{
using namespace std::string_literals;

struct ESCAPED
{
    const char* what;
    std::string text;
    std::string shown;
};

const ESCAPED escaped_texts[] = {
    {"nothing", "", ""},
    {"plain", "a b~!", "a b~!"},
    {"a backslash", R"(C:\new)", R"(C:\\new)"},
    {"line feed", "a\nb", R"(a\nb)"},
    {"tabulator", "a\tb", R"(a\tb)"},
    {"carriage return", "a\rb", R"(a\x0db)"},
    {"zero byte", "a\0b"s, R"(a\x00b)"},
    {"escape", "\x1b[31m", R"(\x1b[31m)"},
    {"the last of C0", "\x1f", R"(\x1f)"},
    {"delete", "\x7f", R"(\x7f)"},
    {"the first of C1", "\xc2\x80", R"(\xc2\x80)"},
    {"control sequence introducer", "\xc2\x9b", R"(\xc2\x9b)"},
    {"the last of C1", "\xc2\x9f", R"(\xc2\x9f)"},
    {"no-break space, behind C1", "\xc2\xa0", "\xc2\xa0"},
    {"a lone byte of C1",
     "a\x9b"
     "b",
     R"(a\x9bb)"},
    {"an accent", "caf\xc3\xa9", "caf\xc3\xa9"},
    {"Arabic letter mark", "\xd8\x9c", R"(\xd8\x9c)"},
    {"Arabic question mark", "\xd8\x9f", "\xd8\x9f"},
    {"zero-width joiner", "\xe2\x80\x8d", "\xe2\x80\x8d"},
    {"left-to-right mark", "\xe2\x80\x8e", R"(\xe2\x80\x8e)"},
    {"right-to-left mark", "\xe2\x80\x8f", R"(\xe2\x80\x8f)"},
    {"hyphen, behind the marks", "\xe2\x80\x90", "\xe2\x80\x90"},
    {"hyphenation point, before the separators", "\xe2\x80\xa7", "\xe2\x80\xa7"},
    {"line separator", "\xe2\x80\xa8", R"(\xe2\x80\xa8)"},
    {"right-to-left override", "a\xe2\x80\xae.exe", R"(a\xe2\x80\xae.exe)"},
    {"narrow no-break space, behind the overrides", "\xe2\x80\xaf", "\xe2\x80\xaf"},
    {"invisible plus, before the isolates", "\xe2\x81\xa4", "\xe2\x81\xa4"},
    {"left-to-right isolate", "\xe2\x81\xa6", R"(\xe2\x81\xa6)"},
    {"pop directional isolate", "\xe2\x81\xa9", R"(\xe2\x81\xa9)"},
    {"behind the isolates", "\xe2\x81\xaa", "\xe2\x81\xaa"},
    {"four bytes", "\xf0\x9f\x98\x80", "\xf0\x9f\x98\x80"},
    {"a cut sequence", "x\xe2\x80", R"(x\xe2\x80)"},
    {"an overlong form", "\xc0\x9b", R"(\xc0\x9b)"},
    {"a surrogate", "\xed\xa0\x80", R"(\xed\xa0\x80)"},
};

TEST(PRINTABLE, shows_what_a_terminal_cannot_be_steered_by)
{
    for (const ESCAPED& row : escaped_texts)
        EXPECT_EQ(printable(row.text), row.shown) << row.what;
}

TEST(PRINTABLE, never_shows_two_texts_alike)
{
    std::set<std::string> shown;
    // Each byte, each byte behind a backslash, and the escapes themselves.
    for (int byte = 0; byte < 256; ++byte)
    {
        const char c = static_cast<char>(byte);
        EXPECT_TRUE(shown.insert(printable({&c, 1})).second) << byte;
        EXPECT_TRUE(shown.insert(printable("\\"s + c)).second) << byte;
        EXPECT_TRUE(shown.insert(printable("\\x" + as_hexadecimal({&c, 1}))).second) << byte;
    }
}

// A JSON text of the same: no character that steers a terminal stands in it as it is.
TEST(JSON_TEXT, escapes_what_steers_a_terminal)
{
    for (const ESCAPED& row : escaped_texts)
    {
        TEXT_SINK sink;
        JSON_WRITER writer(sink);
        writer.value(row.text);
        writer.finish();
        std::string_view rest = sink.text;
        for (; rest.size() > 1; rest.remove_prefix(first_character(rest).length)) // but for the last newline
        {
            ASSERT_GT(first_character(rest).length, 0U) << row.what;
            const char32_t character = first_character(rest).character;
            EXPECT_TRUE(!steers_a_terminal(character) || character == '\n') << row.what << ": " << sink.text;
        }
        if (is_utf_8(row.text))
        {
            EXPECT_EQ(nlohmann::json::parse(sink.text), row.text) << row.what;
        }
    }
}

TEST(UTF_8, knows_the_first_character)
{
    struct ROW
    {
        std::string bytes;
        std::size_t length;
        char32_t character;
    };
    const ROW rows[] = {
        {"ab", 1, U'a'},   {"\xc3\xa9x", 2, 0xe9}, {"\xe2\x80\xae", 3, 0x202e}, {"\xf0\x9f\x98\x80", 4, 0x1f600},
        {"\x9b", 0, 0x9b}, {"\xe2\x80x", 0, 0xe2},
    };
    for (const ROW& row : rows)
    {
        EXPECT_EQ(first_character(row.bytes).length, row.length) << row.bytes;
        EXPECT_EQ(first_character(row.bytes).character, row.character) << row.bytes;
    }
}

TEST(UTF_8, is_told_wherever_it_stands)
{
    for (const ESCAPED& row : escaped_texts)
    {
        const bool alone = is_utf_8(row.text);
        for (std::size_t before = 1; before <= 17; ++before)
        {
            EXPECT_EQ(is_utf_8(std::string(before, 'a') + row.text), alone) << before << " before " << row.what;
            EXPECT_EQ(is_utf_8(row.text + std::string(before, 'a')), alone) << before << " behind " << row.what;
        }
    }
}

TEST(SHORTENED, keeps_what_is_short_enough)
{
    EXPECT_EQ(shortened("", 3), "");
    EXPECT_EQ(shortened("abc", 3), "abc");
    EXPECT_EQ(shortened("abcd", 3), "abc...");
    EXPECT_EQ(in_single_quotes(std::string(100, 'x')), "'" + std::string(100, 'x') + "'");
    EXPECT_EQ(in_single_quotes(std::string(101, 'x')), "'" + std::string(100, 'x') + "...'");
}

TEST(SHORTENED, cuts_no_character)
{
    struct ROW
    {
        std::string text;
        std::size_t longest;
        std::string shown;
    };
    const ROW rows[] = {
        {"a\xc3\xa9z", 1, "a..."},
        {"a\xc3\xa9z", 2, "a..."},
        {"a\xc3\xa9z", 3, "a\xc3\xa9..."},
        {"a\xe2\x82\xacz", 2, "a..."},
        {"a\xe2\x82\xacz", 3, "a..."},
        {"a\xe2\x82\xacz", 4, "a\xe2\x82\xac..."},
        {"\xf0\x9f\x98\x80z", 3, "..."},
        {"\xf0\x9f\x98\x80z", 4, "\xf0\x9f\x98\x80..."},
        {"\xc3\xa9\xc3\xa9\xc3\xa9", 4, "\xc3\xa9\xc3\xa9..."},
        {"\xe2\xe2\xe2\xe2", 3, "\xe2\xe2\xe2..."}, // no UTF-8 anyway
        {"abcdef", 0, "..."},
    };
    for (const ROW& row : rows)
        EXPECT_EQ(shortened(row.text, row.longest), row.shown) << row.text << " to " << row.longest;
}
}
