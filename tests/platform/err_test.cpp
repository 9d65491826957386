#include <gtest/gtest.h>

#include "platform/err/err.h"

namespace
{
TEST(ERR_REPORT_TEST, prints_condition_module_file_and_line_and_returns)
{
    testing::internal::CaptureStderr();
    err_report_internal_error("name != NULL", "SOME_MODULE", "some/dir", 1309);
    err_report_internal_error("%s%n", "M", "%d", -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Internal Error: SOME_MODULE: name != NULL, file some/dir, line 1309\n"
              "Internal Error: M: %s%n, file %d, line -1\n");
}
}
