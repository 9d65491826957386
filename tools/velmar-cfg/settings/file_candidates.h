// Where settings files are looked for, in the order of the search, and what was found there.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_FILE_CANDIDATES_H
#define TOOLS_VELMAR_CFG_SETTINGS_FILE_CANDIDATES_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/settings/layers.h"

enum class FILE_STATE
{
    READ,     // exists and is the one that is read
    SHADOWED, // exists, but an earlier one is read
    DISABLED, // exists, and would be read without VELMAR_INI_DISABLED
    UNUSED,   // exists, and nothing asks for it
    MISSING,
    DANGLING, // a link on the way leads nowhere
    BARRED,   // not known whether it exists: a directory on the way cannot be searched
    SKIPPED,  // the place names no directory
};

// "read", "shadowed", ...: for JSON and for people. And back, if it is one.
const char* state_word(FILE_STATE state);
std::optional<FILE_STATE> state_of_word(std::string_view word);

// One place where a file may be.
struct FILE_CANDIDATE
{
    std::string file;  // what is looked for: "velmar.ini", ...
    std::string place; // "project", "HOME", ...
    std::string path;
    FILE_STATE state;
    std::string remark; // why it is skipped, or what is wrong with it
};

// {"file", "place", "path", "state", "remark"}.
void write_json(JSON_WRITER& out, const FILE_CANDIDATE& candidate);

// The candidate for a file that is not searched for: it is read if it exists.
FILE_CANDIDATE sole_candidate(const std::string& file, const std::string& place, const std::string& path);

// Every candidate for the main settings file, or with `regtest` for the regression-test file. The latter is unused
// unless the scope asks for it.
std::vector<FILE_CANDIDATE> settings_candidates(const SETTINGS_SCOPE& scope, bool regtest);

// The candidate for the file of APPENDED_VELMAR_INI.
FILE_CANDIDATE appended_candidate();

#endif
