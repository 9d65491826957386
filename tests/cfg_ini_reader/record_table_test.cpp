#include "cfg_ini/cfg_ini_reader/record_table.h"

#include <cstddef>
#include <limits>
#include <memory>

#include "cfg_ini/cfg_ini_reader/store_primitives.h"
#include "tests/support/store_test.h"

using namespace zon_cfg;

namespace
{
// --- Hash and equality of names ---

struct HASH
{
    std::string name;
    std::uint64_t expected;
};

void PrintTo(const HASH& row, std::ostream* out)
{
    *out << testing::PrintToString(row.name);
}

class NAME_HASH_TEST : public testing::TestWithParam<HASH>
{
};

TEST_P(NAME_HASH_TEST, is_that_of_the_folded_signed_bytes)
{
    const auto expected = static_cast<std::size_t>(GetParam().expected); // with 32 bits the lower half
    EXPECT_EQ(STL_CASE_INSENSITIVE_HASH_COMPARE()(GetParam().name), expected);
    EXPECT_EQ(STL_CASE_INSENSITIVE_HASH_COMPARE()(GetParam().name.c_str()), expected);
}

constexpr std::uint64_t minus(std::uint64_t number)
{
    return 0 - number;
}

INSTANTIATE_TEST_SUITE_P(
    , NAME_HASH_TEST,
    testing::Values(HASH{"", 0}, HASH{"a", 97}, HASH{"A", 97}, HASH{"z", 122}, HASH{"Z", 122}, HASH{"@", 64},
                    HASH{"[", 91}, HASH{"`", 96}, HASH{"{", 123}, // neighbours of the letters
                    HASH{"ab", 97 * 17 + 98}, HASH{"Ab", 1747}, HASH{"ba", 98 * 17 + 97}, HASH{"abc", 29798},
                    HASH{"\x80", minus(128)}, HASH{"\xFF", minus(1)}, HASH{"a\xFF", 97 * 17 - 1},
                    HASH{"\xFF"
                         "a",
                         97 - 17},
                    HASH{"\xC3\xA9", minus(61 * 17 + 87)}, HASH{"\xC3\x89", minus(61 * 17 + 119)},
                    HASH{std::string(17, 'a'), 16076443710628144881U}, // 97 * (17^17 - 1) / 16 modulo 2^64
                    HASH{std::string("ab\0c", 4), 1747}, HASH{std::string("\0c", 2), 0}));

struct EQUALITY
{
    std::string a;
    std::string b;
    bool expected;
};

void PrintTo(const EQUALITY& row, std::ostream* out)
{
    *out << testing::PrintToString(row.a) << " and " << testing::PrintToString(row.b);
}

class NAME_EQUALITY_TEST : public testing::TestWithParam<EQUALITY>
{
};

TEST_P(NAME_EQUALITY_TEST, folds_the_letters_a_to_z_only)
{
    const STL_CASE_INSENSITIVE_EQUAL equal;
    const auto& [a, b, expected] = GetParam();
    EXPECT_EQ(equal(a, b), expected);
    EXPECT_EQ(equal(b, a), expected);
    EXPECT_EQ(equal(a.c_str(), b.c_str()), expected);
    EXPECT_EQ(equal(a.c_str(), b), expected);
    EXPECT_EQ(equal(a, b.c_str()), expected);
}

INSTANTIATE_TEST_SUITE_P(
    , NAME_EQUALITY_TEST,
    testing::Values(EQUALITY{"", "", true}, EQUALITY{"Foo", "fOO", true}, EQUALITY{"azAZ09_", "AZaz09_", true},
                    EQUALITY{"foo", "fo", false}, EQUALITY{"", "a", false}, EQUALITY{"foo", "fob", false},
                    EQUALITY{"@", "`", false}, EQUALITY{"[", "{", false}, EQUALITY{"\xC3\x89", "\xC3\xA9", false},
                    EQUALITY{"\xC9", "\xE9", false}, EQUALITY{"\xC9", "\xC9", true}, EQUALITY{"a b", "ab", false},
                    EQUALITY{std::string("a\0x", 3), std::string("A\0y", 3), true},
                    EQUALITY{std::string("a\0x", 3), "a", true}, EQUALITY{std::string("\0", 1), "", true}));

// --- Records ---

using RECORD_TABLE_TEST = STORE_TEST;

TEST_F(RECORD_TABLE_TEST, a_new_record_is_empty)
{
    const CFG_INI_RECORD record{};
    EXPECT_EQ(record.value, "");
    EXPECT_EQ(record.access_count, 0U);
    EXPECT_FALSE(record.bool_valid);
    EXPECT_FALSE(record.int_valid);
    EXPECT_FALSE(record.uint_valid);
    EXPECT_FALSE(record.had_valid_read);
    EXPECT_FALSE(record.bool_value);
    EXPECT_FALSE(record.external);
    EXPECT_EQ(record.int_value, 0);
    EXPECT_EQ(record.uint_value, 0U);
}

TEST_F(RECORD_TABLE_TEST, a_record_keeps_its_fields_in_order)
{
    EXPECT_EQ(offsetof(CFG_INI_RECORD, value), 0U);
    EXPECT_EQ(offsetof(CFG_INI_RECORD, access_count), sizeof(std::string));
    const std::size_t flags = sizeof(std::string) + sizeof(std::uint64_t);
    EXPECT_EQ(offsetof(CFG_INI_RECORD, bool_valid), flags);
    EXPECT_EQ(offsetof(CFG_INI_RECORD, int_valid), flags + 1);
    EXPECT_EQ(offsetof(CFG_INI_RECORD, uint_valid), flags + 2);
    EXPECT_EQ(offsetof(CFG_INI_RECORD, had_valid_read), flags + 3);
    EXPECT_EQ(offsetof(CFG_INI_RECORD, bool_value), flags + 4);
    EXPECT_EQ(offsetof(CFG_INI_RECORD, external), flags + 5);
    EXPECT_EQ(offsetof(CFG_INI_RECORD, int_value), flags + 8);
    EXPECT_EQ(offsetof(CFG_INI_RECORD, uint_value), flags + 12);
}

TEST_F(RECORD_TABLE_TEST, a_cached_value_comes_with_the_flag_of_its_type)
{
    CFG_INI_RECORD record{};
    record.bool_value = true;
    record.int_value = -5;
    record.uint_value = 7;
    bool valid = true;
    EXPECT_TRUE(record.get_cached_value<bool>(valid));
    EXPECT_FALSE(valid);
    valid = true;
    EXPECT_EQ(record.get_cached_value<int>(valid), -5);
    EXPECT_FALSE(valid);
    valid = true;
    EXPECT_EQ(record.get_cached_value<unsigned int>(valid), 7U);
    EXPECT_FALSE(valid);

    record.bool_valid = true;
    record.get_cached_value<bool>(valid);
    EXPECT_TRUE(valid);
    record.get_cached_value<int>(valid);
    EXPECT_FALSE(valid);
    record.int_valid = true;
    record.get_cached_value<int>(valid);
    EXPECT_TRUE(valid);
    record.get_cached_value<unsigned int>(valid);
    EXPECT_FALSE(valid);
    record.uint_valid = true;
    record.get_cached_value<unsigned int>(valid);
    EXPECT_TRUE(valid);
}

// --- The table ---

TEST_F(RECORD_TABLE_TEST, a_fresh_table_is_empty_and_reserves_no_buckets)
{
#ifdef _LIBCPP_VERSION
    constexpr std::size_t buckets_without_names = 0; // libc++ has its first bucket with the first name
#else
    constexpr std::size_t buckets_without_names = 1;
#endif
    make_empty_store();
    EXPECT_EQ(cfg_ini_file.load()->size(), 0U);
    EXPECT_EQ(cfg_ini_file.load()->bucket_count(), buckets_without_names);
    EXPECT_EQ(cfg_ini_file.load()->max_load_factor(), 1.0F);
}

TEST_F(RECORD_TABLE_TEST, names_of_any_letter_case_reach_one_record_spelt_as_first_met)
{
    make_empty_store();
    cfg_set_value("Foo", "1");
    cfg_set_value("FOO", "2");
    EXPECT_EQ(cfg_get_value("foo"), "2");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"Foo", "2"}}));

    cfg_is_on("bAR", false);
    cfg_set_value("Bar", "x");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"Foo", "2"}, {"bAR", "x"}}));
}

