// Unified differences beside what they are for: applied to the old text they give the new one, with the fewest changes,
// and with the context that readers expect.
#include "tools/velmar-cfg/base/unified_diff.h"

#include <algorithm>
#include <charconv>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace
{
// The lines of a text, the last one maybe without its line feed.
std::vector<std::string> lines_of(std::string_view text)
{
    std::vector<std::string> lines;
    while (!text.empty())
    {
        const std::size_t size = text.find('\n') == std::string_view::npos ? text.size() : text.find('\n') + 1;
        lines.emplace_back(text.substr(0, size));
        text.remove_prefix(size);
    }
    return lines;
}

// One hunk: the numbers of its header, and its lines with their signs.
struct HUNK
{
    std::size_t old_start;
    std::size_t old_count;
    std::size_t new_start;
    std::size_t new_count;
    std::vector<std::pair<char, std::string>> lines;
};

std::size_t take_number(std::string_view& text)
{
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    EXPECT_EQ(error, std::errc()) << text;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

// "12,3", or "12" for a count of 1.
std::pair<std::size_t, std::size_t> take_range(std::string_view& text)
{
    const std::size_t start = take_number(text);
    if (!text.starts_with(','))
        return {start, 1};
    text.remove_prefix(1);
    const std::size_t count = take_number(text);
    EXPECT_NE(count, 1U);
    return {start, count};
}

std::vector<HUNK> hunks_of(const std::string& difference)
{
    std::vector<HUNK> hunks;
    const std::vector<std::string> lines = lines_of(difference);
    EXPECT_EQ(lines.at(0), "--- old\n");
    EXPECT_EQ(lines.at(1), "+++ new\n");
    for (std::size_t i = 2; i < lines.size(); ++i)
    {
        std::string_view line = lines[i];
        if (line.starts_with("@@ -"))
        {
            line.remove_prefix(4);
            const auto [old_start, old_count] = take_range(line);
            EXPECT_TRUE(line.starts_with(" +")) << lines[i];
            line.remove_prefix(2);
            const auto [new_start, new_count] = take_range(line);
            EXPECT_EQ(line, " @@\n");
            hunks.push_back({old_start, old_count, new_start, new_count, {}});
        }
        else if (line == "\\ No newline at end of file\n")
            hunks.back().lines.back().second.pop_back();
        else
            hunks.back().lines.emplace_back(line.front(), line.substr(1));
    }
    return hunks;
}

// The new text, made of the old one and the hunks, whose numbers and context are checked on the way.
std::string applied(const std::string& old_text, const std::vector<HUNK>& hunks)
{
    constexpr std::size_t context = 3;
    const std::vector<std::string> old_lines = lines_of(old_text);
    std::vector<std::string> new_lines;
    std::size_t at = 0;
    for (const HUNK& hunk : hunks)
    {
        // An empty range names the line before it.
        const std::size_t begin = hunk.old_count == 0 ? hunk.old_start : hunk.old_start - 1;
        EXPECT_TRUE(at == 0 || begin > at) << "hunks that touch are one";
        for (; at < begin; ++at)
            new_lines.push_back(old_lines.at(at));
        EXPECT_EQ(hunk.new_start, new_lines.size() + (hunk.new_count == 0 ? 0 : 1));
        const std::size_t new_before = new_lines.size();
        std::size_t unchanged = 0; // in a row
        bool changed = false;
        for (const auto& [sign, line] : hunk.lines)
        {
            if (sign != '+')
            {
                EXPECT_EQ(old_lines.at(at++), line);
            }
            if (sign != '-')
                new_lines.push_back(line);
            if (sign == ' ')
            {
                EXPECT_LE(++unchanged, changed ? 2 * context : context);
            }
            else
            {
                EXPECT_TRUE(changed || unchanged == std::min(context, begin + unchanged))
                    << "context before the change";
                changed = true;
                unchanged = 0;
            }
        }
        EXPECT_TRUE(changed);
        EXPECT_EQ(unchanged, std::min(context, old_lines.size() - (at - unchanged))) << "context behind the change";
        EXPECT_EQ(at - begin, hunk.old_count);
        EXPECT_EQ(new_lines.size() - new_before, hunk.new_count);
    }
    for (; at < old_lines.size(); ++at)
        new_lines.push_back(old_lines[at]);
    std::string text;
    for (const std::string& line : new_lines)
        text += line;
    return text;
}

// Lines added and removed, at the least: what is in no longest common subsequence, by a plain table.
std::size_t fewest_changes(const std::vector<std::string>& a, const std::vector<std::string>& b)
{
    std::vector<std::vector<std::size_t>> common(a.size() + 1, std::vector<std::size_t>(b.size() + 1, 0));
    for (std::size_t i = 1; i <= a.size(); ++i)
    {
        for (std::size_t j = 1; j <= b.size(); ++j)
            common[i][j] =
                a[i - 1] == b[j - 1] ? common[i - 1][j - 1] + 1 : std::max(common[i - 1][j], common[i][j - 1]);
    }
    return a.size() + b.size() - 2 * common[a.size()][b.size()];
}

void expect_that_it_applies(const std::string& before, const std::string& after)
{
    const std::string difference = unified_diff(before, after, "old", "new");
    if (before == after)
    {
        ASSERT_EQ(difference, "");
        return;
    }
    const std::vector<HUNK> hunks = hunks_of(difference);
    ASSERT_EQ(applied(before, hunks), after) << difference;
    std::size_t changes = 0;
    for (const HUNK& hunk : hunks)
        changes += static_cast<std::size_t>(
            std::ranges::count_if(hunk.lines, [](const auto& line) { return line.first != ' '; }));
    ASSERT_EQ(changes, fewest_changes(lines_of(before), lines_of(after))) << difference;
}

TEST(UNIFIED_DIFF_GENERATED, gives_the_new_text_with_the_fewest_changes)
{
    std::mt19937 random(20261122);
    const auto text = [&random](std::size_t most_lines, unsigned int kinds)
    {
        std::string made;
        for (std::size_t i = random() % (most_lines + 1); i > 0; --i)
            made += std::string(1, static_cast<char>('a' + random() % kinds)) + "\n";
        if (!made.empty() && random() % 4 == 0)
            made.pop_back();
        return made;
    };
    for (int i = 0; i < 4000; ++i)
    {
        const unsigned int kinds = 2 + static_cast<unsigned int>(i) % 5;
        expect_that_it_applies(text(12, kinds), text(12, kinds));
        ASSERT_FALSE(testing::Test::HasFailure()) << "round " << i;
    }
}

// Long texts with few changes: several hunks, far apart and near each other.
TEST(UNIFIED_DIFF_GENERATED, gives_the_new_text_over_many_hunks)
{
    std::mt19937 random(4711);
    std::size_t hunks = 0;
    for (int i = 0; i < 300; ++i)
    {
        std::vector<std::string> lines;
        for (int line = 0; line < 60; ++line)
            lines.push_back("line " + std::to_string(line) + "\n");
        const auto joined = [](const std::vector<std::string>& all)
        {
            std::string text;
            for (const std::string& one : all)
                text += one;
            return text;
        };
        const std::string before = joined(lines);
        for (std::size_t change = 1 + random() % 5; change > 0; --change)
        {
            const auto at = lines.begin() + static_cast<std::ptrdiff_t>(random() % lines.size());
            switch (random() % 3)
            {
            case 0:
                lines.erase(at);
                break;
            case 1:
                lines.insert(at, "new\n");
                break;
            default:
                *at = "other\n";
            }
        }
        expect_that_it_applies(before, joined(lines));
        ASSERT_FALSE(testing::Test::HasFailure()) << "round " << i;
        hunks += hunks_of(unified_diff(before, joined(lines) + "end\n", "old", "new")).size();
    }
    EXPECT_GT(hunks, 600U);
}

// Too much changes for the search: still applied, if not with the fewest changes.
TEST(UNIFIED_DIFF_GENERATED, gives_the_new_text_where_too_much_changes)
{
    const auto numbered = [](const char* letter, int count)
    {
        std::string text;
        for (int i = 0; i < count; ++i)
            text += letter + std::to_string(i) + "\n";
        return text;
    };
    const std::string beginning = numbered("same", 5);
    const std::string end = numbered("end", 5);
    struct ROW
    {
        const char* what;
        std::string before;
        std::string after;
    };
    const ROW rows[] = {
        {"all", numbered("a", 1500), numbered("b", 1500)},
        {"all between two ends", beginning + numbered("a", 1500) + end, beginning + numbered("b", 700) + end},
        {"all behind a beginning", beginning + numbered("a", 1500), beginning + numbered("b", 1500)},
        {"all before an end", numbered("a", 1500) + end, numbered("b", 1500) + end},
        {"all but the last line feed", numbered("a", 1500) + "x", numbered("b", 1500) + "x\n"},
        {"all removed", numbered("a", 2500), ""},
        {"more at the end", numbered("a", 10), numbered("a", 2600)},
        {"a repeated beginning", beginning + beginning + numbered("a", 2100), beginning + numbered("b", 10)},
    };
    for (const ROW& row : rows)
        EXPECT_EQ(applied(row.before, hunks_of(unified_diff(row.before, row.after, "old", "new"))), row.after)
            << row.what;
}
}
