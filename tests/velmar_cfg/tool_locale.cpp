// velmar-cfg sets no locale: numbers and error texts are those of the C locale, whatever the environment says. So are
// they in the tests of its parts, which other tests run in the environment's locale.
#include <clocale>
#include <gtest/gtest.h>

namespace
{
class TOOL_LOCALE : public ::testing::Environment
{
    void SetUp() override
    {
        std::setlocale(LC_ALL, "C");
    }
};
[[maybe_unused]] const ::testing::Environment* const tool_locale =
    ::testing::AddGlobalTestEnvironment(new TOOL_LOCALE); // GoogleTest deletes it
}
