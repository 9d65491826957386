// Finds the shortest list of removed and added lines between two texts, and writes it with three lines of context.
//
// The search is the greedy one of E. W. Myers, "An O(ND) Difference Algorithm and Its Variations". At (x, y), the first
// x lines of the old text and the first y of the new one have been used. A removed line is a step in x, an added line a
// step in y, and equal lines are steps in both that cost nothing. For 0, 1, 2, ... changes the search notes how far it
// gets on each diagonal x - y, until one of them reaches the end of both texts. The notes of every round are kept: the
// way back through them gives the changes. After 2000 changes the search gives up. Then all lines between the common
// beginning and the common end are removed and added.
//
// Invariants:
// - Lines are views of the texts and keep their newline, so a last line without one differs from the same line with
//   one.
// - Changes with at most six equal lines between them share a hunk, so hunks never overlap.
//
// Cost for n lines in both texts together and d changes, of which at most 2000 are searched: O(n d) comparisons of
// lines, O(n + d^2) memory, which is 32 MB for 2000 changes.
#include "tools/velmar-cfg/base/unified_diff.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace
{
constexpr std::size_t context = 3;
constexpr std::size_t most_changes_searched = 2000; // the search needs memory of the square of that

using LINES = std::vector<std::string_view>; // each with its line feed, the last one maybe without

LINES lines_of(std::string_view text)
{
    LINES lines;
    while (!text.empty())
    {
        const std::size_t size = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.push_back(text.substr(0, size));
        text.remove_prefix(size);
    }
    return lines;
}

// One line of the result: ' ', '-' or '+'. `before` and `after` count the lines of both texts that lie ahead of it.
struct EDIT
{
    char sign;
    std::string_view line;
    std::size_t before;
    std::size_t after;
};

// The furthest that each diagonal is reached with a number of changes; a diagonal is a place in `a` less one in `b`.
class REACH
{
public:
    explicit REACH(std::ptrdiff_t changes) : origin(changes + 1), furthest(static_cast<std::size_t>(2 * changes + 3), 0)
    {
    }

    std::ptrdiff_t& operator[](std::ptrdiff_t diagonal)
    {
        return furthest[static_cast<std::size_t>(origin + diagonal)];
    }

private:
    std::ptrdiff_t origin;
    std::vector<std::ptrdiff_t> furthest;
};

// Whether the step before the one to `diagonal` added a line of `b` (else it removed one of `a`).
bool came_by_adding(REACH& last, std::ptrdiff_t diagonal, std::ptrdiff_t changes)
{
    return diagonal == -changes || (diagonal != changes && last[diagonal - 1] < last[diagonal + 1]);
}

// The signs of the shortest way from `a` to `b`, after E. W. Myers, "An O(ND) Difference Algorithm"; empty when it
// takes too many changes.
std::vector<char> shortest_edit(const LINES& a, const LINES& b)
{
    const auto a_size = static_cast<std::ptrdiff_t>(a.size());
    const auto b_size = static_cast<std::ptrdiff_t>(b.size());
    const auto most = static_cast<std::ptrdiff_t>(std::min(a.size() + b.size(), most_changes_searched));
    std::vector<REACH> history;
    REACH last(0);
    for (std::ptrdiff_t changes = 0; changes <= most; ++changes)
    {
        REACH reach(changes);
        for (std::ptrdiff_t k = -changes; k <= changes; k += 2)
        {
            std::ptrdiff_t x = 0;
            if (changes > 0)
                x = came_by_adding(last, k, changes) ? last[k + 1] : last[k - 1] + 1;
            while (x < a_size && x - k < b_size && a[static_cast<std::size_t>(x)] == b[static_cast<std::size_t>(x - k)])
                ++x;
            reach[k] = x;
            if (x < a_size || x - k < b_size)
                continue;

            std::vector<char> signs;
            std::ptrdiff_t y = x - k;
            for (std::ptrdiff_t left = changes; left > 0; --left)
            {
                REACH& previous = history[static_cast<std::size_t>(left - 1)];
                const bool added = came_by_adding(previous, x - y, left);
                const std::ptrdiff_t from_k = added ? x - y + 1 : x - y - 1;
                const std::ptrdiff_t from_x = previous[from_k];
                const std::ptrdiff_t start_x = added ? from_x : from_x + 1;
                signs.insert(signs.end(), static_cast<std::size_t>(x - start_x), ' ');
                signs.push_back(added ? '+' : '-');
                x = from_x;
                y = from_x - from_k;
            }
            signs.insert(signs.end(), static_cast<std::size_t>(x), ' ');
            std::ranges::reverse(signs);
            return signs;
        }
        history.push_back(reach);
        // Wider by one diagonal at each end, so that the next round may look beyond.
        last = REACH(changes + 1);
        for (std::ptrdiff_t k = -changes; k <= changes; ++k)
            last[k] = reach[k];
    }
    return {};
}

std::vector<EDIT> edits_between(const LINES& a, const LINES& b)
{
    std::vector<char> signs = shortest_edit(a, b);
    if (signs.empty())
    {
        const auto first = std::ranges::mismatch(a, b).in1 - a.begin();
        LINES::const_reverse_iterator a_end = a.rbegin();
        for (auto b_end = b.rbegin(); a_end != a.rend() - first && b_end != b.rend() - first && *a_end == *b_end;
             ++b_end)
            ++a_end;
        const auto common_end = static_cast<std::size_t>(a_end - a.rbegin());
        const auto common_start = static_cast<std::size_t>(first);
        signs.assign(common_start, ' ');
        signs.insert(signs.end(), a.size() - common_start - common_end, '-');
        signs.insert(signs.end(), b.size() - common_start - common_end, '+');
        signs.insert(signs.end(), common_end, ' ');
    }

    std::vector<EDIT> edits;
    std::size_t x = 0;
    std::size_t y = 0;
    for (const char sign : signs)
    {
        edits.push_back({sign, sign == '+' ? b[y] : a[x], x, y});
        x += sign == '+' ? 0U : 1U;
        y += sign == '-' ? 0U : 1U;
    }
    return edits;
}

std::string range(std::size_t start, std::size_t count)
{
    // An empty range names the line before it.
    const std::string first = std::to_string(count == 0 ? start : start + 1);
    return count == 1 ? first : first + "," + std::to_string(count);
}

void append_hunk(std::string& result, const std::vector<EDIT>& edits, std::size_t from, std::size_t to)
{
    std::size_t removed = 0;
    std::size_t added = 0;
    for (std::size_t i = from; i < to; ++i)
    {
        removed += edits[i].sign == '+' ? 0U : 1U;
        added += edits[i].sign == '-' ? 0U : 1U;
    }
    result += "@@ -" + range(edits[from].before, removed) + " +" + range(edits[from].after, added) + " @@\n";
    for (std::size_t i = from; i < to; ++i)
    {
        result += edits[i].sign;
        result += edits[i].line;
        if (!edits[i].line.ends_with('\n'))
            result += "\n\\ No newline at end of file\n";
    }
}
}

std::string unified_diff(std::string_view before, std::string_view after, const std::string& before_name,
                         const std::string& after_name)
{
    if (before == after)
        return {};
    const std::vector<EDIT> edits = edits_between(lines_of(before), lines_of(after));
    const auto is_change = [](const EDIT& edit) { return edit.sign != ' '; };

    std::string result = "--- " + before_name + "\n+++ " + after_name + "\n";
    auto change = std::ranges::find_if(edits, is_change);
    while (change != edits.end())
    {
        const auto start = static_cast<std::size_t>(change - edits.begin());
        const std::size_t from = start - std::min(start, context);
        auto behind = change + 1;
        // Changes with at most two contexts between them share a hunk.
        for (auto next = std::find_if(behind, edits.end(), is_change);
             next != edits.end() && next - behind <= static_cast<std::ptrdiff_t>(2 * context);
             next = std::find_if(behind, edits.end(), is_change))
            behind = next + 1;
        const auto last = static_cast<std::size_t>(behind - edits.begin());
        append_hunk(result, edits, from, std::min(last + context, edits.size()));
        change = std::find_if(behind, edits.end(), is_change);
    }
    return result;
}
