// Blocks of sixteen characters that are loaded, compared and hashed as a whole. This file has everything that depends
// on the processor's registers, and nothing of what the blocks are used for.
//
// Three types of block have the same operations. SSE2_BLOCK and NEON_BLOCK are vector registers, of x86-64 and of
// little-endian aarch64. PORTABLE_BLOCK is two ordinary registers of eight characters each. Algorithms take the type as
// a template parameter. The library passes CHARACTER_BLOCK: a vector register if the processor has one of these, else
// PORTABLE_BLOCK. The tests pass each type that can be compiled.
//
// A comparison gives its result for each character in the high bit of the byte; the other bits mean nothing. `|` and
// `&` combine results. high_bits() turns them into a number whose bit n is the result for character n. Characters of
// 0x80 and above have the high bit set themselves. No operation branches: a block costs the same whatever it holds.
#ifndef CFG_INI_CFG_INI_READER_CHARACTER_BLOCK_H
#define CFG_INI_CFG_INI_READER_CHARACTER_BLOCK_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__) && defined(__x86_64__)
#include <emmintrin.h>
#elif defined(__ARM_NEON) && defined(__aarch64__) && !defined(__AARCH64EB__)
#include <arm_neon.h>
#endif

namespace zon_cfg
{
inline constexpr std::size_t block_size = 16;
inline constexpr std::size_t half_block_size = 8;

// The two halves of a block, each as a number in base 17 whose digits are the characters; the last one is the lowest
// digit.
struct BLOCK_NUMBERS
{
    std::uint64_t first;
    std::uint64_t second;
};

// Eight characters in an ordinary register, the first in its lowest byte.
class CHARACTER_WORD
{
public:
    // `from` points to eight readable characters, at any address.
    static CHARACTER_WORD load(const char* from)
    {
        std::uint64_t bits;
        std::memcpy(&bits, from, sizeof bits);
        if constexpr (std::endian::native == std::endian::big)
            bits = __builtin_bswap64(bits);
        return CHARACTER_WORD(bits);
    }

    // Exact: no character affects the result of its neighbour.
    CHARACTER_WORD equal_to(char c) const
    {
        const std::uint64_t difference = word ^ (ones * static_cast<unsigned char>(c));
        return CHARACTER_WORD(~(((difference & ~high) + ~high) | difference));
    }

    CHARACTER_WORD between(char first, char last) const
    {
        const std::uint64_t low = word & ~high;
        const std::uint64_t from_first = low + ones * (0x80U - static_cast<unsigned char>(first));
        const std::uint64_t past_last = low + ones * (0x7FU - static_cast<unsigned char>(last));
        return CHARACTER_WORD(from_first & ~past_last & ~word);
    }

    unsigned int high_bits() const
    {
        // Each factor moves the bit of one byte to its place in the highest byte.
        return static_cast<unsigned int>((((word & high) >> 7) * 0x0102040810204080U) >> 56);
    }

    bool has_high_bits() const
    {
        return (word & high) != 0;
    }

    CHARACTER_WORD folded() const
    {
        const std::uint64_t from_a = word + ones * (0x80U - 'A');
        const std::uint64_t past_z = word + ones * (0x7FU - 'Z');
        return CHARACTER_WORD(word | (((from_a ^ past_z) & high) >> 2)); // 0x80 >> 2 is what separates the cases
    }

    // Neighbours are joined to numbers of 2, of 4 and of 8 characters; no lane overflows into the next.
    std::uint64_t number() const
    {
        const std::uint64_t pairs = (word & 0x00FF00FF00FF00FFU) * 17 + ((word >> 8) & 0x00FF00FF00FF00FFU);
        const std::uint64_t quads =
            (pairs & 0x0000FFFF0000FFFFU) * (std::uint64_t{17} * 17) + ((pairs >> 16) & 0x0000FFFF0000FFFFU);
        return (quads & 0xFFFFFFFFU) * (std::uint64_t{17} * 17 * 17 * 17) + (quads >> 32);
    }

    friend CHARACTER_WORD operator|(CHARACTER_WORD a, CHARACTER_WORD b)
    {
        return CHARACTER_WORD(a.word | b.word);
    }

    friend CHARACTER_WORD operator&(CHARACTER_WORD a, CHARACTER_WORD b)
    {
        return CHARACTER_WORD(a.word & b.word);
    }

