#include "tools/velmar-cfg/base/nearest_name.h"

#include <gtest/gtest.h>

namespace
{
struct DISTANCE_CASE
{
    const char* a;
    const char* b;
    std::size_t distance;
};

void PrintTo(const DISTANCE_CASE& row, std::ostream* stream)
{
    *stream << "'" << row.a << "' to '" << row.b << "'";
}

class EDIT_DISTANCE : public testing::TestWithParam<DISTANCE_CASE>
{
};

TEST_P(EDIT_DISTANCE, counts_the_steps_in_both_directions)
{
    const auto& [a, b, distance] = GetParam();
    EXPECT_EQ(edit_distance(a, b), distance);
    EXPECT_EQ(edit_distance(b, a), distance);
}

INSTANTIATE_TEST_SUITE_P(table, EDIT_DISTANCE,
                         testing::Values(DISTANCE_CASE{"", "", 0}, DISTANCE_CASE{"", "abc", 3},
                                         DISTANCE_CASE{"same", "same", 0}, DISTANCE_CASE{"Same", "sAME", 0},
                                         DISTANCE_CASE{"\xc9", "\xe9", 1},            // no ASCII letter: case counts
                                         DISTANCE_CASE{"[", "{", 1},                  // the neighbours of A to Z
                                         DISTANCE_CASE{"@", "`", 1},                  //
                                         DISTANCE_CASE{"msg_sqlit", "msg_sqlite", 1}, // left out
                                         DISTANCE_CASE{"mssg", "msg", 1},             // inserted
                                         DISTANCE_CASE{"mag", "msg", 1},              // replaced
                                         DISTANCE_CASE{"mgs", "msg", 1},              // swapped
                                         DISTANCE_CASE{"smg_x", "msg_y", 2},          // swapped and replaced
                                         DISTANCE_CASE{"ca", "abc", 3}, // no step between two swapped letters
                                         DISTANCE_CASE{"kitten", "sitting", 3}));

const std::vector<std::string> names = {"abc", "msg_sqlite", "msg_sqlyte", "enhanced_html_reports"};

TEST(NEAREST_NAME, takes_the_least_distance_and_of_equals_the_first)
{
    EXPECT_EQ(nearest_name("msg_sqlyt", names), "msg_sqlyte");
    EXPECT_EQ(nearest_name("msg_sqlxte", names), "msg_sqlite");
}

TEST(NEAREST_NAME, tolerates_more_in_longer_names)
{
    EXPECT_EQ(nearest_name("ab", names), std::nullopt);
    EXPECT_EQ(nearest_name("abd", names), "abc");
    EXPECT_EQ(nearest_name("add", names), std::nullopt);
    EXPECT_EQ(nearest_name("ms_sqlit", names), "msg_sqlite");
    EXPECT_EQ(nearest_name("s_sqlit", names), std::nullopt);
    EXPECT_EQ(nearest_name("enhansed_htm_report", names), "enhanced_html_reports");
    EXPECT_EQ(nearest_name("enhansed_htm_repor", names), std::nullopt);
}

TEST(NEAREST_NAME, is_never_the_name_itself)
{
    EXPECT_EQ(nearest_name("ABC", names), std::nullopt);
    EXPECT_EQ(nearest_name("MSG_sqlite", names), "msg_sqlyte");
}

TEST(NEAREST_NAME, makes_half_a_sentence)
{
    EXPECT_EQ(did_you_mean("abd", names), ", did you mean 'abc'?");
    EXPECT_EQ(did_you_mean("nothing like it", names), "");
}
}
