// Texts of which parts are hidden: how they are written, read back, measured and compared.
#include "tools/velmar-cfg/base/hidden_text.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/isolated_test.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/json_reader.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/keyed_hash.h"
#include "tools/velmar-cfg/base/text.h"

namespace
{
constexpr const char* some_key = "0123456789abcdef";
constexpr const char* other_key = "0123456789abcde0";

std::string lasting(const std::string& hmac, const std::string& key = some_key)
{
    return mark_of({key, hmac, true, 5});
}

const std::string one = lasting("1111111111111111");
const std::string two = lasting("2222222222222222");
const std::string passing_one = mark_of({some_key, "1111111111111111", false, 5});
const std::string unknown = mark_of({"", "", false});

std::string as_json(const std::string& text)
{
    TEXT_SINK sink;
    JSON_WRITER out(sink);
    out.value(text);
    out.finish();
    return nlohmann::json::parse(sink.text).dump();
}

TEST(HIDDEN_TEXT, tells_what_a_mark_was_made_of)
{
    for (const HIDDEN_PART& part : {HIDDEN_PART{some_key, "fedcba9876543210", true, 0x12345678},
                                    HIDDEN_PART{other_key, "fedcba9876543210", false, 1}, HIDDEN_PART{"", "", false}})
    {
        const std::string mark = mark_of(part);
        EXPECT_EQ(hidden_part(mark), part);
    }
}

TEST(HIDDEN_TEXT, has_its_parts_in_order)
{
    struct ROW
    {
        std::string text;
        std::vector<std::string> parts; // "*" for a hidden one
    };
    for (const ROW& row :
         {ROW{"", {}}, ROW{"a", {"a"}}, ROW{one, {"*"}}, ROW{"a" + one, {"a", "*"}}, ROW{one + "b", {"*", "b"}},
          ROW{one + two, {"*", "*"}}, ROW{"a" + one + "b" + two + "c", {"a", "*", "b", "*", "c"}},
          // Too short to be one.
          ROW{one.substr(1), {one.substr(1)}}, ROW{one.substr(0, 30), {one.substr(0, 30)}}})
    {
        std::vector<std::string> found;
        TEXT_PARTS parts(row.text);
        for (TEXT_PART part{}; parts.next(part);)
            found.push_back(part.hidden ? "*" : std::string(part.text));
        EXPECT_EQ(found, row.parts) << row.text;
        EXPECT_EQ(has_hidden_parts(row.text), std::ranges::count(row.parts, "*") > 0) << row.text;
    }
}

// What is no ASCII letter or digit could mean something to a rule for lines.
TEST(HIDDEN_TEXT, marks_are_letters_and_digits_and_no_number)
{
    for (const std::string& mark : {one, passing_one, unknown})
    {
        EXPECT_TRUE(std::ranges::all_of(mark, [](unsigned char c) { return std::isalnum(c) != 0; })) << mark;
        EXPECT_EQ(mark.front(), 'Q') << mark;
    }
}

TEST(HIDDEN_TEXT, is_named_for_people)
{
    struct ROW
    {
        std::string text;
        const char* named;
    };
    for (const ROW& row :
         {ROW{"a=" + one + ";b", "a=\\(masked 11111111);b"}, ROW{passing_one, "\\(masked)"},
          ROW{"x" + unknown + unknown, "x\\(masked)\\(masked)"}, ROW{"\\(masked)", "\\(masked)"}, ROW{"", ""}})
        EXPECT_EQ(with_hidden_parts_named(row.text), row.named);
    // The text of that look is another once it is printable.
    EXPECT_EQ(printable("a\t" + passing_one + "\n"), "a\\t\\(masked)\\n");
    EXPECT_EQ(printable("\\(masked)"), "\\\\(masked)");
}

TEST(HIDDEN_TEXT, is_cut_outside_marks_and_by_its_length_as_shown)
{
    struct ROW
    {
        std::string text;
        std::size_t shown_length;
        std::string kept;
    };
    for (const ROW& row : {ROW{"abc", 2, "ab"}, ROW{"abc", 9, "abc"}, ROW{"ab" + passing_one + "cd", 2, "ab"},
                           ROW{"ab" + passing_one + "cd", 3, "ab" + passing_one},
                           ROW{"ab" + passing_one + "cd", 2 + 9 + 1, "ab" + passing_one + "c"}, ROW{one, 0, ""}})
        EXPECT_EQ(row.text.substr(0, length_by_shown_length(row.text, row.shown_length)), row.kept) << row.text;
    EXPECT_EQ(printable(in_single_quotes(std::string(90, 'a') + passing_one + "bcd")),
              "'" + std::string(90, 'a') + "\\(masked)b...'");
}

// A mark of five bytes.
TEST(HIDDEN_TEXT, knows_where_a_byte_stood_before)
{
    struct ROW
    {
        std::string text;
        std::size_t offset;
        std::size_t before;
    };
    const std::size_t size = one.size();
    for (const ROW& row :
         {ROW{"abc", 2, 2}, ROW{"abc", 3, 3}, ROW{"ab" + one + "cd", 2, 2}, ROW{"ab" + one + "cd", 10, 2},
          ROW{"ab" + one + "cd", 2 + size, 7}, ROW{"ab" + one + "cd", 3 + size, 8}, ROW{one + ";" + two + ";", size, 5},
          ROW{one + ";" + two + ";", 2 * size + 1, 11}})
        EXPECT_EQ(offset_before_hiding(row.text, row.offset), row.before) << row.text << " at " << row.offset;
    const std::string of_document = mark_of({std::string(16, 'a'), std::string(16, 'b'), true});
    EXPECT_EQ(offset_before_hiding("ab" + of_document, 2), 2U);
    EXPECT_EQ(offset_before_hiding("ab" + of_document, 9), 2U);
    EXPECT_EQ(offset_before_hiding("ab" + of_document + "c", 2 + of_document.size()), std::nullopt);
}

TEST(HIDDEN_TEXT, is_compared_by_what_is_hidden_where_that_can_be_told)
{
    struct ROW
    {
        std::string a;
        std::string b;
        SAMENESS sameness;
    };
    const std::string one_elsewhere = lasting("1111111111111111", other_key);
    for (const ROW& row : {ROW{"a", "a", SAMENESS::SAME},
                           {"a", "b", SAMENESS::DIFFERENT},
                           {"", "", SAMENESS::SAME},
                           {one, one, SAMENESS::SAME},
                           {one, two, SAMENESS::DIFFERENT},
                           {one, mark_of({some_key, "1111111111111111", true, 0}), SAMENESS::SAME},
                           {one, passing_one, SAMENESS::SAME},
                           {one, one_elsewhere, SAMENESS::UNKNOWN},
                           {one, unknown, SAMENESS::UNKNOWN},
                           {unknown, unknown, SAMENESS::UNKNOWN},
                           {one, "a", SAMENESS::DIFFERENT},
                           {"a" + one, "b" + one_elsewhere, SAMENESS::DIFFERENT},
                           {one + one, one_elsewhere + two, SAMENESS::DIFFERENT},
                           {one + one, one_elsewhere + one, SAMENESS::UNKNOWN},
                           {one + "a", one, SAMENESS::DIFFERENT},
                           {one + "a", one + "b", SAMENESS::DIFFERENT}})
    {
        EXPECT_EQ(compare_texts(row.a, row.b), row.sameness) << row.a << " and " << row.b;
        EXPECT_EQ(compare_texts(row.b, row.a), row.sameness) << row.b << " and " << row.a;
    }
}

TEST(HIDDEN_TEXT, is_an_object_in_json)
{
    EXPECT_EQ(as_json("a=" + one + ";b"),
              R"({"masked":["a=",{"hmac":"1111111111111111","key":"0123456789abcdef"},";b"]})");
    EXPECT_EQ(as_json(passing_one), R"({"masked":[null]})");
    EXPECT_EQ(as_json("\xff" + unknown), R"({"masked":[{"hex":"ff"},null]})");
    EXPECT_EQ(as_json("\\(masked)"), R"x("\\(masked)")x");
}

class MASKED_JSON : public ISOLATED_TEST
{
protected:
    static std::string text_in(const std::string& json)
    {
        write_file("document.json", R"({"schema": "s", "schema_version": 1, "text": )" + json + "}");
        const JSON_DOCUMENT document("document.json", {"s", 1, "document", "a test"});
        return document.root().member("text").text();
    }
};

TEST_F(MASKED_JSON, reads_back)
{
    for (const std::string& text : {"a=" + one + ";b", one, "\xff" + one + two, unknown})
        EXPECT_EQ(compare_texts(text_in(as_json(text)), text), text == unknown ? SAMENESS::UNKNOWN : SAMENESS::SAME)
            << text;
    EXPECT_EQ(with_hidden_parts_named(text_in(as_json("a" + passing_one))), "a\\(masked)");
}

TEST_F(MASKED_JSON, is_refused_where_it_is_something_else)
{
    for (const char* const json : {R"({"masked": "a"})", R"({"masked": [1]})", R"({"masked": [["a"]]})",
                                   R"({"masked": ["a"], "more": 1})", R"({"masked": [{"hmac": "1111111111111111"}]})",
                                   R"({"masked": [{"hmac": "111111111111111", "key": "0123456789abcdef"}]})",
                                   R"({"masked": [{"hmac": "111111111111111G", "key": "0123456789abcdef"}]})",
                                   R"({"masked": [{"hmac": 1, "key": "0123456789abcdef"}]})"})
        EXPECT_THROW(text_in(json), TOOL_ERROR) << json;
}

// Test case 2 of RFC 4231, and a key longer than a block, its test case 6.
TEST(KEYED_HASH, is_the_first_half_of_a_quarter_of_hmac_sha_256)
{
    EXPECT_EQ(hmac_of("Jefe", "what do ya want for nothing?"), "5bdcc146bf60754e");
    EXPECT_EQ(hmac_of(std::string(131, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First"),
              "60e431591ee0b67f");
}

TEST(KEYED_HASH, draws_other_bytes_each_time)
{
    EXPECT_EQ(random_bytes(32).size(), 32U);
    EXPECT_NE(random_bytes(32), random_bytes(32));
}
}
