// Finds the candidate with the smallest edit distance to a name.
//
// Nearly all candidates are far away, and two lower bounds of the distance show that in a few instructions. A step
// changes the length by one at most. It adds one letter at most and takes one away at most, so the bits that one
// LETTER_SET has and the other lacks are no more than the steps. Only a candidate that both bounds leave within reach
// is measured, without the letters that both names begin and end with. The table of the measurement is the one for the
// optimal string alignment distance. Three of its rows are kept.
//
// The best distance so far is the limit for all further candidates, and a candidate must be below it: of equally near
// ones the first stays.
//
// Cost for c candidates and names of m letters: O(m + c) for the bounds, and O(m^2) time and O(m) memory for each
// candidate that is measured. NAME_CANDIDATES makes the letter sets of its candidates once.
#include "tools/velmar-cfg/base/nearest_name.h"

#include <algorithm>
#include <bit>

namespace
{
char folded(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

std::size_t tolerated_distance(std::size_t length)
{
    return length < 3 ? 0 : length < 6 ? 1 : length < 12 ? 2 : 3;
}
}

std::size_t edit_distance(std::string_view a, std::string_view b)
{
    // What both begin or end with takes no step.
    const std::size_t shorter = std::min(a.size(), b.size());
    std::size_t alike = 0;
    while (alike < shorter && folded(a[alike]) == folded(b[alike]))
        ++alike;
    a.remove_prefix(alike);
    b.remove_prefix(alike);
    while (!a.empty() && !b.empty() && folded(a.back()) == folded(b.back()))
    {
        a.remove_suffix(1);
        b.remove_suffix(1);
    }
    if (a.empty() || b.empty())
        return a.size() + b.size();
    // Distances from the first letters of `a` to the first 0, 1, 2, ... of `b`: the row being filled and the two
    // before.
    std::vector<std::size_t> before_last(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i)
    {
        before_last.swap(last);
        last.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j)
        {
            const bool same = folded(a[i - 1]) == folded(b[j - 1]);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && folded(a[i - 1]) == folded(b[j - 2]) && folded(a[i - 2]) == folded(b[j - 1]))
                row[j] = std::min(row[j], before_last[j - 2] + 1);
        }
    }
    return row[b.size()];
}

LETTER_SET::LETTER_SET(std::string_view name)
{
    for (const char c : name)
    {
        const std::uint64_t first = std::uint64_t{1} << (static_cast<unsigned char>(folded(c)) & 31U);
        bits |= (bits & first) != 0 ? first << 32 : first;
    }
}

std::size_t LETTER_SET::least_distance_to(LETTER_SET other) const
{
    return static_cast<std::size_t>(std::max(std::popcount(bits & ~other.bits), std::popcount(other.bits & ~bits)));
}

NAME_CANDIDATES::NAME_CANDIDATES(std::vector<std::string> candidates) : names(std::move(candidates))
{
    for (const std::string& name : names)
        outlines.push_back({LETTER_SET(name), name.size()});
}

const std::string* NAME_CANDIDATES::nearest(std::string_view name) const
{
    std::size_t least = tolerated_distance(name.size()) + 1;
    const LETTER_SET letters_of_name(name);
    const std::string* found = nullptr;
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        const OUTLINE& outline = outlines[i];
        const std::size_t difference =
            outline.length > name.size() ? outline.length - name.size() : name.size() - outline.length;
        if (difference >= least || letters_of_name.least_distance_to(outline.letters) >= least)
            continue;
        const std::string& candidate = names[i];
        const std::size_t distance = edit_distance(name, candidate);
        if (distance > 0 && distance < least)
        {
            least = distance;
            found = &candidate;
        }
    }
    return found;
}

std::optional<std::string> nearest_name(std::string_view name, const std::vector<std::string>& candidates)
{
    const NAME_CANDIDATES all(candidates);
    const std::string* const nearest = all.nearest(name);
    return nearest == nullptr ? std::nullopt : std::optional(*nearest);
}

std::string did_you_mean(std::string_view name, const std::vector<std::string>& candidates)
{
    const auto same =
        std::ranges::find_if(candidates, [name](std::string_view candidate)
                             { return candidate.size() == name.size() && edit_distance(name, candidate) == 0; });
    if (same != candidates.end())
        return *same == name ? "" : " (did you mean '" + *same + "'?)";
    const std::optional<std::string> nearest = nearest_name(name, candidates);
    return nearest ? " (did you mean '" + *nearest + "'?)" : "";
}
