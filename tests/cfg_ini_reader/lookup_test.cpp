#include "cfg_ini/cfg_ini_reader/store_primitives.h"

#include <cmath>
#include <limits>

#include "tests/support/store_test.h"

using namespace zon_cfg;

namespace
{
class LOOKUP_TEST : public STORE_TEST
{
protected:
    LOOKUP_TEST()
    {
        make_empty_store();
    }
};

const char* const null_name = nullptr;

// --- The core readers ---

TEST_F(LOOKUP_TEST, core_readers_give_the_cached_value_and_whether_it_is_one)
{
    cfg_set_value("a", "1");
    bool found = false;
    EXPECT_TRUE(cfg_ini_read_boolean("a", &found));
    EXPECT_TRUE(found);
    found = false;
    EXPECT_EQ(cfg_ini_read_int("a", &found), 1);
    EXPECT_TRUE(found);
    found = false;
    EXPECT_EQ(cfg_ini_read_uint("a", &found), 1U);
    EXPECT_TRUE(found);
    EXPECT_EQ(record_of("a")->access_count, 3U);
}

TEST_F(LOOKUP_TEST, core_readers_of_an_unknown_name_find_nothing_and_leave_an_empty_record)
{
    bool found = true;
    cfg_ini_read_boolean("a", &found);
    EXPECT_FALSE(found);
    found = true;
    cfg_ini_read_int("b", &found);
    EXPECT_FALSE(found);
    found = true;
    cfg_ini_read_uint("c", &found);
    EXPECT_FALSE(found);
    EXPECT_EQ(cfg_ini_read_string("d", false), "");
    for (const char* const name : {"a", "b", "c", "d"})
    {
        const CFG_INI_RECORD record = *record_of(name);
        EXPECT_EQ(record.value, "") << name;
        EXPECT_EQ(record.access_count, 0U) << name;
        EXPECT_FALSE(record.had_valid_read || record.external) << name;
        EXPECT_FALSE(record.bool_valid || record.int_valid || record.uint_valid) << name;
    }
}

TEST_F(LOOKUP_TEST, core_readers_mark_only_what_they_found)
{
    cfg_set_value("a", "-7");
    bool found = true;
    cfg_ini_read_boolean("a", &found);
    EXPECT_FALSE(found);
    cfg_ini_read_uint("a", &found);
    EXPECT_FALSE(found);
    EXPECT_FALSE(record_of("a")->had_valid_read);
    EXPECT_EQ(cfg_ini_read_int("a", &found), -7);
    EXPECT_TRUE(record_of("a")->had_valid_read);
    cfg_ini_read_uint("a", &found);
    EXPECT_TRUE(record_of("a")->had_valid_read); // not taken back
}

TEST_F(LOOKUP_TEST, the_string_reader_marks_when_told_to)
{
    cfg_set_value("a", "text");
    EXPECT_EQ(cfg_ini_read_string("a", false), "text");
    EXPECT_FALSE(record_of("a")->had_valid_read);
    EXPECT_EQ(cfg_ini_read_string("a", true), "text");
    EXPECT_TRUE(record_of("a")->had_valid_read);
    EXPECT_EQ(cfg_ini_read_string("a", false), "text");
    EXPECT_TRUE(record_of("a")->had_valid_read);
    EXPECT_EQ(record_of("a")->access_count, 3U);
}

TEST_F(LOOKUP_TEST, each_core_read_takes_the_lock_once)
{
    cfg_set_value("a", "1");
    const long locks = fake::thr::locks();
    bool found = false;
    cfg_ini_read_boolean("a", &found);
    EXPECT_EQ(fake::thr::locks(), locks + 1);
    cfg_ini_read_string("a", true);
    EXPECT_EQ(fake::thr::locks(), locks + 2);
    EXPECT_EQ(fake::thr::depth(), 0);
}

TEST_F(LOOKUP_TEST, a_store_that_vanishes_before_the_lock_is_taken_is_read_again)
{
    write_file(temporary.path("cwd/velmar.ini"), "a=12\n");
    bool found = false;
    fake::thr::before_lock(1, cfg_close_ini_file);
    EXPECT_EQ(cfg_ini_read_int("a", &found), 12);
    EXPECT_TRUE(found);
    fake::thr::before_lock(1, cfg_close_ini_file);
    EXPECT_EQ(cfg_get_value("a"), "12");
    fake::thr::before_lock(1, cfg_close_ini_file);
    EXPECT_EQ(cfg_get_value_as<double>("a"), 12.0);
    EXPECT_EQ(fake::thr::depth(), 0);
}

TEST_F(LOOKUP_TEST, a_store_that_vanishes_between_reading_and_marking_a_number_does_no_harm)
{
    cfg_set_value("a", "12");
    fake::thr::before_lock(2, cfg_close_ini_file);
    EXPECT_EQ(cfg_get_value_as<double>("a"), 12.0);
    EXPECT_FALSE(store_exists());
}

TEST_F(LOOKUP_TEST, a_number_is_marked_in_the_store_that_took_the_place_of_the_one_it_was_read_from)
{
    cfg_set_value("a", "12");
    fake::thr::before_lock(2,
                           []
                           {
                               cfg_close_ini_file();
                               cfg_set_value("a", "12");
                           });
    EXPECT_EQ(cfg_get_value_as<double>("a"), 12.0);
    ASSERT_TRUE(record_of("a"));
    EXPECT_TRUE(record_of("a")->had_valid_read);
}

// --- Unknown names ---

TEST_F(LOOKUP_TEST, a_second_read_of_an_unknown_name_counts_one)
{
    cfg_get_int_value("unknown", 5);
    EXPECT_EQ(record_of("unknown")->access_count, 0U);
    cfg_get_int_value("unknown", 5);
    EXPECT_EQ(record_of("unknown")->access_count, 1U);
}

TEST_F(LOOKUP_TEST, a_text_read_of_an_unknown_name_is_empty_and_marks_the_new_record)
{
    EXPECT_EQ(cfg_get_value("unknown"), "");
    EXPECT_TRUE(record_of("unknown")->had_valid_read);
    EXPECT_EQ(record_of("unknown")->access_count, 0U);
}

TEST_F(LOOKUP_TEST, a_boolean_read_of_an_unknown_name_is_the_default_and_does_not_mark)
{
    EXPECT_TRUE(cfg_is_on("unknown", true));
    EXPECT_FALSE(record_of("unknown")->had_valid_read);
    EXPECT_FALSE(cfg_is_on("unknown", false));
}

TEST_F(LOOKUP_TEST, every_reader_gives_its_default_for_an_unknown_name)
{
    EXPECT_EQ(cfg_get_int_value("u1", -3), -3);
    EXPECT_EQ(cfg_get_uint_value("u2", 4000000000U), 4000000000U);
    EXPECT_EQ(cfg_get_double_value("u3", 1.5), 1.5);
    EXPECT_EQ(cfg_get_value_as<bool>("u4"), std::nullopt);
    EXPECT_EQ(cfg_get_value_as<int>("u5"), std::nullopt);
    EXPECT_EQ(cfg_get_value_as<std::string>("u6"), std::nullopt);
    EXPECT_EQ(cfg_get_value_as<double>("u7"), std::nullopt);
    EXPECT_EQ(cfg_get_value_as<float>("u8"), std::nullopt);
    EXPECT_FALSE(cfg_is_on("u9"));
    for (int i = 1; i <= 9; ++i)
        EXPECT_TRUE(record_of("u" + std::to_string(i))) << i;
    EXPECT_EQ(all_records().size(), 9U);
}

// --- Typed values ---

TEST_F(LOOKUP_TEST, readers_with_a_default_give_the_value_when_it_converts)
{
    cfg_set_value("on", "on");
    cfg_set_value("number", "-12");
    cfg_set_value("unsigned", "4294967295");
    EXPECT_TRUE(cfg_is_on("on", false));
    EXPECT_EQ(cfg_get_int_value("number", 5), -12);
    EXPECT_EQ(cfg_get_uint_value("unsigned", 5), 4294967295U);
    // And their default when it does not.
    EXPECT_TRUE(cfg_is_on("number", true));
    EXPECT_FALSE(cfg_is_on("number", false));
    EXPECT_EQ(cfg_get_int_value("unsigned", 5), 5);
    EXPECT_EQ(cfg_get_uint_value("number", 5), 5U);
    EXPECT_EQ(cfg_get_int_value("on", 5), 5);
}

TEST_F(LOOKUP_TEST, a_default_hides_the_old_number_that_a_failed_conversion_kept)
{
    cfg_set_value("a", "7");
    cfg_set_value("a", "text");
    EXPECT_EQ(cfg_get_int_value("a", 5), 5);
    EXPECT_EQ(cfg_get_uint_value("a", 5), 5U);
    EXPECT_EQ(cfg_get_value_as<int>("a"), std::nullopt);
}

TEST_F(LOOKUP_TEST, optional_readers_are_engaged_when_there_is_a_usable_value)
{
    cfg_set_value("off", "off");
    cfg_set_value("number", "12");
    cfg_set_value("text", "text");
    cfg_set_value("empty", "");
    EXPECT_EQ(cfg_get_value_as<bool>("off"), std::optional(false));
    EXPECT_EQ(cfg_get_value_as<bool>("number"), std::nullopt);
    EXPECT_EQ(cfg_get_value_as<int>("number"), std::optional(12));
    EXPECT_EQ(cfg_get_value_as<int>("text"), std::nullopt);
    EXPECT_EQ(cfg_get_value_as<std::string>("text"), std::optional<std::string>("text"));
    EXPECT_EQ(cfg_get_value_as<std::string>("empty"), std::nullopt);
    EXPECT_TRUE(record_of("empty")->had_valid_read); // a text read marks whatever the text
}

TEST_F(LOOKUP_TEST, every_read_of_a_known_name_counts_one)
{
    cfg_set_value("a", "1");
    cfg_is_on("a", false);
    cfg_is_on("a");
    cfg_get_int_value("a", 0);
    cfg_get_uint_value("a", 0);
    cfg_get_double_value("a", 0);
    cfg_get_value("a");
    cfg_get_value_as<bool>("a");
    cfg_get_value_as<int>("a");
    cfg_get_value_as<std::string>("a");
    cfg_get_value_as<double>("a");
    cfg_get_value_as<float>("a");
    EXPECT_EQ(record_of("a")->access_count, 11U);
}

TEST_F(LOOKUP_TEST, names_as_characters_are_answered_as_strings_are)
{
    cfg_set_value("a", "1");
    const char* const name = "A";
    EXPECT_TRUE(cfg_is_on(name, false));
    EXPECT_TRUE(cfg_is_on(name));
    EXPECT_EQ(cfg_get_int_value(name, 0), 1);
    EXPECT_EQ(cfg_get_uint_value(name, 0), 1U);
    EXPECT_EQ(cfg_get_double_value(name, 0), 1.0);
    EXPECT_EQ(cfg_get_value(name), "1");
    EXPECT_EQ(cfg_get_value_as<bool>(name), std::optional(true));
    EXPECT_EQ(cfg_get_value_as<int>(name), std::optional(1));
    EXPECT_EQ(cfg_get_value_as<std::string>(name), std::optional<std::string>("1"));
    EXPECT_EQ(cfg_get_value_as<double>(name), std::optional(1.0));
    EXPECT_EQ(cfg_get_value_as<float>(name), std::optional(1.0F));
    EXPECT_EQ(record_of("a")->access_count, 11U);

    const std::string as_string = "A";
    EXPECT_TRUE(cfg_is_on(as_string, false));
    EXPECT_TRUE(cfg_is_on(as_string));
    EXPECT_EQ(cfg_get_int_value(as_string, 0), 1);
    EXPECT_EQ(cfg_get_uint_value(as_string, 0), 1U);
    EXPECT_EQ(cfg_get_double_value(as_string, 0), 1.0);
    EXPECT_EQ(cfg_get_value(as_string), "1");
    EXPECT_EQ(cfg_get_value_as<bool>(as_string), std::optional(true));
    EXPECT_EQ(cfg_get_value_as<int>(as_string), std::optional(1));
    EXPECT_EQ(cfg_get_value_as<std::string>(as_string), std::optional<std::string>("1"));
    EXPECT_EQ(cfg_get_value_as<double>(as_string), std::optional(1.0));
    EXPECT_EQ(cfg_get_value_as<float>(as_string), std::optional(1.0F));
    EXPECT_EQ(record_of("a")->access_count, 22U);
}

// --- Floating point ---

struct NUMBER
{
    std::string text;
    double value;
    bool good;
};

void PrintTo(const NUMBER& row, std::ostream* out)
{
    *out << testing::PrintToString(row.text);
}

class FLOATING_POINT_TEST : public LOOKUP_TEST, public testing::WithParamInterface<NUMBER>
{
    const SCOPED_POINT_LOCALE locale;
};

TEST_P(FLOATING_POINT_TEST, is_the_number_at_the_start_and_is_marked_only_when_that_is_all)
{
    const auto& [text, value, good] = GetParam();
    cfg_set_value("the_name", text);
    EXPECT_EQ(cfg_get_value_as<double>("the_name"), std::optional(value));
    EXPECT_EQ(record_of("the_name")->had_valid_read, good);
    EXPECT_EQ(record_of("the_name")->access_count, 1U);
    const std::string message = "Couldn't parse ini setting the_name=(" + text + ") as a floating point value";
    EXPECT_EQ(fake::mem::messages(), good ? std::vector<fake::mem::MESSAGE>{}
                                          : (std::vector<fake::mem::MESSAGE>{{"CFG_INI", message, false}}));

    EXPECT_EQ(cfg_get_value_as<float>("the_name"), std::optional(static_cast<float>(value)));
    EXPECT_EQ(cfg_get_double_value("the_name", -1234.5), value);
    EXPECT_EQ(fake::mem::messages().size(), good ? 0U : 3U);
}

INSTANTIATE_TEST_SUITE_P(
    good, FLOATING_POINT_TEST,
    testing::Values(NUMBER{"1", 1, true}, NUMBER{"0", 0, true}, NUMBER{"-1", -1, true}, NUMBER{"+5", 5, true},
                    NUMBER{"007", 7, true}, NUMBER{"0x10", 16, true}, NUMBER{"4294967295", 4294967295.0, true},
                    NUMBER{"4294967296", 4294967296.0, true}, NUMBER{"-2147483648", -2147483648.0, true},
                    NUMBER{"2147483648", 2147483648.0, true}, NUMBER{"2.5", 2.5, true}, NUMBER{" 2.5", 2.5, true},
                    NUMBER{".5", 0.5, true}, NUMBER{"5.", 5, true}, NUMBER{"1e3", 1000, true},
                    NUMBER{"0x1.8p1", 3, true}, NUMBER{"inf", std::numeric_limits<double>::infinity(), true},
                    NUMBER{"-INF", -std::numeric_limits<double>::infinity(), true},
                    NUMBER{"1e999", std::numeric_limits<double>::infinity(), true}, NUMBER{"-0", 0, true}));

INSTANTIATE_TEST_SUITE_P(with_something_left_over, FLOATING_POINT_TEST,
                         testing::Values(NUMBER{"On", 0, false}, NUMBER{"TRUE", 0, false}, NUMBER{"12 ", 12, false},
                                         NUMBER{"2.5ms", 2.5, false}, NUMBER{"12abc", 12, false},
                                         NUMBER{"2,5", 2, false}, NUMBER{"fast", 0, false}, NUMBER{" ", 0, false},
                                         NUMBER{"1e", 1, false}, NUMBER{"0x", 0, false}, NUMBER{"1.2.3", 1.2, false},
                                         NUMBER{"--1", 0, false}));

TEST_F(LOOKUP_TEST, not_a_number_is_a_good_number)
{
    cfg_set_value("a", "nan");
    const std::optional<double> value = cfg_get_value_as<double>("a");
    ASSERT_TRUE(value);
    EXPECT_TRUE(std::isnan(*value));
    EXPECT_TRUE(record_of("a")->had_valid_read);
}

TEST_F(LOOKUP_TEST, an_empty_text_is_no_number)
{
    cfg_set_value("a", "");
    EXPECT_EQ(cfg_get_value_as<double>("a"), std::nullopt);
    EXPECT_EQ(cfg_get_value_as<float>("a"), std::nullopt);
    EXPECT_EQ(cfg_get_double_value("a", 1.5), 1.5);
    EXPECT_FALSE(record_of("a")->had_valid_read);
    EXPECT_EQ(record_of("a")->access_count, 3U);
    EXPECT_TRUE(fake::mem::messages().empty());
}

TEST_F(LOOKUP_TEST, a_number_ends_at_a_zero_byte)
{
    const SCOPED_POINT_LOCALE locale;
    cfg_set_value("a", std::string("2.5\0ms", 6));
    EXPECT_EQ(cfg_get_value_as<double>("a"), std::optional(2.5));
    EXPECT_TRUE(record_of("a")->had_valid_read);
    EXPECT_TRUE(fake::mem::messages().empty());
}

TEST_F(LOOKUP_TEST, a_float_is_the_double_rounded)
{
    const SCOPED_POINT_LOCALE locale;
    cfg_set_value("a", "0.1");
    EXPECT_EQ(cfg_get_value_as<float>("a"), std::optional(0.1F));
    cfg_set_value("a", "16777217"); // one more than a float can tell apart
    EXPECT_EQ(cfg_get_value_as<double>("a"), std::optional(16777217.0));
    EXPECT_EQ(cfg_get_value_as<float>("a"), std::optional(16777216.0F));
}

TEST_F(LOOKUP_TEST, the_decimal_point_is_that_of_the_locale)
{
    cfg_set_value("comma", "2,5");
    cfg_set_value("point", "2.5");
    const SCOPED_COMMA_LOCALE locale;
    EXPECT_EQ(cfg_get_value_as<double>("comma"), std::optional(2.5));
    EXPECT_TRUE(record_of("comma")->had_valid_read);
    EXPECT_EQ(cfg_get_value_as<double>("point"), std::optional(2.0));
    EXPECT_FALSE(record_of("point")->had_valid_read);
    EXPECT_EQ(fake::mem::messages(),
              (std::vector<fake::mem::MESSAGE>{
                  {"CFG_INI", "Couldn't parse ini setting point=(2.5) as a floating point value", false}}));
}

TEST_F(LOOKUP_TEST, a_number_is_marked_without_a_second_count)
{
    const SCOPED_POINT_LOCALE locale;
    cfg_set_value("a", "2.5");
    const long locks = fake::thr::locks();
    cfg_get_value_as<double>("a");
    EXPECT_EQ(fake::thr::locks(), locks + 2); // once to read, once to mark
    EXPECT_EQ(record_of("a")->access_count, 1U);
}

TEST_F(LOOKUP_TEST, a_message_comes_with_the_name_as_asked_and_no_lock_held)
{
    cfg_set_value("Name", "x%s");
    int depth = -1;
    fake::mem::before_message(1, [&] { depth = fake::thr::depth(); });
    cfg_get_value_as<double>("NAME");
    EXPECT_EQ(depth, 0);
    EXPECT_EQ(fake::mem::messages().front().text, "Couldn't parse ini setting NAME=(x%s) as a floating point value");
}

// --- By catalogue ---

TEST_F(LOOKUP_TEST, the_default_by_name_is_on_for_catalogued_names_spelt_exactly)
{
    EXPECT_TRUE(cfg_is_on("msg_sqlite"));
    EXPECT_FALSE(cfg_is_on("MSG_SQLITE"));
    EXPECT_FALSE(cfg_is_on("vtan_sta_mode"));
    EXPECT_FALSE(cfg_is_on("not_catalogued"));
    cfg_set_value("MSG_SQLITE", "off");
    EXPECT_FALSE(cfg_is_on("msg_sqlite"));
    cfg_set_value("vtan_sta_mode", "TRUE");
    EXPECT_TRUE(cfg_is_on("vtan_sta_mode"));
    cfg_set_value("msg_sqlite", "maybe");
    EXPECT_TRUE(cfg_is_on("msg_sqlite"));
}

TEST_F(LOOKUP_TEST, the_default_by_name_goes_by_the_name_up_to_its_first_zero_byte)
{
    using namespace std::string_literals;
    for (const auto& [name, expected] :
         {std::pair("msg_sqlite"s, true), std::pair("msg_sqlite\0x"s, true), std::pair("msg_sqlit\0e"s, false),
          std::pair("msg_sqlit"s, false), std::pair("\0msg_sqlite"s, false), std::pair(""s, false)})
    {
        cfg_read_ini_file("");
        EXPECT_EQ(cfg_is_on(name), expected) << testing::PrintToString(name);
        EXPECT_EQ(cfg_is_on(std::string_view(name)), expected) << testing::PrintToString(name);
    }
}

TEST_F(LOOKUP_TEST, a_catalogued_variable_of_empty_text_gives_the_default_text)
{
    cfg_set_value("msg_sqlite", "");
    EXPECT_EQ(cfg_get_value(CFG_INI_VAR_MSG_SQLITE), "on");
    cfg_set_value("msg_sqlite", "text");
    EXPECT_EQ(cfg_get_value(CFG_INI_VAR_MSG_SQLITE), "text");
    EXPECT_EQ(cfg_get_value(CFG_INI_VAR_VTAN_STA_MODE), "off");
    EXPECT_EQ(record_of("msg_sqlite")->access_count, 2U);
}

TEST_F(LOOKUP_TEST, a_catalogued_variable_that_is_no_integer_gives_the_number_of_the_default_text)
{
    cfg_set_value("msg_sqlite", "text");
    EXPECT_EQ(cfg_get_int_value(CFG_INI_VAR_MSG_SQLITE), 0);
    EXPECT_EQ(cfg_get_int_value(CFG_INI_VAR_VTAN_STA_MODE), 0);
    cfg_set_value("msg_sqlite", "-12");
    EXPECT_EQ(cfg_get_int_value(CFG_INI_VAR_MSG_SQLITE), -12);
    EXPECT_EQ(record_of("msg_sqlite")->access_count, 2U);
}

TEST_F(LOOKUP_TEST, setters_by_position_set_the_catalogued_name)
{
    cfg_set_int_value(CFG_INI_VAR_MSG_SQLITE, -5);
    EXPECT_EQ(record_of("msg_sqlite")->value, "-5");
    cfg_set_on(CFG_INI_VAR_MSG_SQLITE);
    EXPECT_EQ(record_of("msg_sqlite")->value, "on");
    cfg_set_off(CFG_INI_VAR_MSG_SQLITE);
    EXPECT_EQ(record_of("msg_sqlite")->value, "off");
    cfg_set_value(CFG_INI_VAR_MSG_SQLITE, "text");
    EXPECT_EQ(record_of("msg_sqlite")->value, "text");
    EXPECT_EQ(all_records().size(), 1U);
}

// --- Setters ---

TEST_F(LOOKUP_TEST, setting_on_is_seen_by_readers_flag_and_callbacks)
{
    class COUNTER : public CFG_INI_CALLBACK
    {
    public:
        using CFG_INI_CALLBACK::CFG_INI_CALLBACK;
        void refresh() override
        {
            ++refreshes;
        }
        int refreshes = 0;
    };
    const COUNTER counter("a");
    cfg_ini_dirty = false;
    cfg_set_on("a");
    EXPECT_TRUE(cfg_is_on("a", false));
    EXPECT_TRUE(cfg_ini_dirty);
    EXPECT_EQ(counter.refreshes, 1);
}

TEST_F(LOOKUP_TEST, setters_store_their_texts_and_count_nothing)
{
    cfg_set_on("on");
    cfg_set_off("off");
    cfg_set_int_value("char", -2147483647 - 1);
    cfg_set_int_value(std::string("string"), 2147483647);
    cfg_set_value("text", " kept as given\t");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"on", "on"},
                                         {"off", "off"},
                                         {"char", "-2147483648"},
                                         {"string", "2147483647"},
                                         {"text", " kept as given\t"}}));
    for (const auto& [name, record] : all_records())
    {
        EXPECT_EQ(record.access_count, 0U) << name;
        EXPECT_FALSE(record.external) << name;
    }
}

