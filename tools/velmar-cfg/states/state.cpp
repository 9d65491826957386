// What a state answers for itself, without a look at where it was taken from.
#include "tools/velmar-cfg/states/state.h"

#include <algorithm>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/preferences/library_preferences.h"
#include "tools/velmar-cfg/settings/library_rules.h"

std::optional<PREFERENCE> STATE_PREFERENCES::look_up(CFG_USER_INI_ENUMS number) const
{
    if (lines)
        return lines->look_up(number);
    PREFERENCE preference = PREFERENCES("").look_up(number); // what the catalogue says of it
    const auto answer = std::ranges::find(answers, preference.key, &SNAPSHOT_PREFERENCE::key);
    if (answer == answers.end())
        return std::nullopt;
    preference.value = answer->value;
    preference.default_value = answer->default_value;
    preference.origin = answer->origin;
    preference.release = answer->release;
    return preference;
}

std::string STATE::heading() const
{
    if (changes.empty())
        return view;
    return view.empty() ? "what if: " + changes : view + "; what if: " + changes;
}

std::optional<bool> is_set_without_value(ABSENT_VARIABLE known)
{
    return known == ABSENT_VARIABLE::NOT_KNOWN ? std::nullopt : std::optional(known == ABSENT_VARIABLE::NOT_RECORDED);
}

ABSENT_VARIABLE STATE::absent_variable(const std::string& variable) const
{
    if (snapshot && snapshot->not_recorded.contains(variable))
        return ABSENT_VARIABLE::NOT_RECORDED;
    const bool is_unset = knows_unset || (snapshot && snapshot->known_unset.contains(variable));
    return is_unset ? ABSENT_VARIABLE::UNSET : ABSENT_VARIABLE::NOT_KNOWN;
}

std::string STATE::why_not_known(const std::string& variable) const
{
    return undecided.contains(variable) ? "is not known: " + name + " names it and does not tell whether it was set"
                                        : "is not in " + name + ": " + limits;
}

std::vector<std::string_view> STATE::variables_not_recorded(const SETTINGS& settings) const
{
    std::vector<std::string_view> names;
    if (!snapshot)
        return names;
    for (const std::string& variable : snapshot->not_recorded)
    {
        if (settings.find(variable) == nullptr)
            names.emplace_back(variable);
    }
    std::ranges::sort(names);
    return names;
}

std::vector<std::string> STATE::names_in_report() const
{
    if (!reads)
        return {};
    std::vector<std::string> names(undecided.begin(), undecided.end());
    for (const READ_COUNT& read : *reads)
        names.push_back(read.name);
    std::ranges::sort(names);
    return names;
}

std::optional<std::uint64_t> STATE::reads_of(const std::string& variable) const
{
    if (!reads)
        return std::nullopt;
    const auto found =
        std::ranges::find_if(*reads, [&variable](const READ_COUNT& read) { return same_name(read.name, variable); });
    return found == reads->end() ? std::nullopt : std::optional(found->count);
}

void STATE::require(bool known) const
{
    if (!known)
        throw TOOL_ERROR(EXIT_CODE::USAGE, name + ": " + limits);
}
