// Joins the plan for preferences (preference_plan.h) and the edit of a file (file_edit.h), and makes the message when a
// plan is refused because it loses values. The plan is made again in each attempt of the edit; the last one counts.
#include "tools/velmar-cfg/preferences/preference_edit.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/preferences/library_preferences.h"
#include "tools/velmar-cfg/preferences/preference_save.h"

namespace
{
std::string lines_in_words(const std::vector<LOST_LINE>& lost)
{
    constexpr std::size_t most_named = 5;
    std::string numbers;
    std::size_t count = 0;
    for (const LOST_LINE& line : lost)
    {
        if (line.value_lost && ++count <= most_named)
            numbers += (count == 1 ? " " : ", ") + std::to_string(line.number);
    }
    if (count > most_named)
        numbers += " and " + std::to_string(count - most_named) + " more";
    return (count == 1 ? "line" : "lines") + numbers;
}

std::string refusal_for(const std::string& path, const PREFERENCE_PLAN& plan, const EDIT_PERMISSIONS& permissions)
{
    if (permissions.lose_values || !plan.loses_values())
        return {};
    if (!plan.other_values.empty())
        return path + ": a save would also change " + plan.other_values.front() +
               "; set that one first, or --allow-loss changes it anyway";
    return path + ": a save would lose or change the value in " + lines_in_words(plan.lost) +
           "; mend the file (see velmar-cfg prefs lint), or --allow-loss changes it anyway";
}

EDITED_FILE edited_by(decltype(edit_file)& edit, const std::vector<PREFERENCE_CHANGE>& changes,
                      const EDIT_PERMISSIONS& permissions, std::chrono::milliseconds patience)
{
    std::ranges::for_each(changes, check_preference_value);
    EDITED_FILE edited;
    const auto plan = [&](const FILE_EDIT& file)
    {
        refuse_utf_16(file.path, file.before);
        edited.plan = plan_preference_changes(file.path, file.before, changes);
        return PLANNED_BYTES{edited.plan.after, refusal_for(file.path, edited.plan, permissions)};
    };
    static_cast<FILE_EDIT&>(edited) = edit(cfg_generate_user_ini_file_path(), plan, permissions, patience);
    return edited;
}
}

EDITED_FILE try_preference_changes(const std::vector<PREFERENCE_CHANGE>& changes, const EDIT_PERMISSIONS& permissions,
                                   std::chrono::milliseconds patience)
{
    return edited_by(try_file_edit, changes, permissions, patience);
}

EDITED_FILE change_preferences(const std::vector<PREFERENCE_CHANGE>& changes, const EDIT_PERMISSIONS& permissions,
                               std::chrono::milliseconds patience)
{
    return edited_by(edit_file, changes, permissions, patience);
}
