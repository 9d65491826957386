// Changes a file in attempts. Each attempt reads the file when it is settled (settled_file.h), has the new bytes
// planned from those, writes them beside the file, and puts them in its place if the file is still the one that was
// read (staged_file.h). Otherwise the next attempt begins with the reading, until the deadline has passed.
//
// Invariants:
// - The bytes that are replaced are those that the plan was made from: the plan of another attempt is never used.
// - Nothing is written where the plan changes nothing or something forbids the change. The reasons of the file itself
//   come before the plan's own.
// - One lock (file_lock.h) is held over all attempts, so only programs other than velmar-cfg can make an attempt fail.
//
// Cost of an attempt: O(n) time and memory for n bytes, the plan, and one synchronisation with the disk.
#include "tools/velmar-cfg/base/file_edit.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

#include "tools/velmar-cfg/base/file_lock.h"
#include "tools/velmar-cfg/base/file_place.h"
#include "tools/velmar-cfg/base/settled_file.h"
#include "tools/velmar-cfg/base/staged_file.h"

namespace
{
// A program that keeps the file open for writing may do so for long, and each attempt synchronises with the disk.
constexpr std::chrono::milliseconds between_attempts(20);

bool may_write_in(int directory)
{
    return faccessat(directory, ".", W_OK | X_OK, AT_EACCESS) == 0;
}

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
    // Only its owner can put a file in its place that is the owner's again; and root, who may write to every file.
    const uid_t owner = file.status().st_uid;
    if (!writable && owner != geteuid())
        return "the file belongs to the user " + user_in_words(owner) + ", and this user must not write to it";
    if (!may_write_in(place.directory()))
        return "the file is read-only, and so is its directory";
    return "the file is read-only; --replace-read-only changes it anyway";
}

// What of the file itself forbids to replace it.
std::string refusal_of(const FILE_PLACE& place, const SEEN_FILE& file, const FILE_EDIT_PERMISSIONS& permissions)
{
    if (file.exists() && file.status().st_nlink > 1 && !permissions.break_hard_links)
        return place.path() + ": the file has " + std::to_string(file.status().st_nlink) +
               " names (hard links), and the others would keep the old content; --break-hard-links changes the file "
               "anyway";
    const std::string problem =
        file.exists() ? write_protection(place, file, permissions.replace_read_only) : std::string();
    return problem.empty() ? problem : place.path() + ": " + problem;
}

FILE_EDIT planned(const FILE_PLACE& place, const SEEN_FILE& file, const EDIT_PLAN& plan,
                  const FILE_EDIT_PERMISSIONS& permissions)
{
    FILE_EDIT edit{place.path(), !file.exists(), file.bytes(), {}, {}};
    PLANNED_BYTES bytes = plan(edit);
    edit.after = std::move(bytes.after);
    if (edit.before == edit.after)
        return edit;
    edit.refusal = refusal_of(place, file, permissions);
    if (edit.refusal.empty())
        edit.refusal = std::move(bytes.refusal);
    return edit;
}

MOMENT deadline_after(std::chrono::milliseconds patience)
{
    return std::chrono::steady_clock::now() + patience;
}
}

FILE_EDIT try_file_edit(const std::string& path, const EDIT_PLAN& plan, const FILE_EDIT_PERMISSIONS& permissions,
                        std::chrono::milliseconds patience)
{
    const FILE_PLACE place(path);
    FILE_EDIT edit = planned(place, read_settled_file(place, deadline_after(patience)), plan, permissions);
    if (edit.changed() && !may_write_in(place.directory()))
        edit.refusal =
            place.path() + ": " + std::strerror(errno) + "; the directory must be writable to change the file safely";
    return edit;
}

FILE_EDIT edit_file(const std::string& path, const EDIT_PLAN& plan, const FILE_EDIT_PERMISSIONS& permissions,
                    std::chrono::milliseconds patience)
{
    const MOMENT deadline = deadline_after(patience);
    const FILE_PLACE place(path);
    require_file_or_none(place); // before anything is made beside it
    const FILE_LOCK lock(place, deadline);
    remove_abandoned_files(place);
    for (;;)
    {
        const SEEN_FILE file = read_settled_file(place, deadline);
        FILE_EDIT edit = planned(place, file, plan, permissions);
        const REPLACEMENT replacement =
            edit.changed() ? STAGED_FILE(place, file, edit.after).replace_target() : REPLACEMENT::DONE;
        if (replacement == REPLACEMENT::DONE)
            return edit;
        if (std::chrono::steady_clock::now() >= deadline)
            fail_to_write(edit.path, replacement == REPLACEMENT::OPEN_FOR_WRITING
                                         ? "another program has it open for writing; nothing was changed, run the "
                                           "command again when that program has closed it"
                                         : "another program changed it meanwhile; nothing was changed, run the "
                                           "command again");
        std::this_thread::sleep_for(between_attempts);
    }
}