TEST_F(LOOKUP_TEST, a_number_is_written_the_same_in_every_locale)
{
    const SCOPED_COMMA_LOCALE locale;
    cfg_set_int_value("a", 1234567);
    EXPECT_EQ(record_of("a")->value, "1234567");
}

// --- Null names and values ---

struct CALL
{
    const char* name;
    void (*call)();
};

void PrintTo(const CALL& row, std::ostream* out)
{
    *out << row.name;
}

class NULL_TEST : public STORE_TEST, public testing::WithParamInterface<CALL>
{
};

TEST_P(NULL_TEST, throws_and_neither_reads_nor_writes)
{
    try
    {
        GetParam().call();
        FAIL() << "no exception";
    }
    catch (const std::logic_error& error)
    {
        EXPECT_EQ(error.what(), message_of_null_text);
    }
    EXPECT_FALSE(store_exists());
    EXPECT_EQ(fake::thr::locks(), 0);
}

std::string text;
int number;
char room[8];

INSTANTIATE_TEST_SUITE_P(
    , NULL_TEST,
    testing::Values(CALL{"cfg_is_on default", [] { cfg_is_on(null_name, true); }},
                    CALL{"cfg_is_on", [] { cfg_is_on(null_name); }},
                    CALL{"cfg_get_int_value", [] { cfg_get_int_value(null_name, 1); }},
                    CALL{"cfg_get_uint_value", [] { cfg_get_uint_value(null_name, 1); }},
                    CALL{"cfg_get_double_value", [] { cfg_get_double_value(null_name, 1); }},
                    CALL{"cfg_get_value", [] { cfg_get_value(null_name); }},
                    CALL{"cfg_get_value_as bool", [] { cfg_get_value_as<bool>(null_name); }},
                    CALL{"cfg_get_value_as int", [] { cfg_get_value_as<int>(null_name); }},
                    CALL{"cfg_get_value_as string", [] { cfg_get_value_as<std::string>(null_name); }},
                    CALL{"cfg_get_value_as double", [] { cfg_get_value_as<double>(null_name); }},
                    CALL{"cfg_get_value_as float", [] { cfg_get_value_as<float>(null_name); }},
                    CALL{"cfg_set_int_value", [] { cfg_set_int_value(null_name, 1); }},
                    CALL{"cfg_set_value value", [] { cfg_set_value(CFG_INI_VAR_MSG_SQLITE, nullptr); }},
                    CALL{"cfg_dyn_is_on", [] { cfg_dyn_is_on(nullptr, true); }},
                    CALL{"cfg_dyn_get_int_value", [] { cfg_dyn_get_int_value(nullptr, &number, 1); }},
                    CALL{"cfg_dyn_get_value", [] { cfg_dyn_get_value(nullptr, &text); }},
                    CALL{"cfg_ini_get_value_for_zanth",
                         [] { cfg_ini_get_value_for_zanth(nullptr, &null_name, room, sizeof room); }}));

