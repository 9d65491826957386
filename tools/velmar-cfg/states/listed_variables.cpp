// A list of variables that are set, by name, is a walk over the settings: each row is made, handed over and forgotten.
// If variables without a value are to be in it, or the order is another, all rows are collected, sorted by name and
// then, without disturbing that order, by how often they were read.
//
// Cost for v variables: O(v log v) time. Memory: the order by name, 4 bytes a variable; where rows are collected, those
// too.
#include "tools/velmar-cfg/states/listed_variables.h"

#include <algorithm>
#include <string>
#include <vector>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/settings/known_variables.h"
#include "tools/velmar-cfg/settings/typed_readings.h"
#include "tools/velmar-cfg/settings/variable_name.h"

namespace
{
using TAKE = std::function<void(const LISTED_VARIABLE&)>;

std::string_view default_of(std::string_view name)
{
    const KNOWN_VARIABLE* const known = find_known_variable(name);
    return known == nullptr ? std::string_view() : std::string_view(known->default_text);
}

// A text that is no switch is another value than every default. What has no default is changed by all but the empty
// text, which reads as if it was not set.
bool is_changed(const LISTED_VARIABLE& variable)
{
    if (!variable.value)
        return false;
    if (variable.default_text.empty())
        return !variable.value->empty() && find_known_variable(variable.name) != nullptr;
    const std::optional<bool> value = read_typed(*variable.value).boolean;
    return has_hidden_parts(*variable.value) || !value || value != read_typed(variable.default_text).boolean;
}

bool is_wanted(const LISTED_VARIABLE& variable, const LISTED_KINDS& kinds)
{
    return (!kinds.only_external || variable.external) && (!kinds.only_changed || is_changed(variable));
}

void for_each_set(const SETTINGS& settings, const TAKE& take)
{
    const std::vector<std::uint32_t> order = settings.order_by_name();
    for (std::size_t i = 0; i < order.size(); ++i)
    {
        settings.fetch_ahead(order, i);
        const VARIABLE& variable = settings.variables()[order[i]];
        take({settings.name_of(variable), settings.value_of(variable), variable.layers.mark_external(),
              settings.location_of(variable)});
    }
}

void add_unset(const STATE& state, const SETTINGS& settings, std::vector<LISTED_VARIABLE>& variables)
{
    for (const KNOWN_VARIABLE& known : known_variables())
    {
        if (settings.find(known.name) == nullptr && state.absent_variable(known.name) == ABSENT_VARIABLE::UNSET)
            variables.push_back({known.name, std::nullopt, false, std::nullopt, known.default_text});
    }
}

void count_reads(const STATE& state, std::vector<LISTED_VARIABLE>& variables)
{
    BY_VARIABLE_NAME<std::uint64_t> counts;
    for (const READ_COUNT& read : *state.reads)
        counts[read.name] = read.count;
    for (LISTED_VARIABLE& variable : variables)
    {
        if (const auto found = counts.find(std::string(variable.name)); found != counts.end())
            variable.reads = found->second;
    }
}

// Those that were read and have no value, but for what add_unset() adds.
void add_read(const STATE& state, const SETTINGS& settings, bool with_unset, std::vector<LISTED_VARIABLE>& variables)
{
    for (const READ_COUNT& read : *state.reads)
    {
        const ABSENT_VARIABLE known = state.absent_variable(read.name);
        const bool is_added = with_unset && find_known_variable(read.name) != nullptr;
        if (!is_added && read.count > 0 && settings.find(read.name) == nullptr &&
            known != ABSENT_VARIABLE::NOT_RECORDED)
            variables.push_back(
                {read.name, std::nullopt, false, std::nullopt, default_of(read.name), read.count, known});
    }
}
}

void require_listed(const STATE& state, const LISTED_KINDS& kinds)
{
    if (kinds.by_reads && !state.reads)
        throw TOOL_ERROR(EXIT_CODE::USAGE, "only a run report says how often variables were read; name one with --of");
    if (kinds.unset_too)
        state.require(state.knows_unset);
}

void for_each_listed(const STATE& state, const SETTINGS& settings, const LISTED_KINDS& kinds, const TAKE& take)
{
    const bool with_defaults = kinds.only_changed || kinds.unset_too;
    const auto take_wanted = [&](LISTED_VARIABLE variable)
    {
        if (with_defaults && variable.default_text.empty())
            variable.default_text = default_of(variable.name);
        if (is_wanted(variable, kinds))
            take(variable);
    };
    const std::vector<std::string_view> not_recorded = state.variables_not_recorded(settings);
    // What only walks over the settings keeps nothing of them.
    if (!kinds.unset_too && !kinds.by_reads && not_recorded.empty())
    {
        for_each_set(settings, take_wanted);
        return;
    }
    std::vector<LISTED_VARIABLE> variables;
    for_each_set(settings, [&variables](const LISTED_VARIABLE& variable) { variables.push_back(variable); });
    for (const std::string_view name : not_recorded)
        variables.push_back({name, std::nullopt, false, std::nullopt, {}, 0, ABSENT_VARIABLE::NOT_RECORDED});
    if (kinds.unset_too)
        add_unset(state, settings, variables);
    if (state.reads)
        count_reads(state, variables);
    if (kinds.by_reads)
        add_read(state, settings, kinds.unset_too, variables);
    std::ranges::stable_sort(variables, {}, &LISTED_VARIABLE::name);
    if (kinds.by_reads)
        std::ranges::stable_sort(variables, std::greater<>(), &LISTED_VARIABLE::reads);
    std::ranges::for_each(variables, take_wanted);
}
