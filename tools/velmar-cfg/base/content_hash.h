// A hash of the content of a file.
#ifndef TOOLS_VELMAR_CFG_BASE_CONTENT_HASH_H
#define TOOLS_VELMAR_CFG_BASE_CONTENT_HASH_H

#include <string>
#include <string_view>

// The SHA-256 of the bytes, as 64 lower-case hexadecimal digits.
std::string sha256_of(std::string_view bytes);

#endif
