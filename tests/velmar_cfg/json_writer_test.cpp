// JSON as the stream writes it, beside what a JSON library makes of the same values.
#include "tools/velmar-cfg/base/json_writer.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>

#include "tools/velmar-cfg/base/text.h"

namespace
{
using nlohmann::ordered_json;

template <typename WRITE>
std::string written(WRITE write)
{
    TEXT_SINK text;
    JSON_WRITER out(text);
    write(out);
    out.finish();
    return text.text;
}

void write_value(JSON_WRITER& out, const ordered_json& value)
{
    if (value.is_object())
    {
        out.begin_object();
        for (const auto& [name, member] : value.items())
        {
            out.key(name);
            write_value(out, member);
        }
        out.end_object();
    }
    else if (value.is_array())
        out.list(value, write_value);
    else if (value.is_string())
        out.value(value.get<std::string>());
    else if (value.is_boolean())
        out.value(value.get<bool>());
    else if (value.is_number_float())
        out.value(value.get<double>());
    else if (value.is_number_unsigned())
        out.value(value.get<std::uint64_t>());
    else if (value.is_number_integer())
        out.value(value.get<std::int64_t>());
    else
        out.value(std::nullopt);
}

class VALUES
{
public:
    explicit VALUES(unsigned int seed) : random(seed) {}

    ordered_json next(int depth)
    {
        switch (below(depth > 3 ? 6 : 8))
        {
        case 0:
            return nullptr;
        case 1:
            return below(2) == 0;
        case 2:
            return std::bit_cast<double>(random()); // infinities are no numbers of JSON's
        case 3:
            return static_cast<double>(below(2000)) / 8 - 100;
        case 4:
            return below(2) == 0 ? ordered_json(random()) : ordered_json(static_cast<std::int64_t>(random()));
        case 5:
            return text();
        case 6:
        {
            ordered_json list = ordered_json::array();
            for (std::size_t i = below(4); i > 0; --i)
                list.push_back(next(depth + 1));
            return list;
        }
        default:
        {
            ordered_json object = ordered_json::object();
            for (std::size_t i = below(4); i > 0; --i)
                object[text()] = next(depth + 1);
            return object;
        }
        }
    }

private:
    std::size_t below(std::size_t bound)
    {
        return random() % bound; // the same with every standard library
    }

    std::string text()
    {
        std::string result;
        for (std::size_t i = below(6); i > 0; --i)
        {
            constexpr const char* wide[] = {"\xc3\xa4", "\xe2\x82\xac", "\xf0\x9f\x8c\x8d", "\"", "\\"};
            result += below(3) == 0 ? std::string(wide[below(std::size(wide))])
                                    : std::string(1, static_cast<char>(below(0x80)));
        }
        return result;
    }

