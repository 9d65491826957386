// The internal variables that layers set, each with every assignment to it.
//
// The layers' texts are kept whole, and assignments are views into them. Names are found by a hash index over the
// variables, made once all assignments are known: per line that assigns it takes about 70 bytes. What asks for one
// variable makes no index (of_one_variable), and its walk passes over other lines by their first character.
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

// The index of an assignment; the last one stands for none.
using ASSIGNMENT_INDEX = std::uint32_t;
inline constexpr ASSIGNMENT_INDEX no_assignment = UINT32_MAX;

// A statement that sets a variable. The texts live as long as the settings.
struct ASSIGNMENT
{
    std::string_view name; // as written, the white space taken away
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

    // The same with no variable but this one, and with it only if the layers set it.
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

    // Where the variables are, in the byte order of their names as first spelt.
    std::vector<std::uint32_t> order_by_name() const;

    // For a walk over the variables in such an order, which is at `at`: has the processor fetch what the next ones
    // need, so that the walk does not wait for memory at each. Changes nothing.
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

    // Open addressing, half full at most: a power of two of slots, each one more than a variable's index, or 0.
    std::vector<std::uint32_t> slots;
};

// The names of all variables, for suggestions.
std::vector<std::string> names_of_variables(const SETTINGS& settings);

#endif
