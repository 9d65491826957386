// Suggestions for a name that was probably mistyped.
#ifndef TOOLS_VELMAR_CFG_BASE_NEAREST_NAME_H
#define TOOLS_VELMAR_CFG_BASE_NEAREST_NAME_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// How many letters must be inserted, left out, replaced, or swapped with their neighbour to make one name of the other
// (no letter taking part in two such steps). The case of A to Z does not count.
std::size_t edit_distance(std::string_view a, std::string_view b);

// The first of the candidates with the least distance to `name`, if that is small for the name's length: up to 1 for
// 3 to 5 letters, 2 for 6 to 11, 3 for longer ones, nothing for shorter ones. A candidate that is the name itself,
// letter case ignored, is passed over.
std::optional<std::string> nearest_name(std::string_view name, const std::vector<std::string>& candidates);

// Which letters a name has, for a lower bound of distances: letters fall into 32 groups, with one bit for the first of
// a group and one for a second.
class LETTER_SET
{
public:
    explicit LETTER_SET(std::string_view name);

    // No more than the edit distance of the two names.
    std::size_t least_distance_to(LETTER_SET other) const;

private:
    std::uint64_t bits = 0;
};

// The same question for many names and the same candidates: their letters are counted once.
class NAME_CANDIDATES
{
public:
    explicit NAME_CANDIDATES(std::vector<std::string> candidates);

    // As nearest_name. Null when there is none; lives as long as this.
    const std::string* nearest(std::string_view name) const;

private:
    struct OUTLINE
    {
        LETTER_SET letters;
        std::size_t length;
    };

    std::vector<std::string> names;
    std::vector<OUTLINE> outlines; // of each name
};

// " (did you mean 'NEAREST'?)" or nothing. Here the nearest of all is the name itself in another letter case.
std::string did_you_mean(std::string_view name, const std::vector<std::string>& candidates);

#endif
