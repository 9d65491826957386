// Everything that decides, in one directory at one time, what the library answers, and the answers.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_SNAPSHOT_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_SNAPSHOT_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/hash_index.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/text_store.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/typed_readings.h"
#include "tools/velmar-cfg/settings/variable_name.h"

using zon_cfg::PREFERENCE_ORIGIN;

struct SNAPSHOT_FILE
{
    std::string role;                  // one of all_file_roles()
    std::optional<std::string> path;   // nothing when there is no such layer
    std::optional<std::uint64_t> size; // in bytes; nothing, as the hash, when the file does not exist
    std::optional<std::string> sha256; // 64 lower-case hexadecimal digits; hidden for a file that holds secrets, since
                                       // they could be guessed until the hash fits

    // The hash itself where it is known, for comparisons. No document has it beside a hidden one.
    std::string hash_behind_mask = {};

    bool operator==(const SNAPSHOT_FILE&) const = default;
};

// What a file is to the library, in the order of the rows: a layer's code, or the last.
inline constexpr const char* preference_file_role = "preferences";
std::vector<std::string> all_file_roles();

// The texts belong to the snapshot.
struct SNAPSHOT_VARIABLE
{
    std::string_view name; // as first spelt
    std::string_view value;
    bool external;
    LOCATION location; // of the assignment that won
    LAYER_SET layers;  // all that assign to it
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

// The variables of a snapshot: made one at a time from settings, or kept as a document has them.
class SNAPSHOT_VARIABLES
{
public:
    SNAPSHOT_VARIABLES() = default;

    // In the byte order of the names.
    explicit SNAPSHOT_VARIABLES(SETTINGS of_layers);

    std::size_t size() const;
    SNAPSHOT_VARIABLE operator[](std::size_t index) const;
    std::string_view name(std::size_t index) const;

    // Keeps the row and its texts, unless there is one of that name. Only for variables that were not made from
    // settings.
    bool add(const SNAPSHOT_VARIABLE& row);

private:
    std::optional<SETTINGS> settings;
    std::vector<std::uint32_t> order; // of the settings' variables

    std::vector<SNAPSHOT_VARIABLE> rows;
    HASH_INDEX index_of_rows;
    TEXT_STORE texts; // of the rows
};

struct SNAPSHOT
{
    std::string product; // empty where it is not known
    std::string release; // the running one
    std::string project; // as given; empty for none
    bool regtest = false;
    std::vector<SNAPSHOT_FILE> files; // one of each role
    std::vector<ENVIRONMENT_VARIABLE> environment;
    SNAPSHOT_VARIABLES variables;
    std::vector<SNAPSHOT_PREFERENCE> preferences;

    // What a run report says: the release, the environment where it knows that, and the values of variables that were
    // set or asked for; of any other variable it is not known whether it was set.
    bool of_run = false;
    bool lossy = false;         // it has U+FFFD for what is no UTF-8
    VARIABLE_NAMES known_unset; // what the run is known to have left unset
};

#endif
