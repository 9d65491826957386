// JSON documents taken apart: the types that each reader accepts, the places that complaints name, and rows that are
// taken while the document is read.
#include "tools/velmar-cfg/base/json_reader.h"

#include <cmath>
#include <ctime>
#include <gmock/gmock.h>
#include <limits>

#include "tests/support/isolated_test.h"
#include "tools/velmar-cfg/base/errors.h"

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

constexpr DOCUMENT_KIND some_kind = {"some-kind", 2, "some document", "a test"};

class JSON_DOCUMENTS : public ISOLATED_TEST
{
protected:
    // The complaint about the document, which `read` takes apart; empty for none.
    template <typename READ>
    static std::string complaint_of(const std::string& json, READ read, const std::vector<JSON_ROWS>& lists = {})
    {
        write_file("document.json", json);
        try
        {
            const JSON_DOCUMENT document("document.json", some_kind, lists);
            read(document.root());
        }
        catch (const TOOL_ERROR& error)
        {
            EXPECT_EQ(error.exit_code, EXIT_CODE::BAD_INPUT);
            return error.what();
        }
        return "";
    }

    // The complaint about a document whose member "value" is that.
    template <typename READ>
    static std::string complaint_of_value(const std::string& value, READ read)
    {
        return complaint_of(R"({"schema": "some-kind", "schema_version": 1, "value": )" + value + "}",
                            [&read](const JSON_NODE& root) { read(root.member("value")); });
    }

    // "" where it is accepted.
    template <typename READ>
    static void expect_refused(const std::vector<const char*>& values, const std::string& wanted, READ read)
    {
        for (const char* const value : values)
            EXPECT_EQ(complaint_of_value(value, read),
                      "document.json: .value is no " + wanted + "; have the file written again")
                << value;
    }
};

// --- Values ---

TEST_F(JSON_DOCUMENTS, have_texts)
{
    const auto text_of = [](const std::string& value)
    {
        std::optional<std::string> text;
        EXPECT_EQ(complaint_of_value(value, [&text](const JSON_NODE& node) { text = node.text_or_null(); }), "");
        return text;
    };
    EXPECT_EQ(text_of(R"("")"), "");
    EXPECT_EQ(text_of(R"("a\u0000b")"), std::string("a\0b", 3));
    EXPECT_EQ(text_of(R"({"hex": ""})"), "");
    EXPECT_EQ(text_of(R"({"hex": "61ff"})"), "a\xff");
    EXPECT_EQ(text_of(R"({"hex": "61FF"})"), "a\xff");
    EXPECT_EQ(text_of(R"({"masked": []})"), "");
    EXPECT_EQ(text_of(R"({"masked": ["a", "b"]})"), "ab");
    EXPECT_EQ(text_of("null"), std::nullopt);
    const std::vector<const char*> others = {"7",
                                             "true",
                                             "[]",
                                             "{}",
                                             R"(["a"])",
                                             R"({"hex": 7})",
                                             R"({"hex": "6"})",
                                             R"({"hex": "6g"})",
                                             R"({"hex": "61", "x": 1})",
                                             R"({"x": 1, "hex": "61"})",
                                             R"({"other": "61"})",
                                             R"({"hex": "61", "hex": "62"})"};
    expect_refused(others, "text", [](const JSON_NODE& node) { node.text(); });
    expect_refused({"null"}, "text", [](const JSON_NODE& node) { node.text(); });
    expect_refused(others, "text", [](const JSON_NODE& node) { node.text_or_null(); });
}

TEST_F(JSON_DOCUMENTS, have_natural_numbers)
{
    std::optional<std::uint64_t> number;
    const auto read = [&number](const JSON_NODE& node) { number = node.natural_number_or_null(); };
    for (const auto& [json, expected] : {std::pair("0", std::uint64_t{0}), {"18446744073709551615", UINT64_MAX}})
    {
        EXPECT_EQ(complaint_of_value(json, read), "");
        EXPECT_EQ(number, expected);
    }
    EXPECT_EQ(complaint_of_value("null", read), "");
    EXPECT_EQ(number, std::nullopt);
    expect_refused({"-1", "-0", "1.0", "1e3", "\"1\"", "true", "18446744073709551616"}, "natural number", read);
    expect_refused({"null", "-1"}, "natural number", [](const JSON_NODE& node) { node.natural_number(); });
}

