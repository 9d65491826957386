// The internal variables that layers set, each with every assignment to it.
//
// The texts of the layers are kept, and assignments are views into them. A hash index over the variables finds names;
// it is made when all assignments are known. All of this takes about 70 bytes for each assignment. of_one_variable()
// makes no index, and skips most other lines by their first character.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_SETTINGS_H
#define TOOLS_VELMAR_CFG_SETTINGS_SETTINGS_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/settings/layers.h"

// The index of an assignment. The largest one means none.
using ASSIGNMENT_INDEX = std::uint32_t;
inline constexpr ASSIGNMENT_INDEX no_assignment = UINT32_MAX;

// A statement that sets a variable. The texts live as long as the settings.
struct ASSIGNMENT
{
    std::string_view name; // as written, without white space
    std::string_view value;
    std::size_t position; // the line or the item, counted from 1
    std::uint32_t layer;  // its index among the layers
    ASSIGNMENT_INDEX next_to_same = no_assignment;
};

struct VARIABLE
{
    ASSIGNMENT_INDEX first;  // gives the variable its spelling
    ASSIGNMENT_INDEX winner; // the last one, which gives it its value
    LAYER_SET layers;        // that assign to it
};

class SETTINGS
{
public:
    // Every variable of the layers.
    explicit SETTINGS(LAYERS the_layers);

    // The same for at most this one variable. If no layer sets it, there is none.
    static SETTINGS of_one_variable(LAYERS the_layers, std::string_view name);

    SETTINGS(SETTINGS&&) = default;
    SETTINGS& operator=(SETTINGS&&) = default;
    SETTINGS(const SETTINGS&) = delete; // the texts that assignments look into are not copied
    SETTINGS& operator=(const SETTINGS&) = delete;
    ~SETTINGS() = default;

    const LAYERS& layers() const
    {
        return layers_by_order;
    }

    // In the order in which they are applied.
    const std::vector<ASSIGNMENT>& assignments() const
    {
        return all_assignments;
    }

    // In the order of their first assignments.
    const std::vector<VARIABLE>& variables() const
    {
        return all_variables;
    }

    // The indexes of the variables, in the byte order of their names as first spelt.
    std::vector<std::uint32_t> order_by_name() const;

    // Has the processor fetch what the next variables need. To be called in a walk over the variables in such an order,
    // with its position `at`, so that the walk does not wait for memory at each of them. Changes nothing.
    void fetch_ahead(std::span<const std::uint32_t> order, std::size_t at) const;

    // Null when no layer sets it. Names are equal as in the store.
    const VARIABLE* find(std::string_view name) const;

    std::string_view name_of(const VARIABLE& variable) const
    {
        return all_assignments[variable.first].name;
    }

    std::string_view value_of(const VARIABLE& variable) const
    {
        return all_assignments[variable.winner].value;
    }

    // Where the assignment that won stands.
    LOCATION location_of(const VARIABLE& variable) const
    {
        return location_of(all_assignments[variable.winner]);
    }

    LOCATION location_of(const ASSIGNMENT& assignment) const
    {
        const LAYER& layer = layers_by_order[assignment.layer];
        return {layer.kind, layer.source->path, assignment.position};
    }

    // Every assignment to the variable, in order; the last one won.
    std::vector<const ASSIGNMENT*> assignments_to(const VARIABLE& variable) const;

private:
    SETTINGS() = default;

    void add_assignment(const STATEMENT& statement);
    std::string_view lasting(const STATEMENT& statement, std::string_view text);
    void make_index();
    std::size_t first_slot_of(std::string_view name) const;
    std::size_t slot_of(std::string_view name, std::size_t first_slot) const;
    void count_among_variables(ASSIGNMENT_INDEX assignment, std::uint32_t& slot);

    LAYERS layers_by_order;
    std::deque<std::string> changed_texts; // parts of statements that are not in a layer's text as they are
    std::vector<ASSIGNMENT> all_assignments;
    std::vector<VARIABLE> all_variables;

    // Open addressing, at most half full. The number of slots is a power of two. A slot is a variable's index plus 1,
    // or 0.
    std::vector<std::uint32_t> slots;
};

// The names of all variables, for suggestions.
std::vector<std::string> names_of_variables(const SETTINGS& settings);

#endif