TEST_F(RECORD_TABLE_TEST, names_that_differ_in_an_accented_letter_are_two_variables)
{
    make_empty_store();
    cfg_set_value("\xC3\x89", "upper");
    cfg_set_value("\xC3\xA9", "lower");
    EXPECT_EQ(cfg_get_value("\xC3\x89"), "upper");
    EXPECT_EQ(cfg_get_value("\xC3\xA9"), "lower");
    EXPECT_EQ(all_records().size(), 2U);
}

TEST_F(RECORD_TABLE_TEST, names_are_one_up_to_their_first_zero_byte)
{
    make_empty_store();
    cfg_set_value(std::string("a\0x", 3), "1");
    EXPECT_EQ(cfg_get_value(std::string("A\0y", 3)), "1");
    EXPECT_EQ(cfg_get_value("a"), "1");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{std::string("a\0x", 3), "1"}}));
}

TEST_F(RECORD_TABLE_TEST, an_unset_variable_read_three_times_counts_two)
{
    make_empty_store();
    for (int i = 0; i < 3; ++i)
        cfg_is_on("unset", false);
    EXPECT_EQ(record_of("unset")->value, "");
    EXPECT_EQ(record_of("unset")->access_count, 2U);
}

TEST_F(RECORD_TABLE_TEST, a_set_variable_read_three_times_counts_three)
{
    make_empty_store();
    cfg_set_value("set", "1");
    EXPECT_EQ(record_of("set")->access_count, 0U);
    for (int i = 0; i < 3; ++i)
        cfg_is_on("SET", false);
    EXPECT_EQ(record_of("set")->access_count, 3U);
    cfg_set_value("set", "2");
    EXPECT_EQ(record_of("set")->access_count, 3U);
}

