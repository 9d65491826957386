// Joins the usage reports of the library to one list of all variables, and subtracts the accesses that making the list
// has caused.
//
// The ranked report leaves variables out by two limits, which are variables themselves (the "steering" ones). Both are
// set so that nothing is left out, and set back afterwards, also when an exception ends the report. The accesses of
// this file to them, in this and in earlier reports, are counted here and subtracted from their counts. Setting a
// variable clears its mark that its value was used. Therefore the used variables are asked for first, and a steering
// variable that was among them is read once more after it was set back.
//
// The lookup that makes a record is not counted by the store. A count that is lower than the number of own accesses
// shows that a report made the record: one access fewer is taken off then. If nobody else asked for such a variable and
// it has no text, it is left out.
//
// The counts of own accesses, and whether a report made the record, are all that is kept for the process. They begin
// anew when the store is emptied, since each steering variable is a callback of its own name.
//
// Cost for n variables: O(n log n) time for maps and orders, O(n) memory.
#include "cfg_run_report/run_usage.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <map>

#include "cfg_ini/cfg_ini.h"
#include "platform/gen/gen.h"

namespace
{
using VALUES = std::map<std::string, std::string>;

bool same_name(const std::string& a, const std::string& b)
{
    return gen_stricmp(a.c_str(), b.c_str()) == 0;
}

// The order of the ranked report.
bool goes_before(const VARIABLE_USAGE& a, const VARIABLE_USAGE& b)
{
    return a.count != b.count ? a.count > b.count : a.name > b.name;
}

// One of the two variables that steer the ranked report. Knows which of its accesses are not the run's.
class STEERING_VARIABLE : public CFG_INI_CALLBACK
{
public:
    STEERING_VARIABLE(const char* variable_name, const char* value_that_lists_all)
        : CFG_INI_CALLBACK(variable_name), name(variable_name), listing_all(value_that_lists_all)
    {
    }

    // The store is empty again, and no access counted.
    void reset_to_default() override
    {
        own_accesses = 0;
        made_here = false;
    }

    bool is_named(const std::string& other) const
    {
        return same_name(name, other);
    }

    void remember(const VALUES& used_before)
    {
        was_used = std::any_of(used_before.begin(), used_before.end(),
                               [this](const auto& variable) { return is_named(variable.first); });
        own_value = cfg_get_value(name);
        ++own_accesses;
    }

    void list_all()
    {
        cfg_set_value(name, listing_all);
        own_accesses_reported = ++own_accesses; // the ranked report that follows looks it up
    }

    void restore()
    {
        cfg_set_value(name, own_value);
        if (was_used)
        {
            static_cast<void>(cfg_get_value(name)); // marks it again
            ++own_accesses;
        }
    }

    // The run's part of a count that the ranked report gave; none when nobody but run reports asked for the variable.
    std::optional<std::uint64_t> accesses_of_run(std::uint64_t count)
    {
        // The access that made the record was not counted: a count that falls short by one tells that it was an own
        // one.
        if (count < own_accesses_reported)
        {
            made_here = true;
            --own_accesses;
            --own_accesses_reported;
        }
        const std::uint64_t others = count - std::min(count, own_accesses_reported);
        return made_here && others == 0 && own_value.empty() ? std::nullopt : std::optional(others);
    }

private:
    const char* const name;
    const char* const listing_all;
    std::string own_value;
    bool was_used = false;
    std::uint64_t own_accesses_reported = 0;

    // Changed by another thread that empties the store.
    std::atomic<std::uint64_t> own_accesses = 0;
    std::atomic<bool> made_here = false;
};

using STEERING = std::array<STEERING_VARIABLE, 2>;

STEERING& steering_variables()
{
    // Kept for the process, so that a later report knows of the accesses of an earlier one.
    static STEERING variables = {
        STEERING_VARIABLE{"cfg_min_accessed_to_report", "0"},
        STEERING_VARIABLE{"cfg_max_to_report", "-1"},
    };
    return variables;
}

void restore_all(STEERING& steering)
{
    for (STEERING_VARIABLE& variable : steering)
        variable.restore();
}

// The ranked report, with every variable.
std::vector<std::pair<std::string, std::string>> complete_ranked_report(STEERING& steering)
{
    std::vector<std::pair<std::string, std::string>> ranked;
    try
    {
        for (STEERING_VARIABLE& variable : steering)
            variable.list_all();
        cfg_get_most_accessed(&ranked);
    }
    catch (...)
    {
        restore_all(steering);
        throw;
    }
    restore_all(steering);
    return ranked;
}

std::optional<std::uint64_t> accesses_of_run(const std::string& name, std::uint64_t count, STEERING& steering)
{
    for (STEERING_VARIABLE& variable : steering)
    {
        if (variable.is_named(name))
            return variable.accesses_of_run(count);
    }
    return count;
}
}

std::vector<VARIABLE_USAGE> usage_of_all_variables()
{
    // The used ones first: asking for the steering variables below marks them.
    VALUES used;
    cfg_get_used_variable_value_map(&used);
    STEERING& steering = steering_variables();
    for (STEERING_VARIABLE& variable : steering)
        variable.remember(used);
    VALUES values;
    cfg_get_external_variable_value_map(&values);
    values.insert(used.begin(), used.end());

    std::vector<VARIABLE_USAGE> usages;
    for (const auto& [name, count_text] : complete_ranked_report(steering))
    {
        const std::optional<std::uint64_t> count = accesses_of_run(name, std::stoull(count_text), steering);
        if (!count)
            continue;
        const auto value = values.find(name);
        usages.push_back({name, *count, value == values.end() ? std::nullopt : std::optional(value->second),
                          cfg_ini_is_external(name), used.count(name) != 0});
    }
    std::sort(usages.begin(), usages.end(), goes_before); // again: own accesses are taken off
    return usages;
}
