#include "tools/velmar-cfg/base/nearest_name.h"

#include <algorithm>

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

std::optional<std::string> nearest_name(std::string_view name, const std::vector<std::string>& candidates)
{
    const std::size_t tolerated = tolerated_distance(name.size());
    std::size_t least = tolerated + 1;
    std::optional<std::string> nearest;
    for (const std::string& candidate : candidates)
    {
        const std::size_t longer = std::max(candidate.size(), name.size());
        const std::size_t shorter = std::min(candidate.size(), name.size());
        if (longer - shorter >= least)
            continue; // also keeps a name of a megabyte cheap
        const std::size_t distance = edit_distance(name, candidate);
        if (distance > 0 && distance < least)
        {
            least = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

std::string did_you_mean(std::string_view name, const std::vector<std::string>& candidates)
{
    const std::optional<std::string> nearest = nearest_name(name, candidates);
    return nearest ? ", did you mean '" + *nearest + "'?" : "";
}
