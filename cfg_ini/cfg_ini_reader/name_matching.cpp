#include "cfg_ini/cfg_ini_reader/name_matching.h"

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>

// Eight characters a step. The words below are read little-endian: the first character is the lowest byte.
static_assert(std::endian::native == std::endian::little);

namespace
{
using WORD = std::uint64_t;

constexpr WORD ones = 0x0101010101010101U;
constexpr WORD high_bits = 0x8080808080808080U;

WORD load_word(const char* from)
{
    WORD word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

WORD load_half_word(const char* from)
{
    std::uint32_t half;
    std::memcpy(&half, from, sizeof half);
    return half;
}

constexpr char folded(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// Whether each byte is 0x01 to 0x7F; only such words may be hashed as a whole.
constexpr bool is_plain(WORD word)
{
    return (((word - ones) | word) & high_bits) == 0;
}

// The letters A to Z of a word without high bits folded.
constexpr WORD folded(WORD word)
{
    const WORD from_a = word + ones * (0x80 - 'A');
    const WORD past_z = word + ones * (0x80 - 'Z' - 1);
    return word | (((from_a ^ past_z) & high_bits) >> 2); // 0x80 >> 2 is what separates the cases
}

// 17 to the power of n, for n of at most 8.
constexpr WORD powers[] = {1, 17, 289, 4913, 83521, 1419857, 24137569, 410338673, 6975757441};

// The hash of eight folded characters; leading zero bytes stand for characters that are not there. Neighbours are
// joined to numbers of 2, of 4 and of 8 characters; no lane overflows into the next, since no byte has its high bit
// set.
constexpr WORD hash_of_word(WORD word)
{
    constexpr WORD each_second = 0x00FF00FF00FF00FFU;
    constexpr WORD each_second_pair = 0x0000FFFF0000FFFFU;
    const WORD pairs = (word & each_second) * powers[1] + ((word >> 8) & each_second);
    const WORD quads = (pairs & each_second_pair) * powers[2] + ((pairs >> 16) & each_second_pair);
    return (quads & 0xFFFFFFFFU) * powers[4] + (quads >> 32);
}

std::size_t hash_bytewise(std::string_view name)
{
    WORD hash = 0;
    for (const char c : name)
    {
        if (c == '\0')
            break;
        // A byte of 0x80 and above counts as a negative number.
        hash = hash * 17 + static_cast<WORD>(static_cast<signed char>(folded(c)));
    }
    return hash;
}

std::string_view up_to_zero_byte(std::string_view name)
{
    return name.substr(0, name.find('\0'));
}
}

void refuse_null_name()
{
    const char* volatile null = nullptr; // volatile: neither compiler nor analyser is to know
    // cppcheck-suppress nullPointer
    static_cast<void>(std::string(null)); // NOLINT(clang-analyzer-cplusplus.StringChecker): throws, as wanted
    std::abort();                         // not reached
}

std::size_t hash_name(std::string_view name)
{
    const std::size_t length = name.size();
    if (length < 4)
        return hash_bytewise(name);
    if (length < 8)
    {
        // Two overlapping halves, moved up so that the last character is the highest byte.
        const WORD word = load_half_word(name.data() + length - 4) << 32 | load_half_word(name.data())
                                                                               << (8 * (8 - length));
        if (!is_plain(word | (ones >> (8 * length))))
            return hash_bytewise(name);
        return hash_of_word(folded(word));
    }

    WORD hash = 0;
    std::size_t left = length;
    for (const char* next = name.data(); left >= 8; next += 8, left -= 8)
    {
        const WORD word = load_word(next);
        if (!is_plain(word))
            return hash_bytewise(name);
        hash = hash * powers[8] + hash_of_word(folded(word));
    }
    if (left > 0)
    {
        // The last eight characters, those that were hashed already taken out.
        const WORD word = load_word(name.data() + length - 8);
        if (!is_plain(word))
            return hash_bytewise(name);
        hash = hash * powers[left] + hash_of_word(folded(word) & (~WORD{0} << (8 * (8 - left))));
    }
    return hash;
}

bool equal_folded(const char* a, const char* b, std::size_t length)
{
    const auto equal_words = [](WORD x, WORD y)
    { return x == y || (((x | y) & high_bits) == 0 && folded(x) == folded(y)); };

    if (length >= 8)
    {
        for (; length > 8 && equal_words(load_word(a), load_word(b)); length -= 8)
        {
            a += 8;
            b += 8;
        }
        // The last eight characters, again some of those before them.
        if (length <= 8 && equal_words(load_word(a + length - 8), load_word(b + length - 8)))
            return true;
        // Words with a high bit are told apart below, byte by byte: the letters in them may differ in case.
    }
    for (; length > 0 && folded(*a) == folded(*b); ++a, ++b, --length)
    {
    }
    return length == 0;
}

bool equal_names(std::string_view a, std::string_view b)
{
    if (a.size() == b.size() && equal_folded(a.data(), b.data(), a.size()))
        return true;
    // Names of different lengths, or different as a whole, may still agree up to a zero byte.
    a = up_to_zero_byte(a);
    b = up_to_zero_byte(b);
    return a.size() == b.size() && equal_folded(a.data(), b.data(), a.size());
}
