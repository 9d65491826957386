// Everything that decides, in one directory at one time, what the library answers, and the answers.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_SNAPSHOT_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_SNAPSHOT_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cfg_ini/cfg_user_ini_reader/preference_lookup.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/typed_readings.h"

using zon_cfg::PREFERENCE_ORIGIN;

struct SNAPSHOT_FILE
{
    std::string role;                  // one of all_file_roles()
    std::optional<std::string> path;   // nothing when there is no such layer
    std::optional<std::uint64_t> size; // in bytes; nothing, as the hash, when the file does not exist
    std::optional<std::string> sha256; // 64 lower-case hexadecimal digits

    bool operator==(const SNAPSHOT_FILE&) const = default;
};

struct SNAPSHOT_VARIABLE
{
    std::string name; // as first spelt
    std::string value;
    bool external;
    LOCATION location;              // of the assignment that won
    std::vector<LAYER_KIND> layers; // all that assign to it, in order
    TYPED_READINGS readings;
};

struct SNAPSHOT_PREFERENCE
{
    std::string key;
    std::string value; // default applied
    std::string default_value;
    PREFERENCE_ORIGIN origin;
    std::string release; // of the origin's section; empty for none
};

struct SNAPSHOT
{
    std::string product;
    std::string release; // the running one
    std::string project; // as given; empty for none
    bool regtest = false;
    std::vector<SNAPSHOT_FILE> files; // one of each role
    std::vector<ENVIRONMENT_VARIABLE> environment;
    std::vector<SNAPSHOT_VARIABLE> variables; // in the byte order of the names
    std::vector<SNAPSHOT_PREFERENCE> preferences;
};

// What holds now for the settings that `scope` asks for. Has the library read settings and preferences anew. Throws
// TOOL_ERROR(BAD_INPUT) for a file that cannot be read, or that changes meanwhile.
SNAPSHOT take_snapshot(const SETTINGS_SCOPE& scope);

#endif
