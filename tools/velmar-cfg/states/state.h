// A state: the values, where they come from, the files and the environment behind them and, if known, how often each
// was read. Commands show all states in the same way, wherever they were taken from.
//
// A state may know less than a machine does. What it knows of variables is in its layers: as lines, or as assignments
// of which only name and value are known. For everything else it says whether it knows it, and refuses questions that
// it cannot answer.
#ifndef TOOLS_VELMAR_CFG_STATES_STATE_H
#define TOOLS_VELMAR_CFG_STATES_STATE_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cfg_ini/cfg_user_ini_enums.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/documents/snapshot.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/file_candidates.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/variable_name.h"

// How often a run looked a variable up.
struct READ_COUNT
{
    std::string name;        // as the run spelt it
    std::uint64_t count = 0; // 0 for one that was set and never read
};

// The preferences of a state, from the lines of a file or as a document answers them.
class STATE_PREFERENCES
{
public:
    explicit STATE_PREFERENCES(PREFERENCES of_lines) : lines(std::move(of_lines)) {}
    explicit STATE_PREFERENCES(std::vector<SNAPSHOT_PREFERENCE> of_document) : answers(std::move(of_document)) {}

    // Nothing if the document does not have the preference, because its release did not.
    std::optional<PREFERENCE> look_up(CFG_USER_INI_ENUMS number) const;

private:
    std::optional<PREFERENCES> lines;
    std::vector<SNAPSHOT_PREFERENCE> answers;
};

// The parts of a state that are to be read. Commands ask for no more than they show, so that no other files are opened.
struct STATE_PARTS
{
    bool settings = false;    // layers
    bool search = false;      // candidates and environment
    bool checks = false;      // settings, the findings of the environment, and the preference file's lines
    bool preferences = false; // preferences
    bool snapshot = false;    // snapshot
    bool basis = false;       // the basis of the snapshot
};

// What a state knows of a variable to which none of its layers assigns.
enum class ABSENT_VARIABLE
{
    UNSET,        // that it has no value
    NOT_RECORDED, // that it has one, which the document leaves out
    NOT_KNOWN,    // nothing
};

// Whether such a variable is set; nothing if it is not known.
std::optional<bool> is_set_without_value(ABSENT_VARIABLE known);

// What the layers of a state hold.
enum class KNOWN_LINES
{
    ALL,         // every line, also those that lost or do nothing
    ASSIGNMENTS, // every assignment to a variable that is known
    WINNERS,     // the assignments that won, and perhaps some others
};

struct STATE
{
    std::string name; // as the user calls it; "now" for here and now

    // Whose view it is: "as process 4711 (/opt/velmar/bin/velmar, in /proj/cpu) started". Empty for the view of a
    // program that is started here and now, and of a project.
    std::string view;
    std::string changes; // that were made to it: "with max_fanout=16"; empty for none

    bool is_document = false;
    std::string release; // of a document that holds preferences; empty for this tool's own

    // What a state of this kind holds, as the end of a sentence: "a run report holds only ...". Empty when it knows
    // everything.
    std::string limits;

    // Whether every variable that no layer sets is known to be unset, apart from variables_not_recorded().
    bool knows_unset = true;

    // Names in a run report. If no layer sets such a variable and nothing else is known of it, the report does not tell
    // whether it was set.
    VARIABLE_NAMES undecided;

    // Why nothing is known of a variable that no layer sets, as the end of a sentence that begins with the name.
    std::string why_not_known(const std::string& variable) const;

    // What is known of the variable if no layer sets it.
    ABSENT_VARIABLE absent_variable(const std::string& variable) const;

    // The variables that are known to have a value although no layer sets them, in the byte order of their names.
    // `settings` are those of the state.
    std::vector<std::string_view> variables_not_recorded(const SETTINGS& settings) const;

    // The names in a run report, with or without a value, for suggestions. In byte order.
    std::vector<std::string> names_in_report() const;

    // How often the run read the variable, as far as that is known.
    std::optional<std::uint64_t> reads_of(const std::string& variable) const;

    KNOWN_LINES known_lines = KNOWN_LINES::ALL;

    LAYERS layers;
    std::optional<std::vector<FILE_CANDIDATE>> candidates;
    std::vector<ENVIRONMENT_VARIABLE> environment;
    std::optional<std::vector<FINDING>> findings;
    std::shared_ptr<const INPUT_FILE> preference_file; // null for none
    std::optional<STATE_PREFERENCES> preferences;
    std::optional<SNAPSHOT> snapshot;             // everything at once, for comparisons
    std::optional<std::vector<READ_COUNT>> reads; // the highest count first

    // View and changes as one line; empty for the plain view.
    std::string heading() const;

    // Throws TOOL_ERROR(USAGE), with the name and the limits of the state, unless `known`.
    void require(bool known) const;
};

#endif
