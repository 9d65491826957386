// The hash of a variable name: h = 0, then h * 17 + b for each folded byte b as a signed number, in 64 bits with
// wrap-around, up to the first zero byte. Where std::size_t is narrower, the result is the low half of that number.
//
// A name of at least half a block is hashed by blocks. A block is two numbers in base 17, of eight characters each. Two
// numbers are joined as the rule joins characters: first * 17^(characters of second) + second. The characters behind
// the last whole block are hashed as the end of one more block, which reaches back over characters that were hashed
// already. Zero bytes replace those; they add nothing at the front of a number. Nothing outside the name is read.
//
// This works only for characters from 0x01 to 0x7F. If a block has another one, the whole name is hashed byte by byte.
// That is at most one more scan, so the cost is linear for every name.
#ifndef CFG_INI_CFG_INI_READER_NAME_HASH_H
#define CFG_INI_CFG_INI_READER_NAME_HASH_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "cfg_ini/cfg_ini_reader/character_block.h"

namespace zon_cfg
{
constexpr char folded(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

inline std::size_t hash_bytewise(std::string_view name)
{
    std::uint64_t hash = 0;
    for (const char c : name)
    {
        if (c == '\0')
            break;
        // A byte of 0x80 and above counts as a negative number.
        hash = hash * 17 + static_cast<std::uint64_t>(static_cast<signed char>(folded(c)));
    }
    return static_cast<std::size_t>(hash);
}

using POWERS = std::array<std::uint64_t, block_size + 1>;

constexpr POWERS powers_of_17()
{
    POWERS all{1};
    for (std::size_t n = 1; n < all.size(); ++n)
        all[n] = all[n - 1] * 17;
    return all;
}

// 17 to the power of n.
inline constexpr POWERS powers = powers_of_17();

// Eight bytes with all bits set, then sixteen with none, then sixteen with all.
using MASKS = std::array<char, half_block_size + 2 * block_size>;

constexpr MASKS all_bits_none_and_all()
{
    MASKS bytes{};
    for (std::size_t n = 0; n < bytes.size(); ++n)
        bytes[n] = n < half_block_size || n >= half_block_size + block_size ? '\xFF' : '\0';
    return bytes;
}

inline constexpr MASKS masks = all_bits_none_and_all();

// The start of a mask that keeps the last n characters of a block.
constexpr const char* mask_of_last(std::size_t n)
{
    return masks.data() + half_block_size + n;
}

// The start of a mask that keeps the last n characters of half a block.
constexpr const char* mask_of_last_in_half(std::size_t n)
{
    return masks.data() + block_size + n;
}

template <typename BLOCK>
bool is_plain(const BLOCK& block)
{
    return !(block | block.equal_to('\0')).has_high_bits();
}

// The hash of a block. `power_of_second` is 17 to the power of the number of characters in the second half.
template <typename BLOCK>
[[gnu::always_inline]] inline std::uint64_t hash_of_block(const BLOCK& block, std::uint64_t power_of_second)
{
    const BLOCK_NUMBERS numbers = block.folded().numbers();
    return numbers.first * power_of_second + numbers.second;
}

// The hash of a name that has at least half a block, but less than a whole one.
template <typename BLOCK>
[[gnu::always_inline]] inline std::size_t hash_by_halves(std::string_view name)
{
    const std::size_t left = name.size() - half_block_size;
    const BLOCK block = BLOCK::load_halves(name.data(), name.data() + left);
    if (!is_plain(block))
        return hash_bytewise(name);
    const BLOCK mask = BLOCK::load_halves(masks.data(), mask_of_last_in_half(left));
    return static_cast<std::size_t>(hash_of_block(block & mask, powers[left]));
}

template <typename BLOCK>
[[gnu::always_inline]] inline std::size_t hash_by_blocks(std::string_view name)
{
    if (name.size() < half_block_size)
        return hash_bytewise(name);
    if (name.size() < block_size)
        return hash_by_halves<BLOCK>(name);

    std::uint64_t hash = 0;
    std::size_t left = name.size();
    for (const char* next = name.data(); left >= block_size; next += block_size, left -= block_size)
    {
        const BLOCK block = BLOCK::load(next);
        if (!is_plain(block))
            return hash_bytewise(name);
        hash = hash * powers[block_size] + hash_of_block(block, powers[half_block_size]);
    }
    if (left > 0)
    {
        const BLOCK block = BLOCK::load(name.data() + name.size() - block_size);
        if (!is_plain(block))
            return hash_bytewise(name);
        const BLOCK mask = BLOCK::load(mask_of_last(left));
        hash = hash * powers[left] + hash_of_block(block & mask, powers[half_block_size]);
    }
    return static_cast<std::size_t>(hash);
}
}

#endif