TEST_F(JSON_DOCUMENTS, have_numbers_of_32_bits)
{
    std::optional<int> number;
    const auto read = [&number](const JSON_NODE& node) { number = node.int_or_null(); };
    for (const auto& [json, expected] :
         {std::pair("0", 0), {"2147483647", 2147483647}, {"-1", -1}, {"-2147483648", std::numeric_limits<int>::min()}})
    {
        EXPECT_EQ(complaint_of_value(json, read), "");
        EXPECT_EQ(number, expected) << json;
    }
    expect_refused({"2147483648", "-2147483649", "1.0", "\"1\"", "false", "4294967297"}, "signed 32-bit number", read);
    std::optional<unsigned int> without_sign;
    const auto read_unsigned = [&without_sign](const JSON_NODE& node) { without_sign = node.uint_or_null(); };
    for (const auto& [json, expected] : {std::pair("0", 0U), {"4294967295", 4294967295U}})
    {
        EXPECT_EQ(complaint_of_value(json, read_unsigned), "");
        EXPECT_EQ(without_sign, expected) << json;
    }
    expect_refused({"4294967296", "-1", "1.0", "\"1\""}, "unsigned 32-bit number", read_unsigned);
    EXPECT_EQ(complaint_of_value("null", read), "");
    EXPECT_EQ(number, std::nullopt);
    EXPECT_EQ(complaint_of_value("null", read_unsigned), "");
    EXPECT_EQ(without_sign, std::nullopt);
}

TEST_F(JSON_DOCUMENTS, have_other_numbers)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    std::optional<double> number;
    const auto read = [&number](const JSON_NODE& node) { number = node.double_or_null(); };
    for (const auto& [json, expected] : {std::pair("7", 7.0),
                                         {"-7", -7.0},
                                         {"2.5", 2.5},
                                         {"1e3", 1000.0},
                                         {"\"inf\"", infinity},
                                         {"\"-inf\"", -infinity}})
    {
        EXPECT_EQ(complaint_of_value(json, read), "");
        EXPECT_EQ(number, expected) << json;
    }
    for (const auto& [json, negative] : {std::pair("\"nan\"", false), {"\"-nan\"", true}})
    {
        EXPECT_EQ(complaint_of_value(json, read), "");
        EXPECT_TRUE(std::isnan(*number)) << json;
        EXPECT_EQ(std::signbit(*number), negative) << json;
    }
    EXPECT_EQ(complaint_of_value("null", read), "");
    EXPECT_EQ(number, std::nullopt);
    expect_refused({"\"Inf\"", "\"\"", "\"1\"", "true", "[]", "\"+inf\""}, "number", read);
}

TEST_F(JSON_DOCUMENTS, have_truth_values)
{
    std::optional<bool> truth;
    const auto read = [&truth](const JSON_NODE& node) { truth = node.truth_or_null(); };
    for (const auto& [json, expected] :
         {std::pair("true", std::optional(true)), {"false", false}, {"null", std::nullopt}})
    {
        EXPECT_EQ(complaint_of_value(json, read), "");
        EXPECT_EQ(truth, expected) << json;
    }
    expect_refused({"0", "1", "\"true\"", "[]"}, "truth value", read);
    expect_refused({"null"}, "truth value", [](const JSON_NODE& node) { node.truth(); });
}

// --- Places ---

