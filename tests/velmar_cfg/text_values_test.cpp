// Bytes and numbers as texts, and back.
#include "tools/velmar-cfg/base/text.h"

#include <bit>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string_view>
#include <utility>

using namespace std::string_literals;

namespace
{
TEST(HEXADECIMAL, is_two_digits_a_byte)
{
    const std::pair<std::string, const char*> rows[] = {
        {"", ""}, {"\0"s, "00"}, {"\x0f", "0f"}, {"\x10", "10"}, {"\xff", "ff"}, {"aZ~", "615a7e"}, {"\x80\n"s, "800a"},
    };
    for (const auto& [bytes, digits] : rows)
    {
        EXPECT_EQ(as_hexadecimal(bytes), digits);
        EXPECT_EQ(from_hexadecimal(digits), bytes) << digits;
    }
    EXPECT_EQ(from_hexadecimal("aBCdEF"), "\xab\xcd\xef");
    for (const char* const other : {"a", "abc", "0x", "0g", "g0", " 0", "0 ", "-1", "+1", "a b", "\xc3\xa9"})
        EXPECT_EQ(from_hexadecimal(other), std::nullopt) << other;
    EXPECT_EQ(from_hexadecimal(std::string_view("abcd").substr(0, 3)), std::nullopt); // and nothing behind is looked at
}

TEST(HEXADECIMAL, of_every_byte_reads_back)
{
    for (int byte = 0; byte < 256; ++byte)
    {
        const std::string one(1, static_cast<char>(byte));
        EXPECT_EQ(as_hexadecimal(one).size(), 2U);
        EXPECT_EQ(from_hexadecimal(as_hexadecimal(one)), one) << byte;
    }
}

TEST(TRIMMED, loses_the_white_space_at_its_ends)
{
    const std::pair<const char*, const char*> rows[] = {
        {"", ""},
        {" ", ""},
        {" \t\n\v\f\r", ""},
        {"a", "a"},
        {" a b ", "a b"},
        {"\t\va\n", "a"},
        {"a\r\n\f", "a"},
        {" a\tb", "a\tb"},
        {"\x1f"
         "a\x7f",
         "\x1f"
         "a\x7f"},
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(trimmed(text), expected) << text;
}

TEST(NUMBERS_AS_TEXTS, are_the_shortest_that_read_back)
{
    using LIMITS = std::numeric_limits<double>;
    const std::pair<double, const char*> rows[] = {
        {0.0, "0"},
        {-0.0, "-0"},
        {1.0, "1"},
        {-7.0, "-7"},
        {0.1, "0.1"},
        {0.1 + 0.2, "0.30000000000000004"},
        {2.5, "2.5"},
        {123456.0, "123456"},
        {4294967295.0, "4294967295"},
        {1e21, "1e+21"},
        {1.5e-7, "1.5e-07"},
        {LIMITS::max(), "1.7976931348623157e+308"},
        {LIMITS::min(), "2.2250738585072014e-308"},
        {LIMITS::denorm_min(), "5e-324"},
        {LIMITS::infinity(), "inf"},
        {-LIMITS::infinity(), "-inf"},
        {LIMITS::quiet_NaN(), "nan"},
    };
    for (const auto& [number, text] : rows)
        EXPECT_EQ(number_as_text(number), text);
    EXPECT_EQ(number_as_text(-LIMITS::min()), "-2.2250738585072014e-308"); // none is longer
    EXPECT_STREQ(boolean_as_text(true), "on");
    EXPECT_STREQ(boolean_as_text(false), "off");
}

TEST(NUMBERS_AS_TEXTS, read_back_whatever_the_number)
{
    std::mt19937_64 random(20261122);
    for (int i = 0; i < 20'000; ++i)
    {
        const double number = std::bit_cast<double>(random());
        if (std::isnan(number))
            continue;
        const std::string text = number_as_text(number);
        ASSERT_EQ(std::strtod(text.c_str(), nullptr), number) << text;
        ASSERT_LE(text.size(), 24U) << text;
        if (std::isfinite(number))
        {
            ASSERT_EQ(number_from_text(text), number) << text;
        }
    }
}

TEST(NUMBERS_FROM_TEXTS, are_decimal_and_the_whole_text)
{
    const std::pair<std::string_view, double> rows[] = {
        {"0", 0.0},      {"007", 7.0},         {"-7", -7.0},        {"2.5", 2.5},          {".5", 0.5},
        {"5.", 5.0},     {"-.5", -0.5},        {"1e3", 1000.0},     {"1E+3", 1000.0},      {"15e-1", 1.5},
        {"1e-999", 0.0}, {"4.9e-324", 5e-324}, {"1e999", HUGE_VAL}, {"-1e999", -HUGE_VAL}, {"0.1", 0.1},
    };
    for (const auto& [text, number] : rows)
        EXPECT_EQ(number_from_text(text), number) << text;
    const std::string_view others[] = {"",
                                       "-",
                                       ".",
                                       "-.",
                                       "+1",
                                       "--1",
                                       "e3",
                                       "1e",
                                       "1e+",
                                       "1.2.3",
                                       "1,5",
                                       " 1",
                                       "1 ",
                                       "0x10",
                                       "inf",
                                       "-inf",
                                       "nan",
                                       "1f",
                                       std::string_view("1\0", 2)};
    for (const std::string_view text : others)
        EXPECT_EQ(number_from_text(text), std::nullopt) << text;
}
}
