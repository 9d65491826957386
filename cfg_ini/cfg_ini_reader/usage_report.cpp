// The four reports about the use of variables.
//
// Each is one walk over the table with the lock held, which copies what it reports. Sorting comes after the lock is
// released. The ranked report sorts no more entries than it lists. The order of the table is not fixed: the ranked
// report sorts by count and then by name, the maps sort by name, and the single most accessed variable is any one of
// those with the highest count.
#include "cfg_ini/cfg_ini_reader/usage_report.h"

#include <algorithm>
#include <string_view>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/own_variables.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"
#include "platform/gen/gen.h"

namespace zon_cfg
{
bool goes_before(const USAGE& a, const USAGE& b)
{
    // Names descend among equal counts. This is intended: reports of earlier releases are compared with this order.
    return a.second != b.second ? a.second > b.second : a.first > b.first;
}

namespace
{
// Calls visit(name, record) for every record; for none when the store is gone.
template <typename VISIT>
void for_each_record(VISIT visit) ZON_LOCK_HELD
{
    const CFG_INI_TABLE* const table = store_table();
    if (table == nullptr)
        return;
    for (const auto& [name, record] : *table)
        visit(name, *record);
}

// Whether `name` ends in `suffix`, in any letter case, with something before it.
bool has_suffix(const std::string& name, std::string_view suffix)
{
    return name.size() > suffix.size() && gen_stricmp(name.c_str() + (name.size() - suffix.size()), suffix.data()) == 0;
}

bool is_debug_message_setting(const std::string& name)
{
    return has_suffix(name, "_debug_msg") || has_suffix(name, "_debug_msg_level");
}

template <typename WANTED>
void add_variables(std::map<std::string, std::string>* out, WANTED wanted)
{
    if (!store_exists() || out == nullptr)
        return;
    const STORE_LOCK lock;
    for_each_record(
        [&](const std::string& name, const CFG_INI_RECORD& record) ZON_LOCK_HELD
        {
            if (wanted(record) && !record.value.empty())
                out->emplace(name, record.value);
        });
}

std::vector<USAGE> usages_of_at_least(std::uint64_t min)
{
    std::vector<USAGE> usages;
    const STORE_LOCK lock;
    for_each_record(
        [&](const std::string& name, const CFG_INI_RECORD& record) ZON_LOCK_HELD
        {
            if (record.access_count >= min)
                usages.emplace_back(name, record.access_count);
        });
    return usages;
}
}
}

using namespace zon_cfg;

void cfg_get_most_accessed(std::vector<std::pair<std::string, std::string>>* out)
{
    // The numbers are widened with their sign and then taken as unsigned. This is intended: a negative minimum is above
    // every count and lists nothing, and a negative maximum lists everything.
    const auto min =
        static_cast<std::uint64_t>(std::int64_t{cfg_get_int_value(OWN_VARIABLE::cfg_min_accessed_to_report, 0)});
    const auto max = static_cast<std::uint64_t>(std::int64_t{cfg_get_int_value(OWN_VARIABLE::cfg_max_to_report, 10)});
    if (!store_exists() || out == nullptr)
        return;

    std::vector<USAGE> usages = usages_of_at_least(min);
    const auto listed = static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(max, usages.size()));
    std::partial_sort(usages.begin(), usages.begin() + listed, usages.end(), goes_before);
    for (auto usage = usages.begin(); usage != usages.begin() + listed; ++usage)
        out->emplace_back(std::move(usage->first), std::to_string(usage->second));
}

std::uint64_t cfg_get_single_most_accessed_ini(std::string& name, std::string& value)
{
    if (!store_exists())
        return 0;
    std::uint64_t highest = 0;
    const std::string* highest_name = nullptr;
    const CFG_INI_RECORD* highest_record = nullptr;

    const STORE_LOCK lock;
    for_each_record(
        [&](const std::string& record_name, const CFG_INI_RECORD& record) ZON_LOCK_HELD
        {
            if (record.access_count <= highest || is_debug_message_setting(record_name))
                return;
            highest = record.access_count;
            highest_name = &record_name;
            highest_record = &record;
        });
    if (highest > 0)
    {
        name = *highest_name;
        value = highest_record->value;
    }
    return highest;
}

void cfg_get_used_variable_value_map(std::map<std::string, std::string>* out)
{
    add_variables(out, [](const CFG_INI_RECORD& record) ZON_LOCK_HELD
                  { return record.access_count != 0 && record.had_valid_read; });
}

void cfg_get_external_variable_value_map(std::map<std::string, std::string>* out)
{
    add_variables(out, [](const CFG_INI_RECORD& record) ZON_LOCK_HELD { return record.external; });
}
