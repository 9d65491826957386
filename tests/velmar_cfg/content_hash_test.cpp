// The hash that snapshots keep of files: the published values of SHA-256, and texts about the length of its blocks.
#include "tools/velmar-cfg/base/content_hash.h"

#include <gtest/gtest.h>
#include <ostream>
#include <string>

namespace
{
struct HASH_CASE
{
    const char* what;
    std::string bytes;
    const char* hash;
};

void PrintTo(const HASH_CASE& row, std::ostream* stream)
{
    *stream << row.what;
}

class CONTENT_HASH : public testing::TestWithParam<HASH_CASE>
{
};

TEST_P(CONTENT_HASH, is_sha_256_in_lower_case_digits)
{
    EXPECT_EQ(sha256_of(GetParam().bytes), GetParam().hash);
}

// The first four are the examples that come with the standard (FIPS 180-4); the others are sha256sum's.
INSTANTIATE_TEST_SUITE_P(
    table, CONTENT_HASH,
    testing::Values(HASH_CASE{"nothing", "", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
                    HASH_CASE{"one block", "abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
                    HASH_CASE{"two blocks", "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
                              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
                    HASH_CASE{"a million letters", std::string(1'000'000, 'a'),
                              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
                    HASH_CASE{"the last length with its own size in the block", std::string(55, 'x'),
                              "d5e285683cd4efc02d021a5c62014694958901005d6f71e89e0989fac77e4072"},
                    HASH_CASE{"the first without", std::string(56, 'x'),
                              "04c26261370ee7541549d16dee320c723e3fd14671e66a099afe0a377c16888e"},
                    HASH_CASE{"a whole block", std::string(64, 'x'),
                              "7ce100971f64e7001e8fe5a51973ecdfe1ced42befe7ee8d5fd6219506b5393c"},
                    HASH_CASE{"zero and high bytes", std::string("\0\xff\x80\n", 4),
                              "6d6f7836f1e146dc0204afb5133dae52fdc05603d8ac2dc793b481b0e0829fd1"}));
}