TEST_F(RECORD_TABLE_TEST, getting_a_record_neither_counts_nor_creates)
{
    make_empty_store();
    cfg_set_value("set", "1");
    const STORE_LOCK lock;
    ASSERT_NE(cfg_ini_get_record("Set"), nullptr);
    EXPECT_EQ(cfg_ini_get_record(std::string("Set")), cfg_ini_get_record("sET"));
    EXPECT_EQ(cfg_ini_get_record("set")->access_count, 0U);
    EXPECT_EQ(cfg_ini_get_record("unset"), nullptr);
    EXPECT_EQ(cfg_ini_get_record(std::string("unset")), nullptr);
    EXPECT_EQ(cfg_ini_file.load()->size(), 1U);
}

TEST_F(RECORD_TABLE_TEST, getting_or_inserting_counts_from_the_second_time_on)
{
    make_empty_store();
    const STORE_LOCK lock;
    CFG_INI_RECORD* const record = cfg_ini_get_record_or_insert_empty(std::string("a"));
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->access_count, 0U);
    EXPECT_EQ(cfg_ini_get_record_or_insert_empty(std::string("A")), record);
    EXPECT_EQ(record->access_count, 1U);
    EXPECT_EQ(cfg_ini_get_record_or_insert_empty("a"), record);
    EXPECT_EQ(record->access_count, 2U);
    EXPECT_EQ(cfg_ini_get_record_or_insert_empty("b")->access_count, 0U);
}

TEST_F(RECORD_TABLE_TEST, inserting_a_name_already_present_changes_nothing)
{
    make_empty_store();
    cfg_set_value("a", "1");
    auto other = std::make_unique<CFG_INI_RECORD>();
    {
        const STORE_LOCK lock;
        CFG_INI_RECORD* const present = cfg_ini_get_record("a");
        cfg_ini_insert_record("A", other.get()); // stays ours
        EXPECT_EQ(cfg_ini_get_record("a"), present);
    }
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}}));
}

TEST_F(RECORD_TABLE_TEST, inserting_a_new_name_gives_the_record_to_the_table)
{
    make_empty_store();
    const STORE_LOCK lock;
    auto* const record = new CFG_INI_RECORD();
    cfg_ini_insert_record("a", record);
    EXPECT_EQ(cfg_ini_get_record("A"), record);
}

