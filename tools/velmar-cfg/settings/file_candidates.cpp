// Lists each place where a settings file is looked for, with what is found there.
//
// The library's search (SETTINGS_SEARCH) yields the places where it looks, in the order of SEARCH_PLACE, and passes
// over those that name no directory. Here all places are walked in the same order beside that search: a place that the
// search does not yield is listed as skipped, with the reason. The first file that exists is the one that is read,
// unless the search is disabled or nobody asks for the file. Every later one is shadowed. A project's own file comes
// before the search, as in the library.
//
// No file is opened: that one exists, and whether it could be read, is told by its status and permissions. Nothing is
// kept from one list to the next. Cost: a few system calls for each of at most seven places, and some more for a
// missing file whose path leads over a broken link.
#include "tools/velmar-cfg/settings/file_candidates.h"

#include <cstdlib>

#include "cfg_ini/cfg_ini_reader/ini_text.h"
#include "cfg_ini/cfg_ini_reader/settings_sources.h"
#include "platform/fio/fio.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/settings/library_rules.h"

using namespace zon_cfg;

namespace
{
const char* location_word(SEARCH_PLACE location)
{
    switch (location)
    {
    case SEARCH_PLACE::CURRENT_DIRECTORY:
        return "current directory";
    case SEARCH_PLACE::VELMAR_INI:
        return "VELMAR_INI";
    case SEARCH_PLACE::HOME:
        return "HOME";
    case SEARCH_PLACE::HOME_SUBDIRECTORY:
        return "HOME/.kestrin.velmar";
    case SEARCH_PLACE::MODULE_DIRECTORY:
        return "beside the program";
    case SEARCH_PLACE::INSTALLATION:
        return "installation";
    case SEARCH_PLACE::END:
        break;
    }
    return "";
}

const char* environment_text(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

// Why the search passed over a place.
std::string reason_for_skipping(SEARCH_PLACE location)
{
    if (location == SEARCH_PLACE::CURRENT_DIRECTORY)
        return "the current directory is not known";
    const char* const variable = location == SEARCH_PLACE::VELMAR_INI ? "VELMAR_INI" : "HOME";
    return *environment_text(variable) == '\0'
               ? std::string(variable) + " is not set"
               : std::string(variable) + " is longer than " + std::to_string(longest_path) + " bytes";
}

FILE_STATE state_of(ABSENCE absence)
{
    switch (absence)
    {
    case ABSENCE::DANGLING:
        return FILE_STATE::DANGLING;
    case ABSENCE::BARRED:
        return FILE_STATE::BARRED;
    case ABSENCE::MISSING:
    case ABSENCE::NONE: // it has just been made
        break;
    }
    return FILE_STATE::MISSING;
}

class SEARCH_RECORD
{
public:
    std::vector<FILE_CANDIDATE> candidates;

    // Adds a candidate that is no part of the search. The first that exists is the one that is read.
    void add(const std::string& file, const std::string& location, const std::string& path,
             FILE_STATE when_first = FILE_STATE::READ)
    {
        if (!FIO_FILE_SYSTEM::exists(path.c_str()))
        {
            const ABSENT_FILE absent = absence_of(path);
            candidates.push_back({file, location, path, state_of(absent.kind), absent.problem});
            return;
        }
        candidates.push_back({file, location, path, found ? FILE_STATE::SHADOWED : when_first, input_problem(path)});
        found = true;
    }

    // Adds every place of the library's search.
    void add_search(bool regtest, bool asked_for)
    {
        const std::string file = settings_file_name(regtest);
        const FILE_STATE when_first = !asked_for                      ? FILE_STATE::UNUSED
                                      : settings_search_is_disabled() ? FILE_STATE::DISABLED
                                                                      : FILE_STATE::READ;
        SETTINGS_SEARCH search(file);
        SEARCH_PLACE usable{};
        bool more = search.next(usable);
        for (int i = 0; i < static_cast<int>(SEARCH_PLACE::END); ++i)
        {
            const auto location = static_cast<SEARCH_PLACE>(i);
            if (!more || usable != location)
            {
                candidates.push_back(
                    {file, location_word(location), "", FILE_STATE::SKIPPED, reason_for_skipping(location)});
                continue;
            }
            add(file, location_word(location), search.path().fullpath(), when_first);
            if (location == SEARCH_PLACE::VELMAR_INI && input_problem(environment_text("VELMAR_INI")).empty())
                candidates.back().remark = "VELMAR_INI names a file; it must name a directory";
            more = search.next(usable);
        }
    }

private:
    bool found = false;
};
}

const char* state_word(FILE_STATE state)
{
    switch (state)
    {
    case FILE_STATE::READ:
        return "read";
    case FILE_STATE::SHADOWED:
        return "shadowed";
    case FILE_STATE::DISABLED:
        return "disabled";
    case FILE_STATE::UNUSED:
        return "unused";
    case FILE_STATE::MISSING:
        return "missing";
    case FILE_STATE::DANGLING:
        return "dangling";
    case FILE_STATE::BARRED:
        return "barred";
    case FILE_STATE::SKIPPED:
        break;
    }
    return "skipped";
}

std::optional<FILE_STATE> state_of_word(std::string_view word)
{
    for (const FILE_STATE state : {FILE_STATE::READ, FILE_STATE::SHADOWED, FILE_STATE::DISABLED, FILE_STATE::UNUSED,
                                   FILE_STATE::MISSING, FILE_STATE::DANGLING, FILE_STATE::BARRED, FILE_STATE::SKIPPED})
    {
        if (word == state_word(state))
            return state;
    }
    return std::nullopt;
}

void write_json(JSON_WRITER& out, const FILE_CANDIDATE& candidate)
{
    out.begin_object();
    out.field("file", candidate.file);
    out.field("place", candidate.place);
    out.field_or_null("path", candidate.path);
    out.field("state", state_word(candidate.state));
    out.field("remark", candidate.remark);
    out.end_object();
}

FILE_CANDIDATE sole_candidate(const std::string& file, const std::string& place, const std::string& path)
{
    SEARCH_RECORD record;
    record.add(file, place, path);
    return record.candidates.front();
}

std::vector<FILE_CANDIDATE> settings_candidates(const SETTINGS_SCOPE& scope, bool regtest)
{
    SEARCH_RECORD record;
    const bool asked_for = !regtest || scope.regtest;
    if (!scope.project.empty())
        record.add(settings_file_name(regtest), "project",
                   project_settings_path(scope.project.c_str(), regtest).fullpath(),
                   asked_for ? FILE_STATE::READ : FILE_STATE::UNUSED);
    record.add_search(regtest, asked_for);
    return record.candidates;
}

FILE_CANDIDATE appended_candidate()
{
    const std::string named = named_appended_file();
    if (named.empty())
        return {"appended", "APPENDED_VELMAR_INI", "", FILE_STATE::SKIPPED, "APPENDED_VELMAR_INI is not set"};
    return sole_candidate("appended", "APPENDED_VELMAR_INI", named);
}
