#include "cfg_ini/cfg_ini_reader/store_primitives.h"
#include "cfg_ini/cfg_ini_reader/value_conversion.h"

#include <gtest/gtest.h>

#include "tests/support/scoped_process_state.h"

using namespace zon_cfg;

namespace
{
struct CONVERSION
{
    std::string text;
    std::optional<bool> as_bool;
    std::optional<int> as_int;
    std::optional<unsigned int> as_uint;
};

void PrintTo(const CONVERSION& row, std::ostream* out)
{
    *out << testing::PrintToString(row.text);
}

constexpr auto none = std::nullopt;
constexpr int lowest_int = -2147483647 - 1;

class VALUE_CONVERSION_TEST : public testing::TestWithParam<CONVERSION>
{
};

void expect_conversions(const CONVERSION& row)
{
    const char* const text = row.text.c_str();
    EXPECT_EQ(cfg_ini_convert_to<int>(text), row.as_int);
    EXPECT_EQ(cfg_ini_convert_to<unsigned int>(text), row.as_uint);

    bool boolean = true;
    EXPECT_EQ(cfg_ini_convert_to_bool(text, &boolean), row.as_bool.has_value());
    EXPECT_EQ(boolean, row.as_bool.value_or(false)) << "false when there is none";

    int number = 4711;
    EXPECT_EQ(cfg_ini_convert_to_int(text, &number), row.as_int.has_value());
    EXPECT_EQ(number, row.as_int.value_or(4711)) << "left alone when there is none";

    unsigned int unsigned_number = 4711;
    EXPECT_EQ(cfg_ini_convert_to_uint(text, &unsigned_number), row.as_uint.has_value());
    EXPECT_EQ(unsigned_number, row.as_uint.value_or(4711)) << "left alone when there is none";

    EXPECT_EQ(cfg_ini_str_to_bool(text, true), row.as_bool.value_or(true));
    EXPECT_EQ(cfg_ini_str_to_bool(text, false), row.as_bool.value_or(false));
}

TEST_P(VALUE_CONVERSION_TEST, gives_what_the_text_stands_for)
{
    expect_conversions(GetParam());
}

TEST_P(VALUE_CONVERSION_TEST, does_not_ask_the_locale)
{
    const SCOPED_COMMA_LOCALE locale;
    expect_conversions(GetParam());
}

INSTANTIATE_TEST_SUITE_P(booleans, VALUE_CONVERSION_TEST,
                         testing::Values(CONVERSION{"on", true, none, none}, CONVERSION{"true", true, none, none},
                                         CONVERSION{"off", false, none, none}, CONVERSION{"false", false, none, none},
                                         CONVERSION{"1", true, 1, 1U}, CONVERSION{"0", false, 0, 0U},
                                         CONVERSION{"On", true, none, none}, CONVERSION{"ON", true, none, none},
                                         CONVERSION{"oN", true, none, none}, CONVERSION{"TRUE", true, none, none},
                                         CONVERSION{"tRuE", true, none, none}, CONVERSION{"OFF", false, none, none},
                                         CONVERSION{"oFf", false, none, none}, CONVERSION{"False", false, none, none},
                                         CONVERSION{"FALSE", false, none, none}));

INSTANTIATE_TEST_SUITE_P(no_booleans, VALUE_CONVERSION_TEST,
                         testing::Values(CONVERSION{"", none, none, none}, CONVERSION{"yes", none, none, none},
                                         CONVERSION{"no", none, none, none}, CONVERSION{"enable", none, none, none},
                                         CONVERSION{"2", none, 2, 2U}, CONVERSION{"01", none, 1, 1U},
                                         CONVERSION{"00", none, 0, 0U}, CONVERSION{"on ", none, none, none},
                                         CONVERSION{" on", none, none, none}, CONVERSION{"o", none, none, none},
                                         CONVERSION{"onn", none, none, none}, CONVERSION{"tru", none, none, none},
                                         CONVERSION{"truee", none, none, none}, CONVERSION{"\"on\"", none, none, none},
                                         CONVERSION{"of", none, none, none},
                                         CONVERSION{"\xCF\x8Fn", none, none, none}));

INSTANTIATE_TEST_SUITE_P(
    numbers, VALUE_CONVERSION_TEST,
    testing::Values(CONVERSION{"-1", none, -1, none}, CONVERSION{"007", none, 7, 7U},
                    CONVERSION{"-007", none, -7, none}, CONVERSION{"-0", none, 0, none},
                    CONVERSION{"2147483647", none, 2147483647, 2147483647U},
                    CONVERSION{"2147483648", none, none, 2147483648U},
                    CONVERSION{"-2147483647", none, -2147483647, none},
                    CONVERSION{"-2147483648", none, lowest_int, none}, CONVERSION{"-2147483649", none, none, none},
                    CONVERSION{"4294967295", none, none, 4294967295U}, CONVERSION{"4294967296", none, none, none},
                    CONVERSION{"4294967297", none, none, none}, CONVERSION{"-4294967295", none, none, none},
                    CONVERSION{"-4294967297", none, none, none}, CONVERSION{"18446744073709551617", none, none, none},
                    CONVERSION{"-18446744073709551617", none, none, none},
                    CONVERSION{"0000000000000000000000000000000000000012", none, 12, 12U}));

INSTANTIATE_TEST_SUITE_P(no_numbers, VALUE_CONVERSION_TEST,
                         testing::Values(CONVERSION{"+5", none, none, none}, CONVERSION{"-", none, none, none},
                                         CONVERSION{"--1", none, none, none}, CONVERSION{"- 1", none, none, none},
                                         CONVERSION{"0x10", none, none, none}, CONVERSION{"12 ", none, none, none},
                                         CONVERSION{" 12", none, none, none}, CONVERSION{"12\n", none, none, none},
                                         CONVERSION{"12\r", none, none, none}, CONVERSION{"12abc", none, none, none},
                                         CONVERSION{"abc12", none, none, none}, CONVERSION{"1.0", none, none, none},
                                         CONVERSION{"1.", none, none, none}, CONVERSION{"1,000", none, none, none},
                                         CONVERSION{"1e3", none, none, none}, CONVERSION{"2.5ms", none, none, none}));

// The conversions see a text up to its first zero byte.
INSTANTIATE_TEST_SUITE_P(embedded_zero, VALUE_CONVERSION_TEST,
                         testing::Values(CONVERSION{std::string("on\0x", 4), true, none, none},
                                         CONVERSION{std::string("12\0x", 4), none, 12, 12U},
                                         CONVERSION{std::string("\0001", 2), none, none, none}));
}