TEST_F(RECORD_TABLE_TEST, records_stay_where_they_are_while_the_table_grows)
{
    make_empty_store();
    cfg_set_value("first", "1");
    const CFG_INI_RECORD* first = nullptr;
    {
        const STORE_LOCK lock;
        first = cfg_ini_get_record("first");
    }
    for (int i = 0; i < 5000; ++i)
        cfg_set_int_value("variable_" + std::to_string(i), i);
    for (int i = 0; i < 5000; ++i)
        EXPECT_EQ(cfg_get_int_value("VARIABLE_" + std::to_string(i), -1), i);
    const STORE_LOCK lock;
    EXPECT_EQ(cfg_ini_get_record("first"), first);
    EXPECT_EQ(cfg_ini_file.load()->size(), 5001U);
}

// --- External mark and valid-read mark ---

TEST_F(RECORD_TABLE_TEST, marks_before_the_first_read_are_false_and_read_nothing)
{
    EXPECT_FALSE(cfg_ini_is_external("a"));
    EXPECT_FALSE(cfg_mark_record_had_valid_read(std::string("a")));
    EXPECT_FALSE(cfg_mark_record_had_valid_read("a"));
    EXPECT_FALSE(store_exists());
    EXPECT_TRUE(fake::fio::asked().empty());
    EXPECT_EQ(fake::thr::locks(), 0);
}

TEST_F(RECORD_TABLE_TEST, marking_an_unknown_name_is_false_and_creates_nothing)
{
    make_empty_store();
    EXPECT_FALSE(cfg_mark_record_had_valid_read(std::string("never_seen")));
    EXPECT_FALSE(cfg_mark_record_had_valid_read("never_seen"));
    EXPECT_FALSE(cfg_ini_is_external("never_seen"));
    EXPECT_TRUE(all_records().empty());
}

TEST_F(RECORD_TABLE_TEST, marking_a_known_name_marks_it_without_counting)
{
    make_empty_store();
    cfg_set_value("a", "x");
    EXPECT_FALSE(record_of("a")->had_valid_read);
    EXPECT_TRUE(cfg_mark_record_had_valid_read(std::string("A")));
    EXPECT_TRUE(record_of("a")->had_valid_read);
    cfg_set_value("a", "y");
    EXPECT_FALSE(record_of("a")->had_valid_read);
    EXPECT_TRUE(cfg_mark_record_had_valid_read("A"));
    EXPECT_TRUE(record_of("a")->had_valid_read);
    EXPECT_EQ(record_of("a")->access_count, 0U);
}

TEST_F(RECORD_TABLE_TEST, the_external_mark_is_asked_for_in_any_letter_case_under_one_lock)
{
    make_empty_store();
    cfg_ini_insert_element_external_ini("outside", "1");
    cfg_ini_insert_element("inside", "1");
    const long locks = fake::thr::locks();
    EXPECT_TRUE(cfg_ini_is_external("OUTSIDE"));
    EXPECT_EQ(fake::thr::locks(), locks + 1);
    EXPECT_FALSE(cfg_ini_is_external("inside"));
    EXPECT_EQ(fake::thr::depth(), 0);
    EXPECT_EQ(record_of("outside")->access_count, 0U);
}

TEST_F(RECORD_TABLE_TEST, marks_are_false_when_the_store_vanishes_before_the_lock_is_taken)
{
    make_empty_store();
    cfg_ini_insert_element_external_ini("a", "1");
    fake::thr::before_lock(1, cfg_close_ini_file);
    EXPECT_FALSE(cfg_ini_is_external("a"));
    EXPECT_FALSE(store_exists());

    make_empty_store();
    cfg_set_value("a", "1");
    fake::thr::before_lock(1, cfg_close_ini_file);
    EXPECT_FALSE(cfg_mark_record_had_valid_read(std::string("a")));
    EXPECT_FALSE(store_exists());
}

// --- Storing ---

struct CACHE
{
    std::string value;
    bool bool_valid;
    bool bool_value;
    bool int_valid;
    int int_value;
    bool uint_valid;
    unsigned int uint_value;
};

