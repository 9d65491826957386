// Notes in one walk over all statements where each variable is assigned to.
//
// A hash table by layer and name leads to the place of a variable's first assignment and to the number of its last one.
// It uses linear probing and is two thirds full at most. It grows by the hashes that it has kept, and the old slots are
// released before the new ones are made. An assignment that follows another to the same variable in its layer is noted
// under the number of that one. After the walk these notes are sorted by the number, so that next() is a binary search.
//
// Invariants:
// - Assignments are numbered as STATEMENTS yields them.
// - No name and no value is kept: both are parsed again from the layer's text when they are needed, a name without the
//   value behind it.
// - The layers have texts. Assignments that are known by name and value alone have no place in one.
//
// Cost for n assignments, f of which follow another: O(n) expected time and O(f log f) for the walk, O(log f) for
// next(), and one search of the table per layer for first_before().
#include "tools/velmar-cfg/lint/namesakes.h"

#include <algorithm>
#include <bit>

#include "platform/gen/gen.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/settings/library_rules.h"

namespace
{
constexpr std::size_t fewest_slots = 16;
constexpr std::uint64_t largest_text = (std::uint64_t{1} << 40) - 1;

// The name's hash is regular in its last letters: a multiplication spreads it.
std::uint32_t spread_hash(std::size_t layer, std::string_view name)
{
    constexpr std::uint64_t spread = 0x9e3779b97f4a7c15U;
    return static_cast<std::uint32_t>(((hash_of_name(name) + layer) * spread) >> 32);
}

std::string_view text_of(const LAYER& layer)
{
    return is_file(layer.kind) ? layer.source->whole_lines() : std::string_view(layer.source->bytes);
}

// Where the statement stands: in the layer's text, or among the assignments that are all that is known of it.
std::size_t offset_of(const LAYER& layer, const STATEMENT& statement)
{
    if (layer.literals == nullptr)
        return static_cast<std::size_t>(statement.text.data() - text_of(layer).data());
    const auto is_statement = [&statement](const LITERAL& literal)
    { return literal.text.data() == statement.text.data(); };
    return static_cast<std::size_t>(std::ranges::find_if(*layer.literals, is_statement) - layer.literals->begin());
}
}

NAMESAKES::NAMESAKES(const LAYERS& all_layers) : layers(all_layers), slots(fewest_slots)
{
    STATEMENTS statements(layers);
    STATEMENT statement{};
    for (ASSIGNMENT_NUMBER assignment = 0; statements.next(statement);)
    {
        if (statement.outcome != OUTCOME::STORED)
            continue;
        if (assignment == UINT32_MAX || text_of(layers[statement.layer]).size() > largest_text)
            throw TOOL_ERROR(EXIT_CODE::BAD_INPUT,
                             layers[statement.layer].source->path + ": too large to be checked; name another file");
        add(statement, assignment++);
    }
    std::ranges::sort(followed, {}, &FOLLOWED::assignment);
}

void NAMESAKES::add(const STATEMENT& statement, ASSIGNMENT_NUMBER assignment)
{
    const std::size_t offset = offset_of(layers[statement.layer], statement);
    const auto position = static_cast<std::uint32_t>(statement.position);
    const auto layer = static_cast<std::uint8_t>(statement.layer);
    const std::uint32_t hash = spread_hash(layer, statement.name);
    std::uint32_t& slot = slots[slot_of(layer, statement.name, hash)];
    if (slot == 0)
    {
        variables.push_back({offset & largest_text, layer, position, hash, assignment, assignment});
        slot = static_cast<std::uint32_t>(variables.size());
        if (variables.size() * 3 > slots.size() * 2)
            grow();
        return;
    }
    VARIABLE_PLACE& variable = variables[slot - 1];
    followed.push_back({offset & largest_text, layer, position, variable.last});
    variable.last = assignment;
}

