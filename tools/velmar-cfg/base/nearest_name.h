// Suggestions for a name that was probably mistyped.
#ifndef TOOLS_VELMAR_CFG_BASE_NEAREST_NAME_H
#define TOOLS_VELMAR_CFG_BASE_NEAREST_NAME_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// How many steps turn one name into the other. A step inserts, removes or replaces a letter, or swaps it with its
// neighbour; no letter takes part in two steps. The case of A to Z does not count.
std::size_t edit_distance(std::string_view a, std::string_view b);

// The candidate nearest to `name`; of several, the first. Names of 3 to 5 letters allow a distance of 1, names of 6 to
// 11 a distance of 2, longer ones 3, and shorter ones none. A candidate equal to `name`, letter case ignored, is
// skipped.
std::optional<std::string> nearest_name(std::string_view name, const std::vector<std::string>& candidates);

// Which letters a name has, for a lower bound of distances. Letters fall into 32 groups. For each group, one bit says
// that the name has such a letter, and one that it has a second.
class LETTER_SET
{
public:
    explicit LETTER_SET(std::string_view name);

    // A lower bound of the edit distance of the two names.
    std::size_t least_distance_to(LETTER_SET other) const;

private:
    std::uint64_t bits = 0;
};

// nearest_name() for many names and the same candidates. The letters of the candidates are counted only once.
class NAME_CANDIDATES
{
public:
    explicit NAME_CANDIDATES(std::vector<std::string> candidates);

    // As nearest_name(); null if there is none. The result is valid as long as this object.
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

// " (did you mean 'NEAREST'?)" or nothing. The name in another letter case counts as nearest.
std::string did_you_mean(std::string_view name, const std::vector<std::string>& candidates);

#endif