void expect_cache(const CFG_INI_RECORD& record, const CACHE& expected)
{
    SCOPED_TRACE(expected.value);
    EXPECT_EQ(record.value, expected.value);
    EXPECT_EQ(record.bool_valid, expected.bool_valid);
    EXPECT_EQ(record.bool_value, expected.bool_value);
    EXPECT_EQ(record.int_valid, expected.int_valid);
    EXPECT_EQ(record.int_value, expected.int_value);
    EXPECT_EQ(record.uint_valid, expected.uint_valid);
    EXPECT_EQ(record.uint_value, expected.uint_value);
}

TEST_F(RECORD_TABLE_TEST, one_is_a_valid_boolean_and_both_integers)
{
    make_empty_store();
    cfg_set_value("a", "1");
    expect_cache(*record_of("a"), {"1", true, true, true, 1, true, 1});
}

TEST_F(RECORD_TABLE_TEST, minus_one_is_a_signed_integer_only)
{
    make_empty_store();
    cfg_set_value("a", "-1");
    expect_cache(*record_of("a"), {"-1", false, false, true, -1, false, 0});
}

TEST_F(RECORD_TABLE_TEST, yes_is_of_no_type)
{
    make_empty_store();
    cfg_set_value("a", "yes");
    expect_cache(*record_of("a"), {"yes", false, false, false, 0, false, 0});
}

TEST_F(RECORD_TABLE_TEST, a_failed_integer_conversion_keeps_the_old_number_and_a_failed_boolean_one_clears_it)
{
    make_empty_store();
    cfg_set_value("a", "1");
    cfg_set_value("a", "yes");
    expect_cache(*record_of("a"), {"yes", false, false, false, 1, false, 1});
    cfg_set_value("a", "-7");
    expect_cache(*record_of("a"), {"-7", false, false, true, -7, false, 1});
    cfg_set_value("a", "3000000000");
    expect_cache(*record_of("a"), {"3000000000", false, false, false, -7, true, 3000000000U});
    cfg_set_value("a", "ON");
    expect_cache(*record_of("a"), {"ON", true, true, false, -7, false, 3000000000U});
    cfg_set_value("a", "");
    expect_cache(*record_of("a"), {"", false, false, false, -7, false, 3000000000U});
}

