// Plans changes by doing what a program does that loads the file, looks every preference up, changes some and saves.
// The load, the lookups and the save are those of the models in preferences.h and preference_save.h.
//
// 1. Changes that the file already answers as wanted are dropped. If none is left, the bytes stay.
// 2. The values of older releases are carried over into the running release's section, as lookups do it.
// 3. The changes are made to the records. A preference that goes back to its default loses its value. If that of an
//    older release shows through then, the default is written instead.
// 4. The records are saved. A value that was there already may have hung on a line that a save does not keep: it is
//    then written as well, and the save is made again.
// 5. The answers of the old and the new text are compared. A change that does not hold is refused, and other
//    preferences whose values change are listed.
//
// Nothing is written and nothing is kept between plans. Cost for a file of n lines: O(n log n) time for each save and
// each reading of a text, of which there are a few, and two more for each preference that goes back to its default.
// O(n) memory.
#include "tools/velmar-cfg/preferences/preference_plan.h"

#include <algorithm>
#include <iterator>

#include "platform/gen/gen.h"
#include "platform/ver/ver.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/preferences/preference_lines.h"
#include "tools/velmar-cfg/preferences/preferences.h"

using namespace zon_cfg;

namespace
{
std::string key_of(CFG_USER_INI_ENUMS number)
{
    return cfg_get_user_ini_ini_string(number);
}

bool is_allowed(CFG_USER_INI_ENUMS number, const std::string& value)
{
    return find_fitting_triple(number, value.c_str()) != nullptr;
}

// Whether the file says already what the change wants.
bool nothing_to_do(const PREFERENCE_CHANGE& change, const PREFERENCES& before)
{
    const PREFERENCE preference = before.look_up(change.number);
    if (!change.value)
        return preference.origin.source == PREFERENCE_SOURCE::DEFAULT ||
               preference.origin.source == PREFERENCE_SOURCE::NOWHERE;
    return preference.value == *change.value &&
           (change.may_stand_elsewhere || preference.origin.source == PREFERENCE_SOURCE::RUNNING_RELEASE);
}

bool holds(const PREFERENCE_CHANGE& change, const PREFERENCES& preferences)
{
    return preferences.look_up(change.number).value == change.value.value_or(default_preference_value(change.number));
}

// A value that held already may have hung on a line that a save does not keep, such as the header of an empty section.
// Returns whether there was one.
bool write_what_no_longer_holds(const std::vector<PREFERENCE_CHANGE>& changes, const PREFERENCES& after,
                                PREFERENCE_RECORDS& records)
{
    bool found = false;
    for (const PREFERENCE_CHANGE& change : changes)
    {
        if (!change.may_stand_elsewhere || holds(change, after))
            continue;
        records.assign(change.number, *change.value);
        found = true;
    }
    return found;
}

// A lookup copies a value of an older release into the running release's section, unless it is not allowed any more.
void carry_values_over(const PREFERENCES& before, PREFERENCE_RECORDS& records)
{
    for (const CFG_USER_INI_ENUMS number : all_preference_numbers())
    {
        const PREFERENCE preference = before.look_up(number);
        const bool older = preference.origin.source == PREFERENCE_SOURCE::OLDER_RELEASE ||
                           preference.origin.source == PREFERENCE_SOURCE::UNVERSIONED_SECTION;
        if (older && is_allowed(number, preference.value))
            records.assign(number, preference.value);
    }
}

// The first line whose header names that section; 0 when none does.
std::size_t line_of_section(std::string_view bytes, const std::string& section)
{
    std::size_t found = 0;
    for_each_preference_line(bytes,
                             [&](std::size_t number, std::string_view, const PREFERENCE_LINE& line, const std::string&)
                             {
                                 if (found == 0 && line.kind == PREFERENCE_LINE_KIND::HEADER && line.section == section)
                                     found = number;
                             });
    return found;
}

// "PATH:LINE: the section [SECTION]", to begin a message with.
std::string culprit(const std::string& path, std::string_view bytes, const std::string& section)
{
    return path + ":" + std::to_string(line_of_section(bytes, section)) + ": the section [" + section + "]";
}

[[noreturn]] void refuse_shadowed_section(const std::string& path, std::string_view before, std::string_view after,
                                          CFG_USER_INI_ENUMS number)
{
    const std::string wanted = cfg_get_section_for_name(key_of(number).c_str(), nullptr, true);
    std::string in_its_place;
    for_each_preference_line(after,
                             [&](std::size_t, std::string_view, const PREFERENCE_LINE& line, const std::string&)
                             {
                                 if (line.kind == PREFERENCE_LINE_KIND::HEADER &&
                                     gen_stricmp(line.section.c_str(), wanted.c_str()) == 0)
                                     in_its_place = line.section;
                             });
    throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, culprit(path, before, in_its_place) + " differs from [" + wanted +
                                                 "] in letter case only, and a save would write " + key_of(number) +
                                                 " below it, where no lookup finds it; rename that section");
}

