#include "tools/velmar-cfg/base/unified_diff.h"

#include <gtest/gtest.h>

namespace
{
struct DIFFERENCE
{
    const char* title;
    std::string before;
    std::string after;
    std::string hunks; // without the two lines of names
};

void PrintTo(const DIFFERENCE& row, std::ostream* stream)
{
    *stream << row.title;
}

class UNIFIED_DIFF : public testing::TestWithParam<DIFFERENCE>
{
};

TEST_P(UNIFIED_DIFF, shows_the_hunks)
{
    const DIFFERENCE& row = GetParam();
    EXPECT_EQ(unified_diff(row.before, row.after, "old", "new"), "--- old\n+++ new\n" + row.hunks);
}

INSTANTIATE_TEST_SUITE_P(
    table, UNIFIED_DIFF,
    testing::Values(DIFFERENCE{"into nothing", "a\n", "", "@@ -1 +0,0 @@\n-a\n"},
                    DIFFERENCE{"out of nothing", "", "a\nb\n", "@@ -0,0 +1,2 @@\n+a\n+b\n"},
                    DIFFERENCE{"one line replaced", "a\nb\nc\n", "a\nx\nc\n", "@@ -1,3 +1,3 @@\n a\n-b\n+x\n c\n"},
                    DIFFERENCE{"three lines of context", "1\n2\n3\n4\n5\n6\n7\n8\n9\n", "1\n2\n3\n4\nx\n6\n7\n8\n9\n",
                               "@@ -2,7 +2,7 @@\n 2\n 3\n 4\n-5\n+x\n 6\n 7\n 8\n"},
                    DIFFERENCE{"six lines between share a hunk", "a\n1\n2\n3\n4\n5\n6\nb\n", "1\n2\n3\n4\n5\n6\n",
                               "@@ -1,8 +1,6 @@\n-a\n 1\n 2\n 3\n 4\n 5\n 6\n-b\n"},
                    DIFFERENCE{"seven lines between do not", "a\n1\n2\n3\n4\n5\n6\n7\nb\n", "1\n2\n3\n4\n5\n6\n7\n",
                               "@@ -1,4 +1,3 @@\n-a\n 1\n 2\n 3\n@@ -6,4 +5,3 @@\n 5\n 6\n 7\n-b\n"},
                    DIFFERENCE{"no line feed at the end", "a", "a\n",
                               "@@ -1 +1 @@\n-a\n\\ No newline at end of file\n+a\n"},
                    DIFFERENCE{"the fewest lines", "a\nb\nc\na\nb\nb\na\n", "c\nb\na\nb\na\nc\n",
                               "@@ -1,7 +1,6 @@\n-a\n-b\n c\n+b\n a\n b\n-b\n a\n+c\n"}));

TEST(UNIFIED_DIFF_PLAIN, is_empty_for_equal_texts)
{
    EXPECT_EQ(unified_diff("a\nb", "a\nb", "old", "new"), "");
}

TEST(UNIFIED_DIFF_PLAIN, takes_all_between_beginning_and_end_when_there_is_too_much)
{
    std::string before = "same\n";
    std::string after = "same\n";
    for (int i = 0; i < 3000; ++i)
    {
        before += "a" + std::to_string(i) + "\n";
        after += "b" + std::to_string(i) + "\n";
    }
    const std::string difference = unified_diff(before + "end\n", after + "end\n", "old", "new");
    EXPECT_EQ(difference.substr(0, 52), "--- old\n+++ new\n@@ -1,3002 +1,3002 @@\n same\n-a0\n-a1\n");
    EXPECT_TRUE(difference.ends_with("+b2999\n end\n"));
}
}