void NAMESAKES::grow()
{
    slots = std::vector<std::uint32_t>(); // first, so that only one of the two is there
    std::vector<std::uint32_t> larger(std::bit_ceil(2 * variables.size()));
    const std::size_t mask = larger.size() - 1;
    for (std::size_t i = 0; i < variables.size(); ++i)
    {
        std::size_t slot = variables[i].hash & mask;
        while (larger[slot] != 0)
            slot = (slot + 1) & mask;
        larger[slot] = static_cast<std::uint32_t>(i + 1);
    }
    slots = std::move(larger);
}

// Where the variable of that name is, or would be.
std::size_t NAMESAKES::slot_of(std::size_t layer, std::string_view name, std::uint32_t hash) const
{
    const std::size_t mask = slots.size() - 1;
    std::size_t slot = hash & mask;
    for (; slots[slot] != 0; slot = (slot + 1) & mask)
    {
        const VARIABLE_PLACE& variable = variables[slots[slot] - 1];
        if (variable.hash == hash && variable.layer == layer &&
            same_name(name_at(variable.layer, static_cast<std::size_t>(variable.offset)), name))
            break;
    }
    return slot;
}

const NAMESAKES::VARIABLE_PLACE* NAMESAKES::find(std::size_t layer, std::string_view name) const
{
    const std::uint32_t entry = slots[slot_of(layer, name, spread_hash(layer, name))];
    return entry == 0 ? nullptr : &variables[entry - 1];
}

// The name of the assignment whose text begins there. Only the text up to its "=" is looked at: the value may be long,
// and many lines may ask for the same name.
std::string NAMESAKES::name_at(std::size_t layer, std::size_t offset) const
{
    constexpr std::size_t shortest = 3; // of a line, so that the part is one too
    if (layers[layer].literals != nullptr)
        return std::string((*layers[layer].literals)[offset].name());
    const std::string_view text = text_of(layers[layer]).substr(offset);
    const std::string_view part = text.substr(0, std::max(text.find('=') + 1, shortest));
    if (!is_file(layers[layer].kind))
        return gen_remove_leading_and_trailing_spaces(std::string(part.substr(0, part.find('='))));
    LINE_PARTS parts;
    outcome_of_line(part, parts);
    return std::string(parts.name);
}

std::string NAMESAKES::value_at(std::size_t layer, std::size_t offset) const
{
    if (layers[layer].literals != nullptr)
        return std::string((*layers[layer].literals)[offset].value());
    const std::string_view text = text_of(layers[layer]).substr(offset);
    if (!is_file(layers[layer].kind))
    {
        const std::string_view item = text.substr(0, text.find(separator_of_items(layers[layer].source->bytes)));
        return gen_remove_leading_and_trailing_spaces(std::string(item.substr(item.find('=') + 1)));
    }
    LINE_PARTS parts;
    outcome_of_line(text.substr(0, text.find('\n')), parts);
    return std::string(parts.value);
}

LOCATION NAMESAKES::location_of(std::size_t layer, std::size_t position) const
{
    return {layers[layer].kind, layers[layer].source->path, position};
}

std::optional<NAMESAKES::SPELT> NAMESAKES::first_before(std::string_view name, ASSIGNMENT_NUMBER assignment) const
{
    for (std::size_t layer = 0; layer < layers.size(); ++layer)
    {
        const VARIABLE_PLACE* const variable = find(layer, name);
        if (variable != nullptr && variable->first < assignment)
            return SPELT{name_at(layer, static_cast<std::size_t>(variable->offset)),
                         location_of(layer, variable->position)};
    }
    return std::nullopt;
}

std::optional<NAMESAKES::ASSIGNED> NAMESAKES::next(ASSIGNMENT_NUMBER assignment) const
{
    const auto found = std::ranges::lower_bound(followed, assignment, {}, &FOLLOWED::assignment);
    if (found == followed.end() || found->assignment != assignment)
        return std::nullopt;
    return ASSIGNED{value_at(found->layer, static_cast<std::size_t>(found->offset)),
                    location_of(found->layer, found->position)};
}

bool NAMESAKES::is_assigned_to_later(std::string_view name, std::size_t layer, ASSIGNMENT_NUMBER assignment) const
{
    const VARIABLE_PLACE* const variable = find(layer, name);
    return variable != nullptr && variable->last >= assignment;
}
