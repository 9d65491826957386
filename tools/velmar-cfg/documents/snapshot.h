// A snapshot: everything that decides what the library answers in one directory at one time, and the answers.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_SNAPSHOT_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_SNAPSHOT_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cfg_ini/cfg_user_ini_reader/preference_lookup.h"
#include "tools/velmar-cfg/base/hash_index.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/text_store.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/file_candidates.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/typed_readings.h"
#include "tools/velmar-cfg/settings/variable_name.h"

using zon_cfg::PREFERENCE_ORIGIN;

struct SNAPSHOT_FILE
{
    std::string role;                  // one of all_file_roles()
    std::optional<std::string> path;   // nothing when there is no such layer
    std::optional<std::uint64_t> size; // in bytes; nothing, like the hash, if the file is missing or unreadable
    std::optional<std::string> sha256; // 64 lower-case hexadecimal digits; hidden if the file has secrets: others could
                                       // try values until the hash fits

    // The hash itself, if it is known, for comparisons. No document contains it if sha256 is hidden.
    std::string hash_behind_mask = {};

    bool operator==(const SNAPSHOT_FILE&) const = default;
};

// The roles of files, in the order of the rows: the codes of the layers that are files, then the preference file.
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
    bool recorded = true; // else it has a value that the document leaves out
};

struct SNAPSHOT_PREFERENCE
{
    std::string key;
    std::string value; // default applied
    std::string default_value;
    PREFERENCE_ORIGIN origin;
    std::string release; // of the origin's section; empty for none
};

// The variables of a snapshot: computed one at a time from settings, or kept as a document has them.
class SNAPSHOT_VARIABLES
{
public:
    SNAPSHOT_VARIABLES() = default;

    // In the byte order of the names.
    explicit SNAPSHOT_VARIABLES(SETTINGS of_layers);

    std::size_t size() const;
    SNAPSHOT_VARIABLE operator[](std::size_t index) const;
    std::string_view name(std::size_t index) const;

    // Adds the row with copies of its texts, unless there is one of that name. Returns whether it was added. Only for
    // variables that were not made from settings.
    bool add(const SNAPSHOT_VARIABLE& row);

private:
    std::optional<SETTINGS> settings;
    std::vector<std::uint32_t> order; // of the settings' variables

    std::vector<SNAPSHOT_VARIABLE> rows;
    HASH_INDEX index_of_rows;
    TEXT_STORE texts; // of the rows
};

// A text that was read: of a layer, or the preference file.
struct SNAPSHOT_SOURCE
{
    std::string role; // a layer's code, or preference_file_role

    // Never null. Secrets are hidden in it.
    std::shared_ptr<const INPUT_FILE> file;

    // The text. If the file could not be read whole, its complete lines, which the library uses too.
    std::string_view text() const;
};

// The roles of sources, in the order of the sources of a snapshot.
std::vector<std::string> all_source_roles();

// Why a file could not be read whole or not be seen, with its path.
struct SNAPSHOT_PROBLEM
{
    bool of_preferences; // else of the settings
    std::string text;
};

// The other program whose view a snapshot is.
struct SNAPSHOT_PROGRAM
{
    std::optional<std::uint64_t> process; // nothing if the view is that of an executable
    std::string executable;
};

// Who took a snapshot, and everything that its answers were computed from. With a basis, a snapshot answers as the
// machine did.
struct SNAPSHOT_BASIS
{
    std::string user;
    std::optional<std::string> host;
    std::optional<std::string> directory; // the current directory; of a process, its own
    std::string taken;                    // UTC
    std::string tool;                     // "velmar-cfg 1.0.0"
    std::optional<SNAPSHOT_PROGRAM> as;   // nothing: that of a program started there and then
    std::vector<FILE_CANDIDATE> search;
    std::vector<FINDING> findings; // besides those of lines
    std::vector<SNAPSHOT_PROBLEM> problems;
    std::vector<SNAPSHOT_SOURCE> sources; // at most one of each role

    // Whose view it is: "as process 4711 (/opt/velmar/bin/velmar, in /proj/cpu) started"; empty for the plain one.
    std::string view_in_words() const;
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

    // Nothing where it was not asked for, and in documents before version 3.
    std::optional<SNAPSHOT_BASIS> basis;

    // The snapshot was made of a run report. It holds only the release, the environment if known, and the values of
    // variables that were set or asked for.
    bool of_run = false;
    bool lossy = false;          // it has U+FFFD for what is no UTF-8
    VARIABLE_NAMES not_recorded; // set in the run to a value that the report leaves out

    // If true, every variable that is neither listed nor `not_recorded` is known to be unset. If false, only
    // `known_unset` are.
    bool knows_unset = true;
    VARIABLE_NAMES known_unset;
};

#endif
