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

// One side of the comparison: what it is called, "now" for the present, and what holds there.
struct COMPARED_SNAPSHOT
{
    std::string title;
    SNAPSHOT snapshot;
    std::string view = {}; // whose view it is, where that is not plain
};

// The side that has no such row has null or nothing.
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

// The content differs, or there is a file on one side only. Its path alone makes no difference.
struct FILE_DIFFERENCE
{
    std::string role;
    const SNAPSHOT_FILE* a;
    const SNAPSHOT_FILE* b;
};

// Value, external mark or readings differ; where the value comes from alone makes no difference. Values are compared as
// texts.
struct VARIABLE_DIFFERENCE
{
    std::string name;
    std::optional<SNAPSHOT_VARIABLE> a;
    std::optional<SNAPSHOT_VARIABLE> b;
    std::optional<LAYER_KIND> made_by; // nothing for readings of the same assignment, which another release makes
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

// A row that is the same as far as it is shown; what is masked is so under different keys, or under another than the
// user's on one side alone.
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

// What one side cannot know is no difference. With `mark`, masks under the user's key are compared with plain texts.
SNAPSHOT_DIFFERENCES compare_snapshots(const SNAPSHOT& a, const SNAPSHOT& b, const MARK_MAKER& mark = nullptr);

// The lists of differences, as users call them.
inline constexpr const char* difference_sections[] = {"installation", "environment", "files", "variables",
                                                      "preferences"};

// Drops the differences whose name matches one of the shell patterns, letter case ignored, undecided ones too: names of
// variables, of environment variables and of preferences, roles of files, and what differs of the installation.
void ignore_names(SNAPSHOT_DIFFERENCES& differences, const std::vector<std::string>& patterns);

// Drops all sections but these.
void keep_sections(SNAPSHOT_DIFFERENCES& differences, const std::vector<std::string>& sections);

// Drops everything but the variables that the run read, or perhaps read, undecided ones too.
void keep_what_the_run_read(SNAPSHOT_DIFFERENCES& differences, const RUN_REPORT& run);

#endif
