#include "tools/velmar-cfg/settings/settings.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <numeric>

#include "tools/velmar-cfg/base/errors.h"

namespace
{
constexpr std::size_t fewest_slots = 16;

// The first eight bytes of a name as a number that sorts as they do.
std::uint64_t beginning_of(std::string_view name)
{
    std::uint64_t number = 0;
    for (std::size_t at = 0; at < sizeof number; ++at)
        number = number << 8 | (at < name.size() ? static_cast<unsigned char>(name[at]) : 0U);
    return number;
}
}

SETTINGS::SETTINGS(LAYERS the_layers) : layers_by_order(std::move(the_layers))
{
    STATEMENTS statements(layers_by_order);
    STATEMENT statement{};
    while (statements.next(statement))
    {
        if (statement.outcome == OUTCOME::STORED)
            add_assignment(statement);
    }
    make_index();
}

SETTINGS SETTINGS::of_one_variable(LAYERS the_layers, std::string_view name)
{
    SETTINGS settings;
    settings.layers_by_order = std::move(the_layers);
    STATEMENTS statements(settings.layers_by_order);
    STATEMENT statement{};
    while (statements.next_for(name, statement))
    {
        if (statement.outcome == OUTCOME::STORED && same_name(statement.name, name))
            settings.add_assignment(statement);
    }
    settings.make_index();
    return settings;
}

// The text where it stands in the layer, or a copy where it stands there otherwise.
std::string_view SETTINGS::lasting(const STATEMENT& statement, std::string_view text)
{
    // Not <, which is undefined between parts of different arrays.
    const std::less_equal<const char*> not_behind;
    const bool is_part = not_behind(statement.text.data(), text.data()) &&
                         not_behind(text.data() + text.size(), statement.text.data() + statement.text.size());
    return is_part || text.empty() ? text : std::string_view(changed_texts.emplace_back(text));
}

void SETTINGS::add_assignment(const STATEMENT& statement)
{
    if (all_assignments.size() == no_assignment)
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, layers_by_order[statement.layer].source->path +
                                                   ": more than four thousand million assignments; name another file");
    all_assignments.push_back({lasting(statement, statement.name), lasting(statement, statement.value),
                               statement.position, static_cast<std::uint32_t>(statement.layer)});
}

void SETTINGS::make_index()
{
    slots.assign(std::max(fewest_slots, std::bit_ceil(2 * all_assignments.size())), 0);
    for (ASSIGNMENT_INDEX i = 0; i < all_assignments.size(); ++i)
        count_among_variables(i, slots[slot_of(all_assignments[i].name)]);
}

void SETTINGS::count_among_variables(ASSIGNMENT_INDEX assignment, std::uint32_t& slot)
{
    if (slot == 0)
    {
        all_variables.push_back({assignment, assignment, {}});
        slot = static_cast<std::uint32_t>(all_variables.size());
    }
    VARIABLE& variable = all_variables[slot - 1];
    if (variable.winner != assignment)
        all_assignments[variable.winner].next_to_same = assignment;
    variable.winner = assignment;
    variable.layers.insert(layers_by_order[all_assignments[assignment].layer].kind);
}

// Where the variable of that name is, or would be.
std::size_t SETTINGS::slot_of(std::string_view name) const
{
    // The name's hash is regular in its last letters: a multiplication spreads it over the high bits.
    constexpr std::uint64_t spread = 0x9e3779b97f4a7c15U;
    const int bits = std::countr_zero(slots.size());
    std::size_t slot = static_cast<std::size_t>((hash_of_name(name) * spread) >> (64 - bits));
    while (slots[slot] != 0 && !same_name(name_of(all_variables[slots[slot] - 1]), name))
        slot = (slot + 1) & (slots.size() - 1);
    return slot;
}

const VARIABLE* SETTINGS::find(std::string_view name) const
{
    const std::uint32_t entry = slots[slot_of(name)];
    return entry == 0 ? nullptr : &all_variables[entry - 1];
}

std::vector<std::uint32_t> SETTINGS::order_by_name() const
{
    struct KEY
    {
        std::uint64_t beginning; // of the name: most names differ in it
        std::uint32_t variable;
    };
    std::vector<KEY> keys;
    keys.reserve(all_variables.size());
    for (const VARIABLE& variable : all_variables)
        keys.push_back({beginning_of(name_of(variable)), static_cast<std::uint32_t>(keys.size())});
    std::ranges::sort(keys,
                      [this](const KEY& a, const KEY& b)
                      {
                          return a.beginning != b.beginning
                                     ? a.beginning < b.beginning
                                     : name_of(all_variables[a.variable]) < name_of(all_variables[b.variable]);
                      });
    std::vector<std::uint32_t> order;
    order.reserve(keys.size());
    for (const KEY& key : keys)
        order.push_back(key.variable);
    return order;
}

std::vector<const ASSIGNMENT*> SETTINGS::assignments_to(const VARIABLE& variable) const
{
    std::vector<const ASSIGNMENT*> found;
    for (ASSIGNMENT_INDEX i = variable.first; i != no_assignment; i = all_assignments[i].next_to_same)
        found.push_back(&all_assignments[i]);
    return found;
}

std::vector<std::string> names_of_variables(const SETTINGS& settings)
{
    std::vector<std::string> names;
    for (const std::uint32_t variable : settings.order_by_name())
        names.emplace_back(settings.name_of(settings.variables()[variable]));
    return names;
}
