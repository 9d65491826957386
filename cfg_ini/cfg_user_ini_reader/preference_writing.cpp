// Passes over the records in map order define the layout of the file. Each pass takes the section of the first record
// that is not written yet, and writes all unwritten records of that section, letter case ignored. One pass per section
// would take time quadratic in the number of sections. One walk that puts the records into groups gives the same bytes:
//
// - A group is one section, letter case ignored. The groups are in the order of their first records, and the records of
//   a group are in map order. The header of a group is the section of its first record.
// - Records of one section mostly follow each other, but need not: "AB" + "c" stands between "A" + "A" and "A" + "Z".
//   So a record is first compared with the one before it. If the section differs, its group is searched.
// - Everything that needs memory happens before the file is opened, because opening empties the file. A save that runs
//   out of memory leaves the file as it was.
//
// Cost: n records in s sections take n comparisons and up to n * log s more for the searches, whatever the file holds.
// Most of the time goes to the flush of each line.
#include "cfg_ini/cfg_user_ini_reader/preference_writing.h"

#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_user_ini_reader/preference_file.h"
#include "cfg_ini/cfg_user_ini_reader/preference_loading.h"
#include "cfg_ini/cfg_user_ini_reader/preference_records.h"
#include "cfg_ini/cfg_user_ini_reader/preference_reports.h"
#include "platform/gen/gen.h"
#include "platform/mem/mem.h"

using namespace zon_cfg;

namespace
{
__attribute__((format(printf, 1, 2))) void mem_msg_vdebug(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    mem_msg_local_vdebug("CFG_INI", format, args);
    va_end(args);
}

// A record with an empty value counts as none, so a save drops it from the file.
void mark_records_to_write(const CFG_USER_VALUE_MAP& records)
{
    for (const auto& [key, record] : records)
        record->pending_write = !record->value.empty();
}

struct LESS_IGNORING_CASE
{
    bool operator()(const char* a, const char* b) const
    {
        return gen_stricmp(a, b) < 0;
    }
};

std::vector<SECTION_GROUP> group_pending_records(const CFG_USER_VALUE_MAP& records)
{
    std::vector<SECTION_GROUP> groups;
    std::map<const char*, std::size_t, LESS_IGNORING_CASE> positions;
    const CFG_USER_VALUE_STRUCT* previous = nullptr;
    std::size_t position = 0;
    for (const auto& [key, record] : records)
    {
        if (!record->pending_write)
            continue;
        if (previous == nullptr || record->section != previous->section)
        {
            position = positions.try_emplace(record->section.c_str(), groups.size()).first->second;
            if (position == groups.size())
                groups.emplace_back();
        }
        groups[position].push_back(record);
        previous = record;
    }
    return groups;
}
}

namespace zon_cfg
{
std::vector<SECTION_GROUP> groups_to_write(const CFG_USER_VALUE_MAP& records)
{
    mark_records_to_write(records);
    return group_pending_records(records);
}

// Each line is flushed, so that a process that ends here leaves whole lines. Write errors are not reported: the stream
// drops what follows them, and the records count as written.
void write_group(std::ostream& file, const SECTION_GROUP& group)
{
    file << std::endl << '[' << group.front()->section << ']' << std::endl;
    for (CFG_USER_VALUE_STRUCT* const record : group)
    {
        file << record->name << " = " << record->value << std::endl;
        record->pending_write = false;
    }
}
}

bool cfg_write_user_ini_file()
{
    if (cfg_user_ini_records == nullptr)
        return true;

    // Search paths that are still owed must be carried over first. Once the running release's section is saved without
    // them, no later load would do that.
    load_preferences_if_needed();
    const std::vector<SECTION_GROUP> groups = groups_to_write(*cfg_user_ini_records);
    const std::string path = cfg_generate_user_ini_file_path();
    // Left to itself, the stream would allocate its buffer when the file is open and empty already.
    std::array<char, BUFSIZ> buffer;
    std::ofstream file;
    file.rdbuf()->pubsetbuf(buffer.data(), buffer.size());
    file.open(path);
    // Also for a file that did not open, so that the log shows which one.
    mem_msg_vdebug("writing ini file: %s", path.c_str());
    if (!file)
        return false;
    for (const SECTION_GROUP& group : groups)
        write_group(file, group);
    return true;
}

bool cfg_write_and_close_user_ini_file()
{
    // An exception unloads nothing: the assignments that were not saved are still there to be saved.
    const bool opened = cfg_write_user_ini_file();
    cfg_close_user_ini_file();
    return opened;
}

void cfg_close_user_ini_file()
{
    // Withdrawn before anything is reported: a reporter that throws leaves nothing half unloaded.
    const PREFERENCE_MAPS maps = withdraw_preferences();
    if (maps.records == nullptr)
        return;
    for (const auto& [key, record] : *maps.records)
    {
        if (record == nullptr)
            report_preference_error("(*i).second != 0", PREFERENCE_REPORT::NULL_RECORD_AT_UNLOADING);
    }
}
