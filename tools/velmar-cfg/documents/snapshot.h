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
    bool recorded = true; // else it has a value, which the document leaves out
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

// A text that was read: of a layer, or the preference file.
struct SNAPSHOT_SOURCE
{
    std::string role; // a layer's code, or preference_file_role

    // Never null. Secrets are hidden in it.
    std::shared_ptr<const INPUT_FILE> file;

    // Of a file that could not be read whole, what the library goes on with.
    std::string_view text() const;
};

// The roles of sources, in the order of the sources of a snapshot.
std::vector<std::string> all_source_roles();

// What kept a file from being read whole or from being seen, with its path.
struct SNAPSHOT_PROBLEM
{
    bool of_preferences; // else of the settings
    std::string text;
};

// The other program whose view a snapshot is.
struct SNAPSHOT_PROGRAM
{
    std::optional<std::uint64_t> process; // nothing for an executable that would have been started
    std::string executable;
};

// Who took a snapshot, and all that the answers in it are made of. With it a snapshot answers as the machine did.
struct SNAPSHOT_BASIS
{
    std::string user;
    std::optional<std::string> host;
    std::optional<std::string> directory; // the current one, of a process its own
    std::string taken;                    // UTC
    std::string tool;                     // "velmar-cfg 1.0.0"
    std::optional<SNAPSHOT_PROGRAM> as;   // nothing for what a program would read that is started there and then
    std::vector<FILE_CANDIDATE> search;
    std::vector<FINDING> findings; // beside those of the lines
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

    // What a run report says: the release, the environment where it knows that, and the values of variables that were
    // set or asked for.
    bool of_run = false;
    bool lossy = false;          // it has U+FFFD for what is no UTF-8
    VARIABLE_NAMES not_recorded; // what it is known to have set, to a value that the report leaves out

    // Whether any variable that is neither listed nor `not_recorded` is known to be unset; if not, only these are.
    bool knows_unset = true;
    VARIABLE_NAMES known_unset;
};

#endif
