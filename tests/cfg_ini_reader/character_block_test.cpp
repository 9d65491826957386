// Each type of block, and what is made of it by blocks, against the bytewise rules. The seeds are fixed; a failure
// shows the text.
#include "cfg_ini/cfg_ini_reader/character_block.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "cfg_ini/cfg_ini_reader/line_division.h"
#include "cfg_ini/cfg_ini_reader/name_hash.h"
#include "tests/support/plain_rules.h"

using namespace zon_cfg;

namespace
{
template <typename BLOCK>
class CHARACTER_BLOCK_TEST : public testing::Test
{
protected:
    std::string random_text(std::size_t size, const std::string& alphabet)
    {
        std::string text(size, ' ');
        for (char& c : text)
            c = alphabet[engine() % alphabet.size()];
        return text;
    }

    std::mt19937 engine{1};
};

// With the vector registers of the processor, and without.
using BLOCK_TYPES = testing::Types<PORTABLE_BLOCK, CHARACTER_BLOCK>;

class BLOCK_NAMES
{
public:
    template <typename BLOCK>
    static std::string GetName(int /*index*/)
    {
        return std::is_same_v<BLOCK, PORTABLE_BLOCK> ? "portable" : "vector";
    }
};

TYPED_TEST_SUITE(CHARACTER_BLOCK_TEST, BLOCK_TYPES, BLOCK_NAMES);

std::string bytes_between(int first, int last)
{
    std::string bytes;
    for (int c = first; c <= last; ++c)
        bytes += static_cast<char>(c);
    return bytes;
}

const std::string all_bytes = bytes_between(0, 255);

// A copy without a byte behind it, so that the address sanitizer notices who reads on.
class EXACT_COPY
{
public:
    explicit EXACT_COPY(const std::string& text) : size(text.size()), bytes(new char[size])
    {
        text.copy(bytes.get(), size);
    }

    std::string_view view() const
    {
        return {bytes.get(), size};
    }

private:
    std::size_t size;
    std::unique_ptr<char[]> bytes;
};

unsigned int answers(const std::string& text, const std::function<bool(char)>& is_one)
{
    unsigned int bits = 0;
    for (std::size_t n = 0; n < text.size(); ++n)
        bits |= is_one(text[n]) ? 1U << n : 0U;
    return bits;
}

std::uint64_t number(std::string_view text)
{
    std::uint64_t sum = 0;
    for (const char c : text)
        sum = sum * 17 + static_cast<unsigned char>(c);
    return sum;
}

TYPED_TEST(CHARACTER_BLOCK_TEST, compares_each_character)
{
    for (int i = 0; i < 256; ++i)
    {
        const char c = static_cast<char>(i);
        // The character itself, its neighbours and what differs in the high bit, beside each other in all ways.
        const std::string near{c, static_cast<char>(i + 1), static_cast<char>(i - 1), static_cast<char>(i ^ 0x80)};
        for (int time = 0; time < 100; ++time)
        {
            const std::string text = this->random_text(block_size, time % 4 == 0 ? all_bytes : near);
            const unsigned int expected = answers(text, [c](char each) { return each == c; });
            ASSERT_EQ(TypeParam::load(text.data()).equal_to(c).high_bits(), expected)
                << i << " in " << testing::PrintToString(text);
        }
    }
}

TYPED_TEST(CHARACTER_BLOCK_TEST, finds_the_characters_of_a_range)
{
    const std::pair<char, char> ranges[] = {{'A', 'Z'}, {'!', '~'}, {'a', 'a'}, {'\x01', '\x7E'}, {'0', '9'}};
    for (const auto& [first, last] : ranges)
    {
        const std::string near{first,
                               last,
                               static_cast<char>(first - 1),
                               static_cast<char>(last + 1),
                               static_cast<char>(first | 0x80),
                               static_cast<char>(last | 0x80)};
        for (int time = 0; time < 2000; ++time)
        {
            const std::string text = this->random_text(block_size, time % 2 == 0 ? all_bytes : near);
            const unsigned int expected =
                answers(text, [from = first, to = last](char c) { return c >= from && c <= to; });
            ASSERT_EQ(TypeParam::load(text.data()).between(first, last).high_bits(), expected)
                << first << " to " << last << " in " << testing::PrintToString(text);
        }
    }
}

TYPED_TEST(CHARACTER_BLOCK_TEST, gathers_the_high_bits)
{
    for (int time = 0; time < 2000; ++time)
    {
        const std::string text = this->random_text(block_size, time % 2 == 0 ? all_bytes : "\x01\x40\x7F\x80");
        const unsigned int expected = answers(text, [](char c) { return static_cast<signed char>(c) < 0; });
        const auto block = TypeParam::load(text.data());
        ASSERT_EQ(block.high_bits(), expected) << testing::PrintToString(text);
        ASSERT_EQ(block.has_high_bits(), expected != 0) << testing::PrintToString(text);
    }
}

TYPED_TEST(CHARACTER_BLOCK_TEST, combines_answers)
{
    for (int time = 0; time < 2000; ++time)
    {
        const std::string text = this->random_text(block_size, "abc");
        const auto block = TypeParam::load(text.data());
        ASSERT_EQ((block.equal_to('a') | block.equal_to('b')).high_bits(),
                  answers(text, [](char c) { return c != 'c'; }));
        ASSERT_EQ((block.equal_to('a') & block.between('a', 'b')).high_bits(),
                  answers(text, [](char c) { return c == 'a'; }));
        ASSERT_EQ((block.equal_to('a') & block.equal_to('b')).high_bits(), 0U);
    }
}

TYPED_TEST(CHARACTER_BLOCK_TEST, folds_letters_and_makes_numbers)
{
    for (int time = 0; time < 5000; ++time)
    {
        const std::string text = this->random_text(block_size, time % 3 == 0   ? "\x7F"
                                                               : time % 3 == 1 ? "@AZ[`az{"
                                                                               : bytes_between(0, 127));
        std::string lower = text;
        std::ranges::transform(lower, lower.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; });
        const auto block = TypeParam::load(text.data()).folded();
        const BLOCK_NUMBERS numbers = block.numbers();
        ASSERT_EQ(numbers.first, number(lower.substr(0, 8))) << testing::PrintToString(text);
        ASSERT_EQ(numbers.second, number(lower.substr(8))) << testing::PrintToString(text);
        for (const char c : lower)
            ASSERT_EQ(block.equal_to(c).high_bits(), answers(lower, [c](char each) { return each == c; }));
    }
}