TEST_F(JSON_DOCUMENTS, are_complained_of_by_the_place_of_the_value)
{
    struct ROW
    {
        const char* value;
        const char* place;
    };
    // The text that is asked for stands at [1].c, whatever stands around it.
    const ROW rows[] = {
        {R"([0, {"c": 7}])", ".value[1].c is no text"},
        {R"([{"c": "x"}, {"a": [1, 2], "b": {"c": 3}, "c": null}])", ".value[1].c is no text"},
        {R"([[[], [1]], {"b": 3}])", ".value[1].c is missing"},
        {R"([0, []])", ".value[1].c is missing"},
        {R"([0, "c"])", ".value[1].c is missing"},
        {R"({"c": "x"})", ".value is no list"},
        {"\"c\"", ".value is no list"},
        {"null", ".value is no list"},
    };
    for (const ROW& row : rows)
        EXPECT_EQ(
            complaint_of_value(row.value, [](const JSON_NODE& node) { node.elements().at(1).member("c").text(); }),
            std::string("document.json: ") + row.place + "; have the file written again")
            << row.value;
}

TEST_F(JSON_DOCUMENTS, have_the_last_of_two_members_with_one_key)
{
    std::string text;
    const auto read = [&text](const JSON_NODE& node) { text = node.member("abcde").text(); };
    EXPECT_EQ(complaint_of_value(R"({"abcde": "first", "axcye": "other", "abcde": "last"})", read), "");
    EXPECT_EQ(text, "last");
    // Of the same length, with the same letters at both ends and in the middle.
    EXPECT_EQ(complaint_of_value(R"({"axcye": "other"})", read),
              "document.json: .value.abcde is missing; have the file written again");
    EXPECT_EQ(complaint_of_value(R"({"": "empty"})", read),
              "document.json: .value.abcde is missing; have the file written again");
    EXPECT_EQ(complaint_of_value(R"({"": "empty"})", [&text](const JSON_NODE& node) { text = node.member("").text(); }),
              "");
    EXPECT_EQ(text, "empty");
    // What stands in a list has no key.
    EXPECT_EQ(complaint_of_value(R"(["x"])", [&text](const JSON_NODE& node) { text = node.member("").text(); }),
              "document.json: .value. is missing; have the file written again");
}

TEST_F(JSON_DOCUMENTS, may_nest_as_deep_as_they_are_long)
{
    constexpr std::size_t deep = 100'000;
    EXPECT_EQ(complaint_of_value(std::string(deep, '[') + std::string(deep, ']'),
                                 [](const JSON_NODE& node) { EXPECT_EQ(node.elements().size(), 1U); }),
              "");
}

// --- Kinds ---

TEST_F(JSON_DOCUMENTS, are_of_the_kind_and_of_a_version_that_is_known)
{
    struct ROW
    {
        const char* json;
        const char* complaint; // behind the file's name; null for none
    };
    constexpr const char* no_such = "is no some document; give one that a test has written";
    constexpr const char* newer =
        "is a some document of version 3, and this velmar-cfg knows them up to version 2; use a "
        "newer velmar-cfg";
    const ROW rows[] = {
        {R"({"schema": "some-kind", "schema_version": 1})", nullptr},
        {R"({"schema_version": 2, "more": [], "schema": "some-kind"})", nullptr},
        {R"({"schema": "some-kind", "schema_version": 3})", newer},
        {R"({"schema": "some-kind", "schema_version": 0})", no_such},
        {R"({"schema": "some-kind", "schema_version": -1})", no_such},
        {R"({"schema": "some-kind", "schema_version": 1.0})", no_such},
        {R"({"schema": "some-kind", "schema_version": "1"})", no_such},
        {R"({"schema": "some-kind"})", no_such},
        {R"({"schema": "Some-kind", "schema_version": 1})", no_such},
        {R"({"schema": "other", "schema_version": 3})", no_such},
        {R"({"schema": 1, "schema_version": 1})", no_such},
        {R"({"schema_version": 1})", no_such},
        {"{}", no_such},
        {"[]", no_such},
        {"7", no_such},
        {"null", no_such},
        {R"("some-kind")", no_such},
        {"", "is not well-formed JSON from line 1, column 1 on; give a some document as a test writes it"},
        {"{}\n{}", "is not well-formed JSON from line 2, column 1 on; give a some document as a test writes it"},
        {"7 7", "is not well-formed JSON from line 1, column 3 on; give a some document as a test writes it"},
        {"{\"a\": 1e999}", "a number in it is too large; give a some document as a test writes it"},
    };
    for (const ROW& row : rows)
        EXPECT_EQ(complaint_of(row.json, [](const JSON_NODE&) {}),
                  row.complaint == nullptr ? "" : std::string("document.json: ") + row.complaint)
            << row.json;
    EXPECT_THROW(JSON_DOCUMENT("missing.json", some_kind), TOOL_ERROR);
}

