#include "tools/velmar-cfg/preferences/preference_edit.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/velmar-cfg/base/file_lock.h"
#include "tools/velmar-cfg/base/file_place.h"
#include "tools/velmar-cfg/base/settled_file.h"
#include "tools/velmar-cfg/base/staged_file.h"
#include "tools/velmar-cfg/preferences/library_preferences.h"

namespace
{
// Why the file's mode, its attributes or its file system are against a change; empty when nothing is. Only the mode can
// be passed over.
std::string write_protection(const FILE_PLACE& place, const SEEN_FILE& file, bool replace_read_only)
{
    const bool protects_from_owner = (file.status().st_mode & S_IWUSR) == 0;
    const bool writable = faccessat(place.directory(), place.name().c_str(), W_OK, AT_EACCESS) == 0;
    if (!writable && (errno == EROFS || errno == EPERM))
        return std::string(std::strerror(errno)) + "; the file cannot be changed where it is";
    if (replace_read_only || (writable && !protects_from_owner))
        return {};
    return "the file is read-only; --replace-read-only does it anyway";
}

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

std::string refusal_for(const EDITED_FILE& edited, const FILE_PLACE& place, const SEEN_FILE& file,
                        const EDIT_PERMISSIONS& permissions)
{
    if (edited.before == edited.plan.after)
        return {};
    const std::string& path = edited.path;
    if (file.exists() && file.status().st_nlink > 1 && !permissions.break_hard_links)
        return path + ": the file has " + std::to_string(file.status().st_nlink) +
               " names (hard links), and the others would keep the old one; --break-hard-links does it anyway";
    if (const std::string problem =
            file.exists() ? write_protection(place, file, permissions.replace_read_only) : std::string();
        !problem.empty())
        return path + ": " + problem;
    if (permissions.lose_values || !edited.plan.loses_values())
        return {};
    if (!edited.plan.other_values.empty())
        return path + ": a save would also change " + edited.plan.other_values.front() +
               "; set that one first, or --allow-loss does it anyway";
    return path + ": a save would lose or change the value in " + lines_in_words(edited.plan.lost) +
           "; mend the file (see velmar-cfg prefs lint), or --allow-loss does it anyway";
}

EDITED_FILE planned(const PREFERENCE_CHANGE& change, const FILE_PLACE& place, const SEEN_FILE& file,
                    const EDIT_PERMISSIONS& permissions)
{
    EDITED_FILE edited;
    edited.path = place.path();
    edited.before = file.bytes();
    edited.plan = plan_preference_change(edited.path, edited.before, change);
    edited.refusal = refusal_for(edited, place, file, permissions);
    return edited;
}

MOMENT deadline_after(std::chrono::milliseconds patience)
{
    return std::chrono::steady_clock::now() + patience;
}
}

EDITED_FILE try_preference_change(const PREFERENCE_CHANGE& change, const EDIT_PERMISSIONS& permissions,
                                  std::chrono::milliseconds patience)
{
    check_preference_value(change);
    const FILE_PLACE place(cfg_generate_user_ini_file_path());
    return planned(change, place, read_settled_file(place, deadline_after(patience)), permissions);
}

EDITED_FILE change_preference(const PREFERENCE_CHANGE& change, const EDIT_PERMISSIONS& permissions,
                              std::chrono::milliseconds patience)
{
    check_preference_value(change);
    const MOMENT deadline = deadline_after(patience);
    const FILE_PLACE place(cfg_generate_user_ini_file_path());
    const FILE_LOCK lock(place, deadline);
    remove_abandoned_files(place);
    for (;;)
    {
        const SEEN_FILE file = read_settled_file(place, deadline);
        EDITED_FILE edited = planned(change, place, file, permissions);
        const REPLACEMENT replacement =
            edited.changed() ? STAGED_FILE(place, file, edited.plan.after).replace_target() : REPLACEMENT::DONE;
        if (replacement == REPLACEMENT::DONE)
            return edited;
        if (std::chrono::steady_clock::now() >= deadline)
            fail_to_write(edited.path, replacement == REPLACEMENT::OPEN_FOR_WRITING
                                           ? "another program has it open for writing; nothing was changed, run the "
                                             "command again when that program has closed it"
                                           : "another program changed it meanwhile; nothing was changed, run the "
                                             "command again");
    }
}
