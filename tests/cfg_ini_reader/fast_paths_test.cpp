// The plainly written rules of names, lines and values (tests/support/plain_rules.h), held against the library's
// quicker ways on random text, byte for byte. The seeds are fixed; a failure shows the text.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/ini_text.h"
#include "cfg_ini/cfg_ini_reader/name_cache.h"
#include "cfg_ini/cfg_ini_reader/name_matching.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/settings_lines.h"
#include "cfg_ini/cfg_ini_reader/store_primitives.h"
#include "cfg_ini/cfg_ini_reader/value_conversion.h"
#include "tests/support/faked_test.h"
#include "tests/support/plain_rules.h"

using namespace zon_cfg;

namespace
{
// Random text of up to `longest` bytes over an alphabet.
class RANDOM_TEXT
{
public:
    RANDOM_TEXT(unsigned int seed, std::string characters) : engine(seed), alphabet(std::move(characters)) {}

    std::string operator()(std::size_t longest)
    {
        std::string text(engine() % (longest + 1), ' ');
        for (char& c : text)
            c = alphabet[engine() % alphabet.size()];
        return text;
    }

    std::mt19937 engine;

private:
    std::string alphabet;
};

std::string all_bytes()
{
    std::string bytes;
    for (int c = 0; c < 256; ++c)
        bytes += static_cast<char>(c);
    return bytes;
}

const std::string letters = "abcxyzABCXYZ@[`{_09";
}

TEST(FAST_PATHS, hash_is_that_of_the_bytewise_rule)
{
    for (const std::string& alphabet : {letters, letters + "\xC3\x89\x80\xFF", all_bytes(), std::string("A")})
    {
        RANDOM_TEXT random(1, alphabet);
        for (int i = 0; i < 20000; ++i)
        {
            const std::string name = random(45);
            ASSERT_EQ(STL_CASE_INSENSITIVE_HASH_COMPARE()(name), static_cast<std::size_t>(plain::hash(name)))
                << testing::PrintToString(name);
        }
    }
}

TEST(FAST_PATHS, hash_is_that_of_the_part_of_a_text_alone)
{
    RANDOM_TEXT random(3, letters);
    for (std::size_t size = 0; size < 70; ++size)
    {
        for (int i = 0; i < 20; ++i)
        {
            std::string around;
            while (around.size() < 200)
                around += random(45);
            const std::string_view name = std::string_view(around).substr(50, size);
            ASSERT_EQ(hash_name(name), static_cast<std::size_t>(plain::hash(std::string(name))))
                << name << " of " << around;
        }
    }
}

TEST(FAST_PATHS, names_are_equal_when_the_folded_bytes_up_to_zero_are)
{
    for (const std::string& alphabet :
         {std::string("aA"), std::string("@`[{"), std::string("aA\0", 3), std::string("\xC3\xE3zZ"), all_bytes()})
    {
        RANDOM_TEXT random(2, alphabet);
        for (int i = 0; i < 20000; ++i)
        {
            const std::string a = random(i % 2 == 0 ? 3 : 40);
            // Half of the time the same text with some letters in the other case, and one byte changed now and then.
            std::string b = i % 4 < 2 ? random(3) : a;
            for (char& c : b)
            {
                if (std::isalpha(static_cast<unsigned char>(c)) != 0 && random.engine() % 2 == 0)
                    c = static_cast<char>(c ^ 0x20);
            }
            if (!b.empty() && i % 8 == 3)
                b[random.engine() % b.size()] = alphabet[random.engine() % alphabet.size()];
            const bool expected = plain::folded_up_to_zero(a) == plain::folded_up_to_zero(b);
            ASSERT_EQ(STL_CASE_INSENSITIVE_EQUAL()(a, b), expected)
                << testing::PrintToString(a) << " and " << testing::PrintToString(b);
            ASSERT_EQ(STL_CASE_INSENSITIVE_EQUAL()(HASHED_NAME(a), RECORD_NAME(HASHED_NAME(b))), expected)
                << testing::PrintToString(a) << " and " << testing::PrintToString(b);
        }
    }
}

