// Hashes that only the owner of a key can make, and random bytes for keys.
#ifndef TOOLS_VELMAR_CFG_BASE_KEYED_HASH_H
#define TOOLS_VELMAR_CFG_BASE_KEYED_HASH_H

#include <cstddef>
#include <string>
#include <string_view>

// The HMAC-SHA-256 of the bytes under the key, cut to its first 64 bits, as 16 lower-case hexadecimal digits. Without
// the key, nobody can find the bytes by trying texts until the hash fits.
std::string hmac_of(std::string_view key, std::string_view bytes);

// `count` random bytes from the operating system. Throws TOOL_ERROR(BAD_INPUT) if it gives none.
std::string random_bytes(std::size_t count);

#endif
