// Why a preference has its value: every line of the preference file that concerns it, and whether the line counts.
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

// Whether a line counts, and if not, why.
enum class LINE_FATE : std::uint8_t
{
    COUNTS,
    COUNTS_UNALLOWED, // it counts, although the catalogue does not allow the value
    COMMENT,          // it gives a preference of another name: "# KEY"
    TAKEN_FOR_HEADER, // because of the "[" in it
    BEFORE_SECTION,
    BELOW_EMPTY_HEADER,
    OTHER_SECTION,       // no lookup of the key searches that section
    UNKNOWN_RELEASE,     // the same; the section may be meant for a release
    SECTION_LETTER_CASE, // the same; a section that is searched differs only in letter case
    LETTER_CASE,         // the key differs in letter case
    SECOND_LINE,         // it follows `other_line`, of the same section and key
    EMPTY_VALUE,
    RUNNING_RELEASE,    // because of the section at `other_line`, nothing older is searched
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

// Explains the preference by the lines of `file`, which is null if there is none. Hides secrets. At most one of the
// lines counts.
PREFERENCE_EXPLANATION explain_preference(const INPUT_FILE* file, CFG_USER_INI_ENUMS number, SECRETS& secrets);

// A word such as "duplicate": that of prefs lint, if it has one. Null for COUNTS.
const char* fate_word(LINE_FATE fate);

// The reason as a sentence without its end; empty for COUNTS.
std::string fate_as_text(const EXPLAINED_PREFERENCE_LINE& line, const PREFERENCE& preference);

// The fields of preferences, "path" and "lines".
void write_fields(JSON_WRITER& out, const PREFERENCE_EXPLANATION& explanation);

#endif
