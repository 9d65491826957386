// The variables of a state as a list: those that are set, and what else is known of variables.
#ifndef TOOLS_VELMAR_CFG_STATES_LISTED_VARIABLES_H
#define TOOLS_VELMAR_CFG_STATES_LISTED_VARIABLES_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/states/state.h"

// Which variables are wanted, and in which order.
struct LISTED_KINDS
{
    bool only_external = false;
    bool only_changed = false; // known, and another switch value than its default; without a default, not empty
    bool unset_too = false;    // those that are known and not set
    bool by_reads = false;     // the most read first, instead of by name
};

struct LISTED_VARIABLE
{
    std::string_view name;
    std::optional<std::string_view> value; // nothing where none is known
    bool external = false;
    std::optional<LOCATION> location = {}; // of a variable that is set
    std::string_view default_text = {};    // the catalogue's; empty for none
    std::uint64_t reads = 0;
    ABSENT_VARIABLE without_value = ABSENT_VARIABLE::UNSET; // what is known of one without a value

    // Nothing where it is not known.
    std::optional<bool> is_set() const
    {
        return value ? std::optional(true) : is_set_without_value(without_value);
    }
};

// Throws TOOL_ERROR(USAGE) when the state cannot tell which variables these are.
void require_listed(const STATE& state, const LISTED_KINDS& kinds);

// Hands over the wanted variables in the byte order of their names as first spelt; with `by_reads`, this is the order
// of those that were read equally often. `settings` are those of the state. The texts belong to either.
void for_each_listed(const STATE& state, const SETTINGS& settings, const LISTED_KINDS& kinds,
                     const std::function<void(const LISTED_VARIABLE&)>& take);

#endif
