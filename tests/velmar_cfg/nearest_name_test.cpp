#include "tools/velmar-cfg/base/nearest_name.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

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

// The rule written out: all ways to take the names apart from their beginnings.
std::size_t distance_by_the_rule(std::string_view a, std::string_view b)
{
    if (a.empty() || b.empty())
        return a.size() + b.size();
    const std::string_view rest_of_a = a.substr(1);
    const std::string_view rest_of_b = b.substr(1);
    std::size_t least = std::min({distance_by_the_rule(rest_of_a, b) + 1, distance_by_the_rule(a, rest_of_b) + 1,
                                  distance_by_the_rule(rest_of_a, rest_of_b) + (a.front() == b.front() ? 0 : 1)});
    if (a.size() > 1 && b.size() > 1 && a[0] == b[1] && a[1] == b[0])
        least = std::min(least, distance_by_the_rule(a.substr(2), b.substr(2)) + 1);
    return least;
}

TEST(EDIT_DISTANCE_BY_THE_RULE, is_the_same_for_all_short_names_of_two_letters)
{
    std::vector<std::string> all = {""};
    for (std::size_t i = 0; all[i].size() < 5; ++i)
    {
        all.push_back(all[i] + 'a');
        all.push_back(all[i] + 'b');
    }
    for (const std::string& a : all)
    {
        for (const std::string& b : all)
            ASSERT_EQ(edit_distance(a, b), distance_by_the_rule(a, b)) << a << " and " << b;
    }
}

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

// Names of few letters, so that many are near each other, some of them in both cases and outside ASCII.
class NAMES_OF_FEW_LETTERS
{
public:
    std::string operator()(std::size_t longest)
    {
        constexpr std::string_view letters = "aabBc_\x01\xe1";
        std::string name;
        for (std::size_t size = random() % (longest + 1); size > 0; --size)
            name += letters[random() % letters.size()];
        return name;
    }

    std::mt19937 random{20261122};
};

TEST(NEAREST_NAME, the_bound_by_letters_is_no_more_than_the_distance)
{
    NAMES_OF_FEW_LETTERS name;
    std::size_t exact = 0;
    for (int i = 0; i < 20000; ++i)
    {
        const std::string a = name(9);
        const std::string b = name(9);
        const std::size_t bound = LETTER_SET(a).least_distance_to(LETTER_SET(b));
        ASSERT_LE(bound, edit_distance(a, b)) << "'" << a << "' to '" << b << "'";
        ASSERT_EQ(bound, LETTER_SET(b).least_distance_to(LETTER_SET(a))) << "'" << a << "' to '" << b << "'";
        exact += bound == edit_distance(a, b) ? 1U : 0U;
    }
    EXPECT_GT(exact, 2000U);
}

TEST(NEAREST_NAME, the_bound_tells_far_names_apart)
{
    EXPECT_EQ(LETTER_SET("abc").least_distance_to(LETTER_SET("xyzw")), 4U);
    EXPECT_EQ(LETTER_SET("abab").least_distance_to(LETTER_SET("ab")), 2U);
    EXPECT_EQ(LETTER_SET("AB").least_distance_to(LETTER_SET("ab")), 0U);
}

// The rule of the header, worked out for every candidate.
std::optional<std::string> nearest_by_all_distances(const std::string& wanted, const std::vector<std::string>& all)
{
    const std::size_t size = wanted.size();
    const std::size_t tolerated = size < 3 ? 0 : size < 6 ? 1 : size < 12 ? 2 : 3;
    std::optional<std::string> nearest;
    for (std::size_t distance = 1; distance <= tolerated && !nearest; ++distance)
    {
        const auto found = std::ranges::find_if(all, [&](const std::string& candidate)
                                                { return edit_distance(wanted, candidate) == distance; });
        if (found != all.end())
            nearest = *found;
    }
    return nearest;
}

TEST(NEAREST_NAME, is_the_one_that_all_distances_give)
{
    NAMES_OF_FEW_LETTERS name;
    std::vector<std::string> all;
    for (int i = 0; i < 40; ++i)
        all.push_back(name(8));
    const NAME_CANDIDATES candidates(all);
    int found = 0;
    for (int i = 0; i < 1500; ++i)
    {
        const std::string wanted = name(8);
        const std::optional<std::string> expected = nearest_by_all_distances(wanted, all);
        ASSERT_EQ(nearest_name(wanted, all), expected) << "'" << wanted << "'";
        const std::string* const nearest = candidates.nearest(wanted);
        ASSERT_EQ(nearest == nullptr ? std::nullopt : std::optional(*nearest), expected) << "'" << wanted << "'";
        found += expected ? 1 : 0;
    }
    EXPECT_GT(found, 150);
    EXPECT_LT(found, 1400);
}

TEST(NEAREST_NAME, makes_half_a_sentence)
{
    EXPECT_EQ(did_you_mean("abd", names), " (did you mean 'abc'?)");
    EXPECT_EQ(did_you_mean("nothing like it", names), "");
    // Nearer than any other is the name in another letter case, where that is another name.
    EXPECT_EQ(did_you_mean("LIST", {"lint", "list"}), " (did you mean 'list'?)");
    EXPECT_EQ(did_you_mean("-v", {"-h", "-V"}), " (did you mean '-V'?)");
    EXPECT_EQ(did_you_mean("list", {"list"}), "");
}
}
