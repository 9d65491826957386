// What a state answers for itself, without a look at where it was taken from.
#include "tools/velmar-cfg/states/state.h"

#include <algorithm>

#include "tools/velmar-cfg/base/errors.h"

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

bool STATE::knows_unset_variable(const std::string& variable) const
{
    return knows_unset || (snapshot && snapshot->known_unset.contains(variable));
}

void STATE::require(bool known) const
{
    if (!known)
        throw TOOL_ERROR(EXIT_CODE::USAGE, name + ": " + limits);
}
