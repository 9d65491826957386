#include <algorithm>
#include <gtest/gtest.h>

#include "platform/ver/ver.h"

namespace
{
TEST(VER_RELEASES_TEST, answer_what_the_build_was_configured_with)
{
    EXPECT_STREQ(ver_get_kestrin_product_filename(), ZON_TEST_PRODUCT_NAME);
    EXPECT_EQ(ver_get_version(), ZON_TEST_VERSION);
    EXPECT_EQ(ver_get_all_versions(), (std::vector<std::string>{ZON_TEST_KNOWN_VERSIONS}));
}

TEST(VER_RELEASES_TEST, know_the_running_release)
{
    const std::vector<std::string> all = ver_get_all_versions();
    EXPECT_EQ(std::count(all.begin(), all.end(), ver_get_version()), 1);
}
}