// --- Rows ---

class ROWS_OF_DOCUMENTS : public JSON_DOCUMENTS
{
protected:
    // The rows of the lists "one" and "two" as they are taken, and the complaint behind them.
    std::vector<std::string> taken(const std::string& members)
    {
        std::vector<std::string> rows;
        const auto take = [&rows](const char* list) {
            return [&rows, list](const JSON_NODE& row)
            { rows.push_back(std::string(list) + " " + row.member("n").text()); };
        };
        complaint =
            complaint_of("{" + members + "}", [](const JSON_NODE&) {}, {{"one", take("one")}, {"two", take("two")}});
        return rows;
    }

    std::string complaint;
};

constexpr const char* head = R"("schema": "some-kind", "schema_version": 1)";

TEST_F(ROWS_OF_DOCUMENTS, are_taken_in_the_order_of_the_document)
{
    const std::string one = R"("one": [{"n": "a"}, {"n": "b"}])";
    const std::string two = R"("two": [{"n": "c"}])";
    EXPECT_THAT(taken(head + (", " + one) + ", " + two), ElementsAre("one a", "one b", "two c"));
    EXPECT_EQ(complaint, "");
    EXPECT_THAT(taken(head + (", " + two) + ", \"other\": [{\"n\": \"x\"}], " + one),
                ElementsAre("two c", "one a", "one b"));
    EXPECT_EQ(complaint, "");
    // Before the head is known they are kept, and taken list by list.
    EXPECT_THAT(taken(two + ", " + one + ", " + head), ElementsAre("one a", "one b", "two c"));
    EXPECT_EQ(complaint, "");
    EXPECT_THAT(taken(R"("schema": "some-kind", )" + two + R"(, "schema_version": 1, )" + one),
                ElementsAre("one a", "one b", "two c"));
    EXPECT_EQ(complaint, "");
    EXPECT_THAT(taken(R"("schema_version": 1, )" + two + R"(, "schema": "some-kind", )" + one),
                ElementsAre("one a", "one b", "two c"));
    EXPECT_EQ(complaint, "");
    EXPECT_THAT(taken(head + std::string(R"(, "one": [], "two": [])")), IsEmpty());
    EXPECT_EQ(complaint, "");
}

TEST_F(ROWS_OF_DOCUMENTS, are_refused_with_their_number)
{
    struct ROW
    {
        std::string members;
        const char* complaint;
    };
    const ROW rows[] = {
        {R"("one": [{"n": "a"}, {"n": 7}], "two": [])", ".one[1].n is no text"},
        {R"("one": [{"n": "a"}, {}], "two": [])", ".one[1].n is missing"},
        {R"("one": [7], "two": [])", ".one[0].n is missing"},
        {R"("one": [])", ".two is missing"},
        {R"("one": {}, "two": [])", ".one is no list"},
        {R"("one": null, "two": [])", ".one is no list"},
        {R"("one": [], "one": [], "two": [])", ".one is there twice"},
        {R"("one": {}, "one": [], "two": [])", ".one is there twice"},
        {R"("one": [], "one": {}, "two": [])", ".one is there twice"},
    };
    for (const ROW& row : rows)
    {
        taken(head + (", " + row.members));
        EXPECT_EQ(complaint, std::string("document.json: ") + row.complaint + "; have the file written again")
            << row.members;
    }
    // The same where the head comes last.
    taken(R"("one": [{"n": "a"}, {"n": 7}], "two": [], )" + std::string(head));
    EXPECT_EQ(complaint, "document.json: .one[1].n is no text; have the file written again");
    taken(R"("one": [], "one": [], "two": [], )" + std::string(head));
    EXPECT_EQ(complaint, "document.json: .one is there twice; have the file written again");
}