// --- Late-bound entry points ---

TEST_F(LOOKUP_TEST, late_bound_entry_points_read_as_the_others_do)
{
    cfg_set_value("a", "1");
    EXPECT_TRUE(cfg_dyn_is_on("A", false));
    EXPECT_TRUE(cfg_dyn_is_on("unknown", true));
    int value = 0;
    cfg_dyn_get_int_value("a", &value, 5);
    EXPECT_EQ(value, 1);
    cfg_dyn_get_int_value("unknown", &value, 5);
    EXPECT_EQ(value, 5);
    std::string read = "before";
    cfg_dyn_get_value("a", &read);
    EXPECT_EQ(read, "1");
    cfg_dyn_get_value("unknown", &read);
    EXPECT_EQ(read, "");
    EXPECT_EQ(record_of("a")->access_count, 3U);
    EXPECT_TRUE(record_of("a")->had_valid_read);
}

TEST_F(LOOKUP_TEST, late_bound_entry_points_do_nothing_without_a_place_for_the_answer)
{
    cfg_close_ini_file();
    cfg_dyn_get_int_value("a", nullptr, 5);
    cfg_dyn_get_value("a", nullptr);
    cfg_dyn_get_int_value(nullptr, nullptr, 5);
    cfg_dyn_get_value(nullptr, nullptr);
    EXPECT_FALSE(store_exists());
}

