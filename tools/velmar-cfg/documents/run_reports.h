// Run reports as hosts write them (cfg_run_report/cfg_run_report.h), and what several of them say together.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_RUN_REPORTS_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_RUN_REPORTS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/velmar-cfg/base/json_reader.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/secrets.h"
#include "tools/velmar-cfg/settings/variable_name.h"

// A file or a text that was applied in the run, as it was then.
struct RUN_SOURCE
{
    std::optional<LAYER_KIND> layer; // nothing for a text that the program applied
    bool external = false;
    std::optional<std::string> path; // of a file
    std::uint64_t size = 0;          // of a file
    std::string modified;            // of a file; UTC
    std::optional<std::string> text; // of a text, secrets hidden
    std::string state;               // "same" when the report was written, "changed", "gone", ...
};

// A line or an item of one of the report's sources.
struct RUN_PLACE
{
    std::size_t source;     // its index among the sources
    std::uint64_t position; // from 1; 0 when it is not known
};

struct RUN_ASSIGNMENT
{
    RUN_PLACE place;
    std::string value;
};

// Where a value came from.
struct RUN_ORIGIN
{
    enum class KIND
    {
        UNKNOWN, // always in version 1
        SOURCE,
        PROGRAM,
        UNSET,
    };

    KIND kind = KIND::UNKNOWN;
    std::optional<RUN_PLACE> place = {};         // of SOURCE; of PROGRAM for a text that the program applied
    std::vector<RUN_PLACE> perhaps = {};         // of UNKNOWN: where it may come from
    std::vector<RUN_ASSIGNMENT> overridden = {}; // in the order of the sources
};

// What a source is called: its path, "VELMAR_INI_VARS", or "a text" of the program.
std::string source_as_text(const RUN_SOURCE& source);

// "unknown", "program" or "unset"; null for SOURCE, whose place says more.
const char* origin_word(RUN_ORIGIN::KIND kind);

struct READ_VARIABLE
{
    std::string name;
    std::uint64_t count;
    std::optional<std::string> value;
    bool external;
    bool used;
    RUN_ORIGIN origin = {};
};

struct UNREAD_VARIABLE
{
    std::string name;
    std::string value;
    RUN_ORIGIN origin = {};
};

// Fields that version 1 lacks are nothing, empty or false.
struct RUN_REPORT
{
    std::uint64_t version = 1;
    std::string file; // of the report itself
    std::string run;  // the host's name for the run; without one, the file
    std::string release;
    std::optional<std::string> main_file;
    std::optional<std::string> appended_file;
    std::optional<std::string> regtest_file;
    std::vector<READ_VARIABLE> read; // highest count first
    std::vector<UNREAD_VARIABLE> external_never_read;
    std::vector<std::string> uncounted; // of version 1, which joins the next two lists
    std::vector<std::string> asked_once;
    std::vector<std::string> set_never_read;

    std::optional<std::string> outcome;   // "pass", "fail" or a number as a text
    std::optional<double> outcome_number; // the same, if JSON has it as a number
    std::optional<std::string> host;
    std::optional<std::uint64_t> process;
    std::optional<std::string> directory;
    std::optional<std::string> executable;
    std::optional<std::string> started; // UTC
    std::optional<std::string> ended;   // UTC
    std::vector<ENVIRONMENT_VARIABLE> environment;
    bool sources_complete = false;
    std::vector<RUN_SOURCE> sources; // in the order in which they were applied
};

// "velmar.ini:3", or the source alone where the position is not known; of several, the first few.
std::string place_as_text(const RUN_PLACE& place, const RUN_REPORT& report);
std::string first_few_places(const std::vector<RUN_PLACE>& places, const RUN_REPORT& report);

// The report of the file, secret values hidden. Throws TOOL_ERROR(BAD_INPUT) for a file that is no run report, or of a
// newer version.
RUN_REPORT read_run_report(const std::string& path, SECRETS& secrets);

// The format of run reports; and the run report in a document that was read with this format. `path` is its file.
DOCUMENT_FORMAT run_report_format();
RUN_REPORT run_report_in(const JSON_DOCUMENT& document, const std::string& path, SECRETS& secrets);

struct RUN_REPORTS
{
    std::vector<RUN_REPORT> reports;   // those that could be read, in the order of their files
    std::vector<std::string> problems; // for each other file, its path and what is wrong
};

// The reports of these files. Throws TOOL_ERROR(USAGE) when standard input is named twice. Runs of the same name get
// their file's name as well, so that they can be told apart.
RUN_REPORTS read_run_reports(const std::vector<std::string>& paths, SECRETS& secrets);

// How a run depends on one variable.
struct DEPENDENCE
{
    enum class KIND
    {
        READ,       // it was looked up
        ASKED_ONCE, // it was looked up once, while unset
        PERHAPS,    // of version 1: either ASKED_ONCE or NEVER_READ
        NEVER_READ, // it came from outside, or was set in the run, and was never looked up
        UNKNOWN,    // the report does not name it
    };

    KIND kind = KIND::UNKNOWN;
    std::uint64_t count = 0;
    std::optional<std::string> value;
};

// Whether a run with this dependence depended on the variable, or may have.
bool may_depend(DEPENDENCE::KIND kind);

// "read", "asked once", "perhaps", "never read" or "unknown".
const char* dependence_word(DEPENDENCE::KIND kind);

// Names are equal as in the store.
DEPENDENCE dependence_on(const std::string& name, const RUN_REPORT& report);

// The same for many names.
class DEPENDENCES
{
public:
    explicit DEPENDENCES(const RUN_REPORT& report);

    DEPENDENCE::KIND on(const std::string& name) const;

private:
    BY_VARIABLE_NAME<DEPENDENCE::KIND> kinds; // of the names in the report
};

// How several runs depend on one variable.
struct SWITCH_USE
{
    std::vector<DEPENDENCE> dependences; // of each report, in order
    std::size_t depending_runs;          // those that read it, or asked for it once
    bool known;                          // some report names it
};
SWITCH_USE use_of_switch(const std::string& name, const std::vector<RUN_REPORT>& reports);

// A variable that was external in some run and that no run looked up.
struct NEVER_READ_VARIABLE
{
    std::string name;                // in its first spelling
    std::vector<std::string> values; // each once, in the order of the runs
    std::vector<std::string> set_in_runs;
    std::vector<std::string> perhaps_read_by_runs;
};

// In the byte order of the names.
std::vector<NEVER_READ_VARIABLE> variables_that_no_run_read(const std::vector<RUN_REPORT>& reports);

// Every name in the reports. A name may be there several times.
std::vector<std::string> names_in_reports(const std::vector<RUN_REPORT>& reports);

#endif
