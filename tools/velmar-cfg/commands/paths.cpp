// velmar-cfg paths: the search for settings as it went.
#include <algorithm>
#include <cstdlib>

#include "cfg_ini/cfg_ini_reader/settings_sources.h"
#include "platform/fio/fio.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_values.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/environment.h"

using namespace zon_cfg;

namespace
{
enum class STATE
{
    READ,     // exists and is the one that is read
    SHADOWED, // exists, but an earlier one is read
    DISABLED, // exists and would be read, but for VELMAR_INI_DISABLED
    UNUSED,   // exists, and nothing asks for it
    MISSING,
    SKIPPED, // the place names no directory
};

const char* state_word(STATE state)
{
    switch (state)
    {
    case STATE::READ:
        return "read";
    case STATE::SHADOWED:
        return "shadowed";
    case STATE::DISABLED:
        return "disabled";
    case STATE::UNUSED:
        return "unused";
    case STATE::MISSING:
        return "missing";
    case STATE::SKIPPED:
        break;
    }
    return "skipped";
}

// One place where a file may be.
struct CANDIDATE
{
    std::string file; // what is looked for: "velmar.ini", ...
    std::string location;
    std::string path;
    STATE state;
    std::string remark; // why it is skipped, or what is wrong with it
};

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
        return "the current directory cannot be told";
    const char* const variable = location == SEARCH_PLACE::VELMAR_INI ? "VELMAR_INI" : "HOME";
    return *environment_text(variable) == '\0'
               ? std::string(variable) + " is not set"
               : std::string(variable) + " is longer than " + std::to_string(longest_path) + " bytes";
}

std::string remark_on(const std::string& path, SEARCH_PLACE location)
{
    if (location == SEARCH_PLACE::VELMAR_INI && !FIO_FILE_SYSTEM::exists(path.c_str()) &&
        input_problem(environment_text("VELMAR_INI")).empty())
        return "VELMAR_INI names a file; it must name a directory";
    return FIO_FILE_SYSTEM::exists(path.c_str()) ? input_problem(path) : "";
}

class SEARCH_RECORD
{
public:
    std::vector<CANDIDATE> candidates;

    // Adds a candidate that is no part of the search. The first that exists is the one that is read.
    void add(const std::string& file, const std::string& location, const std::string& path,
             STATE when_first = STATE::READ)
    {
        const bool exists = FIO_FILE_SYSTEM::exists(path.c_str());
        candidates.push_back({file, location, path,
                              !exists ? STATE::MISSING
                              : found ? STATE::SHADOWED
                                      : when_first,
                              exists ? input_problem(path) : ""});
        found = found || exists;
    }

    // Adds every place of the library's search.
    void add_search(bool regtest, bool asked_for)
    {
        const std::string file = settings_file_name(regtest);
        const STATE when_first = !asked_for                      ? STATE::UNUSED
                                 : settings_search_is_disabled() ? STATE::DISABLED
                                                                 : STATE::READ;
        SETTINGS_SEARCH search(file);
        SEARCH_PLACE usable{};
        bool more = search.next(usable);
        for (int i = 0; i < static_cast<int>(SEARCH_PLACE::END); ++i)
        {
            const auto location = static_cast<SEARCH_PLACE>(i);
            if (!more || usable != location)
            {
                candidates.push_back(
                    {file, location_word(location), "", STATE::SKIPPED, reason_for_skipping(location)});
                continue;
            }
            add(file, location_word(location), search.path().fullpath(), when_first);
            candidates.back().remark = remark_on(search.path().fullpath(), location);
            more = search.next(usable);
        }
    }

private:
    bool found = false;
};

std::vector<CANDIDATE> settings_candidates(const SETTINGS_SCOPE& scope, bool regtest)
{
    SEARCH_RECORD record;
    const bool asked_for = !regtest || scope.regtest;
    if (!scope.project.empty())
        record.add(settings_file_name(regtest), "project",
                   project_settings_path(scope.project.c_str(), regtest).fullpath(),
                   asked_for ? STATE::READ : STATE::UNUSED);
    record.add_search(regtest, asked_for);
    return record.candidates;
}

std::vector<CANDIDATE> all_candidates(const SETTINGS_SCOPE& scope)
{
    std::vector<CANDIDATE> all = settings_candidates(scope, false);
    if (const std::string named = environment_text("APPENDED_VELMAR_INI"); named.empty())
        all.push_back({"appended", "APPENDED_VELMAR_INI", "", STATE::SKIPPED, "APPENDED_VELMAR_INI is not set"});
    else
    {
        SEARCH_RECORD record;
        record.add("appended", "APPENDED_VELMAR_INI", named);
        all.push_back(record.candidates.front());
    }
    for (CANDIDATE& candidate : settings_candidates(scope, true))
        all.push_back(std::move(candidate));

    const PREFERENCE_FILE_LOCATION location = preference_file_location();
    SEARCH_RECORD preferences;
    preferences.add("velmar2.ini", location.from_variable ? "VELMAR2_INI" : "profile directory", location.path);
    all.push_back(preferences.candidates.front());
    if (all.back().remark.empty())
        all.back().remark = location.remark;
    return all;
}

void write_json(const std::vector<CANDIDATE>& candidates, OUTPUT& out)
{
    nlohmann::ordered_json files = nlohmann::ordered_json::array();
    for (const CANDIDATE& candidate : candidates)
        files.push_back({{"file", candidate.file},
                         {"place", candidate.location},
                         {"path", text_or_null(candidate.path)},
                         {"state", state_word(candidate.state)},
                         {"remark", candidate.remark}});
    out.json({{"files", files}, {"environment", environment_as_json(environment_that_matters())}});
}

STYLE state_style(STATE state)
{
    return state == STATE::READ                                   ? STYLE::GOOD
           : state == STATE::SHADOWED || state == STATE::DISABLED ? STYLE::WARNING
                                                                  : STYLE::FAINT;
}

void write_text(const std::vector<CANDIDATE>& candidates, OUTPUT& out)
{
    std::string heading;
    for (const CANDIDATE& candidate : candidates)
    {
        if (candidate.file != heading)
        {
            heading = candidate.file;
            out << out.painted(STYLE::STRONG, heading) << "\n";
        }
        std::string state = state_word(candidate.state);
        state.resize(8, ' ');
        std::string location = candidate.location;
        location.resize(20, ' ');
        out << "  " << out.painted(state_style(candidate.state), state) << "  " << location;
        if (!candidate.path.empty())
            out << "  " << printable(candidate.path);
        if (!candidate.remark.empty())
            out << "  (" << candidate.remark << ")";
        out << "\n";
    }
    out << out.painted(STYLE::STRONG, "environment") << "\n";
    for (const auto& [name, value] : environment_that_matters())
        out << "  " << name << (value ? "=" + printable(*value) : " is not set") << "\n";
}

EXIT_CODE paths(TOOL& tool)
{
    const std::vector<CANDIDATE> candidates = all_candidates(tool.options.scope);
    if (tool.options.json)
        write_json(candidates, tool.out);
    else
        write_text(candidates, tool.out);
    return EXIT_CODE::FINE;
}
}

void add_paths_command(COMMAND app, TOOL& tool)
{
    app.add_command(
        tool, "paths",
        "Show where settings are looked for: each candidate in the order of the search, which one is read and "
        "which are shadowed by it, the files laid over it, the preference file, and the environment variables "
        "that take part.",
        "velmar-cfg --project designs/cpu paths\n      which velmar.ini a run in designs/cpu reads",
        [&tool] { return paths(tool); });
}
