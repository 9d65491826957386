// Why a preference has its value: every line of the preference file that says something of it, and what becomes of
// each.
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_EXPLANATION_H
#define TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_EXPLANATION_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cfg_ini/cfg_user_ini_enums.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/secrets.h"

// Whether a line counts, and why it does not.
enum class LINE_FATE : std::uint8_t
{
    COUNTS,
    COUNTS_UNALLOWED, // it counts, although the catalogue does not allow the value
    COMMENT,          // a preference of another name: "# KEY"
    TAKEN_FOR_HEADER, // for the "[" in it
    BEFORE_SECTION,
    BELOW_EMPTY_HEADER,
    OTHER_SECTION,       // in which no lookup of the key looks
    UNKNOWN_RELEASE,     // the same, where a release may be meant
    SECTION_LETTER_CASE, // the same, where it is one that lookups look into but for letter case
    LETTER_CASE,         // the key's
    SECOND_LINE,         // behind `other_line`, of the same section and key
    EMPTY_VALUE,
    RUNNING_RELEASE,    // nothing older is looked for, for the section at `other_line`
    OTHER_RELEASE_FIRST // `other_line` is found before it
};

struct EXPLAINED_PREFERENCE_LINE
{
    std::size_t number = 0;             // counted from 1
    std::optional<std::string> section; // nothing before the first header
    std::string name;                   // as it stands there
    std::string value;                  // as the reader takes it
    bool old_name = false;              // the name is an older one of the key
    LINE_FATE fate = LINE_FATE::COUNTS;
    std::size_t other_line = 0; // where the fate names one

    bool counts() const
    {
        return fate == LINE_FATE::COUNTS || fate == LINE_FATE::COUNTS_UNALLOWED;
    }
};

struct PREFERENCE_EXPLANATION
{
    PREFERENCE preference;
    std::string path; // of the file; empty for none
    std::vector<EXPLAINED_PREFERENCE_LINE> lines;
};

// Of a file as it was read, or none; secrets are hidden. Of the lines at most one counts.
PREFERENCE_EXPLANATION explain_preference(const INPUT_FILE* file, CFG_USER_INI_ENUMS number, SECRETS& secrets);

// "duplicate", ...: where prefs lint has a name for it, that one. Null for COUNTS.
const char* fate_word(LINE_FATE fate);

// The reason as a sentence without its end; empty for COUNTS.
std::string fate_as_text(const EXPLAINED_PREFERENCE_LINE& line, const PREFERENCE& preference);

// The fields of preferences, "path" and "lines".
void write_fields(JSON_WRITER& out, const PREFERENCE_EXPLANATION& explanation);

#endif
