#include "cfg_ini/cfg_ini_reader/name_matching.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "cfg_ini/cfg_ini_reader/character_block.h"

namespace zon_cfg
{
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

constexpr char folded(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// The letters A to Z of a word without high bits folded.
constexpr WORD folded(WORD word)
{
    const WORD from_a = word + ones * (0x80 - 'A');
    const WORD past_z = word + ones * (0x80 - 'Z' - 1);
    return word | (((from_a ^ past_z) & high_bits) >> 2); // 0x80 >> 2 is what separates the cases
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

#ifdef __SSE2__
using POWERS = std::array<WORD, 17>; // of 0 to block_size

constexpr POWERS powers_of_17()
{
    POWERS all{1};
    for (std::size_t n = 1; n < all.size(); ++n)
        all[n] = all[n - 1] * 17;
    return all;
}

// 17 to the power of n.
constexpr POWERS powers = powers_of_17();
static_assert(powers.size() == block_size + 1);

using TWO_BLOCKS = std::array<unsigned char, 32>;

constexpr TWO_BLOCKS none_then_all_bits()
{
    TWO_BLOCKS bytes{};
    for (std::size_t n = block_size; n < bytes.size(); ++n)
        bytes[n] = 0xFF;
    return bytes;
}

// A mask of the last n bytes of a block, and of the last n of eight, is in here.
constexpr TWO_BLOCKS none_then_all = none_then_all_bits();
static_assert(none_then_all.size() == 2 * block_size);

__m128i last_bytes(std::size_t n)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(none_then_all.data() + n));
}

__m128i last_bytes_of_half(std::size_t n)
{
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(none_then_all.data() + 8 + n));
}

// Whether each byte is 0x01 to 0x7F; only such blocks may be hashed as a whole.
bool is_plain(__m128i block)
{
    return _mm_movemask_epi8(_mm_or_si128(block, _mm_cmpeq_epi8(block, _mm_setzero_si128()))) == 0;
}

// The hash of the characters of the lower half followed by those of the upper one, of which 17 to the power of their
// number is given; leading zero bytes in a half stand for characters that are not there. Neighbours are folded and
// joined to numbers of 2, of 4 and of 8 characters; no lane overflows into the next.
WORD hash_of_block(__m128i block, WORD power_of_upper_size)
{
    const __m128i is_upper =
        _mm_and_si128(_mm_cmpgt_epi8(block, _mm_set1_epi8('A' - 1)), _mm_cmplt_epi8(block, _mm_set1_epi8('Z' + 1)));
    block = _mm_or_si128(block, _mm_and_si128(is_upper, _mm_set1_epi8('a' - 'A')));

    const __m128i pairs = _mm_add_epi16(
        _mm_mullo_epi16(_mm_and_si128(block, _mm_set1_epi16(0x00FF)), _mm_set1_epi16(17)), _mm_srli_epi16(block, 8));
    const __m128i quads = _mm_madd_epi16(pairs, _mm_set1_epi32(1 << 16 | 17 * 17));
    const __m128i halves =
        _mm_add_epi64(_mm_mul_epu32(quads, _mm_set1_epi32(17 * 17 * 17 * 17)), _mm_srli_epi64(quads, 32));
    const WORD first = static_cast<WORD>(_mm_cvtsi128_si64(halves));
    const WORD second = static_cast<WORD>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(halves, halves)));
    return first * power_of_upper_size + second;
}

// The hash of a name of eight characters or more.
std::size_t hash_blockwise(std::string_view name)
{
    const char* const end = name.data() + name.size();
    if (name.size() < block_size)
    {
        // The last eight characters, those that are among the first eight taken out.
        const std::size_t left = name.size() - 8;
        const __m128i first = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(name.data()));
        const __m128i last = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(end - 8));
        if (!is_plain(_mm_unpacklo_epi64(first, last)))
            return hash_bytewise(name);
        return hash_of_block(_mm_unpacklo_epi64(first, _mm_and_si128(last, last_bytes_of_half(left))), powers[left]);
    }

    WORD hash = 0;
    std::size_t left = name.size();
    for (const char* next = name.data(); left >= block_size; next += block_size, left -= block_size)
    {
        const __m128i block = load_block(next);
        if (!is_plain(block))
            return hash_bytewise(name);
        hash = hash * powers[block_size] + hash_of_block(block, powers[8]);
    }
    if (left > 0)
    {
        // The last sixteen characters, those that were hashed already taken out.
        const __m128i block = load_block(end - block_size);
        if (!is_plain(block))
            return hash_bytewise(name);
        hash = hash * powers[left] + hash_of_block(_mm_and_si128(block, last_bytes(left)), powers[8]);
    }
    return hash;
}
#endif

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
#ifdef __SSE2__
    if (name.size() >= 8)
        return hash_blockwise(name);
#endif
    return hash_bytewise(name);
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

bool equal_up_to_zero_byte(std::string_view a, std::string_view b)
{
    a = up_to_zero_byte(a);
    b = up_to_zero_byte(b);
    return a.size() == b.size() && equal_folded(a.data(), b.data(), a.size());
}
}
