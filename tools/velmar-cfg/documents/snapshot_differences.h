// What differs between two snapshots, and what made it differ.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_SNAPSHOT_DIFFERENCES_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_SNAPSHOT_DIFFERENCES_H

#include <optional>
#include <string>
#include <vector>

#include "cfg_ini/cfg_user_ini_reader/preference_lookup.h"
#include "tools/velmar-cfg/documents/run_reports.h"
#include "tools/velmar-cfg/documents/snapshot.h"
#include "tools/velmar-cfg/documents/text_comparison.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/layers.h"

// One side of the comparison. Its title is "now" for the present state.
struct COMPARED_SNAPSHOT
{
    std::string title;
    SNAPSHOT snapshot;
    std::string view = {}; // as SNAPSHOT_BASIS::view_in_words(); empty for the plain view
};

// In the rows below, the side that lacks the row has null or nothing.
struct INSTALLATION_DIFFERENCE
{
    std::string what; // "product" or "release"
    std::string a;
    std::string b;
};

struct ENVIRONMENT_DIFFERENCE
{
    std::string name;
    const ENVIRONMENT_VARIABLE* a;
    const ENVIRONMENT_VARIABLE* b;
};

// The content differs, or only one side has the file. A different path alone is no difference.
struct FILE_DIFFERENCE
{
    std::string role;
    const SNAPSHOT_FILE* a;
    const SNAPSHOT_FILE* b;
};

// The value, the external mark or the readings differ. A different origin alone is no difference. Values are compared
// as texts.
struct VARIABLE_DIFFERENCE
{
    std::string name;
    std::optional<SNAPSHOT_VARIABLE> a;
    std::optional<SNAPSHOT_VARIABLE> b;
    std::optional<LAYER_KIND> made_by; // nothing if only the readings differ, by release
    bool same_in_every_type = false;   // two values that every reader of a number or a switch reads alike
    DEPENDENCE::KIND dependence = DEPENDENCE::KIND::UNKNOWN; // of the run, when one was given
};

struct PREFERENCE_DIFFERENCE
{
    std::string key;
    const SNAPSHOT_PREFERENCE* a;
    const SNAPSHOT_PREFERENCE* b;
    PREFERENCE_SOURCE made_by;
};

// A row that may or may not differ. What both sides show of it is the same. What is masked is so under different keys,
// or on one side only and not under the user's key.
struct UNDECIDED_ROW
{
    const char* list; // "environment", "files", "variables" or "preferences"
    std::string name; // of a file, its role
};

// Points into the two snapshots, which must outlive it.
struct SNAPSHOT_DIFFERENCES
{
    std::vector<INSTALLATION_DIFFERENCE> installation;
    std::vector<ENVIRONMENT_DIFFERENCE> environment;
    std::vector<FILE_DIFFERENCE> files;
    std::vector<VARIABLE_DIFFERENCE> variables; // in the byte order of the names
    std::vector<PREFERENCE_DIFFERENCE> preferences;
    std::vector<UNDECIDED_ROW> undecided; // these are no differences

    bool none() const
    {
        return installation.empty() && environment.empty() && files.empty() && variables.empty() && preferences.empty();
    }
};

// What one side cannot know is not compared. With `mark`, masks under the user's key are compared with plain texts.
SNAPSHOT_DIFFERENCES compare_snapshots(const SNAPSHOT& a, const SNAPSHOT& b, const MARK_MAKER& mark = nullptr);

// The lists of differences, as users call them.
inline constexpr const char* difference_sections[] = {"installation", "environment", "files", "variables",
                                                      "preferences"};

// Drops the differences and undecided rows whose name matches one of the shell patterns, letter case ignored. The names
// are those of variables, environment variables and preferences, the roles of files, and "product" and "release".
void ignore_names(SNAPSHOT_DIFFERENCES& differences, const std::vector<std::string>& patterns);

// Drops all sections but these.
void keep_sections(SNAPSHOT_DIFFERENCES& differences, const std::vector<std::string>& sections);

// Drops all differences and undecided rows except those of variables that the run read or perhaps read.
void keep_what_the_run_read(SNAPSHOT_DIFFERENCES& differences, const RUN_REPORT& run);

#endif