TEST(FAST_PATHS, any_two_bytes_are_told_apart_in_any_place_of_a_word)
{
    const auto folded = [](int c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; };
    for (std::size_t place = 0; place < 32; ++place)
    {
        // In the same letter case as the text around them, and in the other.
        std::string a = "sixteen_letters_";
        std::string b = place < 16 ? a : "SIXTEEN_LETTERS_";
        for (int x = 1; x < 256; ++x)
        {
            a[place % 16] = static_cast<char>(x);
            for (int y = 1; y < 256; ++y)
            {
                b[place % 16] = static_cast<char>(y);
                ASSERT_EQ(equal_names(a, b), folded(x) == folded(y)) << x << " and " << y << " at " << place;
                ASSERT_EQ(hash_name(a) == hash_name(b), folded(x) == folded(y)) << x << " and " << y << " at " << place;
            }
        }
    }
}

TEST(FAST_PATHS, lines_divide_as_the_two_passes_do)
{
    // The last two make lines in which what divides is rare, so that the scan goes on for some blocks.
    for (const std::string& alphabet :
         {std::string("a=;#\"/ "), std::string("ab=/\" \t\r\v"), all_bytes(),
          std::string("abcdefghijklmnopqrstuvwxyz=;#\"//"),
          std::string("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_= \t\x7F\xE4;")})
    {
        RANDOM_TEXT random(3, alphabet);
        for (int i = 0; i < 40000; ++i)
        {
            const std::string line = random(i % 2 == 0 ? 12 : 70);

            std::string uncommented = line;
            cfg_remove_commented_portion(&uncommented);
            std::string expected_uncommented = line;
            plain::remove_comment(expected_uncommented);
            ASSERT_EQ(uncommented, expected_uncommented) << testing::PrintToString(line);

            std::string name;
            std::string value;
            std::optional<plain::ASSIGNMENT> parsed;
            if (parse_settings_line(line, name, value) == SETTINGS_LINE::ASSIGNMENT)
                parsed.emplace(name, value);
            ASSERT_EQ(parsed, plain::assignment(line)) << testing::PrintToString(line);
        }
    }
}

TEST(FAST_PATHS, texts_convert_as_whole_numbers_and_words)
{
    for (const std::string& alphabet : {std::string("0123456789"), std::string("-+0192 "), std::string("oOnNfF"),
                                        std::string("tTrRuUeEfFaAlLsS"), all_bytes()})
    {
        RANDOM_TEXT random(4, alphabet);
        for (int i = 0; i < 40000; ++i)
        {
            const std::string text = random(i % 2 == 0 ? 5 : 13);
            ASSERT_EQ(cfg_ini_convert_to<int>(text.c_str()), plain::number<int>(text)) << testing::PrintToString(text);
            ASSERT_EQ(cfg_ini_convert_to<unsigned int>(text.c_str()), plain::number<unsigned int>(text))
                << testing::PrintToString(text);
            bool value = true;
            const bool converted = cfg_ini_convert_to_bool(text.c_str(), &value);
            ASSERT_EQ(converted, plain::boolean(text).has_value()) << testing::PrintToString(text);
            ASSERT_EQ(value, plain::boolean(text).value_or(false)) << testing::PrintToString(text);
        }
    }
}

class FAST_STORE : public FAKED_TEST
{
protected:
    ~FAST_STORE() override
    {
        cfg_close_ini_file();
    }

    static bool is_cached(const std::string& name)
    {
        const STORE_LOCK lock;
        const CACHED_NAME* const ways = SOUGHT_NAME(name).ways;
        return ways[0].is_of(name) || ways[1].is_of(name);
    }
};