    friend bool operator==(CHARACTER_WORD a, CHARACTER_WORD b) = default;

private:
    explicit CHARACTER_WORD(std::uint64_t bits) : word(bits) {}

    static constexpr std::uint64_t ones = 0x0101010101010101U;
    static constexpr std::uint64_t high = 0x8080808080808080U;

    std::uint64_t word;
};

class PORTABLE_BLOCK
{
public:
    // `from` points to `block_size` readable characters, at any address.
    static PORTABLE_BLOCK load(const char* from)
    {
        return load_halves(from, from + half_block_size);
    }

    // Each pointer points to `half_block_size` readable characters.
    static PORTABLE_BLOCK load_halves(const char* first, const char* second)
    {
        return {CHARACTER_WORD::load(first), CHARACTER_WORD::load(second)};
    }

    PORTABLE_BLOCK equal_to(char c) const
    {
        return {lower.equal_to(c), upper.equal_to(c)};
    }

    // Whether a character is one from `first` to `last`, both ASCII.
    PORTABLE_BLOCK between(char first, char last) const
    {
        return {lower.between(first, last), upper.between(first, last)};
    }

    unsigned int high_bits() const
    {
        return lower.high_bits() | upper.high_bits() << half_block_size;
    }

    bool has_high_bits() const
    {
        return (lower | upper).has_high_bits();
    }

    // The block with the letters A to Z in lower case. Requires, as numbers() does, that no character has its high bit
    // set.
    PORTABLE_BLOCK folded() const
    {
        return {lower.folded(), upper.folded()};
    }

    BLOCK_NUMBERS numbers() const
    {
        return {lower.number(), upper.number()};
    }

    friend PORTABLE_BLOCK operator|(PORTABLE_BLOCK a, PORTABLE_BLOCK b)
    {
        return {a.lower | b.lower, a.upper | b.upper};
    }

    friend PORTABLE_BLOCK operator&(PORTABLE_BLOCK a, PORTABLE_BLOCK b)
    {
        return {a.lower & b.lower, a.upper & b.upper};
    }

private:
    PORTABLE_BLOCK(CHARACTER_WORD first, CHARACTER_WORD second) : lower(first), upper(second) {}

    CHARACTER_WORD lower;
    CHARACTER_WORD upper;
};

#if defined(__SSE2__) && defined(__x86_64__)
class SSE2_BLOCK
{
public:
    static SSE2_BLOCK load(const char* from)
    {
        return SSE2_BLOCK(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
    }

    static SSE2_BLOCK load_halves(const char* first, const char* second)
    {
        return SSE2_BLOCK(_mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(first)),
                                             _mm_loadl_epi64(reinterpret_cast<const __m128i*>(second))));
    }

    SSE2_BLOCK equal_to(char c) const
    {
        return SSE2_BLOCK(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)));
    }

    SSE2_BLOCK between(char first, char last) const
    {
        // As signed numbers, so that characters of 0x80 and above are less than all others.
        return SSE2_BLOCK(_mm_and_si128(_mm_cmpgt_epi8(bytes, _mm_set1_epi8(static_cast<char>(first - 1))),
                                        _mm_cmplt_epi8(bytes, _mm_set1_epi8(static_cast<char>(last + 1)))));
    }

    unsigned int high_bits() const
    {
        return static_cast<unsigned int>(_mm_movemask_epi8(bytes));
    }

    bool has_high_bits() const
    {
        return high_bits() != 0;
    }

    SSE2_BLOCK folded() const
    {
        return SSE2_BLOCK(_mm_or_si128(bytes, _mm_and_si128(between('A', 'Z').bytes, _mm_set1_epi8('a' - 'A'))));
    }

    // Joined as by CHARACTER_WORD::number().
    BLOCK_NUMBERS numbers() const
    {
        const __m128i pairs =
            _mm_add_epi16(_mm_mullo_epi16(_mm_and_si128(bytes, _mm_set1_epi16(0x00FF)), _mm_set1_epi16(17)),
                          _mm_srli_epi16(bytes, 8));
        const __m128i quads = _mm_madd_epi16(pairs, _mm_set1_epi32(1 << 16 | 17 * 17));
        const __m128i halves =
            _mm_add_epi64(_mm_mul_epu32(quads, _mm_set1_epi32(17 * 17 * 17 * 17)), _mm_srli_epi64(quads, 32));
        return {static_cast<std::uint64_t>(_mm_cvtsi128_si64(halves)),
                static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(halves, halves)))};
    }

    friend SSE2_BLOCK operator|(SSE2_BLOCK a, SSE2_BLOCK b)
    {
        return SSE2_BLOCK(_mm_or_si128(a.bytes, b.bytes));
    }

    friend SSE2_BLOCK operator&(SSE2_BLOCK a, SSE2_BLOCK b)
    {
        return SSE2_BLOCK(_mm_and_si128(a.bytes, b.bytes));
    }

