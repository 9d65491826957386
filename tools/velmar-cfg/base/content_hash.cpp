// SHA-256 by the nettle library.
#include "tools/velmar-cfg/base/content_hash.h"

#include <array>
#include <nettle/sha2.h>

#include "tools/velmar-cfg/base/text.h"

std::string sha256_of(std::string_view bytes)
{
    sha256_ctx state;
    sha256_init(&state);
    sha256_update(&state, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest;
    sha256_digest(&state, digest.size(), digest.data());
    return as_hexadecimal({reinterpret_cast<const char*>(digest.data()), digest.size()});
}