// More names than are remembered, in many spellings, against an ordered map under the folded name.
TEST_F(FAST_STORE, remembered_names_answer_as_the_table_does)
{
    cfg_read_ini_file(std::string());
    RANDOM_TEXT random(5, "abABcdefghijkl_0123");
    std::map<std::string, int> model;
    std::map<std::string, std::uint64_t> counts;
    std::vector<std::string> spellings;
    for (int i = 0; i < 30000; ++i)
    {
        std::string name = i % 3 == 0 || spellings.empty() ? random(i % 4 == 0 ? 70 : 30)
                                                           : spellings[random.engine() % spellings.size()];
        if (i % 5 == 0)
        {
            for (char& c : name)
                c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
        if (i % 3 == 0)
            spellings.push_back(name);
        const std::string key = plain::folded_up_to_zero(name);
        if (i % 2 == 0)
        {
            cfg_set_int_value(name, i);
            model[key] = i;
            counts.try_emplace(key, 0);
        }
        else
        {
            const auto known = model.find(key);
            ASSERT_EQ(cfg_get_int_value(name, -1), known == model.end() ? -1 : known->second) << name;
            if (const auto [count, created] = counts.try_emplace(key, 0); !created)
                ++count->second;
        }
    }
    ASSERT_GT(model.size(), 4096U);
    const STORE_LOCK lock;
    ASSERT_EQ(cfg_ini_file.load()->size(), counts.size());
    for (const auto& [name, record] : *cfg_ini_file.load())
        ASSERT_EQ(record->access_count, counts.at(plain::folded_up_to_zero(name))) << name;
}

// Names of every length around the longest that is remembered, and ones that differ from them in one character.
TEST_F(FAST_STORE, remembered_names_of_every_length_are_told_apart)
{
    cfg_read_ini_file(std::string());
    const auto name_of = [](std::size_t length) { return std::string(length, 'n'); };
    for (std::size_t length = 0; length <= 2 * CACHED_NAME::longest; ++length)
        cfg_set_int_value(name_of(length), static_cast<int>(length));
    for (int time = 0; time < 2; ++time)
    {
        for (std::size_t length = 0; length <= 2 * CACHED_NAME::longest; ++length)
        {
            EXPECT_EQ(cfg_get_int_value(name_of(length), -1), static_cast<int>(length));
            for (std::size_t at = 0; at < length; ++at)
            {
                std::string other = name_of(length);
                other[at] = 'N';
                EXPECT_EQ(cfg_get_int_value(other, -1), static_cast<int>(length)) << other;
                other[at] = 'o';
                EXPECT_EQ(cfg_get_int_value(other, -1), -1) << other;
            }
        }
    }
}

// What is not remembered is found all the same, only later.
TEST_F(FAST_STORE, nearly_all_of_a_thousand_names_are_remembered)
{
    cfg_read_ini_file(std::string());
    RANDOM_TEXT random(7, "abcdefghijklmnopqrstuvwxyz_");
    std::vector<std::string> names;
    for (int i = 0; i < 1000; ++i)
        names.push_back(random(CACHED_NAME::longest - 4) + std::to_string(i));
    // The first round evicts some while the cache is smaller; those are cached again when they are used again.
    for (int round = 0; round < 2; ++round)
    {
        for (const std::string& name : names)
            cfg_set_int_value(name, 1);
    }

    const STORE_LOCK lock;
    const auto remembered = std::ranges::count_if(names, [](const std::string& name) { return is_cached(name); });
    EXPECT_GE(remembered, 985); // random places leave nine without one
}

TEST_F(FAST_STORE, names_up_to_the_longest_are_remembered)
{
    cfg_read_ini_file(std::string());
    const auto is_remembered_after_lookup = [](const std::string& name)
    {
        cfg_get_int_value(name, 0);
        const STORE_LOCK lock;
        return is_cached(name);
    };
    for (std::size_t length = 0; length <= CACHED_NAME::longest; ++length)
        EXPECT_TRUE(is_remembered_after_lookup(std::string(length, 'n'))) << length;
    EXPECT_FALSE(is_remembered_after_lookup(std::string(CACHED_NAME::longest + 1, 'n')));
}

TEST_F(FAST_STORE, an_emptied_store_is_not_remembered)
{
    cfg_read_ini_file(std::string());
    cfg_set_int_value("remembered_name", 1);
    EXPECT_EQ(cfg_get_int_value("remembered_name", -1), 1);
    cfg_read_ini_file(std::string());
    EXPECT_EQ(cfg_get_int_value("remembered_name", -1), -1);
}

TEST_F(FAST_STORE, nothing_is_remembered_from_before_the_emptyings_were_counted_anew)
{
    cfg_read_ini_file(std::string());
    name_cache.epoch = 1;
    cfg_set_int_value("remembered_name", 7);
    EXPECT_EQ(cfg_get_int_value("remembered_name", -1), 7); // remembered under 1
    name_cache.epoch = 0xFFFFFFFE;
    cfg_read_ini_file(std::string()); // forgets twice: the old store, and what a callback may have made
    EXPECT_EQ(name_cache.epoch, 1U);  // 0 is that of a place that was never used
    EXPECT_EQ(cfg_get_int_value("remembered_name", -1), -1);
    EXPECT_EQ(cfg_get_int_value("remembered_name", -1), -1);
}

// --- How the name cache grows ---

std::size_t cache_sets()
{
    return std::size_t{1} << (64 - name_cache.shift.load());
}

void look_up_names(int number)
{
    for (int i = 0; i < number; ++i)
        cfg_is_on("variable_of_the_host_" + std::to_string(i), false);
}

TEST_F(FAST_STORE, the_name_cache_grows_with_the_names_in_use)
{
    const auto look_up = []
    {
        cfg_read_ini_file(std::string());
        EXPECT_EQ(cache_sets(), 64U);
        look_up_names(28);
        EXPECT_EQ(cache_sets(), 64U);
        cfg_read_ini_file(std::string());
        look_up_names(28); // not names in use on top of those that the cache was emptied of
        EXPECT_EQ(cache_sets(), 64U);
        look_up_names(29);
        EXPECT_EQ(cache_sets(), 128U);
        look_up_names(200);
        EXPECT_EQ(cache_sets(), 512U); // 64 KiB
        look_up_names(1'000);
        EXPECT_EQ(cache_sets(), 4096U);
        look_up_names(20'000);
        EXPECT_EQ(cache_sets(), 4096U);
        cfg_read_ini_file(std::string());
        EXPECT_EQ(cache_sets(), 4096U); // its memory has been touched
    };
    EXPECT_IN_FRESH_PROCESS(look_up());
}

TEST_F(FAST_STORE, a_name_cache_that_grows_loses_no_name)
{
    const auto look_up = []
    {
        cfg_read_ini_file(std::string());
        look_up_names(28);
        std::vector<bool> before;
        for (int i = 0; i < 28; ++i)
            before.push_back(is_cached("variable_of_the_host_" + std::to_string(i)));
        EXPECT_GE(std::ranges::count(before, true), 26);
        cfg_is_on("the_one_that_is_too_many", false);
        EXPECT_EQ(cache_sets(), 128U);
        for (int i = 0; i < 28; ++i)
            EXPECT_EQ(is_cached("variable_of_the_host_" + std::to_string(i)), before[static_cast<std::size_t>(i)]) << i;
        EXPECT_TRUE(is_cached("the_one_that_is_too_many"));
    };
    EXPECT_IN_FRESH_PROCESS(look_up());
}

TEST_F(FAST_STORE, a_set_found_before_the_cache_grew_does_no_harm)
{
    const auto look_up = []
    {
        cfg_read_ini_file(std::string());
        std::vector<std::string> names;
        std::vector<SOUGHT_NAME> sought; // as threads have them that wait for the lock
        for (int i = 0; i < 1'000; ++i)
            names.push_back("name_of_a_waiting_thread_" + std::to_string(i));
        for (const std::string& name : names)
        {
            cfg_set_value(name, name);
            sought.emplace_back(name);
        }
        look_up_names(1'000);
        const STORE_LOCK lock;
        for (int time = 0; time < 2; ++time)
        {
            for (const SOUGHT_NAME& name : sought)
            {
                const CFG_INI_RECORD* const record = find_record(name);
                ASSERT_NE(record, nullptr) << name.text;
                ASSERT_EQ(record->value, name.text);
            }
        }
        ASSERT_EQ(cfg_ini_file.load()->size(), 2'000U);
    };
    EXPECT_IN_FRESH_PROCESS(look_up());
}

TEST_F(FAST_STORE, lines_come_out_whole_wherever_the_buffer_ends)
{
    // Lines around the lengths at which a buffer of 64 KiB divides them.
    std::string text;
    std::vector<std::string> expected;
    for (const std::size_t length : {std::size_t{65535}, std::size_t{0}, std::size_t{65536}, std::size_t{65537},
                                     std::size_t{1}, std::size_t{200000}, std::size_t{3}})
    {
        expected.emplace_back(length, static_cast<char>('a' + expected.size()));
        text += expected.back() + '\n';
    }
    expected.emplace_back("no newline");
    text += expected.back();
    const std::string path = temporary.path("lines.ini");
    write_file(path, text);

    SETTINGS_LINES lines(path);
    EXPECT_EQ(static_cast<std::size_t>(lines.status().st_size), text.size());
    std::string_view line;
    for (const std::string& each : expected)
    {
        ASSERT_TRUE(lines.next(line));
        ASSERT_EQ(line, each);
    }
    EXPECT_FALSE(lines.next(line));
}
