#include "tools/velmar-cfg/base/content_hash.h"

#include <array>
#include <openssl/evp.h>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/text.h"

std::string sha256_of(std::string_view bytes)
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest;
    unsigned int size = 0;
    if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_sha256(), nullptr) != 1)
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, "libcrypto gives no SHA-256; check the OpenSSL of this machine");
    return as_hexadecimal({reinterpret_cast<const char*>(digest.data()), size});
}