private:
    explicit SSE2_BLOCK(__m128i of_sixteen) : bytes(of_sixteen) {}

    __m128i bytes;
};

using CHARACTER_BLOCK = SSE2_BLOCK;
#elif defined(__ARM_NEON) && defined(__aarch64__) && !defined(__AARCH64EB__)
class NEON_BLOCK
{
public:
    static NEON_BLOCK load(const char* from)
    {
        return NEON_BLOCK(vld1q_u8(reinterpret_cast<const std::uint8_t*>(from)));
    }

    static NEON_BLOCK load_halves(const char* first, const char* second)
    {
        return NEON_BLOCK(vcombine_u8(vld1_u8(reinterpret_cast<const std::uint8_t*>(first)),
                                      vld1_u8(reinterpret_cast<const std::uint8_t*>(second))));
    }

    NEON_BLOCK equal_to(char c) const
    {
        return NEON_BLOCK(vceqq_u8(bytes, vdupq_n_u8(static_cast<std::uint8_t>(c))));
    }

    NEON_BLOCK between(char first, char last) const
    {
        return NEON_BLOCK(vandq_u8(vcgeq_u8(bytes, vdupq_n_u8(static_cast<std::uint8_t>(first))),
                                   vcleq_u8(bytes, vdupq_n_u8(static_cast<std::uint8_t>(last)))));
    }

    unsigned int high_bits() const
    {
        // Each byte keeps only the bit for its position in its half, so the sum of a half has all bits of the half.
        constexpr std::uint64_t bit_of_byte = 0x8040201008040201U;
        const uint8x16_t answers = vreinterpretq_u8_s8(vshrq_n_s8(vreinterpretq_s8_u8(bytes), 7));
        const uint8x16_t bits = vandq_u8(answers, vreinterpretq_u8_u64(vdupq_n_u64(bit_of_byte)));
        return vaddv_u8(vget_low_u8(bits)) | static_cast<unsigned int>(vaddv_u8(vget_high_u8(bits))) << half_block_size;
    }

    bool has_high_bits() const
    {
        return vmaxvq_u8(bytes) >= 0x80;
    }

    NEON_BLOCK folded() const
    {
        return NEON_BLOCK(vorrq_u8(bytes, vandq_u8(between('A', 'Z').bytes, vdupq_n_u8('a' - 'A'))));
    }

    // Joined as by CHARACTER_WORD::number().
    BLOCK_NUMBERS numbers() const
    {
        const uint16x8_t by_two = vreinterpretq_u16_u8(bytes);
        const uint32x4_t pairs =
            vreinterpretq_u32_u16(vmlaq_n_u16(vshrq_n_u16(by_two, 8), vandq_u16(by_two, vdupq_n_u16(0x00FF)), 17));
        const uint64x2_t quads =
            vreinterpretq_u64_u32(vmlaq_n_u32(vshrq_n_u32(pairs, 16), vandq_u32(pairs, vdupq_n_u32(0xFFFF)), 17 * 17));
        const uint64x2_t halves = vmlal_n_u32(vshrq_n_u64(quads, 32), vmovn_u64(quads), 17 * 17 * 17 * 17);
        return {vgetq_lane_u64(halves, 0), vgetq_lane_u64(halves, 1)};
    }

    friend NEON_BLOCK operator|(NEON_BLOCK a, NEON_BLOCK b)
    {
        return NEON_BLOCK(vorrq_u8(a.bytes, b.bytes));
    }

    friend NEON_BLOCK operator&(NEON_BLOCK a, NEON_BLOCK b)
    {
        return NEON_BLOCK(vandq_u8(a.bytes, b.bytes));
    }

private:
    explicit NEON_BLOCK(uint8x16_t of_sixteen) : bytes(of_sixteen) {}

    uint8x16_t bytes;
};

using CHARACTER_BLOCK = NEON_BLOCK;
#else
using CHARACTER_BLOCK = PORTABLE_BLOCK;
#endif
}

#endif
