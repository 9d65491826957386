// Eight bytes of a text at once, in an ordinary register: the beginning of a text is passed over in such steps as long
// as no byte in it needs a closer look.
#ifndef TOOLS_VELMAR_CFG_BASE_EIGHT_BYTES_H
#define TOOLS_VELMAR_CFG_BASE_EIGHT_BYTES_H

#include <cstdint>
#include <cstring>

constexpr std::uint64_t in_each_byte(unsigned char byte)
{
    return 0x0101010101010101U * byte;
}

inline constexpr std::uint64_t high_bits = in_each_byte(0x80);

inline std::uint64_t eight_bytes(const char* from)
{
    std::uint64_t word = 0;
    std::memcpy(&word, from, sizeof word);
    return word;
}

// Not zero if and only if a byte of the word is below `limit`, which is at most 0x80.
constexpr std::uint64_t has_byte_below(std::uint64_t word, unsigned char limit)
{
    return (word - in_each_byte(limit)) & ~word & high_bits;
}

// The same for a byte that is `byte`.
constexpr std::uint64_t has_byte(std::uint64_t word, unsigned char byte)
{
    return has_byte_below(word ^ in_each_byte(byte), 1);
}

// The same for a byte that JSON escapes: a control character, a quote or a backslash.
constexpr std::uint64_t has_escaped_byte(std::uint64_t word)
{
    return has_byte_below(word, 0x20) | has_byte(word, '"') | has_byte(word, '\\');
}

#endif
