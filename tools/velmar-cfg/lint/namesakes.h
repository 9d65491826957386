// Finds, for the rules of lint, the other statements that assign to the same variable.
//
// For each variable of a layer, this keeps the position of its first assignment. For each assignment that another one
// in the same layer follows, it keeps the position of the next. Names and values are read from the layers when they are
// needed. Memory: 24 bytes for each variable and up to 12 for its slots, and 16 for each assignment that is followed.
#ifndef TOOLS_VELMAR_CFG_LINT_NAMESAKES_H
#define TOOLS_VELMAR_CFG_LINT_NAMESAKES_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/settings/layers.h"

// The number of assignments before one, over all layers in the order in which they are applied.
using ASSIGNMENT_NUMBER = std::uint32_t;

class NAMESAKES
{
public:
    struct SPELT
    {
        std::string name;
        LOCATION location;
    };

    struct ASSIGNED
    {
        std::string value;
        LOCATION location;
    };

    // The layers must outlive this. Throws TOOL_ERROR(BAD_INPUT) for more than UINT32_MAX assignments, and for a layer
    // of 1 TiB or more.
    explicit NAMESAKES(const LAYERS& all_layers);

    // Whether the assignment is the first to its variable in its layer. Must be called for the assignments in their
    // order. `variables_before` is how many of those before were first.
    bool is_first_in_layer(ASSIGNMENT_NUMBER assignment, std::size_t variables_before) const
    {
        return variables_before < variables.size() && variables[variables_before].first == assignment;
    }

    // The first assignment to the variable, if it stands before `assignment`.
    std::optional<SPELT> first_before(std::string_view name, ASSIGNMENT_NUMBER assignment = UINT32_MAX) const;

    // The next assignment, in the same layer, to the variable that this one assigns to.
    std::optional<ASSIGNED> next(ASSIGNMENT_NUMBER assignment) const;

    // Whether `assignment`, or a later one in that layer, assigns to the variable.
    bool is_assigned_to_later(std::string_view name, std::size_t layer, ASSIGNMENT_NUMBER assignment) const;

private:
    struct VARIABLE_PLACE
    {
        std::uint64_t offset : 40; // where its first assignment stands in the layer
        std::uint64_t layer : 8;
        std::uint32_t position;
        std::uint32_t hash; // of the name and the layer
        ASSIGNMENT_NUMBER first;
        ASSIGNMENT_NUMBER last;
    };

    struct FOLLOWED
    {
        std::uint64_t offset : 40; // where the following assignment stands in the layer
        std::uint64_t layer : 8;
        std::uint32_t position;
        ASSIGNMENT_NUMBER assignment; // that is followed
    };

    void add(const STATEMENT& statement, ASSIGNMENT_NUMBER assignment);
    void grow();
    std::size_t slot_of(std::size_t layer, std::string_view name, std::uint32_t hash) const;
    const VARIABLE_PLACE* find(std::size_t layer, std::string_view name) const;
    std::string name_at(std::size_t layer, std::size_t offset) const;
    std::string value_at(std::size_t layer, std::size_t offset) const;
    LOCATION location_of(std::size_t layer, std::size_t position) const;

    const LAYERS& layers;
    std::deque<VARIABLE_PLACE> variables; // in the order of their first assignments; grows without moving
    std::vector<FOLLOWED> followed;       // in the order of the assignments

    // Open addressing, at most two thirds full. The number of slots is a power of two. A slot is a variable's index
    // plus 1, or 0.
    std::vector<std::uint32_t> slots;
};

#endif