// A list that a version has not, or that nobody wants of it, may be missing, and anything may be in it.
TEST_F(ROWS_OF_DOCUMENTS, are_taken_of_their_versions_only)
{
    const auto taken_with_versions = [](const std::string& members, std::uint64_t first, std::uint64_t last)
    {
        std::vector<std::string> rows;
        const JSON_ROWS list = {"one", [&rows](const JSON_NODE& row) { rows.push_back(row.member("n").text()); }, first,
                                last};
        rows.push_back(complaint_of("{" + members + "}", [](const JSON_NODE&) {}, {list}));
        return rows;
    };
    const std::string in_version_2 = R"("schema": "some-kind", "schema_version": 2, )";
    const std::string rows = R"("one": [{"n": "a"}, {"n": "b"}])";
    const std::string nested = R"("one": [{"x": [[{}], []]}, [], 7, null, "]"], "other": [])";
    constexpr std::uint64_t last = std::numeric_limits<std::uint64_t>::max();
    EXPECT_THAT(taken_with_versions(in_version_2 + rows, 2, last), ElementsAre("a", "b", ""));
    EXPECT_THAT(taken_with_versions(in_version_2 + rows, 1, 2), ElementsAre("a", "b", ""));
    for (const auto& [first, end] : {std::pair(std::uint64_t{3}, last), {1, 1}, {3, 2}})
    {
        EXPECT_THAT(taken_with_versions(in_version_2 + rows, first, end), ElementsAre("")) << first;
        EXPECT_THAT(taken_with_versions(in_version_2 + nested, first, end), ElementsAre("")) << first;
        EXPECT_THAT(taken_with_versions(in_version_2 + R"("other": 7)", first, end), ElementsAre("")) << first;
        EXPECT_THAT(taken_with_versions(rows + R"(, "schema": "some-kind", "schema_version": 2)", first, end),
                    ElementsAre(""))
            << first;
    }
    EXPECT_THAT(taken_with_versions(in_version_2 + R"("one": [{"n": })", 3, last),
                ElementsAre(testing::HasSubstr("is not well-formed JSON from line 1, column")));
    EXPECT_THAT(taken_with_versions(in_version_2 + rows + ", " + rows, 3, last),
                ElementsAre(testing::HasSubstr(".one is there twice")));
}

// Nothing is done with the rows of a document of another kind.
TEST_F(ROWS_OF_DOCUMENTS, are_not_taken_of_another_kind_or_version)
{
    for (const char* const other :
         {R"("schema": "other", "schema_version": 1)", R"("schema": "some-kind", "schema_version": 3)"})
    {
        EXPECT_THAT(taken(std::string(other) + R"(, "one": [{"n": "a"}], "two": [])"), IsEmpty()) << other;
        EXPECT_NE(complaint, "") << other;
        EXPECT_THAT(taken(R"("one": [{"n": "a"}], "two": [], )" + std::string(other)), IsEmpty()) << other;
        EXPECT_NE(complaint, "") << other;
    }
}

// A search of all members at each of them would take minutes.
TEST_F(JSON_DOCUMENTS, may_have_very_many_members_that_nobody_knows)
{
    std::string json = R"({"schema": "some-kind", "schema_version": 1)";
    for (int i = 0; i < 200000; ++i)
        json += ", \"m" + std::to_string(i) + "\": 0";
    const std::clock_t before = std::clock();
    EXPECT_EQ(complaint_of(json + "}", [](const JSON_NODE&) {}), "");
    EXPECT_LT(std::clock() - before, 10 * CLOCKS_PER_SEC);
}
}
