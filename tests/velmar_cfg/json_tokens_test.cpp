// The reader of JSON, beside a parser that many use: what both accept, and what they make of it, is the same.
#include "tools/velmar-cfg/base/json_tokens.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <random>

#include "tools/velmar-cfg/base/byte_source.h"
#include "tools/velmar-cfg/base/json_tree.h"

namespace
{
using nlohmann::ordered_json;

// The bytes of a text, at most so many at a time.
class TEXT_SOURCE : public BYTE_SOURCE
{
public:
    explicit TEXT_SOURCE(std::string_view the_text, std::size_t bytes_at_a_time = 1U << 20)
        : rest(the_text), most(bytes_at_a_time)
    {
    }

    std::size_t read(char* to, std::size_t room) override
    {
        const std::size_t size = std::min({most, room, rest.size()});
        std::copy_n(rest.begin(), size, to);
        rest.remove_prefix(size);
        return size;
    }

private:
    std::string_view rest;
    const std::size_t most;
};

ordered_json as_json(const JSON_TREE& tree, JSON_TREE::INDEX value)
{
    switch (tree.kind(value))
    {
    case JSON_TOKEN::TEXT:
        return std::string(tree.text(value));
    case JSON_TOKEN::NATURAL:
        return tree.natural(value);
    case JSON_TOKEN::NEGATIVE:
        return tree.negative(value);
    case JSON_TOKEN::FLOATING:
        return tree.floating(value);
    case JSON_TOKEN::TRUTH:
        return tree.truth(value);
    case JSON_TOKEN::BEGIN_LIST:
    {
        ordered_json list = ordered_json::array();
        for (JSON_TREE::INDEX i = tree.begin(value); i != tree.end(value); i = tree.behind(i))
            list.push_back(as_json(tree, i));
        return list;
    }
    default:
        return nullptr;
    }
}

// The same for a document that may hold objects, whose keys only a walk over the tokens shows.
std::optional<ordered_json> parsed_by_tokens(const std::string& text, std::size_t bytes_at_a_time)
{
    TEXT_SOURCE source(text, bytes_at_a_time);
    try
    {
        JSON_TOKENS tokens(source);
        ordered_json document;
        std::vector<ordered_json> open; // with null behind a key
        std::vector<std::string> keys;
        for (JSON_TOKEN token = tokens.next(); token != JSON_TOKEN::END_OF_DOCUMENT; token = tokens.next())
        {
            if (token == JSON_TOKEN::KEY)
            {
                keys.emplace_back(tokens.text());
                continue;
            }
            ordered_json value;
            if (token == JSON_TOKEN::BEGIN_OBJECT || token == JSON_TOKEN::BEGIN_LIST)
            {
                open.push_back(token == JSON_TOKEN::BEGIN_OBJECT ? ordered_json::object() : ordered_json::array());
                continue;
            }
            if (token == JSON_TOKEN::END_OBJECT || token == JSON_TOKEN::END_LIST)
            {
                value = std::move(open.back());
                open.pop_back();
            }
            else
            {
                JSON_TREE tree;
                tree.read(tokens, token);
                value = as_json(tree, 0);
            }
            if (open.empty())
                document = std::move(value);
            else if (open.back().is_array())
                open.back().push_back(std::move(value));
            else
            {
                open.back()[keys.back()] = std::move(value);
                keys.pop_back();
            }
        }
        return document;
    }
    catch (const JSON_ERROR&)
    {
        return std::nullopt;
    }
}

std::optional<ordered_json> parsed_by_the_other(const std::string& text)
{
    try
    {
        return ordered_json::parse(text);
    }
    catch (const ordered_json::exception&)
    {
        return std::nullopt;
    }
}

void expect_same(const std::string& text)
{
    const std::optional<ordered_json> expected = parsed_by_the_other(text);
    for (const std::size_t bytes_at_a_time : {std::size_t{1}, std::size_t{7}, std::size_t{1} << 20})
        ASSERT_EQ(parsed_by_tokens(text, bytes_at_a_time), expected) << text << ", " << bytes_at_a_time << " at a time";
}

TEST(JSON_TOKENS_TABLE, accepts_and_refuses_what_the_grammar_does)
{
    for (const char* const text : {"0",
                                   "-0",
                                   "00",
                                   "01",
                                   "-",
                                   "-1",
                                   "1.",
                                   "1.5",
                                   ".5",
                                   "1e5",
                                   "1E+5",
                                   "1e",
                                   "1e+",
                                   "1e-400",
                                   "1e400",
                                   "-1e400",
                                   "18446744073709551615",
                                   "18446744073709551616",
                                   "-9223372036854775808",
                                   "-9223372036854775809",
                                   "123456789012345678901234567890",
                                   "0.1",
                                   "2.2250738585072014e-308",
                                   "4.9e-324",
                                   "+1",
                                   "NaN",
                                   "Infinity",
                                   "true",
                                   "tru",
                                   "truex",
                                   "TRUE",
                                   "false",
                                   "null",
                                   "nul",
                                   "",
                                   " ",
                                   "\n\t\r 1 \n",
                                   "\v1",
                                   "1 2",
                                   "1,",
                                   "[]",
                                   "[ ]",
                                   "[1]",
                                   "[1,]",
                                   "[,1]",
                                   "[1 2]",
                                   "[1,2",
                                   "]",
                                   "{}",
                                   "{ }",
                                   "{\"a\":1}",
                                   "{\"a\" : 1 , \"b\" : [ ] }",
                                   "{\"a\"}",
                                   "{\"a\":}",
                                   "{\"a\":1,}",
                                   "{,}",
                                   "{a:1}",
                                   "{1:1}",
                                   "{\"a\":1 \"b\":2}",
                                   "{\"a\":1]",
                                   "[1}",
                                   "}",
                                   "{\"a\":1,\"a\":2}",
                                   "[[[[[[]]]]]]",
                                   "[[[[[[]]]]]",
                                   "\"\"",
                                   "\"a",
                                   "\"",
                                   "'a'",
                                   "\"a\nb\"",
                                   "\"a\tb\"",
                                   "\"\\\"\\\\\\/\\b\\f\\n\\r\\t\"",
                                   "\"\\a\"",
                                   "\"\\\"",
                                   "\"\\u0041\\u00e9\\u20AC\\u0000\"",
                                   "\"\\u004\"",
                                   "\"\\u004g\"",
                                   "\"\\ud83d\\ude00\"",
                                   "\"\\ud83d\"",
                                   "\"\\ud83dx\"",
                                   "\"\\ud83d\\n\"",
                                   "\"\\ud83d\\u0041\"",
                                   "\"\\ude00\"",
                                   "\"\\uDBFF\\uDFFF\"",
                                   "\"\xc3\xa9\"",
                                   "\"\xe2\x82\xac\"",
                                   "\"\xf0\x9f\x98\x80\"",
                                   "\"\xff\"",
                                   "\"\xc3\"",
                                   "\"\xc0\x80\"",
                                   "\"\xed\xa0\x80\"",
                                   "\"\xf5\x80\x80\x80\"",
                                   "\"plain for a while\xc3\"",
                                   "\"plain for a while, then \\\"quoted\\\" and on\"",
                                   "\x7f",
                                   "\"\x7f\"",
                                   "\xef\xbb\xbf[1]",
                                   "\xef\xbb[1]",
                                   "// 1",
                                   "/* */ 1",
                                   "[1, // x\n 2]",
                                   "\"a long text that ends in the last of its blocks\""})
        expect_same(text);
}

// A part of the document that ends in blanks leaves those of a longer part before it in the buffer.
TEST(JSON_TOKENS_TABLE, reads_no_blank_behind_the_bytes_that_it_got)
{
    class PARTS_SOURCE : public BYTE_SOURCE
    {
    public:
        explicit PARTS_SOURCE(std::vector<std::string> the_parts) : parts(std::move(the_parts)) {}

        std::size_t read(char* to, std::size_t /*room*/) override
        {
            if (next == parts.size())
                return 0;
            const std::string& part = parts[next++];
            std::ranges::copy(part, to);
            return part.size();
        }

    private:
        const std::vector<std::string> parts;
        std::size_t next = 0;
    };
    for (std::size_t blanks = 1; blanks <= 17; ++blanks)
    {
        PARTS_SOURCE source({"[" + std::string(40, ' '), std::string(blanks, ' '), "1]"});
        JSON_TOKENS tokens(source);
        EXPECT_EQ(tokens.next(), JSON_TOKEN::BEGIN_LIST);
        EXPECT_EQ(tokens.next(), JSON_TOKEN::NATURAL) << blanks;
        EXPECT_EQ(tokens.next(), JSON_TOKEN::END_LIST) << blanks;
        EXPECT_EQ(tokens.next(), JSON_TOKEN::END_OF_DOCUMENT) << blanks;
    }
}

TEST(JSON_TOKENS_TABLE, reads_a_text_that_is_longer_than_a_buffer)
{
    for (const std::size_t size : std::initializer_list<std::size_t>{262'140, 262'143, 262'144, 262'145, 800'000})
    {
        std::string text(size, 'x');
        expect_same('"' + text + '"');
        text.replace(size / 2, 2, "\\n");
        expect_same("{\"" + text + "\":\"" + text + "\"}");
        text.back() = '\xc3';
        expect_same('"' + text + "\xa9\"");
    }
}

// Changes, inserts and drops bytes of a document at random.
TEST(JSON_TOKENS_GENERATED, reads_mutated_documents_as_the_other_does)
{
    const std::string sound =
        R"({"a": ["text", "\u00e9\n", 1, -2, 3.5e-2, true, false, null, {}, []], "b\"": {"c": "é"}})";
    constexpr std::string_view interesting = "\"\\{}[],:0123456789-+.eEutfn \n\t\x01\x80\xc3\xa9/x";
    std::minstd_rand random(11);
    int accepted = 0;
    for (int i = 0; i < 20'000; ++i)
    {
        std::string text = sound;
        for (auto changes = random() % 3 + 1; changes > 0; --changes)
        {
            const std::size_t at = random() % text.size();
            const char c = interesting[random() % interesting.size()];
            switch (random() % 3)
            {
            case 0:
                text[at] = c;
                break;
            case 1:
                text.insert(at, 1, c);
                break;
            default:
                text.erase(at, random() % 3 + 1);
                break;
            }
        }
        const std::optional<ordered_json> expected = parsed_by_the_other(text);
        accepted += expected ? 1 : 0;
        ASSERT_EQ(parsed_by_tokens(text, random() % 9 + 1), expected) << text;
    }
    EXPECT_GT(accepted, 1000);
}

struct PLACE_CASE
{
    const char* text;
    std::size_t line;
    std::size_t column;
};

void PrintTo(const PLACE_CASE& row, std::ostream* stream)
{
    *stream << row.text;
}

class JSON_ERROR_PLACE : public testing::TestWithParam<PLACE_CASE>
{
};

TEST_P(JSON_ERROR_PLACE, is_where_the_grammar_ends)
{
    for (const std::size_t bytes_at_a_time : std::initializer_list<std::size_t>{1, 3, 100})
    {
        TEXT_SOURCE source(GetParam().text, bytes_at_a_time);
        try
        {
            JSON_TOKENS tokens(source);
            while (tokens.next() != JSON_TOKEN::END_OF_DOCUMENT)
            {
            }
            ADD_FAILURE() << "accepted";
        }
        catch (const JSON_ERROR& error)
        {
            EXPECT_EQ(error.line, GetParam().line);
            EXPECT_EQ(error.column, GetParam().column);
            EXPECT_FALSE(error.number_too_large);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(table, JSON_ERROR_PLACE,
                         testing::Values(PLACE_CASE{"x", 1, 1}, PLACE_CASE{"", 1, 1}, PLACE_CASE{"[1, x]", 1, 5},
                                         PLACE_CASE{"[1,\n\n  x]", 3, 3}, PLACE_CASE{"{\n  \"a\" 1\n}", 2, 7},
                                         PLACE_CASE{"[\n1", 2, 2}, PLACE_CASE{"\n\ntrux", 3, 4},
                                         PLACE_CASE{"[\"a\\q\"]", 1, 5}, PLACE_CASE{"{}\n{", 2, 1}));

TEST(JSON_TREE_OF_A_DOCUMENT, knows_the_way_to_each_value)
{
    TEXT_SOURCE source(R"({"a": [1, {"b": [[], [2, {"c": 3}]]}], "d": 4, "a": 5})");
    JSON_TOKENS tokens(source);
    JSON_TREE tree;
    tree.read(tokens, tokens.next());
    std::vector<std::string> paths;
    for (JSON_TREE::INDEX i = 0; i < tree.end(0); ++i)
        paths.push_back(tree.path(i));
    EXPECT_THAT(paths, testing::ElementsAre("", ".a", ".a[0]", ".a[1]", ".a[1].b", ".a[1].b[0]", ".a[1].b[1]",
                                            ".a[1].b[1][0]", ".a[1].b[1][1]", ".a[1].b[1][1].c", ".d", ".a"));
    EXPECT_EQ(tree.natural(*tree.member(0, "a")), 5U) << "the last one counts";
    EXPECT_EQ(tree.member(0, "b"), std::nullopt) << "not a member of a member";
    EXPECT_EQ(tree.member(1, "b"), std::nullopt) << "a list has no members";
}

TEST(JSON_TREE_OF_A_DOCUMENT, keeps_nothing_of_the_value_before)
{
    TEXT_SOURCE source(R"([{"a": "long text", "b": [1, 2]}, {"b": "x"}])");
    JSON_TOKENS tokens(source);
    JSON_TREE tree;
    tokens.next();
    tree.read(tokens, tokens.next());
    tree.read(tokens, tokens.next());
    EXPECT_EQ(tree.member(0, "a"), std::nullopt);
    EXPECT_EQ(tree.text(*tree.member(0, "b")), "x");
    EXPECT_EQ(tree.end(0), 2U);
}
}
