// Sixteen characters at once, where the processor has registers of that size.
#ifndef CFG_INI_CFG_INI_READER_CHARACTER_BLOCK_H
#define CFG_INI_CFG_INI_READER_CHARACTER_BLOCK_H

#ifdef __SSE2__
#include <emmintrin.h>

#include <cstddef>

namespace zon_cfg
{
inline constexpr std::size_t block_size = 16;

// `from` begins `block_size` readable characters, at any address.
inline __m128i load_block(const char* from)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}
}
#endif

#endif