TEST_F(RECORD_TABLE_TEST, a_number_is_stored_as_its_text_would_be)
{
    make_empty_store();
    for (const int before : {0, 1, 12, -7})
    {
        for (const int number : {0, 1, 2, -1, 12, -7, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
        {
            SCOPED_TRACE(std::to_string(before) + ", then " + std::to_string(number));
            cfg_set_value("by text", std::to_string(before));
            cfg_set_value("by text", std::to_string(number));
            cfg_set_int_value("by number", before);
            cfg_is_on("by number", false);
            cfg_set_int_value("by number", number);
            const CFG_INI_RECORD expected = *record_of("by text");
            expect_cache(*record_of("by number"),
                         {std::to_string(number), expected.bool_valid, expected.bool_value, expected.int_valid,
                          expected.int_value, expected.uint_valid, expected.uint_value});
            EXPECT_FALSE(record_of("by number")->had_valid_read);
        }
    }
}

TEST_F(RECORD_TABLE_TEST, storing_the_external_way_converts_the_same)
{
    make_empty_store();
    cfg_ini_insert_element_external_ini("a", "12");
    expect_cache(*record_of("a"), {"12", false, false, true, 12, true, 12});
}

TEST_F(RECORD_TABLE_TEST, values_are_kept_whole_and_converted_up_to_their_first_zero_byte)
{
    make_empty_store();
    cfg_set_value("a", std::string("1\0rest", 6));
    expect_cache(*record_of("a"), {std::string("1\0rest", 6), true, true, true, 1, true, 1});
    EXPECT_EQ(cfg_get_value("a"), std::string("1\0rest", 6));
}

TEST_F(RECORD_TABLE_TEST, storing_clears_the_valid_read_and_keeps_the_count)
{
    make_empty_store();
    cfg_set_value("a", "1");
    EXPECT_TRUE(cfg_is_on("a", false));
    EXPECT_TRUE(record_of("a")->had_valid_read);
    cfg_set_value("a", "1");
    EXPECT_FALSE(record_of("a")->had_valid_read);
    EXPECT_EQ(record_of("a")->access_count, 1U);
}

TEST_F(RECORD_TABLE_TEST, an_external_store_marks_and_an_internal_one_leaves_the_mark)
{
    make_empty_store();
    cfg_ini_insert_element("a", "1");
    EXPECT_FALSE(record_of("a")->external);
    cfg_ini_insert_element_external_ini("a", "2");
    EXPECT_TRUE(record_of("a")->external);
    cfg_ini_insert_element("a", "3");
    EXPECT_TRUE(record_of("a")->external);
    EXPECT_EQ(record_of("a")->value, "3");
}

TEST_F(RECORD_TABLE_TEST, every_store_sets_the_dirty_flag_and_no_read_does)
{
    make_empty_store();
    cfg_ini_dirty = false;
    cfg_ini_insert_element("a", "1");
    EXPECT_TRUE(cfg_ini_dirty);
    cfg_ini_dirty = false;
    cfg_ini_insert_element_external_ini("a", "1");
    EXPECT_TRUE(cfg_ini_dirty);
    cfg_ini_dirty = false;
    cfg_get_value("a");
    cfg_get_value("unknown");
    cfg_ini_is_external("a");
    EXPECT_FALSE(cfg_ini_dirty);
}

TEST_F(RECORD_TABLE_TEST, a_store_takes_the_lock_once_and_releases_it)
{
    make_empty_store();
    const long locks = fake::thr::locks();
    cfg_ini_insert_element("a", "1");
    EXPECT_EQ(fake::thr::locks(), locks + 1);
    EXPECT_EQ(fake::thr::depth(), 0);
}

TEST_F(RECORD_TABLE_TEST, a_store_without_a_store_reads_the_settings_first)
{
    write_file(temporary.path("cwd/velmar.ini"), "a=from_file\nb=from_file\n");
    cfg_ini_insert_element("a", "1");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}, {"b", "from_file"}}));
}

TEST_F(RECORD_TABLE_TEST, a_store_that_vanishes_before_the_lock_is_taken_is_read_again)
{
    write_file(temporary.path("cwd/velmar.ini"), "b=from_file\n");
    make_empty_store();
    fake::thr::before_lock(1, cfg_close_ini_file);
    cfg_ini_insert_element("a", "1");
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"a", "1"}, {"b", "from_file"}}));
}

// --- Emptying ---

TEST_F(RECORD_TABLE_TEST, after_emptying_the_next_read_rereads_and_counts_from_zero)
{
    write_file(temporary.path("cwd/velmar.ini"), "a=1\n");
    EXPECT_EQ(cfg_get_int_value("a", 0), 1);
    EXPECT_EQ(cfg_get_int_value("a", 0), 1);
    cfg_close_ini_file();
    EXPECT_FALSE(store_exists());
    write_file(temporary.path("cwd/velmar.ini"), "a=2\n");
    EXPECT_EQ(cfg_get_int_value("a", 0), 2);
    EXPECT_EQ(record_of("a")->access_count, 1U);
}

TEST_F(RECORD_TABLE_TEST, nothing_exists_at_load)
{
    EXPECT_IN_FRESH_PROCESS(EXPECT_FALSE(store_exists()); EXPECT_EQ(cfg_ini_mutex.load(), nullptr);
                            EXPECT_TRUE(cfg_ini_dirty); EXPECT_EQ(fake::thr::creations(), 0); make_empty_store();
                            EXPECT_EQ(fake::thr::creations(), 1); cfg_close_ini_file(); make_empty_store();
                            EXPECT_EQ(fake::thr::creations(), 1));
}

TEST_F(RECORD_TABLE_TEST, a_failed_creation_of_the_lock_passes_through_and_is_tried_again)
{
    EXPECT_IN_FRESH_PROCESS(fake::thr::before_creation(1, fake::out_of_memory);
                            EXPECT_THROW(cfg_set_value("a", "1"), std::bad_alloc); EXPECT_FALSE(store_exists());
                            cfg_set_value("a", "1"); EXPECT_EQ(cfg_get_value("a"), "1"));
}
}