// Brings the preference back to its default: first by leaving it out; if an older release then shows through, by
// writing the default.
void reset(const std::string& path, std::string_view before, CFG_USER_INI_ENUMS number, PREFERENCE_RECORDS& records)
{
    records.clear(number);
    const PREFERENCE left_out = PREFERENCES(records.saved()).look_up(number);
    const std::string default_value = default_preference_value(number);
    if (left_out.value == default_value)
        return;
    if (default_value.empty())
        throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, culprit(path, before, left_out.origin.section) + " gives " +
                                                     key_of(number) + " the value '" + left_out.value +
                                                     "', which its empty default cannot override; remove the value "
                                                     "there");
    records.assign(number, default_value);
}

// What makes the other preference change, to end a sentence with.
std::string reason_of_change(const PREFERENCE& before, const PREFERENCE& after, const std::vector<LOST_LINE>& lost)
{
    std::string reason = after.origin.section.empty() ? "" : ", as [" + after.origin.section + "] says";
    // An empty section, or an empty value, keeps older values away; and one in another letter case takes effect.
    const std::string running = released_section(before.section, ver_get_version());
    const auto gone = std::ranges::find_if(lost, [&](const LOST_LINE& line)
                                           { return gen_stricmp(line.section.c_str(), running.c_str()) == 0; });
    if (gone != lost.end())
        reason += ", since line " + std::to_string(gone->number) + " is not kept as it is";
    return reason;
}

// The other preferences whose values change, each with what makes it change.
void compare_values(const PREFERENCES& before, const PREFERENCES& after, const std::vector<PREFERENCE_CHANGE>& changes,
                    PREFERENCE_PLAN& plan)
{
    const auto is_changed = [&changes](CFG_USER_INI_ENUMS number)
    { return std::ranges::find(changes, number, &PREFERENCE_CHANGE::number) != changes.end(); };
    for (const CFG_USER_INI_ENUMS number : all_preference_numbers())
    {
        const PREFERENCE old_answer = before.look_up(number);
        const PREFERENCE new_answer = after.look_up(number);
        if (old_answer.value == new_answer.value || is_changed(number))
            continue;
        const std::string change_of_value =
            key_of(number) + " from '" + old_answer.value + "' to '" + new_answer.value + "'";
        if (is_allowed(number, old_answer.value))
            plan.other_values.push_back(change_of_value + reason_of_change(old_answer, new_answer, plan.lost));
        else
            plan.warnings.push_back("this also changes " + change_of_value +
                                    ": the old value is an older release's and is no longer allowed");
    }
}
}

bool PREFERENCE_PLAN::loses_values() const
{
    return !other_values.empty() || std::ranges::any_of(lost, [](const LOST_LINE& line) { return line.value_lost; });
}

void check_preference_value(const PREFERENCE_CHANGE& change)
{
    if (!change.value)
        return;
    const std::string key = key_of(change.number);
    const std::string& value = *change.value;
    if (value.empty())
        throw TOOL_ERROR(EXIT_CODE::REFUSED,
                         "an empty value counts as none; velmar-cfg prefs reset " + key + " goes back to the default");
    if (!is_allowed(change.number, value))
        throw TOOL_ERROR(EXIT_CODE::REFUSED, "'" + value + "' is not allowed for " + key + "; allowed: " +
                                                 allowed_as_text(allowed_preference_values(change.number)));
    const PREFERENCE_LINE line = classify_preference_line(key + " = " + value);
    if (line.value == value && value.find('\n') == std::string::npos)
        return;
    const std::string first_line = value.substr(0, value.find('\n'));
    const std::string read_back = classify_preference_line(key + " = " + first_line).value;
    throw TOOL_ERROR(EXIT_CODE::REFUSED, "the file cannot hold this value: it would be read back as " +
                                             (read_back.empty() ? "nothing" : "'" + read_back + "'") +
                                             "; leave out '[', line ends, and blanks or quotes at both ends");
}

PREFERENCE_PLAN plan_preference_changes(const std::string& path, std::string_view before,
                                        const std::vector<PREFERENCE_CHANGE>& changes)
{
    const PREFERENCES answers_before(before);
    PREFERENCE_PLAN plan;
    std::vector<PREFERENCE_CHANGE> to_make;
    std::ranges::copy_if(changes, std::back_inserter(to_make),
                         [&answers_before](const PREFERENCE_CHANGE& change)
                         { return !nothing_to_do(change, answers_before); });
    if (to_make.empty())
    {
        plan.after = before;
        return plan;
    }
    PREFERENCE_RECORDS records(before);
    carry_values_over(answers_before, records);
    for (const PREFERENCE_CHANGE& change : to_make)
    {
        if (change.value)
            records.assign(change.number, *change.value);
        else
            reset(path, before, change.number, records);
    }
    plan.after = records.saved();
    if (write_what_no_longer_holds(changes, PREFERENCES(plan.after), records))
        plan.after = records.saved();
    plan.lost = records.lost_lines();
    const PREFERENCES answers_after(plan.after);
    for (const PREFERENCE_CHANGE& change : changes)
    {
        if (!holds(change, answers_after))
            refuse_shadowed_section(path, before, plan.after, change.number);
    }
    compare_values(answers_before, answers_after, changes, plan);
    return plan;
}