class ZANTH_TEST : public LOOKUP_TEST
{
protected:
    static int get(const char* name, unsigned int size)
    {
        std::fill(std::begin(buffer), std::end(buffer), '#');
        return cfg_ini_get_value_for_zanth(nullptr, &name, buffer, size);
    }

    static std::string bytes()
    {
        return std::string(buffer, sizeof buffer);
    }

    static inline char buffer[6];
};

TEST_F(ZANTH_TEST, a_buffer_smaller_than_the_text_gets_nothing_and_the_length_is_the_answer)
{
    cfg_set_value("a", "abc");
    EXPECT_EQ(get("a", 2), 3);
    EXPECT_EQ(bytes(), "######");
    EXPECT_EQ(get("a", 0), 3);
    EXPECT_EQ(bytes(), "######");
}

TEST_F(ZANTH_TEST, a_buffer_of_the_texts_size_gets_the_terminating_zero_behind_it)
{
    cfg_set_value("a", "abc");
    EXPECT_EQ(get("a", 3), 0);
    EXPECT_EQ(bytes(), std::string("abc\0##", 6));
    EXPECT_EQ(get("a", 4), 0);
    EXPECT_EQ(bytes(), std::string("abc\0##", 6));
}

TEST_F(ZANTH_TEST, an_empty_name_is_refused_and_nothing_is_read)
{
    cfg_close_ini_file();
    EXPECT_EQ(get("", 6), -1);
    EXPECT_EQ(bytes(), "######");
    EXPECT_FALSE(store_exists());
}

TEST_F(ZANTH_TEST, an_empty_text_is_copied_as_such)
{
    EXPECT_EQ(get("unknown", 0), 0);
    EXPECT_EQ(bytes(), std::string("\0#####", 6));
    EXPECT_TRUE(record_of("unknown")->had_valid_read);
    cfg_set_value("a", "abc");
    get("a", 6);
    EXPECT_EQ(record_of("a")->access_count, 1U);
    EXPECT_TRUE(record_of("a")->had_valid_read);
}

TEST_F(ZANTH_TEST, the_first_argument_is_never_looked_at)
{
    cfg_set_value("a", "x");
    const char* const name = "a";
    EXPECT_EQ(cfg_ini_get_value_for_zanth(&buffer, &name, buffer, 6), 0);
    auto* const nowhere = reinterpret_cast<void*>(std::uintptr_t{1});
    EXPECT_EQ(cfg_ini_get_value_for_zanth(nowhere, &name, buffer, 6), 0);
}
}
