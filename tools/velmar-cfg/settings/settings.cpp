// Makes the table of variables from the assignments of all layers.
//
// A walk over the layers lists the stored assignments. A name or value is a view of its layer's text where it stands
// there as it is, else a copy. Then a hash index is made, at once as large as all assignments need. Each assignment is
// looked up in it by name: the first of a name makes the variable, and any further one is linked behind the one before
// it and becomes the winner.
//
// Invariants:
// - The links lead from a variable's first assignment to its winner, in the order in which they are applied.
// - The index is half full at most and nothing is removed from it, so that a search ends at the first free slot.
//
// In a large file, each look at a name or a slot would wait for memory. make_index() therefore has the slots of the
// next 16 names fetched while it works on those before, and fetch_ahead() does the like for walks.
//
// Cost for n assignments: O(n) expected time. order_by_name() sorts v names in O(v log v), by eight bytes at a time:
// each eight bytes that many names have in common cost one round more.
#include "tools/velmar-cfg/settings/settings.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <functional>
#include <span>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/settings/library_rules.h"

namespace
{
constexpr std::size_t fewest_slots = 16;

// Eight bytes of a name, as many as there are from `at` on, as a number that sorts as they do.
std::uint64_t eight_bytes_of(std::string_view name, std::size_t at)
{
    std::uint64_t number = 0;
    const std::string_view bytes = name.substr(std::min(at, name.size()), sizeof number);
    std::memcpy(&number, bytes.data(), bytes.size());
    return std::endian::native == std::endian::little ? __builtin_bswap64(number) : number;
}

struct SORT_KEY
{
    std::uint64_t bytes; // of the name, as far as it has been sorted
    std::uint32_t variable;
};

// Names whose first `equal` bytes are the same.
struct NAME_GROUP
{
    std::span<SORT_KEY> keys;
    std::size_t equal;
};
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
    // The slots of the next names are on their way from memory while the names before them are counted.
    constexpr std::size_t ahead = 16;
    std::array<std::size_t, ahead> first_slots{};
    for (std::size_t i = 0; i < all_assignments.size() + ahead; ++i)
    {
        std::size_t& first_slot = first_slots[i % ahead];
        if (i >= ahead)
        {
            const std::size_t assignment = i - ahead;
            count_among_variables(static_cast<ASSIGNMENT_INDEX>(assignment),
                                  slots[slot_of(all_assignments[assignment].name, first_slot)]);
        }
        if (i < all_assignments.size())
        {
            first_slot = first_slot_of(all_assignments[i].name);
            __builtin_prefetch(&slots[first_slot]);
        }
    }
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
    const LAYER& layer = layers_by_order[all_assignments[assignment].layer];
    variable.layers.insert(layer.kind, layer.external.value_or(marks_external(layer.kind)));
}

// Where the search for a name begins.
std::size_t SETTINGS::first_slot_of(std::string_view name) const
{
    // The name's hash is regular in its last letters: a multiplication spreads it over the high bits.
    constexpr std::uint64_t spread = 0x9e3779b97f4a7c15U;
    const int bits = std::countr_zero(slots.size());
    return static_cast<std::size_t>((hash_of_name(name) * spread) >> (64 - bits));
}

// Where the variable of that name is, or would be.
std::size_t SETTINGS::slot_of(std::string_view name, std::size_t first_slot) const
{
    std::size_t slot = first_slot;
    while (slots[slot] != 0 && !same_name(name_of(all_variables[slots[slot] - 1]), name))
        slot = (slot + 1) & (slots.size() - 1);
    return slot;
}

const VARIABLE* SETTINGS::find(std::string_view name) const
{
    const std::uint32_t entry = slots[slot_of(name, first_slot_of(name))];
    return entry == 0 ? nullptr : &all_variables[entry - 1];
}

// Sorts by eight bytes at a time, which stand beside each other, and goes back to the names only where those are equal:
// a comparison of names that are anywhere in the file would wait for memory each time.
std::vector<std::uint32_t> SETTINGS::order_by_name() const
{
    constexpr std::size_t few = 8;
    const auto name = [this](const SORT_KEY& key) { return name_of(all_variables[key.variable]); };
    std::vector<SORT_KEY> keys(all_variables.size());
    for (std::size_t i = 0; i < keys.size(); ++i)
        keys[i].variable = static_cast<std::uint32_t>(i);

    std::vector<NAME_GROUP> unsorted{{keys, 0}};
    while (!unsorted.empty())
    {
        const auto [group, equal] = unsorted.back();
        unsorted.pop_back();
        if (group.size() <= few)
        {
            std::ranges::sort(group, {}, name);
            continue;
        }
        for (SORT_KEY& key : group)
            key.bytes = eight_bytes_of(name(key), equal);
        std::ranges::sort(group, {}, &SORT_KEY::bytes);
        for (std::size_t begin = 0, end = 0; begin < group.size(); begin = end)
        {
            while (end < group.size() && group[end].bytes == group[begin].bytes)
                ++end;
            if (end - begin > 1)
                unsorted.push_back({group.subspan(begin, end - begin), equal + sizeof(SORT_KEY::bytes)});
        }
    }
    std::vector<std::uint32_t> order(keys.size());
    std::ranges::transform(keys, order.begin(), &SORT_KEY::variable);
    return order;
}

void SETTINGS::fetch_ahead(std::span<const std::uint32_t> order, std::size_t at) const
{
    // Each step's address is known once the step before it has come.
    constexpr std::size_t step = 6;
    if (at + 3 * step < order.size())
        __builtin_prefetch(&all_variables[order[at + 3 * step]]);
    if (at + 2 * step < order.size())
        __builtin_prefetch(&all_assignments[all_variables[order[at + 2 * step]].winner]);
    if (at + step < order.size())
        __builtin_prefetch(all_assignments[all_variables[order[at + step]].winner].name.data());
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
