// HMAC-SHA-256 by the nettle library, and random bytes by getentropy(), which gives at most 256 of them.
#include "tools/velmar-cfg/base/keyed_hash.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <nettle/hmac.h>
#include <sys/random.h>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/text.h"

namespace
{
const std::uint8_t* octets(std::string_view bytes)
{
    return reinterpret_cast<const std::uint8_t*>(bytes.data());
}
}

std::string hmac_of(std::string_view key, std::string_view bytes)
{
    constexpr std::size_t kept_bytes = 8;
    hmac_sha256_ctx state;
    hmac_sha256_set_key(&state, key.size(), octets(key));
    hmac_sha256_update(&state, bytes.size(), octets(bytes));
    std::array<std::uint8_t, kept_bytes> digest;
    hmac_sha256_digest(&state, digest.size(), digest.data());
    return as_hexadecimal({reinterpret_cast<const char*>(digest.data()), digest.size()});
}

std::string random_bytes(std::size_t count)
{
    std::string bytes(count, '\0');
    if (getentropy(bytes.data(), bytes.size()) != 0)
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, std::string("the system gives no random numbers: ") +
                                                   std::strerror(errno) + "; masks need some");
    return bytes;
}