    std::mt19937_64 random;
};

// What the library leaves as it is and the writer escapes: delete, a control character.
std::string with_delete_escaped(std::string json)
{
    for (std::size_t at = 0; (at = json.find('\x7f', at)) != std::string::npos;)
        json.replace(at, 1, "\\u007f");
    return json;
}

bool has_no_number(const ordered_json& value)
{
    if (value.is_structured())
        return std::ranges::any_of(value, has_no_number);
    return value.is_number_float() && !std::isfinite(value.get<double>());
}

TEST(JSON_WRITER_TEST, writes_what_a_library_writes)
{
    int compared = 0;
    for (unsigned int seed = 1; seed <= 3000; ++seed)
    {
        const ordered_json value = VALUES(seed).next(0);
        if (has_no_number(value))
            continue;
        ++compared;
        ASSERT_EQ(written([&](JSON_WRITER& out) { write_value(out, value); }),
                  with_delete_escaped(value.dump(2)) + "\n")
            << "seed " << seed;
    }
    EXPECT_GT(compared, 2500);
}

TEST(JSON_WRITER_TEST, writes_what_json_has_not)
{
    struct ROW
    {
        const char* what;
        std::string text;
        const char* json;
    };
    const ROW rows[] = {
        {"no UTF-8", "a\xff", "{\n  \"hex\": \"61ff\"\n}\n"},
        {"a zero byte", std::string("a\0", 2), "\"a\\u0000\"\n"},
        {"the empty text", "", "\"\"\n"},
    };
    for (const ROW& row : rows)
        EXPECT_EQ(written([&](JSON_WRITER& out) { out.value(row.text); }), row.json) << row.what;

    using LIMITS = std::numeric_limits<double>;
    EXPECT_EQ(written([](JSON_WRITER& out) { out.value(LIMITS::infinity()); }), "\"inf\"\n");
    EXPECT_EQ(written([](JSON_WRITER& out) { out.value(-LIMITS::infinity()); }), "\"-inf\"\n");
    EXPECT_EQ(written([](JSON_WRITER& out) { out.value(LIMITS::quiet_NaN()); }), "\"nan\"\n");
    EXPECT_EQ(written([](JSON_WRITER& out) { out.value(0.0); }), "0.0\n");
    EXPECT_EQ(written([](JSON_WRITER& out) { out.value(-0.0); }), "-0.0\n");
}

TEST(JSON_WRITER_TEST, writes_fields)
{
    const auto text = written(
        [](JSON_WRITER& out)
        {
            out.begin_object();
            out.field("nothing", std::optional<int>());
            out.field("something", std::optional(7));
            out.field_or_null("empty", "");
            out.field_or_null("full", "x");
            out.field("texts", std::vector<std::string>{"a", "b"});
            out.field("none", std::vector<std::string>());
            out.end_object();
        });
    EXPECT_EQ(text, "{\n  \"nothing\": null,\n  \"something\": 7,\n  \"empty\": null,\n  \"full\": \"x\",\n"
                    "  \"texts\": [\n    \"a\",\n    \"b\"\n  ],\n  \"none\": []\n}\n");
}

TEST(JSON_WRITER_TEST, writes_a_row_a_line)
{
    const auto text = written(
        [](JSON_WRITER& out)
        {
            out.begin_object();
            out.key("rows");
            out.row_list(std::vector<int>{1, 2},
                         [](JSON_WRITER& row, int number)
                         {
                             row.begin_object();
                             row.field("n", number);
                             row.field("list", std::vector<std::string>{"a", "b"});
                             row.field("none", std::vector<std::string>());
                             row.end_object();
                         });
            out.key("plain");
            out.row_list(std::vector<int>{1, 2}, [](JSON_WRITER& row, int number) { row.value(number); });
            out.key("empty");
            out.row_list(std::vector<int>(), [](JSON_WRITER&, int) {});
            out.key("behind");
            out.value(std::vector<std::string>{"a"});
            out.end_object();
        });
    EXPECT_EQ(text, "{\n  \"rows\": [\n    {\"n\": 1, \"list\": [\"a\", \"b\"], \"none\": []},\n"
                    "    {\"n\": 2, \"list\": [\"a\", \"b\"], \"none\": []}\n  ],\n"
                    "  \"plain\": [\n    1,\n    2\n  ],\n  \"empty\": [],\n"
                    "  \"behind\": [\n    \"a\"\n  ]\n}\n");
}

// A sink that counts what it gets at a time.
class PIECES : public BYTE_SINK
{
public:
    void write(std::string_view bytes) override
    {
        largest = std::max(largest, bytes.size());
        all += bytes.size();
    }

    std::size_t largest = 0;
    std::size_t all = 0;
};

TEST(JSON_WRITER_TEST, keeps_no_document)
{
    PIECES pieces;
    JSON_WRITER out(pieces);
    out.begin_list();
    for (int i = 0; i < 100'000; ++i)
        out.value("a text of some length");
    out.end_list();
    out.finish();
    EXPECT_GT(pieces.all, 2'000'000U);
    EXPECT_LT(pieces.largest, 100'000U);
}

TEST(IS_UTF_8, tells_well_formed_bytes)
{
    struct ROW
    {
        const char* what;
        std::string bytes;
        bool well_formed;
    };
    const ROW rows[] = {
        {"nothing", "", true},
        {"ASCII with a zero byte", std::string("a\0z", 3), true},
        {"the first of two bytes", "\xc2\x80", true},
        {"the last of two bytes", "\xdf\xbf", true},
        {"two bytes, overlong", "\xc1\xbf", false},
        {"two bytes, cut", "\xc2", false},
        {"two bytes, no continuation", "\xc2z", false},
        {"a continuation alone", "\x80", false},
        {"the first of three bytes", "\xe0\xa0\x80", true},
        {"three bytes, overlong", "\xe0\x9f\xbf", false},
        {"before the surrogates", "\xed\x9f\xbf", true},
        {"the first surrogate", "\xed\xa0\x80", false},
        {"behind the surrogates", "\xee\x80\x80", true},
        {"three bytes, cut", "\xe2\x82", false},
        {"three bytes, bad third", "\xe2\x82z", false},
        {"the first of four bytes", "\xf0\x90\x80\x80", true},
        {"four bytes, overlong", "\xf0\x8f\xbf\xbf", false},
        {"U+10FFFF", "\xf4\x8f\xbf\xbf", true},
        {"U+110000", "\xf4\x90\x80\x80", false},
        {"a lead byte of five", "\xf8\x88\x80\x80\x80", false},
        {"four bytes, bad fourth", "\xf0\x90\x80z", false},
        {"well-formed, then not", "\xc3\xa4\xff", false},
    };
    for (const ROW& row : rows)
        EXPECT_EQ(is_utf_8(row.bytes), row.well_formed) << row.what;
}
}