TYPED_TEST(CHARACTER_BLOCK_TEST, takes_its_halves_from_two_places)
{
    const std::string text = "0123456789abcdefghijklmn";
    const auto block = TypeParam::load_halves(text.data() + 1, text.data() + 13);
    const std::string expected = "12345678defghijk";
    for (const char c : text)
        EXPECT_EQ(block.equal_to(c).high_bits(), answers(expected, [c](char each) { return each == c; })) << c;
}

// --- What is made of blocks ---

TYPED_TEST(CHARACTER_BLOCK_TEST, hashes_names_by_the_bytewise_rule)
{
    for (const std::string& alphabet :
         {std::string("abcxyzABCXYZ@[`{_09"), std::string("abZ\x7F\x80\xC3\xFF"), all_bytes, std::string("\x7F"),
          bytes_between(1, 127), std::string("abcdefghijklmnopqrstuvwxy\0", 26)})
    {
        for (std::size_t size = 0; size < 70; ++size)
        {
            for (int time = 0; time < 100; ++time)
            {
                const std::string name = this->random_text(size, alphabet);
                ASSERT_EQ(hash_by_blocks<TypeParam>(EXACT_COPY(name).view()),
                          static_cast<std::size_t>(plain::hash(name)))
                    << testing::PrintToString(name);
            }
        }
    }
}

TYPED_TEST(CHARACTER_BLOCK_TEST, divides_lines_by_the_two_passes)
{
    for (const std::string& alphabet :
         {std::string("a=;#\"/ "), all_bytes, std::string("abcdefghijklmnopqrstuvwxyz=;#\"//"),
          std::string("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_=/"), std::string("\"a;")})
    {
        for (std::size_t size = 0; size < 70; ++size)
        {
            for (int time = 0; time < 200; ++time)
            {
                const std::string line = this->random_text(size, alphabet);
                std::string rest = line;
                plain::remove_comment(rest);
                const DIVIDED_LINE divided = divide_by_blocks<TypeParam>(EXACT_COPY(line).view());
                ASSERT_EQ(divided.end, rest.size()) << testing::PrintToString(line);
                ASSERT_EQ(divided.equals, rest.find('=')) << testing::PrintToString(line);
            }
        }
    }
}

TYPED_TEST(CHARACTER_BLOCK_TEST, tells_text_of_visible_ascii_alone)
{
    for (std::size_t size = 0; size < 70; ++size)
    {
        const std::string visible = this->random_text(size, bytes_between('!', '~'));
        EXPECT_TRUE(is_visible_ascii_by_blocks<TypeParam>(EXACT_COPY(visible).view())) << visible;
        for (std::size_t at = 0; at < size; ++at)
        {
            for (const char c : {' ', '\x7F', '\0', '\t', '\x80', '\xA0', '\xFF'})
            {
                std::string text = visible;
                text[at] = c;
                ASSERT_FALSE(is_visible_ascii_by_blocks<TypeParam>(EXACT_COPY(text).view()))
                    << testing::PrintToString(text);
            }
        }
    }
}
}
