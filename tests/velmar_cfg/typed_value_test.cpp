// What the reader of each type answers, and how it is shown.
#include "tools/velmar-cfg/settings/typed_value.h"

#include <gtest/gtest.h>

namespace
{
struct ROW
{
    const char* type;
    const char* text;
    const char* shown; // null for no usable value
    const char* json;
};

const ROW rows[] = {
    {"text", "x y", "x y", "\"x y\""},
    {"text", "", nullptr, "null"},
    {"bool", "TRUE", "on", "true"},
    {"bool", "0", "off", "false"},
    {"bool", "yes", nullptr, "null"},
    {"bool", "", nullptr, "null"},
    {"int", "-2147483648", "-2147483648", "-2147483648"},
    {"int", "2147483648", nullptr, "null"},
    {"int", "on", nullptr, "null"},
    {"uint", "4294967295", "4294967295", "4294967295"},
    {"uint", "-1", nullptr, "null"},
    {"double", "2.5ms", "2.5", "2.5"},
    {"double", "x", "0", "0.0"},
    {"double", "inf", "inf", "\"inf\""},
    {"double", "", nullptr, "null"},
};

TEST(TYPED_VALUE_TEST, is_what_the_reader_answers)
{
    for (const ROW& row : rows)
    {
        SCOPED_TRACE(std::string(row.type) + " of '" + row.text + "'");
        const std::optional<READER_TYPE> type = type_of_word(row.type);
        ASSERT_TRUE(type.has_value());
        EXPECT_STREQ(type_word(*type), row.type);
        const TYPED_VALUE value = value_of_type(*type, row.text, read_typed(row.text));
        EXPECT_EQ(value_as_text(value), row.shown == nullptr ? std::nullopt : std::optional<std::string>(row.shown));
        TEXT_SINK json;
        JSON_WRITER out(json);
        write_json(out, value);
        out.finish();
        EXPECT_EQ(json.text, std::string(row.json) + "\n");
    }
    EXPECT_EQ(type_of_word("float"), std::nullopt);
}

TEST(TYPED_READINGS_TEST, are_compared_as_they_are_shown)
{
    const char* const texts[] = {"", "1", "01", "on", "x", "inf", "-inf", "nan", "-nan", "0", "-0.0", "1.0"};
    for (const char* const a : texts)
    {
        for (const char* const b : texts)
        {
            const auto json = [](const char* text)
            {
                TEXT_SINK sink;
                JSON_WRITER out(sink);
                write_json(out, read_typed(text));
                out.finish();
                return sink.text;
            };
            // Zero and minus zero are equal numbers.
            const bool zeros = read_typed(a).floating == 0.0 && read_typed(b).floating == 0.0;
            if (!zeros)
            {
                EXPECT_EQ(same_readings(read_typed(a), read_typed(b)), json(a) == json(b)) << a << " and " << b;
            }
        }
    }
    EXPECT_FALSE(same_readings(read_typed("0"), read_typed("x"))); // the same number, not of the whole text
}
}
